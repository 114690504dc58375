// Renders both editors in each of their states to pixels and compares them with grids written
// out here by hand: the check editor's glyphs against the designed 7 by 7 pictures, the borders
// against the one-pixel frames they should give.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "editors/sf_check.h"
#include "editors/sf_text.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {
namespace {

using Grid = std::vector<std::string>;

// One character a pixel: '#' black, '.' the glyph paper 0xFDFDFD, '+' the dither grey 0x7E7E7E,
// 'w' white (the window background), 'l' the light border 0xE0E0E0, 'b' the focus colour
// 0xBB5522, 'g' the button face 0xF0F0F0, '?' anything else.
char PixelChar(Color c) {
  switch (c) {
    case 0x000000:
      return '#';
    case 0xFDFDFD:
      return '.';
    case 0x7E7E7E:
      return '+';
    case 0xFFFFFF:
      return 'w';
    case 0xE0E0E0:
      return 'l';
    case 0xBB5522:
      return 'b';
    case 0xF0F0F0:
      return 'g';
    default:
      return '?';
  }
}

Grid Render(const HeadlessToolkit& tk, const Control& control) {
  int32_t width = 0;
  int32_t height = 0;
  const std::vector<Color> pixels = tk.RenderPixels(control, &width, &height);
  Grid rows;
  for (int32_t y = 0; y < height; ++y) {
    std::string row;
    for (int32_t x = 0; x < width; ++x)
      row += PixelChar(pixels[static_cast<size_t>(y * width + x)]);
    rows.push_back(row);
  }
  return rows;
}

// The designed pictures, top row first, written independently of the control's own copy.
const Grid kCheckMarkGrid = {
    "......#", ".....##", "#...###", "##.###.", "#####..", ".###...", ".###...",
};
const Grid kDitherGrid = {
    ".+.+.+.", "+.+.+.+", ".+.+.+.", "+.+.+.+", ".+.+.+.", "+.+.+.+", "+.+.+.+",
};

// A 13 by 13 control: frame characters for top/left and right/bottom, the inside filled with
// `inside`, and a glyph at pixel (3, 3) when given. The bottom-right corner pixel is never drawn
// (a line leaves out its end point) and shows the background `corner`.
Grid CheckGrid(char top_left, char right_bottom, char inside, const Grid* glyph, char corner) {
  Grid g(13, std::string(13, inside));
  for (int i = 0; i < 12; ++i) {
    g[0][i] = top_left;       // top
    g[i][0] = top_left;       // left
    g[i][12] = right_bottom;  // right, drawn after the top
    g[12][i] = right_bottom;  // bottom, drawn after the left
  }
  g[12][12] = corner;
  if (glyph != nullptr) {
    for (int y = 0; y < 7; ++y) {
      for (int x = 0; x < 7; ++x) g[3 + y][3 + x] = (*glyph)[y][x];
    }
  }
  return g;
}

class CheckRenderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = tk_.CreateForm("Form1");
    other_ = tk_.CreateTextBox(*form_, "Other");
    check_ = SFCheck::Create(tk_, *form_, "Chk_Value", 0);
    form_->Show();
    tk_.Repaint(check_->Host());
  }
  Grid Rendered() { return Render(tk_, check_->Host()); }
  // A form that asks for another size, then the repaint that puts the control back to 13 by 13
  // pixels: the surface is cleared and drawn anew.
  void Redraw() {
    check_->Host().Move(0, 0, 300, 300);
    tk_.Repaint(check_->Host());
  }

  HeadlessToolkit tk_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> other_;
  std::shared_ptr<SFCheck> check_;
};

TEST_F(CheckRenderTest, OffIsAnEmptyWhiteInsideInASunkenFrame) {
  // The inside box reaches from pixel 1 to pixel 12, over the right and bottom lines.
  Grid expected = CheckGrid('#', 'l', 'w', nullptr, 'w');
  for (int i = 1; i <= 12; ++i) {
    expected[i][12] = 'w';
    expected[12][i] = 'w';
  }
  EXPECT_EQ(Rendered(), expected);
}

TEST_F(CheckRenderTest, OnShowsTheCheckMarkInTheMiddle) {
  check_->SetValue(1);
  Redraw();
  EXPECT_EQ(Rendered(), CheckGrid('#', 'l', 'w', &kCheckMarkGrid, 'w'));
}

