// The faces the designed forms name resolve to their metric-compatible stand-ins, and a title in
// its designed label shows whole: not cut at the left in a right-aligned label, and not cut at
// the bottom in a label of one designed line. Runs on Qt's offscreen platform at 96 dpi, where a
// pixel is 15 twips.
#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QWidget>
#include <memory>
#include <string>

#include "tarnsheets/toolkit.h"
#include "tarnsheets/types.h"
#include "toolkits/qt/qt_fonts.h"
#include "toolkits/qt/qt_toolkit.h"

namespace tarnsheets {
namespace {

constexpr Color kWhite = 0xFFFFFF;

// The ink of a label as Qt paints it: the dark pixels, their count and their extent.
struct Ink {
  int pixels = 0;
  int left = -1;  // first column with ink, -1 when none
  int bottom = -1;
};

class DesignedFontsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    toolkit_ = std::make_unique<QtToolkit>(QtToolkit::DialogMode::kAnswered);
    ASSERT_DOUBLE_EQ(toolkit_->TwipsPerPixelY(), 15.0) << "the sizes below are for 96 dpi";
    form_ = toolkit_->CreateForm("FrmFonts");
    form_->SetClientSize(12000, 3000);
    form_->Show();
  }
  void TearDown() override {
    toolkit_->Unload(*form_);
    form_.reset();
    toolkit_.reset();
  }

  // A black-on-white label of the designed size and font, with `caption`.
  std::shared_ptr<Label> TitleLabel(const Font& font, const std::string& caption, Twips width,
                                    Twips height, int16_t alignment) {
    std::shared_ptr<Label> label = toolkit_->CreateLabel(*form_, "Lbl_Title", next_index_++);
    label->Move(0, 0, width, height);
    label->SetBackColor(kWhite);
    label->SetForeColor(0);
    label->SetAlignment(alignment);
    label->SetFont(font);
    label->SetCaption(caption);
    label->SetVisible(true);
    return label;
  }

  Ink InkOf(const Control& control) {
    toolkit_->ProcessEvents();
    int32_t width = 0, height = 0;
    const std::vector<Color> pixels = toolkit_->RenderPixels(control, &width, &height);
    Ink ink;
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        const Color c = pixels[static_cast<size_t>(y * width + x)];
        const int gray = ((c & 0xFF) + ((c >> 8) & 0xFF) + ((c >> 16) & 0xFF)) / 3;
        if (gray >= 160) continue;
        ++ink.pixels;
        if (ink.left < 0 || x < ink.left) ink.left = x;
        ink.bottom = y;
      }
    }
    return ink;
  }

  QFont QtFontOf(const Control& control) { return toolkit_->WidgetOf(control)->font(); }

  std::unique_ptr<QtToolkit> toolkit_;
  std::shared_ptr<Form> form_;
  int32_t next_index_ = 0;
};

// The family that Qt reports for `face` as installed (fontconfig gives the localized name under a
// Chinese locale), or a note of the missing package.
QString InstalledFamily(const char* face, const char* package) {
  if (!QFontDatabase::hasFamily(face)) {
    ADD_FAILURE() << face << " is not installed: scripts/install-deps.sh qt installs " << package;
    return QString();
  }
  return QFontInfo(QFont(face)).family();
}

Font Designed(const char* name, double size, int16_t charset = 0) {
  Font font;
  font.name = name;
  font.size = size;
  font.charset = charset;
  return font;
}

TEST(DesignedFontSubstitutionsTest, EveryDesignedFaceHasAStandIn) {
  for (const char* face : {"MS Sans Serif", "宋体", "SimSun", "新宋体"}) {
    bool listed = false;
    for (const FontSubstitution& s : DesignedFontSubstitutions()) {
      if (s.designed == face) listed = !s.substitutes.empty();
    }
    EXPECT_TRUE(listed) << face;
  }
}

