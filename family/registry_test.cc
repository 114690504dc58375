#include "family/registry.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

#include "family/form_table.h"
#include "family/glyphs.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/appointment_sheet.h"
#include "tarnsheets/currency_sheet.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/sheet.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {
namespace {

const std::vector<std::string> kFamilyOrder = {
    "UserInfo",  "Opportunity", "Competitor",  "Contact",        "Activity",
    "Expense",   "ExpenseItem", "Costing",     "CompanyAccount", "ShortCompanyAccount",
    "PriceList", "Product",     "Quote",       "Totals",         "Account",
    "Proposal",  "Contract",    "Appointment", "Currency"};

TEST(ControlRegistryTest, HoldsTheNineteenClassesInTheFamilysOrder) {
  std::vector<std::string> names;
  for (const ControlClass& c : ControlClasses()) names.emplace_back(c.name);
  EXPECT_EQ(names, kFamilyOrder);
}

TEST(ControlRegistryTest, TheSeventeenEntitySheetsComeFirstInTheOrderOfTheirForms) {
  ASSERT_EQ(EntityForms().size(), 17u);
  for (size_t i = 0; i < EntityForms().size(); ++i) {
    EXPECT_EQ(ControlClasses()[i].name, EntityForms()[i]->class_name) << i;
  }
}

TEST(ControlRegistryTest, ResourceNumbersRunFrom30000To30018InOrder) {
  int expected = 30000;
  for (const ControlClass& c : ControlClasses()) {
    EXPECT_EQ(c.resource_id, expected) << c.name;
    ++expected;
  }
  EXPECT_EQ(expected, 30019);
}

TEST(ControlRegistryTest, EveryIdentifierIsALowerCaseUuidText) {
  const std::regex uuid("^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}$");
  for (const ControlClass& c : ControlClasses()) {
    for (std::string_view id : {c.class_id, c.interface_id, c.events_id}) {
      EXPECT_TRUE(std::regex_match(std::string(id), uuid)) << c.name << ": " << id;
    }
  }
}

TEST(ControlRegistryTest, AllFiftySevenIdentifiersAreDistinct) {
  std::set<std::string_view> ids;
  for (const ControlClass& c : ControlClasses()) {
    ids.insert(c.class_id);
    ids.insert(c.interface_id);
    ids.insert(c.events_id);
  }
  EXPECT_EQ(ids.size(), 57u);
}

TEST(ControlRegistryTest, IdentifiersAreTheSameOnEveryCall) {
  const ControlClass* first = FindControlClass("Quote");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->class_id, "c90e8deb-e57d-42be-b0a1-01fc295c98d1");
  EXPECT_EQ(ControlClasses()[12].class_id, first->class_id);
}

TEST(ControlRegistryTest, FindsAClassByItsExactName) {
  for (const ControlClass& c : ControlClasses()) {
    EXPECT_EQ(FindControlClass(c.name), &c) << c.name;
  }
}

TEST(ControlRegistryTest, FindComparesWithCaseAndKnowsNoOtherName) {
  EXPECT_EQ(FindControlClass("userinfo"), nullptr);
  EXPECT_EQ(FindControlClass("USERINFO"), nullptr);
  EXPECT_EQ(FindControlClass("UserInfo "), nullptr);
  EXPECT_EQ(FindControlClass(""), nullptr);
  EXPECT_EQ(FindControlClass("Sheet"), nullptr);
}

// --- Toolbox pictures

TEST(ToolboxPictureTest, EveryPictureIs16By15Pixels) {
  for (const ControlClass& c : ControlClasses()) {
    const Picture picture = ToolboxPicture(c);
    EXPECT_EQ(picture.width, 16) << c.name;
    EXPECT_EQ(picture.height, 15) << c.name;
    EXPECT_EQ(picture.pixels.size(), 240u) << c.name;
    EXPECT_EQ(picture.id, c.name);
  }
}