TEST_F(CheckRenderTest, UndeterminedInEditModeOneShowsTheDither) {
  check_->SetEditMode(1);
  check_->SetValue(2);
  // The value is painted over what was there: the off state's inside box.
  Grid expected = CheckGrid('#', 'l', 'w', &kDitherGrid, 'w');
  for (int i = 1; i <= 12; ++i) {
    expected[i][12] = 'w';
    expected[12][i] = 'w';
  }
  EXPECT_EQ(Rendered(), expected);
}

TEST_F(CheckRenderTest, UndeterminedInEditModeZeroIsBlank) {
  check_->SetValue(1);
  check_->SetValue(2);
  Grid expected = CheckGrid('#', 'l', 'w', nullptr, 'w');
  for (int i = 1; i <= 12; ++i) {
    expected[i][12] = 'w';
    expected[12][i] = 'w';
  }
  EXPECT_EQ(Rendered(), expected);
}

TEST_F(CheckRenderTest, FocusFrameIsAllBorderColorAroundTheGlyph) {
  check_->SetValue(1);
  Redraw();
  check_->Host().SetFocus();
  // The resting frame is drawn over by the focus frame, line by line.
  EXPECT_EQ(Rendered(), CheckGrid('b', 'b', 'w', &kCheckMarkGrid, 'w'));
}

TEST_F(CheckRenderTest, PressedLookIsTheButtonFaceUnderTheFocusFrame) {
  check_->SetValue(1);
  tk_.MouseDown(check_->Host(), kLeftButton);
  EXPECT_EQ(Rendered(), CheckGrid('b', 'b', 'g', nullptr, 'g'));
}

TEST_F(CheckRenderTest, ClickShowsTheCheckMarkUnderTheFocusFrame) {
  tk_.Click(check_->Host());
  EXPECT_EQ(Rendered(), CheckGrid('b', 'b', 'w', &kCheckMarkGrid, 'w'));
}

TEST_F(CheckRenderTest, LockedClickLeavesTheFrameWithoutTheGlyph) {
  check_->SetValue(1);
  check_->SetLocked(true);
  tk_.Click(check_->Host());
  EXPECT_EQ(Rendered(), CheckGrid('b', 'b', 'w', nullptr, 'w'));
}

TEST_F(CheckRenderTest, FlatAppearanceHasAnInvisibleFrame) {
  check_->SetAppearance(0);
  check_->SetValue(1);
  Redraw();
  EXPECT_EQ(Rendered(), CheckGrid('w', 'w', 'w', &kCheckMarkGrid, 'w'));
}

class TextRenderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = tk_.CreateForm("Form1");
    other_ = tk_.CreateTextBox(*form_, "Other");
    text_ = SFText::Create(tk_, *form_, "Txt_Value", 0);
    form_->Show();
    // Eight by five pixels.
    text_->Host().Move(0, 0, 120, 75);
  }
  Grid Rendered() { return Render(tk_, text_->Host()); }

  HeadlessToolkit tk_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> other_;
  std::shared_ptr<SFText> text_;
};

TEST_F(TextRenderTest, RestingFrameIsSunken) {
  EXPECT_EQ(Rendered(), (Grid{
                            "#######l",
                            "#ggggggl",
                            "#ggggggl",
                            "#ggggggl",
                            "lllllllg",
                        }));
}

TEST_F(TextRenderTest, FocusFrameIsAllBorderColor) {
  text_->Host().SetFocus();
  EXPECT_EQ(Rendered(), (Grid{
                            "bbbbbbbb",
                            "bggggggb",
                            "bggggggb",
                            "bggggggb",
                            "bbbbbbbg",
                        }));
}

TEST_F(TextRenderTest, FlatAppearanceWithoutFocusHasNoFrame) {
  text_->SetAppearance(0);
  EXPECT_EQ(Rendered(), (Grid{
                            "gggggggg",
                            "gggggggg",
                            "gggggggg",
                            "gggggggg",
                            "gggggggg",
                        }));
}

TEST_F(TextRenderTest, FlatAppearanceWithFocusShowsTheFocusFrame) {
  text_->SetAppearance(0);
  text_->Host().SetFocus();
  EXPECT_EQ(Rendered()[0], "bbbbbbbb");
  EXPECT_EQ(Rendered()[4], "bbbbbbbg");
}

}  // namespace
}  // namespace tarnsheets
