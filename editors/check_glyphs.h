// The two 7 by 7 pixel pictures that SFCheck draws in its middle, held in code as they were
// designed: PictureClip1 is the check mark of value 1, PictureClip2 the dither of value 2.
#ifndef TARNSHEETS_EDITORS_CHECK_GLYPHS_H_
#define TARNSHEETS_EDITORS_CHECK_GLYPHS_H_

#include <array>
#include <cstdint>
#include <string_view>

#include "tarnsheets/types.h"

namespace tarnsheets {

inline constexpr int kCheckGlyphWidth = 7;
inline constexpr int kCheckGlyphHeight = 7;

// The pixel colours of the pictures: '#' black, '.' the near-white paper, '+' the grey of the
// dither.
inline constexpr Color kGlyphInk = 0x000000;
inline constexpr Color kGlyphPaper = 0xFDFDFD;
inline constexpr Color kGlyphGrey = 0x7E7E7E;

using CheckGlyphRows = std::array<std::string_view, kCheckGlyphHeight>;

// Top row first. The last two rows of each picture repeat; that is how the pictures are.
inline constexpr CheckGlyphRows kPictureClip1 = {
    "......#",  //
    ".....##",  //
    "#...###",  //
    "##.###.",  //
    "#####..",  //
    ".###...",  //
    ".###...",  //
};
inline constexpr CheckGlyphRows kPictureClip2 = {
    ".+.+.+.",  //
    "+.+.+.+",  //
    ".+.+.+.",  //
    "+.+.+.+",  //
    ".+.+.+.",  //
    "+.+.+.+",  //
    "+.+.+.+",  //
};

// The colour of one grid character.
constexpr Color GlyphColor(char c) {
  return c == '#' ? kGlyphInk : c == '+' ? kGlyphGrey : kGlyphPaper;
}

// The picture as 24-bit pixels, row by row from the top, each row left to right.
using CheckGlyphPixels = std::array<Color, kCheckGlyphWidth * kCheckGlyphHeight>;

constexpr CheckGlyphPixels GlyphPixels(const CheckGlyphRows& rows) {
  CheckGlyphPixels pixels{};
  for (int y = 0; y < kCheckGlyphHeight; ++y) {
    for (int x = 0; x < kCheckGlyphWidth; ++x) {
      pixels[y * kCheckGlyphWidth + x] = GlyphColor(rows[y][x]);
    }
  }
  return pixels;
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_EDITORS_CHECK_GLYPHS_H_