TEST(ToolboxPictureTest, PixelsAre24BitColoursWithoutSystemColours) {
  for (const ControlClass& c : ControlClasses()) {
    for (Color color : ToolboxPixels(c).pixels) {
      EXPECT_EQ(color & 0xFF000000u, 0u) << c.name;
    }
  }
}

TEST(ToolboxPictureTest, NoTwoClassesShareAPicture) {
  const auto classes = ControlClasses();
  for (size_t i = 0; i < classes.size(); ++i) {
    for (size_t j = i + 1; j < classes.size(); ++j) {
      EXPECT_NE(ToolboxPicture(classes[i]).pixels, ToolboxPicture(classes[j]).pixels)
          << classes[i].name << " and " << classes[j].name;
    }
  }
}

TEST(ToolboxPictureTest, PictureIsAFormOutlineWithACaptionBarAndAMark) {
  const ToolboxBitmap bitmap = ToolboxPixels(*FindControlClass("UserInfo"));
  const Color outline = bitmap.At(0, 0);
  for (int x = 0; x < 16; ++x) {
    EXPECT_EQ(bitmap.At(x, 0), outline) << x;
    EXPECT_EQ(bitmap.At(x, 14), outline) << x;
  }
  for (int y = 0; y < 15; ++y) {
    EXPECT_EQ(bitmap.At(0, y), outline) << y;
    EXPECT_EQ(bitmap.At(15, y), outline) << y;
  }
  // The caption bar is one colour over its three rows, unlike the paper below it.
  const Color bar = bitmap.At(1, 1);
  for (int y = 1; y <= 3; ++y) {
    for (int x = 1; x <= 14; ++x) EXPECT_EQ(bitmap.At(x, y), bar) << x << "," << y;
  }
  EXPECT_NE(bar, bitmap.At(1, 4));
  EXPECT_NE(bar, outline);
  // The letter U: its two stems and the bottom between them.
  const Color paper = bitmap.At(1, 4);
  EXPECT_NE(bitmap.At(2, 5), paper);
  EXPECT_NE(bitmap.At(6, 5), paper);
  EXPECT_EQ(bitmap.At(4, 5), paper);
  EXPECT_NE(bitmap.At(4, 11), paper);
}

TEST(ToolboxPictureTest, CaptionBarsDifferFromClassToClass) {
  std::set<Color> bars;
  for (const ControlClass& c : ControlClasses()) bars.insert(ToolboxPixels(c).At(7, 2));
  EXPECT_EQ(bars.size(), 19u);
}

// --- Creation by class name

class CreateControlTest : public ::testing::Test {
 protected:
  HeadlessToolkit toolkit_;
  std::shared_ptr<Form> host_form_ = toolkit_.CreateForm("HostForm");
};

TEST_F(CreateControlTest, EachEntitySheetIsCreatedByItsClassName) {
  for (const FormTable* form : EntityForms()) {
    const std::string class_name(form->class_name);
    std::unique_ptr<SheetControl> control =
        CreateControl(toolkit_, *host_form_, class_name, class_name + "1");
    ASSERT_NE(control, nullptr) << class_name;
    EXPECT_EQ(control->ClassName(), class_name);
    EXPECT_EQ(control->Host().TypeName(), class_name);
    EXPECT_EQ(control->Host().Name(), class_name + "1");
    EXPECT_EQ(control->Host().Parent(), host_form_.get());
    auto* sheet = dynamic_cast<Sheet*>(control.get());
    ASSERT_NE(sheet, nullptr) << class_name;
    EXPECT_EQ(&sheet->EngineForTest().form(), form);
    EXPECT_EQ(sheet->Caption(), form->caption);
  }
}

TEST_F(CreateControlTest, ACreatedSheetTakesTheInitialPropertiesOfANewInstance) {
  std::unique_ptr<SheetControl> control = CreateControl(toolkit_, *host_form_, "Quote", "Quote1");
  auto& sheet = dynamic_cast<Sheet&>(*control);
  EXPECT_EQ(sheet.Color_Caption(), 0xBB5522u);
  EXPECT_EQ(sheet.Color_Background(), 0xEEEEEEu);
  EXPECT_TRUE(sheet.EditModify());
  EXPECT_EQ(sheet.Style(), 0);
}

