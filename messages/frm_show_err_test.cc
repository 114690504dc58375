#include "messages/frm_show_err.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {
namespace {

// What the open dialog showed, read while it was open.
struct SeenDialog {
  std::string form_caption;
  std::string button_caption;
  std::string title_text;
  std::string description_text;
};

class ShowErrorDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetMessageLanguageForTest(kLanguageEnglish);
    toolkit_.SetDialogObserver([this](const DialogRecord& record) {
      records_.push_back(record);
      if (record.kind != DialogRecord::Kind::kModalForm) return;
      std::shared_ptr<FrmShowErr> dialog = FrmShowErr::Existing();
      ASSERT_NE(dialog, nullptr);
      seen_.push_back({dialog->form().Caption(), dialog->CmdOk().Caption(),
                       dialog->Txt_Title().Text(), dialog->Txt_ErrDescription().Text()});
      if (while_open_) while_open_(*dialog);
    });
  }
  void TearDown() override { SetMessageLanguageForTest(0); }

  HeadlessToolkit toolkit_;
  std::vector<DialogRecord> records_;
  std::vector<SeenDialog> seen_;
  std::function<void(FrmShowErr&)> while_open_;
};

TEST_F(ShowErrorDialogTest, ApplicationErrorShowsTitleAnd500Modally) {
  int32_t number = kErrSheetApplication;
  ShowError(toolkit_, "Action", number, "You have not specified the field.");
  ASSERT_EQ(records_.size(), 1u);
  EXPECT_EQ(records_[0].kind, DialogRecord::Kind::kModalForm);
  EXPECT_EQ(records_[0].name, "FrmShowErr");
  EXPECT_EQ(records_[0].title, "OK");
  ASSERT_EQ(seen_.size(), 1u);
  EXPECT_EQ(seen_[0].title_text, "Action");
  EXPECT_EQ(seen_[0].description_text, "Error:500\r\nYou have not specified the field.");
  EXPECT_EQ(number, 500);
}

TEST_F(ShowErrorDialogTest, ZeroWithEmptyDescriptionShowsNoDialog) {
  int32_t number = 0;
  ShowError(toolkit_, "Save", number, "");
  EXPECT_TRUE(records_.empty());
  EXPECT_EQ(FrmShowErr::Existing(), nullptr);
}

TEST_F(ShowErrorDialogTest, EmptyDescriptionShowsAnEmptySecondLine) {
  int32_t number = kErrTypeMismatch;
  ShowError(toolkit_, "Save_FieldValue", number, "");
  ASSERT_EQ(seen_.size(), 1u);
  EXPECT_EQ(seen_[0].description_text, "Error:13\r\n");
}

TEST_F(ShowErrorDialogTest, ObjectErrorBaseShowsItsRawNumber) {
  int32_t number = static_cast<int32_t>(0x80040000u);
  ShowError(toolkit_, "Display_Value", number, "");
  ASSERT_EQ(seen_.size(), 1u);
  EXPECT_EQ(seen_[0].description_text, "Error:-2147221504\r\n");
  EXPECT_EQ(number, -2147221504);
}

TEST_F(ShowErrorDialogTest, Number0x8004FFFFKeepsRawAnd0x8004FFFEShows65534) {
  int32_t raw = static_cast<int32_t>(0x8004FFFFu);
  ShowError(toolkit_, "Save", raw, "a");
  EXPECT_EQ(raw, static_cast<int32_t>(0x8004FFFFu));
  int32_t high = static_cast<int32_t>(0x8004FFFEu);
  ShowError(toolkit_, "Save", high, "b");
  EXPECT_EQ(high, 65534);
  ASSERT_EQ(seen_.size(), 2u);
  EXPECT_EQ(seen_[0].description_text, "Error:-2147155969\r\na");
  EXPECT_EQ(seen_[1].description_text, "Error:65534\r\nb");
}

TEST_F(ShowErrorDialogTest, PositiveNumberOf0x40000FailsWithOverflowAndShowsNothing) {
  int32_t number = 0x40000;
  try {
    ShowError(toolkit_, "Save", number, "d");
    ADD_FAILURE() << "no overflow";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), kErrOverflow);
    EXPECT_EQ(failure.Description(), "Overflow");
  }
  EXPECT_EQ(number, 0x40000);
  EXPECT_TRUE(records_.empty());
  EXPECT_EQ(FrmShowErr::Existing(), nullptr);
}

