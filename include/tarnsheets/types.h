// Small value types shared by every layer: colours, twips, fonts, the screen rectangle of a field.
#ifndef TARNSHEETS_TYPES_H_
#define TARNSHEETS_TYPES_H_

#include <cstdint>
#include <string>

namespace tarnsheets {

// A toolkit colour: red in the low byte, then green, then blue. A value with the top bit set
// names a system colour, which the toolkit resolves.
using Color = uint32_t;

constexpr Color Rgb(uint32_t r, uint32_t g, uint32_t b) {
  return (r & 0xFF) | ((g & 0xFF) << 8) | ((b & 0xFF) << 16);
}
constexpr bool IsSystemColor(Color c) { return (c & 0x80000000u) != 0; }

inline constexpr Color kSysWindowBackground = 0x80000005u;
inline constexpr Color kSysWindowText = 0x80000008u;
inline constexpr Color kSysActiveBorder = 0x8000000Au;
inline constexpr Color kSysButtonFace = 0x8000000Fu;

// Lengths are twips (1/1440 inch), held as the toolkit's floating-point property values.
using Twips = double;

// A font as a control carries it.
struct Font {
  std::string name = "MS Sans Serif";
  double size = 8.25;  // points
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikethrough = false;
  int16_t charset = 0;

  friend bool operator==(const Font&, const Font&) = default;
};

// Four signed 32-bit fields, in pixels of the screen; passed by reference in the events
// `Text` and `Button`.
struct SheetRect {
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Right = 0;
  int32_t Bottom = 0;

  friend bool operator==(const SheetRect&, const SheetRect&) = default;
};

// Results of GetControlStatus.
enum ControlStatus : int32_t { csDisabled = 0, csEnabled = 1, csNotSupported = 2 };

// Arguments of TxtEdit.
enum TextEditMode : int32_t {
  teCopy = 0,
  teCut = 1,
  tePaste = 2,
  teUndo = 3,
  teRedo = 4,
  teDelete = 5
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TYPES_H_
