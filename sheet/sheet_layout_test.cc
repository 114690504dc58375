// Layout of a UserInfo sheet: the caption strip, the border, the proportional fields and the
// host's command buttons. Expected rectangles are computed here from the designed form.
#include <gtest/gtest.h>

#include "sheet/sheet_test_support.h"

namespace tarnsheets {
namespace {

class LayoutTest : public UserInfoSheetTest {
 protected:
  // The toolkit raises Resize only for a new size: pass through another one first.
  void ResizeSheet(double width, double height) {
    sheet_->Host().Move(0, 0, 1000, 1000);
    sheet_->Host().Move(0, 0, width, height);
  }
};

// Headless metrics: 15 twips a pixel; the caption "User" in 12 point measures 10 characters.
constexpr double kTx = 15;
constexpr double kTy = 15;
constexpr double kBw = 2;
constexpr double kCaptionTop = 3 * kBw * kTx;                        // 90
constexpr double kCaptionHeight = 10 * 0 + 12 * 24 + 3 * kTy * kBw;  // 378
constexpr double kDesignWidth = 661;                                 // 9975 / 15 - 4
constexpr double kDesignHeight = 115;  // (2070 - 315) / 15 - 2, with the designed caption 0, 315

struct Expected {
  double left, top, width, height;
};

// The formulas, from the designed twips of a control.
Expected Scaled(const DesignRect& r, double sheet_width, double sheet_height) {
  const double sx = (sheet_width / kTx - 2 * kBw) / kDesignWidth;
  const double sy = ((sheet_height - kCaptionTop - kCaptionHeight) / kTy - kBw) / kDesignHeight;
  const double f0 = r.Left / kTx;
  const double f1 = (r.Top - 0.0 - 315.0) / kTy - kBw;
  const double f2 = r.Width / kTx;
  const double f3 = r.Height / kTy;
  return {sx * f0 * kTx, sy * f1 * kTy + kCaptionTop + kCaptionHeight + kBw * kTy, sx * f2 * kTx,
          sy * f3 * kTy};
}

void ExpectRect(const Control& c, const Expected& e, const std::string& what) {
  EXPECT_DOUBLE_EQ(c.Left(), e.left) << what;
  EXPECT_DOUBLE_EQ(c.Top(), e.top) << what;
  EXPECT_DOUBLE_EQ(c.Width(), e.width) << what;
  EXPECT_DOUBLE_EQ(c.Height(), e.height) << what;
}

TEST_F(LayoutTest, CaptureRecordsTheDesignedFieldArea) {
  CreateSheet();
  EXPECT_EQ(engine_->DesignWidth(), 661);
  EXPECT_EQ(engine_->DesignHeight(), 115);
  // Nine titles, eight text editors, one check editor, four drop buttons.
  EXPECT_EQ(engine_->DesignLayout().size(), 22u);
}

TEST_F(LayoutTest, DesignedHalfAndDoubleSizesGiveTheRectanglesOfTheFormulas) {
  CreateSheet();
  for (double factor : {1.0, 0.5, 2.0}) {
    const double w = 9975 * factor;
    const double h = 2070 * factor;
    // From another size, so that the toolkit raises Resize also at the designed size.
    sheet_->Host().Move(0, 0, 1000, 1000);
    sheet_->Host().Move(0, 0, w, h);
    const std::string at = " at factor " + std::to_string(factor);
    for (const FieldRow& row : UserInfoForm().rows) {
      const std::string tag(row.tag);
      if (row.has_title()) {
        ExpectRect(engine_->Lbl_Title()(row.title.index), Scaled(row.title.rect, w, h),
                   "title " + tag + at);
      }
      if (row.has_button()) {
        ExpectRect(engine_->Cmd_Value()(row.button.index), Scaled(row.button.rect, w, h),
                   "button " + tag + at);
      }
      const Expected e = Scaled(row.editor.rect, w, h);
      if (row.editor.kind == EditorKind::kText) {
        ExpectRect(engine_->Txt_Value()(row.editor.index).Host(), e, "editor " + tag + at);
      } else {
        // The check editor sizes itself; its place follows the formulas.
        const Control& check = engine_->Chk_Value()(row.editor.index).Host();
        EXPECT_DOUBLE_EQ(check.Left(), e.left) << tag << at;
        EXPECT_DOUBLE_EQ(check.Top(), e.top) << tag << at;
      }
    }
    // Caption strip, border and record buttons.
    ExpectRect(engine_->Lbl_Caption(), {0, kCaptionTop, 1200, kCaptionHeight}, "caption" + at);
    ExpectRect(engine_->Lbl_CaptionSpace(), {0, 0, 1200, 90}, "strip" + at);
    ExpectRect(engine_->Shp_Caption(), {15, 15, w - 15, h - 15}, "border" + at);
    EXPECT_DOUBLE_EQ(engine_->Cmd_NewRecord().Left(), 1200 + 150) << at;
    EXPECT_DOUBLE_EQ(engine_->Cmd_CopyRecord().Left(), 1350 + 840 + 45) << at;
    EXPECT_DOUBLE_EQ(engine_->Cmd_DeleteRecord().Left(), 2235 + 840 + 45) << at;
    EXPECT_DOUBLE_EQ(engine_->Cmd_Undo().Left(), 3120 + 840 + 45) << at;
    EXPECT_DOUBLE_EQ(engine_->Cmd_Undo().Top(), 60) << at;
  }
}

TEST_F(LayoutTest, ASheetOfFortyByFortyPixelsLaysOutEverythingExceptTheBorder) {
  CreateSheet();
  const DesignRect border = {-135, -135, 13905, 585};
  sheet_->Host().Move(0, 0, 600, 600);
  ExpectRect(engine_->Shp_Caption(),
             {double(border.Left), double(border.Top), double(border.Width), double(border.Height)},
             "border");
  const FieldRow& first = UserInfoForm().rows[0];
  ExpectRect(engine_->Txt_Value()(0).Host(), Scaled(first.editor.rect, 600, 600), "editor");
  EXPECT_DOUBLE_EQ(engine_->Lbl_Caption().Top(), kCaptionTop);
}

TEST_F(LayoutTest, ASheetOfExactlyFiftyPixelsInEitherDirectionKeepsTheBorderWhereItWas) {
  CreateSheet();
  sheet_->Host().Move(0, 0, 750, 2070);
  EXPECT_DOUBLE_EQ(engine_->Shp_Caption().Left(), -135);
  sheet_->Host().Move(0, 0, 9975, 750);
  EXPECT_DOUBLE_EQ(engine_->Shp_Caption().Left(), -135);
  sheet_->Host().Move(0, 0, 765, 765);
  EXPECT_DOUBLE_EQ(engine_->Shp_Caption().Left(), 15);
  EXPECT_DOUBLE_EQ(engine_->Shp_Caption().Width(), 750);
}

TEST_F(LayoutTest, AnEntryReadsFourNumbersAndANumberWithoutABlankReadsZero) {
  CreateSheet();
  std::vector<std::string> layout = engine_->DesignLayout();
  // The first scaled control in the list: its entry gets a fifth number, then loses its last
  // blank.
  layout[0] = "10 20 30 40 50 ";
  engine_->Layout_Scale(661, 115, layout);
  const Control* first = nullptr;
  for (const auto& c : sheet_->Host().AllControls()) {
    if (c->Name() == "Lbl_Title" || c->Name() == "Txt_Value" || c->Name() == "Chk_Value" ||
        c->Name() == "Cmd_Value") {
      first = c.get();
      break;
    }
  }
  ASSERT_NE(first, nullptr);
  const double sx = (9975 / kTx - 4) / 661;
  EXPECT_DOUBLE_EQ(first->Left(), sx * 10 * kTx);
  EXPECT_DOUBLE_EQ(first->Width(), sx * 30 * kTx);
  layout[0] = "10 20 30 40";
  engine_->Layout_Scale(661, 115, layout);
  EXPECT_DOUBLE_EQ(first->Width(), sx * 30 * kTx);
  EXPECT_DOUBLE_EQ(first->Height(), 0);
}

TEST_F(LayoutTest, ABadEntryDoesNotStopTheOthers) {
  CreateSheet();
  std::vector<std::string> layout = engine_->DesignLayout();
  layout.resize(3);  // the controls past the third have no entry
  // Twice the designed width halves every left.
  engine_->Layout_Scale(2 * 661, 115, layout);
  EXPECT_DOUBLE_EQ(engine_->Lbl_Title()(7).Left(), 22.5);
  EXPECT_DOUBLE_EQ(engine_->Cmd_Value()(0).Left(), 1612.5);
  // The fourth scaled control, Lbl_Title(4), found no entry and kept its place.
  EXPECT_DOUBLE_EQ(engine_->Lbl_Title()(4).Left(), 3465);
  EXPECT_DOUBLE_EQ(engine_->Txt_Value()(1).Host().Left(), 4545);
}

TEST_F(LayoutTest, ABorderWidthThatOverflowsSixteenBitsFailsTheResize) {
  CreateSheet();
  engine_->Shp_Caption().SetBorderWidth(11000);  // 3 * 11000 does not fit in 16 bits
  try {
    engine_->UserControl_Resize();
    FAIL() << "no overflow";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), kErrOverflow);
  }
}

