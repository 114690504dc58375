// The designed forms of the sheet family as constant data: one FormTable for each of the
// seventeen entity sheets, plus the forms of `Appointment` and `Currency`. The types they are
// written in belong to the engine (sheet/form_types.h); the data lives here.
#ifndef TARNSHEETS_FAMILY_FORM_TABLE_H_
#define TARNSHEETS_FAMILY_FORM_TABLE_H_

#include <span>
#include <string_view>

#include "family/glyphs.h"
#include "sheet/form_types.h"

namespace tarnsheets {

// The seventeen entity sheets, in the order of the family's class list: UserInfo, Opportunity,
// Competitor, Contact, Activity, Expense, ExpenseItem, Costing, CompanyAccount,
// ShortCompanyAccount, PriceList, Product, Quote, Totals, Account, Proposal, Contract.
std::span<const FormTable* const> EntityForms();

// The entity form of `class_name` (exact, with case), or nullptr when there is none.
const FormTable* FindEntityForm(std::string_view class_name);

const FormTable& UserInfoForm();
const FormTable& OpportunityForm();
const FormTable& CompetitorForm();
const FormTable& ContactForm();
const FormTable& ActivityForm();
const FormTable& ExpenseForm();
const FormTable& ExpenseItemForm();
const FormTable& CostingForm();
const FormTable& CompanyAccountForm();
const FormTable& ShortCompanyAccountForm();
const FormTable& PriceListForm();
const FormTable& ProductForm();
const FormTable& QuoteForm();
const FormTable& TotalsForm();
const FormTable& AccountForm();
const FormTable& ProposalForm();
const FormTable& ContractForm();

const AppointmentFormTable& AppointmentForm();
const CurrencyFormTable& CurrencyForm();

}  // namespace tarnsheets

#endif  // TARNSHEETS_FAMILY_FORM_TABLE_H_
