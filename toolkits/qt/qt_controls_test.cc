#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPalette>
#include <cstdlib>

#include "toolkits/qt/qt_toolkit.h"

// The tests draw offscreen unless the caller chose a Qt platform.
[[maybe_unused]] const bool kOffscreenPlatform = [] {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  return true;
}();

namespace tarnsheets {
namespace {

TEST(TextMetricsTest, WidthAndHeightComeFromTheDrawingFontInTwips) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "UserInfo", "Sheet");
  Surface& s = uc->Drawing();
  Font f;
  f.name = "DejaVu Sans";
  f.size = 9;
  s.SetDrawingFont(f);
  const Twips caption = s.TextWidth("Caption");
  EXPECT_GT(caption, 0);
  EXPECT_GT(s.TextWidth("Caption Caption"), caption);
  // The longest line counts; a line break adds a line of height.
  EXPECT_EQ(s.TextWidth("a\r\nCaption"), caption);
  const Twips line = s.TextHeight("Caption");
  EXPECT_GT(line, 0);
  EXPECT_EQ(s.TextHeight(""), line);
  EXPECT_NEAR(s.TextHeight("a\r\nbb"), 2 * line, 1);
  EXPECT_GT(s.TextWidth("商机"), 0);
  // A bigger font is wider; twips follow the pixel size.
  f.size = 18;
  s.SetDrawingFont(f);
  EXPECT_GT(s.TextWidth("Caption"), caption);
  f.size = 9;
  s.SetDrawingFont(f);
  tk.SetTwipsPerPixel(30, 30);
  EXPECT_NEAR(s.TextWidth("Caption"), 2 * caption, 2);
}

TEST(SystemColorTest, SystemColoursResolveFromTheApplicationPalette) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  const QPalette palette = QGuiApplication::palette();
  auto rgb = [](const QColor& c) {
    return Rgb(static_cast<uint32_t>(c.red()), static_cast<uint32_t>(c.green()),
               static_cast<uint32_t>(c.blue()));
  };
  EXPECT_EQ(tk.ResolveColor(kSysWindowBackground), rgb(palette.color(QPalette::Base)));
  EXPECT_EQ(tk.ResolveColor(kSysWindowText), rgb(palette.color(QPalette::Text)));
  EXPECT_EQ(tk.ResolveColor(kSysButtonFace), rgb(palette.color(QPalette::Button)));
  EXPECT_EQ(tk.ResolveColor(0x8000000Du), rgb(palette.color(QPalette::Highlight)));
  EXPECT_EQ(tk.ResolveColor(0xBB5522), 0xBB5522u);
  EXPECT_EQ(tk.ResolveColor(0x80000077u), 0u);  // no such system colour
  // A changed palette changes what the system colours are.
  QPalette changed = palette;
  changed.setColor(QPalette::Base, QColor(0x12, 0x34, 0x56));
  QGuiApplication::setPalette(changed);
  EXPECT_EQ(tk.ResolveColor(kSysWindowBackground), Rgb(0x12, 0x34, 0x56));
  QGuiApplication::setPalette(palette);
}

}  // namespace
}  // namespace tarnsheets