TEST_F(CreateControlTest, ASheetLoadedWithABagReadsItsStoredProperties) {
  MemoryPropertyBag bag;
  bag.Set("Style", Variant(int32_t{1}));
  bag.Set("EditCopy", Variant(false));
  bag.Set("Color_Caption", Variant(int32_t{0x00AA00}));
  std::unique_ptr<SheetControl> control =
      CreateControl(toolkit_, *host_form_, "Contact", "Contact1", &bag);
  auto& sheet = dynamic_cast<Sheet&>(*control);
  EXPECT_EQ(sheet.Style(), 1);
  EXPECT_FALSE(sheet.EditCopy());
  EXPECT_EQ(sheet.Color_Caption(), 0x00AA00u);
  EXPECT_TRUE(sheet.EngineForTest().Cmd_NewRecord().Visible());
}

TEST_F(CreateControlTest, DropButtonsCarryTheFamilysGlyphs) {
  std::unique_ptr<SheetControl> control =
      CreateControl(toolkit_, *host_form_, "Opportunity", "Opportunity1");
  SheetEngine& engine = dynamic_cast<Sheet&>(*control).EngineForTest();
  int with_glyph = 0;
  for (const FieldRow& row : OpportunityForm().rows) {
    if (!row.has_button()) continue;
    const Picture picture = engine.Cmd_Value()(row.button.index).GetPicture();
    EXPECT_EQ(picture, GlyphPicture(row.button.glyph)) << row.tag;
    ++with_glyph;
  }
  EXPECT_GT(with_glyph, 0);
}

TEST_F(CreateControlTest, AnUnknownClassNameFailsNamingItAndCreatesNothing) {
  const size_t before = host_form_->Children().size();
  try {
    CreateControl(toolkit_, *host_form_, "Invoice", "Invoice1");
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), kErrInvalidProcedureCall);
    EXPECT_NE(failure.Description().find("\"Invoice\""), std::string::npos)
        << failure.Description();
  }
  EXPECT_EQ(host_form_->Children().size(), before);
}

TEST_F(CreateControlTest, AClassNameInOtherCaseIsUnknown) {
  try {
    CreateControl(toolkit_, *host_form_, "account", "Account1");
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), kErrInvalidProcedureCall);
    EXPECT_NE(failure.Description().find("\"account\""), std::string::npos);
  }
  EXPECT_TRUE(host_form_->Children().empty());
}

TEST_F(CreateControlTest, CurrencyAndAppointmentAreCreatedAsTheirReducedControls) {
  std::unique_ptr<SheetControl> currency = CreateControl(toolkit_, *host_form_, "Currency", "C1");
  ASSERT_NE(dynamic_cast<CurrencySheet*>(currency.get()), nullptr);
  EXPECT_EQ(currency->ClassName(), "Currency");
  EXPECT_EQ(currency->Host().TypeName(), "Currency");
  std::unique_ptr<SheetControl> appointment =
      CreateControl(toolkit_, *host_form_, "Appointment", "A1");
  auto* reduced = dynamic_cast<AppointmentSheet*>(appointment.get());
  ASSERT_NE(reduced, nullptr);
  EXPECT_EQ(appointment->Host().TypeName(), "Appointment");
  EXPECT_EQ(reduced->EngineForTest().Image1()(3).GetPicture().id, "dots");
  MemoryPropertyBag bag;
  reduced->SetEditModify(false);
  appointment->WriteProperties(bag);
  std::unique_ptr<SheetControl> restored =
      CreateControl(toolkit_, *host_form_, "Appointment", "A2", &bag);
  EXPECT_FALSE(dynamic_cast<AppointmentSheet&>(*restored).EditModify());
}

}  // namespace
}  // namespace tarnsheets