TEST_F(DesignedFontsTest, LatinFormFontResolvesToLiberationSansAndItsLineFitsTheTitles) {
  auto title = TitleLabel(Designed("MS Sans Serif", 8.25), "Opportunity", 1005, 270, 1);
  const QFont font = QtFontOf(*title);
  EXPECT_EQ(QFontInfo(font).family(), InstalledFamily("Liberation Sans", "fonts-liberation2"));
  // 8.25 point is 11 pixels; its line stands in the smallest designed title, 195 twips.
  EXPECT_EQ(QFontInfo(font).pixelSize(), 11);
  EXPECT_LE(QFontMetricsF(font).height(), 195.0 / 15.0);
  // The title of Opportunity's first row, right-aligned in its 1005 twips, keeps its first letter.
  const Ink ink = InkOf(*title);
  ASSERT_GT(ink.pixels, 0) << "no glyphs drawn";
  EXPECT_GT(ink.left, 0) << "the title is cut at the left";
  EXPECT_LT(ink.bottom, 195 / 15) << "the title reaches below a line of 195 twips";
}

TEST_F(DesignedFontsTest, LatinFormFontAt13Point5ResolvesToLiberationSans) {
  auto title = TitleLabel(Designed("MS Sans Serif", 13.5), "User Name", 3000, 330, 0);
  EXPECT_EQ(QFontInfo(QtFontOf(*title)).family(),
            InstalledFamily("Liberation Sans", "fonts-liberation2"));
  EXPECT_EQ(QFontInfo(QtFontOf(*title)).pixelSize(), 18);
}

TEST_F(DesignedFontsTest, ChineseTitleInTheLatinFormFontStaysInItsLine) {
  // Chinese in the Latin face falls to the Song face, one em high, so a Chinese title of
  // Opportunity loses nothing in a line of 195 twips: the ink in a 13-pixel label is the ink in a
  // label three times as high.
  const Font font = Designed("MS Sans Serif", 8.25);
  auto tight = TitleLabel(font, "销售阶段", 1005, 195, 1);
  auto roomy = TitleLabel(font, "销售阶段", 1005, 585, 1);
  const Ink in_line = InkOf(*tight);
  const Ink whole = InkOf(*roomy);
  ASSERT_GT(whole.pixels, 0) << "no glyphs drawn";
  EXPECT_EQ(in_line.pixels, whole.pixels);
  EXPECT_LT(whole.bottom, 195 / 15);
}

TEST_F(DesignedFontsTest, SongFormFontResolvesToASongFaceOneEmHigh) {
  for (const char* face : {"宋体", "SimSun", "新宋体"}) {
    auto title = TitleLabel(Designed(face, 14.25, 134), "客户名称", 1830, 240, 1);
    const QFont font = QtFontOf(*title);
    EXPECT_EQ(QFontInfo(font).family(),
              InstalledFamily("AR PL SungtiL GB", "fonts-arphic-gbsn00lp"))
        << face;
    // 14.25 point is 19 pixels, and the line is one em: no taller than the designed face's.
    EXPECT_EQ(QFontInfo(font).pixelSize(), 19) << face;
    EXPECT_DOUBLE_EQ(QFontMetricsF(font).height(), 19.0) << face;
  }
}

TEST_F(DesignedFontsTest, SongTitlesKeepAlmostAllTheirInkInTheCompanySheetsLabels) {
  // A 14.25-point title is taller than its 16-pixel label by design; the Song face keeps the cut
  // to the last strokes of the ideographs, and a Latin title stands whole.
  const Font font = Designed("宋体", 14.25, 134);
  auto tight = TitleLabel(font, "客户描述", 1830, 240, 1);
  auto roomy = TitleLabel(font, "客户描述", 1830, 720, 1);
  const Ink in_label = InkOf(*tight);
  const Ink whole = InkOf(*roomy);
  ASSERT_GT(whole.pixels, 0) << "no glyphs drawn";
  // 87% with AR PL SungtiL GB; about half with fontconfig's own choice for the name.
  EXPECT_GE(in_label.pixels, whole.pixels * 85 / 100)
      << in_label.pixels << " of " << whole.pixels << " ink pixels in the label";
  EXPECT_LE(whole.bottom, 17) << "the ideographs reach more than two rows below the label";

  auto latin_tight = TitleLabel(font, "Tax No:", 1830, 240, 1);
  auto latin_roomy = TitleLabel(font, "Tax No:", 1830, 720, 1);
  EXPECT_EQ(InkOf(*latin_tight).pixels, InkOf(*latin_roomy).pixels);
  EXPECT_GT(InkOf(*latin_tight).pixels, 0);
}

}  // namespace
}  // namespace tarnsheets
