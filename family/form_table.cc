#include "family/form_table.h"

#include <array>

namespace tarnsheets {

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
