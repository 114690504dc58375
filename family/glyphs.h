// The two tiny pictures that the drop buttons carry: `arrow`, a solid triangle pointing down,
// and `dots`, three black blocks. Both stand on the grey ground of a button face.
#ifndef TARNSHEETS_FAMILY_GLYPHS_H_
#define TARNSHEETS_FAMILY_GLYPHS_H_

#include <cstdint>
#include <span>

#include "sheet/form_types.h"
#include "tarnsheets/sheet.h"
#include "tarnsheets/toolkit.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

// The ground both glyphs are drawn on.
inline constexpr Color kButtonGlyphGround = 0x00C0C0C0;
// The ink of the arrow.
inline constexpr Color kArrowGlyphInk = 0x002F282F;
// The ink of the dots.
inline constexpr Color kDotsGlyphInk = 0x00000000;

// A glyph as 24-bit pixels: `pixels` holds width * height colours, row by row from the top,
// each row from left to right.
struct GlyphBitmap {
  int width;
  int height;
  std::span<const Color> pixels;

  // The colour at column x, row y (both 0-based).
  // REQUIRES: 0 <= x < width, 0 <= y < height.
  constexpr Color At(int x, int y) const { return pixels[y * width + x]; }
};

// The pixels of a glyph. Glyph::kNone gives an empty bitmap (0 by 0, no pixels).
const GlyphBitmap& ButtonGlyphPixels(Glyph glyph);

// "arrow", "dots" or "" for Glyph::kNone.
const char* GlyphName(Glyph glyph);

// A glyph as a toolkit picture named by GlyphName.
Picture GlyphPicture(Glyph glyph);
// The family's glyph table as a sheet takes it at creation.
GlyphPictures FamilyGlyphPictures();

}  // namespace tarnsheets

#endif  // TARNSHEETS_FAMILY_GLYPHS_H_
