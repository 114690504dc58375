#include "family/glyphs.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnsheets {
namespace {

// '#' ink, '.' the grey ground.
void ExpectGlyph(Glyph glyph, Color ink, const std::vector<std::string>& grid) {
  const GlyphBitmap& bitmap = ButtonGlyphPixels(glyph);
  ASSERT_EQ(bitmap.height, static_cast<int>(grid.size()));
  ASSERT_EQ(bitmap.width, static_cast<int>(grid[0].size()));
  ASSERT_EQ(bitmap.pixels.size(), grid.size() * grid[0].size());
  for (int y = 0; y < bitmap.height; ++y) {
    for (int x = 0; x < bitmap.width; ++x) {
      Color expected = grid[y][x] == '#' ? ink : Color{0x00C0C0C0};
      EXPECT_EQ(bitmap.At(x, y), expected) << GlyphName(glyph) << " at " << x << ", " << y;
    }
  }
}

TEST(ButtonGlyphTest, ArrowIsASolidTrianglePointingDown) {
  ExpectGlyph(Glyph::kArrow, 0x002F282F,
              {
                  "######",
                  ".####.",
                  "..##..",
              });
}

TEST(ButtonGlyphTest, DotsAreThreeBlackBlocksOnePixelApart) {
  ExpectGlyph(Glyph::kDots, 0x00000000,
              {
                  "##.##.##",
                  "##.##.##",
              });
}

TEST(ButtonGlyphTest, NoGlyphIsAnEmptyPicture) {
  const GlyphBitmap& bitmap = ButtonGlyphPixels(Glyph::kNone);
  EXPECT_EQ(bitmap.width, 0);
  EXPECT_EQ(bitmap.height, 0);
  EXPECT_TRUE(bitmap.pixels.empty());
  EXPECT_STREQ(GlyphName(Glyph::kNone), "");
}

TEST(ButtonGlyphTest, GlyphsCarryTheirDesignedNames) {
  EXPECT_STREQ(GlyphName(Glyph::kArrow), "arrow");
  EXPECT_STREQ(GlyphName(Glyph::kDots), "dots");
}

}  // namespace
}  // namespace tarnsheets