TEST_F(LayoutTest, ADesignWidthOfZeroFailsWithADivisionError) {
  CreateSheet();
  try {
    engine_->Layout_Scale(0, 115, engine_->DesignLayout());
    FAIL() << "no division error";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), kErrDivisionByZero);
  }
}

TEST_F(LayoutTest, ACaptionChangeMovesTheButtonsAtOnceButTheFieldsOnlyAtTheNextResize) {
  CreateSheet();
  ResizeSheet(9975, 2070);
  const double editor_top = engine_->Txt_Value()(0).Host().Top();
  Font big = sheet_->CaptionFont();
  big.size = 24;
  sheet_->SetCaptionFont(big);
  sheet_->SetCaption("User");
  EXPECT_DOUBLE_EQ(engine_->Cmd_NewRecord().Left(), 2400 + 150);
  EXPECT_DOUBLE_EQ(engine_->Txt_Value()(0).Host().Top(), editor_top);
  sheet_->Host().Move(0, 0, 9975, 2071);
  EXPECT_NE(engine_->Txt_Value()(0).Host().Top(), editor_top);
}

// --- Host command buttons

TEST_F(LayoutTest, AnEmptyCommandCollectionLoadsAndMovesNothing) {
  CreateSheet();
  ResizeSheet(9975, 2070);
  EXPECT_EQ(engine_->UserCommand().Count(), 1);
  EXPECT_FALSE(engine_->UserCommand()(0).Visible());
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(0).Left(), 8040);
}

