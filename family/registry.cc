// The registry of the nineteen public controls and their creation by class name.
#include "family/registry.h"

#include <algorithm>

#include "family/form_table.h"
#include "family/glyphs.h"
#include "tarnsheets/appointment_sheet.h"
#include "tarnsheets/currency_sheet.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/sheet.h"

namespace tarnsheets {
namespace {

// Written once and never to change: hosts, stored forms and designers know the controls by them.
constexpr ControlClass kClasses[] = {
    {"UserInfo", "307be4fe-3a86-44ee-af7d-1e470d2bafdc", "7a079385-6983-46fb-9f18-bd56e05b5225",
     "7dad7439-18b6-4e6b-a7fa-d41ed6495b6a", 30000},
    {"Opportunity", "634b4997-ef5d-47c6-8178-ac3c9c42f374", "60726f62-488c-4b20-9238-55ff224bb94c",
     "75a93f77-4c97-4b63-b322-a6b4f3247744", 30001},
    {"Competitor", "e1c552fd-819a-439e-aace-57c07d73e665", "f51b09eb-2def-40ab-a6ef-a7449495386d",
     "eaff0d9b-5442-4d6a-b0d5-3cf9dbd328aa", 30002},
    {"Contact", "f63a05fa-23ac-40b0-9388-5c011c564b03", "032575bb-f4fd-4cc9-85fd-452b4f6d6b60",
     "e409723f-ee78-431b-b43f-2a0b82f66683", 30003},
    {"Activity", "44588f08-7b30-4c45-88cd-22ccf5010668", "392ff0fa-5fe4-4c83-9989-92c9c070a36d",
     "df72410e-5630-4c72-b527-4b6e3f4cf953", 30004},
    {"Expense", "479a6512-f5a2-4f51-b5d5-70782d75b40c", "40f62060-0b8a-458c-8191-5fb047f585e0",
     "6cda5264-7a79-4707-a6d9-58c347151231", 30005},
    {"ExpenseItem", "7e44bff2-38ce-4f9e-9162-5ac5d1d1459f", "a0ae5d49-bd5e-4783-b102-eb7badec5da6",
     "7285ac77-67a1-44b7-b7ed-5e30bce95ac3", 30006},
    {"Costing", "0318532c-b636-4516-bd2f-7815f1b70540", "814ac6cd-0eb0-438e-a39f-c0a0e65767f0",
     "2cc2d43f-61fa-4bd1-abb8-24723dfdf2d6", 30007},
    {"CompanyAccount", "6658a043-aad0-4732-a365-e9da20363fe7",
     "1dcac9e8-c2da-4844-9cae-1a98732bb884", "6c874fbc-7086-49df-ba8b-762efd423bfa", 30008},
    {"ShortCompanyAccount", "f4ec7bd4-05b1-4806-aa29-eb905bebbd83",
     "b8cee8d4-50b8-4aa0-a2dd-fae98622353f", "d1953eb1-7de1-4d7b-83ac-8437f7039d74", 30009},
    {"PriceList", "0dda5132-2087-4152-988f-0dfcbb3e5b1d", "eed81092-4b21-492b-9725-43b9e3018799",
     "f40cb1d7-96b8-4308-bf23-0f4f668f4e11", 30010},
    {"Product", "8d2c390f-3731-4a3e-a975-885b9f938570", "765138d2-2cff-4029-987e-b41092808265",
     "6430bad5-fda2-40cf-9f83-071239b39085", 30011},
    {"Quote", "c90e8deb-e57d-42be-b0a1-01fc295c98d1", "1fb35b7f-26d0-4f49-a83e-731e0f9c005f",
     "ed7eac43-1a2f-4197-ac25-a8caa660d41c", 30012},
    {"Totals", "1b485eac-305f-4ec0-910b-e0a8286d4510", "f02971a5-1e87-4a12-bbc4-36d5f8aa79b2",
     "c6b002d9-b788-4647-b213-f274dd9c6111", 30013},
    {"Account", "fed5c722-a7f6-4c58-90fc-19c7d23fce31", "0604e391-2043-44bc-8814-93bdbd041fe5",
     "b724a19f-c676-4fa9-a8df-742b9392aa7b", 30014},
    {"Proposal", "917f6470-91fd-46a9-b090-23786c9c1830", "47ddb326-e76f-45c4-bb3c-17a8a4011e51",
     "74f8c9e1-d186-447d-a3e2-e4fd33f0db09", 30015},
    {"Contract", "6133f893-2dfd-42a9-9d4e-7d806ba8f1e3", "288e12e8-ec30-41b6-bd24-b40da668ac55",
     "38d0ee5d-1a2b-4204-b5d1-a0569ace9bd5", 30016},
    {"Appointment", "7199ddde-fe03-494d-a8e0-62e5a91906a7", "588e5b32-e479-45be-bbf3-96fffbe139d0",
     "b1427949-525a-4cbd-a507-25d4cda952d9", 30017},
    {"Currency", "0cbfd341-c93b-4956-adec-76112195b759", "b5e7cdc7-f572-4876-b676-30ece60c1629",
     "c96c112c-68f4-4945-bc65-d677f5f06565", 30018},
};

}  // namespace

std::span<const ControlClass> ControlClasses() { return kClasses; }

const ControlClass* FindControlClass(std::string_view name) {
  const auto it = std::find_if(std::begin(kClasses), std::end(kClasses),
                               [name](const ControlClass& c) { return c.name == name; });
  return it == std::end(kClasses) ? nullptr : &*it;
}

std::unique_ptr<SheetControl> CreateControl(Toolkit& toolkit, Container& parent,
                                            std::string_view class_name, const std::string& name,
                                            const PropertyBag* bag) {
  if (FindControlClass(class_name) == nullptr) {
    throw Failure(kErrInvalidProcedureCall, "There is no control class \"" +
                                                std::string(class_name) +
                                                "\" to create (class names are exact, with case).");
  }
  if (class_name == "Appointment") {
    if (bag != nullptr) {
      return AppointmentSheet::Load(toolkit, parent, AppointmentForm(), name, *bag,
                                    FamilyGlyphPictures());
    }
    return AppointmentSheet::Create(toolkit, parent, AppointmentForm(), name,
                                    FamilyGlyphPictures());
  }
  if (class_name == "Currency") {
    if (bag != nullptr) {
      return CurrencySheet::Load(toolkit, parent, CurrencyForm(), name, *bag,
                                 FamilyGlyphPictures());
    }
    return CurrencySheet::Create(toolkit, parent, CurrencyForm(), name, FamilyGlyphPictures());
  }
  const FormTable* form = FindEntityForm(class_name);
  if (bag != nullptr) {
    return Sheet::Load(toolkit, parent, *form, name, *bag, FamilyGlyphPictures());
  }
  return Sheet::Create(toolkit, parent, *form, name, FamilyGlyphPictures());
}

}  // namespace tarnsheets
