#include "family/form_table.h"

#include <algorithm>
#include <array>

namespace tarnsheets {

ArrayCounts CountArrays(std::span<const FieldRow> rows) {
  ArrayCounts counts;
  for (const FieldRow& row : rows) {
    if (row.editor.kind == EditorKind::kText) ++counts.txt_value;
    if (row.editor.kind == EditorKind::kCheck) ++counts.chk_value;
    if (row.has_title()) ++counts.lbl_title;
    if (row.has_button()) {
      ++counts.cmd_value;
      counts.cmd_value_bound = std::max(counts.cmd_value_bound, row.button.index + 1);
    }
  }
  return counts;
}

std::span<const FormTable* const> EntityForms() {
  static const std::array<const FormTable*, 17> kForms = {
      &UserInfoForm(),       &OpportunityForm(),
      &CompetitorForm(),     &ContactForm(),
      &ActivityForm(),       &ExpenseForm(),
      &ExpenseItemForm(),    &CostingForm(),
      &CompanyAccountForm(), &ShortCompanyAccountForm(),
      &PriceListForm(),      &ProductForm(),
      &QuoteForm(),          &TotalsForm(),
      &AccountForm(),        &ProposalForm(),
      &ContractForm(),
  };
  return kForms;
}

const FormTable* FindEntityForm(std::string_view class_name) {
  for (const FormTable* form : EntityForms()) {
    if (form->class_name == class_name) return form;
  }
  return nullptr;
}

}  // namespace tarnsheets
