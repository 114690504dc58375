#include "platform/utf8.h"

namespace tarnsheets::utf8 {

char32_t Next(std::string_view text, size_t* pos) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(*pos);
  if (lead < 0x80) {
    ++*pos;
    return lead;
  }
  size_t length = 0;
  char32_t value = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 2;
    value = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3;
    value = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4;
    value = lead & 0x07;
  }
  const auto invalid = [&] {
    ++*pos;
    return kInvalidByteBase + lead;
  };
  if (length == 0 || *pos + length > text.size()) return invalid();
  for (size_t i = 1; i < length; ++i) {
    const unsigned char next = byte(*pos + i);
    if ((next & 0xC0) != 0x80) return invalid();
    value = (value << 6) | (next & 0x3F);
  }
  // Overlong forms, surrogates and values beyond the code space are no valid sequence.
  static constexpr char32_t kMinimum[] = {0, 0, 0x80, 0x800, 0x10000};
  if (value < kMinimum[length] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    return invalid();
  }
  *pos += length;
  return value;
}

std::u32string Decode(std::string_view text) {
  std::u32string out;
  out.reserve(text.size());
  for (size_t pos = 0; pos < text.size();) out.push_back(Next(text, &pos));
  return out;
}

void Append(char32_t c, std::string* out) {
  if (IsInvalidByte(c)) {
    out->push_back(static_cast<char>(c - kInvalidByteBase));
    return;
  }
  if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) c = kReplacement;
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

std::string Encode(char32_t c) {
  std::string out;
  Append(c, &out);
  return out;
}

std::string Encode(std::u32string_view code_points) {
  std::string out;
  out.reserve(code_points.size());
  for (char32_t c : code_points) Append(c, &out);
  return out;
}

size_t CountCharacters(std::string_view text) {
  size_t count = 0;
  for (size_t pos = 0; pos < text.size(); ++count) Next(text, &pos);
  return count;
}

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
  // Greek, the capitals with tonos among them.
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
  // Deseret (four bytes in UTF-8).
  if (c >= 0x10400 && c <= 0x10427) return c + 0x28;
  return c;
}

std::string Fold(std::string_view text) {
  std::string folded;
  folded.reserve(text.size());
  for (size_t pos = 0; pos < text.size();) {
    const unsigned char b = static_cast<unsigned char>(text[pos]);
    if (b < 0x80) {  // ASCII without decoding
      folded.push_back(b >= 'A' && b <= 'Z' ? static_cast<char>(b + 0x20) : static_cast<char>(b));
      ++pos;
      continue;
    }
    Append(FoldCodePoint(Next(text, &pos)), &folded);
  }
  return folded;
}

std::u32string FoldToCodePoints(std::string_view text) {
  std::u32string folded;
  folded.reserve(text.size());
  for (size_t pos = 0; pos < text.size();) folded.push_back(FoldCodePoint(Next(text, &pos)));
  return folded;
}

bool EqualsFolded(std::string_view a, std::string_view b) { return Fold(a) == Fold(b); }

}  // namespace tarnsheets::utf8
