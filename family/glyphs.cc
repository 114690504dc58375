#include "family/glyphs.h"

#include <array>

namespace tarnsheets {
namespace {

constexpr Color G = kButtonGlyphGround;
constexpr Color A = kArrowGlyphInk;
constexpr Color K = kDotsGlyphInk;

// 6 by 3: full width in the top row, four pixels in the second, two in the third.
constexpr std::array<Color, 6 * 3> kArrowPixels = {
    A, A, A, A, A, A,  //
    G, A, A, A, A, G,  //
    G, G, A, A, G, G,  //
};

// 8 by 2: three blocks two pixels wide, one pixel apart.
constexpr std::array<Color, 8 * 2> kDotsPixels = {
    K, K, G, K, K, G, K, K,  //
    K, K, G, K, K, G, K, K,  //
};

constexpr GlyphBitmap kArrow{6, 3, kArrowPixels};
constexpr GlyphBitmap kDots{8, 2, kDotsPixels};
constexpr GlyphBitmap kEmpty{0, 0, {}};

}  // namespace

const GlyphBitmap& ButtonGlyphPixels(Glyph glyph) {
  switch (glyph) {
    case Glyph::kArrow:
      return kArrow;
    case Glyph::kDots:
      return kDots;
    case Glyph::kNone:
      break;
  }
  return kEmpty;
}

const char* GlyphName(Glyph glyph) {
  switch (glyph) {
    case Glyph::kArrow:
      return "arrow";
    case Glyph::kDots:
      return "dots";
    case Glyph::kNone:
      break;
  }
  return "";
}

Picture GlyphPicture(Glyph glyph) {
  const GlyphBitmap& bitmap = ButtonGlyphPixels(glyph);
  Picture picture;
  picture.id = GlyphName(glyph);
  picture.width = bitmap.width;
  picture.height = bitmap.height;
  picture.pixels.assign(bitmap.pixels.begin(), bitmap.pixels.end());
  return picture;
}

GlyphPictures FamilyGlyphPictures() { return &GlyphPicture; }

}  // namespace tarnsheets
