#include <gtest/gtest.h>

#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {
namespace {

TEST(TextMetricsTest, WidthAndHeightFollowTheDocumentedFormula) {
  HeadlessToolkit tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "UserInfo", "Sheet");
  Surface& s = uc->Drawing();
  Font f;
  f.size = 9;
  s.SetDrawingFont(f);
  EXPECT_EQ(s.TextWidth("   Caption   "), 13 * 90);
  EXPECT_EQ(s.TextHeight("Caption"), 216);
  EXPECT_EQ(s.TextWidth("商机"), 180);  // characters, not bytes
  EXPECT_EQ(s.TextHeight("a\r\nbb"), 432);
  EXPECT_EQ(s.TextWidth("a\r\nbbb"), 270);
  f.size = 8.25;
  s.SetDrawingFont(f);
  EXPECT_EQ(s.TextWidth("abc"), 248);  // 247.5 rounds away from zero
  EXPECT_EQ(s.TextHeight(""), 198);
}

TEST(SystemColorTest, SystemColoursResolveToFixedValues) {
  HeadlessToolkit tk;
  EXPECT_EQ(tk.ResolveColor(kSysWindowBackground), 0xFFFFFFu);
  EXPECT_EQ(tk.ResolveColor(kSysWindowText), 0x000000u);
  EXPECT_EQ(tk.ResolveColor(kSysActiveBorder), 0xB4B4B4u);
  EXPECT_EQ(tk.ResolveColor(kSysButtonFace), 0xF0F0F0u);
  EXPECT_EQ(tk.ResolveColor(0xBB5522), 0xBB5522u);
}

}  // namespace
}  // namespace tarnsheets
