// The faces that the designed forms name, mapped to the nearest free faces that Debian packages.
//
// The forms were drawn in "MS Sans Serif" (the Latin sheets, the error dialog) and in the Song face
// "宋体" (the company sheets). Neither exists on a free desktop, and fontconfig's own choice
// (DejaVu Sans) is wider and taller, so right-aligned titles lose their first letters and titles
// in labels of one designed line lose their bottom. The substitutes keep the designed metrics:
// - "MS Sans Serif" (and "Microsoft Sans Serif"): Liberation Sans, whose widths are Arial's
//   (package fonts-liberation2);
// - "宋体", "SimSun", "新宋体", "NSimSun": AR PL SungtiL GB, a Song face of the simplified
//   character set whose line is exactly one em, like the original's (package
//   fonts-arphic-gbsn00lp); AR PL UMing CN (fonts-arphic-uming) where that is missing or lacks a
//   character.
// Where a substitute is not installed, Qt moves on to the next one and finally to fontconfig's
// choice, so a missing package costs looks, never a failure.
#ifndef TARNSHEETS_TOOLKITS_QT_QT_FONTS_H_
#define TARNSHEETS_TOOLKITS_QT_QT_FONTS_H_

#include <string>
#include <vector>

namespace tarnsheets {

// One designed face and the faces that stand in for it, best first.
struct FontSubstitution {
  std::string designed;
  std::vector<std::string> substitutes;
};

// The table above, in the order it is installed.
const std::vector<FontSubstitution>& DesignedFontSubstitutions();

// Installs DesignedFontSubstitutions with QFont::insertSubstitutions. Idempotent: a substitute
// already listed for a face is not listed twice. REQUIRES: a QGuiApplication exists.
void InstallDesignedFontSubstitutions();

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_QT_QT_FONTS_H_
