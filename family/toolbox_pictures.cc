// The toolbox pictures of the nineteen public controls, drawn from a small table: every picture
// is the same form outline with a caption bar in the class's colour, the class's letter below
// the bar and two editor lines beside it.
#include <string>
#include <string_view>

#include "family/registry.h"

namespace tarnsheets {
namespace {

constexpr Color kGround = Rgb(192, 192, 192);
constexpr Color kOutline = Rgb(64, 64, 64);
constexpr Color kPaper = Rgb(255, 255, 255);
constexpr Color kInk = Rgb(0, 0, 0);
constexpr Color kEditorLine = Rgb(128, 128, 128);

// A letter of 5 by 7 pixels, row by row from the top; '#' is ink.
struct LetterShape {
  char letter;
  std::string_view rows[7];
};

constexpr LetterShape kLetters[] = {
    {'A', {".###.", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"}},
    {'C', {".###.", "#...#", "#....", "#....", "#....", "#...#", ".###."}},
    {'E', {"#####", "#....", "#....", "####.", "#....", "#....", "#####"}},
    {'O', {".###.", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."}},
    {'P', {"####.", "#...#", "#...#", "####.", "#....", "#....", "#...."}},
    {'Q', {".###.", "#...#", "#...#", "#...#", "#.#.#", "#..#.", ".##.#"}},
    {'S', {".####", "#....", "#....", ".###.", "....#", "....#", "####."}},
    {'T', {"#####", "..#..", "..#..", "..#..", "..#..", "..#..", "..#.."}},
    {'U', {"#...#", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."}},
};

// What tells one class's picture from another's: its letter and its caption colour.
struct PictureMark {
  std::string_view name;
  char letter;
  Color caption;
};

constexpr PictureMark kMarks[] = {
    {"UserInfo", 'U', Rgb(0, 64, 160)},       {"Opportunity", 'O', Rgb(34, 85, 187)},
    {"Competitor", 'C', Rgb(160, 32, 32)},    {"Contact", 'C', Rgb(0, 128, 64)},
    {"Activity", 'A', Rgb(200, 120, 0)},      {"Expense", 'E', Rgb(128, 0, 128)},
    {"ExpenseItem", 'E', Rgb(192, 64, 192)},  {"Costing", 'C', Rgb(96, 96, 0)},
    {"CompanyAccount", 'C', Rgb(0, 96, 128)}, {"ShortCompanyAccount", 'S', Rgb(0, 160, 160)},
    {"PriceList", 'P', Rgb(224, 64, 0)},      {"Product", 'P', Rgb(64, 128, 0)},
    {"Quote", 'Q', Rgb(96, 0, 192)},          {"Totals", 'T', Rgb(32, 32, 96)},
    {"Account", 'A', Rgb(0, 112, 224)},       {"Proposal", 'P', Rgb(160, 96, 64)},
    {"Contract", 'C', Rgb(128, 64, 0)},       {"Appointment", 'A', Rgb(224, 160, 0)},
    {"Currency", 'C', Rgb(0, 160, 64)},
};

const LetterShape* FindLetter(char letter) {
  for (const LetterShape& shape : kLetters) {
    if (shape.letter == letter) return &shape;
  }
  return nullptr;
}

}  // namespace

ToolboxBitmap ToolboxPixels(const ControlClass& control_class) {
  ToolboxBitmap bitmap;
  bitmap.pixels.fill(kGround);
  auto put = [&bitmap](int x, int y, Color color) {
    bitmap.pixels[y * kToolboxPictureWidth + x] = color;
  };
  constexpr int right = kToolboxPictureWidth - 1;
  constexpr int bottom = kToolboxPictureHeight - 1;

  // A class without a mark (none of the nineteen) keeps the plain outline in grey.
  PictureMark mark{control_class.name, '\0', kEditorLine};
  for (const PictureMark& m : kMarks) {
    if (m.name == control_class.name) mark = m;
  }

  // The form: outline, paper, caption bar of three rows.
  for (int y = 0; y <= bottom; ++y) {
    for (int x = 0; x <= right; ++x) {
      const bool edge = x == 0 || y == 0 || x == right || y == bottom;
      put(x, y, edge ? kOutline : (y <= 3 ? mark.caption : kPaper));
    }
  }
  // The letter at the left below the bar.
  if (const LetterShape* shape = FindLetter(mark.letter)) {
    for (int row = 0; row < 7; ++row) {
      for (int col = 0; col < 5; ++col) {
        if (shape->rows[row][col] == '#') put(2 + col, 5 + row, kInk);
      }
    }
  }
  // Two editor lines at the right, underlined in the caption's colour.
  for (int x = 8; x <= 13; ++x) {
    put(x, 6, kEditorLine);
    put(x, 10, kEditorLine);
    put(x, 12, mark.caption);
  }
  return bitmap;
}

Picture ToolboxPicture(const ControlClass& control_class) {
  const ToolboxBitmap bitmap = ToolboxPixels(control_class);
  Picture picture;
  picture.id = std::string(control_class.name);
  picture.width = kToolboxPictureWidth;
  picture.height = kToolboxPictureHeight;
  picture.pixels.assign(bitmap.pixels.begin(), bitmap.pixels.end());
  return picture;
}

}  // namespace tarnsheets
