#include "tarnsheets/keyed_collection.h"

namespace tarnsheets {
namespace {

// The small form of one code point for the scripts that keys are written in. Code points of
// other scripts, and those without a case, come back unchanged.
char32_t FoldCodePoint(char32_t c) {
  // ASCII.
  if (c >= U'A' && c <= U'Z') return c + 0x20;
  if (c < 0x80) return c;
  // Latin-1 Supplement: the capitals C0..DE apart from the multiplication sign; the micro sign
  // folds to Greek small mu.
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 0x20;
  if (c == 0xB5) return 0x3BC;
  // Latin Extended-A: capital and small alternate.
  if (c >= 0x100 && c <= 0x17F) {
    if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149) return c;  // no simple pair
    if (c == 0x178) return 0xFF;                                         // Y with diaeresis
    if (c == 0x17F) return U's';                                         // long s
    const bool odd_capitals = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if (odd_capitals) return (c % 2 == 1) ? c + 1 : c;
    return (c % 2 == 0) ? c + 1 : c;
  }
  // Greek.
  if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return c + 0x20;
  if (c == 0x386) return 0x3AC;
  if (c >= 0x388 && c <= 0x38A) return c + 0x25;
  if (c == 0x38C) return 0x3CC;
  if (c == 0x38E || c == 0x38F) return c + 0x3F;
  if (c == 0x3C2) return 0x3C3;  // final sigma compares as sigma
  if (c >= 0x3D8 && c <= 0x3EF) return (c % 2 == 0) ? c + 1 : c;
  // Cyrillic.
  if (c >= 0x400 && c <= 0x40F) return c + 0x50;
  if (c >= 0x410 && c <= 0x42F) return c + 0x20;
  if ((c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) || (c >= 0x4D0 && c <= 0x52F)) {
    return (c % 2 == 0) ? c + 1 : c;
  }
  if (c == 0x4C0) return 0x4CF;
  if (c >= 0x4C1 && c <= 0x4CE) return (c % 2 == 1) ? c + 1 : c;
  // Armenian.
  if (c >= 0x531 && c <= 0x556) return c + 0x30;
  // Latin Extended Additional (the pairs that alternate; 1E96..1E9F have no simple pair).
  if ((c >= 0x1E00 && c <= 0x1E95) || (c >= 0x1EA0 && c <= 0x1EFF)) {
    return (c % 2 == 0) ? c + 1 : c;
  }
  if (c == 0x1E9E) return 0xDF;  // capital sharp s
  // Fullwidth Latin capitals.
  if (c >= 0xFF21 && c <= 0xFF3A) return c + 0x20;
  return c;
}

// Decodes the code point at `text[*pos]` and advances `*pos`. Returns false, advancing by one
// byte, when the bytes there are no valid UTF-8 sequence.
bool DecodeUtf8(std::string_view text, size_t* pos, char32_t* out) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(*pos);
  size_t length = 0;
  char32_t value = 0;
  if (lead < 0x80) {
    *out = lead;
    ++*pos;
    return true;
  } else if ((lead & 0xE0) == 0xC0) {
    length = 2;
    value = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3;
    value = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4;
    value = lead & 0x07;
  } else {
    ++*pos;
    return false;
  }
  if (*pos + length > text.size()) {
    ++*pos;
    return false;
  }
  for (size_t i = 1; i < length; ++i) {
    const unsigned char next = byte(*pos + i);
    if ((next & 0xC0) != 0x80) {
      ++*pos;
      return false;
    }
    value = (value << 6) | (next & 0x3F);
  }
  // Overlong forms, surrogates and values beyond the code space are no valid sequence.
  static constexpr char32_t kMinimum[] = {0, 0, 0x80, 0x800, 0x10000};
  if (value < kMinimum[length] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    ++*pos;
    return false;
  }
  *pos += length;
  *out = value;
  return true;
}

void AppendUtf8(char32_t c, std::string* out) {
  if (c < 0x80) {
    out->push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (c >> 6)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (c >> 12)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (c >> 18)));
    out->push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

}  // namespace

std::string FoldKeyCase(std::string_view text) {
  std::string folded;
  folded.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t start = pos;
    char32_t c = 0;
    if (DecodeUtf8(text, &pos, &c)) {
      AppendUtf8(FoldCodePoint(c), &folded);
    } else {
      folded.push_back(text[start]);  // kept as it stands
    }
  }
  return folded;
}

bool KeysEqual(std::string_view a, std::string_view b) { return FoldKeyCase(a) == FoldKeyCase(b); }

}  // namespace tarnsheets