TEST_F(ShowErrorDialogTest, FormHasTheDesignedGeometryFontsColoursAndTabOrder) {
  bool checked = false;
  while_open_ = [&](FrmShowErr& dialog) {
    checked = true;
    EXPECT_EQ(dialog.form().ScaleWidth(), 6675);
    EXPECT_EQ(dialog.form().ScaleHeight(), 2940);

    TextBox& title = dialog.Txt_Title();
    EXPECT_EQ(title.Name(), "Txt_Title");
    EXPECT_FALSE(title.MultiLine());
    EXPECT_EQ(title.Left(), 150);
    EXPECT_EQ(title.Top(), 75);
    EXPECT_EQ(title.Width(), 6315);
    EXPECT_EQ(title.Height(), 315);
    EXPECT_TRUE(title.Locked());
    EXPECT_FALSE(title.TabStop());
    EXPECT_EQ(title.BackColor(), 0x8000000Fu);
    EXPECT_EQ(title.TabIndex(), 2);

    TextBox& description = dialog.Txt_ErrDescription();
    EXPECT_EQ(description.Name(), "Txt_ErrDescription");
    EXPECT_TRUE(description.MultiLine());
    EXPECT_EQ(description.Left(), 150);
    EXPECT_EQ(description.Top(), 525);
    EXPECT_EQ(description.Width(), 6315);
    EXPECT_EQ(description.Height(), 1815);
    EXPECT_TRUE(description.Locked());
    EXPECT_EQ(description.BackColor(), 0x8000000Fu);
    EXPECT_EQ(description.TabIndex(), 1);

    CommandButton& ok = dialog.CmdOk();
    EXPECT_EQ(ok.Name(), "CmdOk");
    EXPECT_EQ(ok.Left(), 5250);
    EXPECT_EQ(ok.Top(), 2475);
    EXPECT_EQ(ok.Width(), 1215);
    EXPECT_EQ(ok.Height(), 315);
    EXPECT_TRUE(ok.Default());
    EXPECT_EQ(ok.TabIndex(), 0);

    for (Control* control : std::vector<Control*>{&title, &description, &ok}) {
      const Font font = control->GetFont();
      EXPECT_EQ(font.name, "MS Sans Serif") << control->Name();
      EXPECT_DOUBLE_EQ(font.size, 9.75) << control->Name();
      EXPECT_FALSE(font.bold) << control->Name();
    }
    EXPECT_EQ(dialog.form().Children().size(), 3u);
  };
  int32_t number = 5;
  ShowError(toolkit_, "Save", number, "Invalid procedure call or argument");
  EXPECT_TRUE(checked);
}

TEST_F(ShowErrorDialogTest, FormIsAFixedDialogCentredOnTheScreenWithTheErrorIcon) {
  bool checked = false;
  while_open_ = [&](FrmShowErr& dialog) {
    checked = true;
    EXPECT_EQ(dialog.form().BorderStyle(), 3);  // fixed dialog: no minimise, no maximise
    EXPECT_EQ(dialog.form().StartUpPosition(), 2);
    const Picture& icon = dialog.form().Icon();
    ASSERT_EQ(icon.width, 32);
    ASSERT_EQ(icon.height, 32);
    const Color white = Rgb(0xFF, 0xFF, 0xFF);
    // The centre lies on the cross, a point between its arms on the red disc, the corner outside.
    EXPECT_EQ(icon.PixelAt(15, 15), white);
    EXPECT_EQ(icon.PixelAt(16, 4), Rgb(0xE0, 0x20, 0x20));
    EXPECT_NE(icon.PixelAt(0, 0), Rgb(0xE0, 0x20, 0x20));
    EXPECT_NE(icon.PixelAt(0, 0), white);
  };
  int32_t number = 5;
  ShowError(toolkit_, "Save", number, "Invalid procedure call or argument");
  EXPECT_TRUE(checked);
}

TEST_F(ShowErrorDialogTest, CaptionsComeFromMessage600InEnglish) {
  int32_t number = 5;
  ShowError(toolkit_, "Save", number, "x");
  ASSERT_EQ(seen_.size(), 1u);
  EXPECT_EQ(seen_[0].form_caption, "OK");
  EXPECT_EQ(seen_[0].button_caption, "OK");
}

TEST_F(ShowErrorDialogTest, CaptionsComeFromMessage600InChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  int32_t number = kErrSheetApplication;
  ShowError(toolkit_, "Action", number, "d");
  ASSERT_EQ(seen_.size(), 1u);
  EXPECT_EQ(seen_[0].form_caption, "\u786E\u5B9A");
  EXPECT_EQ(seen_[0].button_caption, "\u786E\u5B9A");
  EXPECT_EQ(seen_[0].description_text, "\u9519\u8BEF\uFF1A500\r\nd");
}

TEST_F(ShowErrorDialogTest, SharedInstanceIsReleasedWhenTheDialogCloses) {
  std::weak_ptr<FrmShowErr> first;
  while_open_ = [&](FrmShowErr&) { first = FrmShowErr::Existing(); };
  int32_t number = 9;
  ShowError(toolkit_, "Save", number, "a");
  EXPECT_EQ(FrmShowErr::Existing(), nullptr);
  EXPECT_TRUE(first.expired());
}

TEST_F(ShowErrorDialogTest, NextReportStartsWithAFreshForm) {
  std::vector<std::weak_ptr<FrmShowErr>> opened;
  bool first_gone_when_second_opened = false;
  while_open_ = [&](FrmShowErr&) {
    if (!opened.empty()) first_gone_when_second_opened = opened[0].expired();
    opened.push_back(FrmShowErr::Existing());
  };
  int32_t a = 9, b = 11;
  ShowError(toolkit_, "Save", a, "first");
  ShowError(toolkit_, "Display_Value", b, "second");
  ASSERT_EQ(seen_.size(), 2u);
  EXPECT_TRUE(first_gone_when_second_opened);
  EXPECT_EQ(seen_[1].form_caption, "OK");
  EXPECT_EQ(seen_[1].title_text, "Display_Value");
  EXPECT_EQ(seen_[1].description_text, "Error:11\r\nsecond");
  EXPECT_EQ(FrmShowErr::Existing(), nullptr);
}

TEST_F(ShowErrorDialogTest, ClickingOkUnloadsTheFormAndReleasesTheInstance) {
  bool released_by_click = false;
  while_open_ = [&](FrmShowErr& dialog) {
    toolkit_.Click(dialog.CmdOk());
    released_by_click = FrmShowErr::Existing() == nullptr;
  };
  int32_t number = 9;
  ShowError(toolkit_, "Save", number, "a");
  EXPECT_TRUE(released_by_click);
  EXPECT_EQ(FrmShowErr::Existing(), nullptr);
  EXPECT_EQ(records_.size(), 1u);
}

}  // namespace
}  // namespace tarnsheets