TEST_F(LayoutTest, CommandsStandFromTheRightThreePixelsApart) {
  CreateSheet();
  sheet_->SheetUserCommands().Add("one", "One");
  sheet_->SheetUserCommands().Add("two", "Two");
  ResizeSheet(9975, 2070);
  const double right = 9975 - 4 * 2 * 15 - 735;
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(2).Left(), right);
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Left(), right - 735 - 45);
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Top(), 60);
  EXPECT_EQ(engine_->UserCommand()(1).Caption(), "One");
  EXPECT_EQ(engine_->UserCommand()(2).Tag(), "two");
  EXPECT_TRUE(engine_->UserCommand()(1).Visible());
  EXPECT_FALSE(engine_->UserCommand()(0).Visible());
}

TEST_F(LayoutTest, WithALongCaptionTheButtonsSlideRightAndNeverCoverIt) {
  CreateSheet();
  sheet_->SheetUserCommands().Add("one", "One");
  sheet_->SheetUserCommands().Add("two", "Two");
  sheet_->SetCaption(std::string(70, 'x'));  // 76 characters: 9120 twips
  ResizeSheet(9975, 2070);
  const double e = 9120 + 75;
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Left(), e);
  EXPECT_GT(engine_->UserCommand()(2).Left() + 735, 9975);
}

TEST_F(LayoutTest, AVeryWideRowOnANarrowSheetSlidesOverTheRightEdge) {
  CreateSheet();
  for (int i = 0; i < 6; ++i) {
    sheet_->SheetUserCommands().Add("c" + std::to_string(i), "C");
  }
  sheet_->Host().Move(0, 0, 3000, 2070);
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Left(), 1200 + 75);
  EXPECT_GT(engine_->UserCommand()(6).Left(), 3000);
  EXPECT_TRUE(engine_->UserCommand()(6).Visible());
}

TEST_F(LayoutTest, EightCommandsReducedToThreeLeaveFiveButtonsAsTheyStood) {
  CreateSheet();
  for (int i = 1; i <= 8; ++i) {
    sheet_->SheetUserCommands().Add("c" + std::to_string(i), "C" + std::to_string(i));
  }
  ResizeSheet(9975, 2070);
  const double left8 = engine_->UserCommand()(8).Left();
  for (int i = 8; i >= 4; --i) sheet_->SheetUserCommands().Remove(Variant(i));
  sheet_->Host().Move(0, 0, 9975, 2071);
  EXPECT_EQ(engine_->UserCommand().Count(), 9);
  EXPECT_TRUE(engine_->UserCommand()(8).Visible());
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(8).Left(), left8);
  EXPECT_EQ(engine_->UserCommand()(8).Caption(), "C8");
  EXPECT_EQ(engine_->UserCommand()(8).Tag(), "c8");
  EXPECT_EQ(engine_->UserCommand()(3).Caption(), "C3");
}

TEST_F(LayoutTest, AfterRemoveALowerButtonTakesOverTheTextsOfTheEntryNowAtItsPlace) {
  CreateSheet();
  sheet_->SheetUserCommands().Add("a", "A");
  sheet_->SheetUserCommands().Add("b", "B");
  ResizeSheet(9975, 2070);
  sheet_->SheetUserCommands().Remove(Variant("a"));
  EXPECT_EQ(engine_->UserCommand()(1).Caption(), "A");
  sheet_->Host().Move(0, 0, 9975, 2071);
  EXPECT_EQ(engine_->UserCommand()(1).Caption(), "B");
  EXPECT_EQ(engine_->UserCommand()(2).Caption(), "B");
  EXPECT_EQ(engine_->UserCommand()(2).Tag(), "b");
}

TEST_F(LayoutTest, AnEntryAddedAfterInitDisplayHasNoButtonUntilTheSheetIsResized) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  ConnectAndOpen();
  sheet_->SheetUserCommands().Add("late", "Late");
  EXPECT_EQ(engine_->UserCommand().Count(), 1);
  source_->MoveFirst();
  EXPECT_EQ(engine_->UserCommand().Count(), 1);
  ResizeSheet(9975, 2070);
  EXPECT_EQ(engine_->UserCommand().Count(), 2);
  EXPECT_EQ(engine_->UserCommand()(1).Caption(), "Late");
}

TEST_F(LayoutTest, UserCommandsWidthSetBeforeTheButtonsExistShapesTheLaterOnes) {
  CreateSheet();
  sheet_->SetUserCommandsWidth(1000);
  sheet_->SheetUserCommands().Add("a", "A");
  ResizeSheet(9975, 2070);
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Width(), 1000);
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Left(), 9975 - 120 - 1000);
}

TEST_F(LayoutTest, WithStyleOneTheRowStartsPastTheUndoButton) {
  CreateSheet();
  sheet_->SetStyle(1);
  sheet_->SheetUserCommands().Add("a", "A");
  sheet_->Host().Move(0, 0, 5000, 2070);
  // Undo ends at 3120 + 840 + 45 + 840 = 4845; the row starts five pixels behind it.
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Left(), 4845 + 75);
}

TEST_F(LayoutTest, WithAnotherStyleTheButtonsAreMovedButNotShown) {
  CreateSheet();
  sheet_->SetStyle(2);
  sheet_->SheetUserCommands().Add("a", "A");
  ResizeSheet(9975, 2070);
  EXPECT_FALSE(engine_->UserCommand()(1).Visible());
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Left(), 9975 - 120 - 735);
}

}  // namespace
}  // namespace tarnsheets
