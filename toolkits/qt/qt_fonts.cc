#include "toolkits/qt/qt_fonts.h"

#include <QFont>
#include <QString>
#include <QStringList>

namespace tarnsheets {

const std::vector<FontSubstitution>& DesignedFontSubstitutions() {
  static const std::vector<FontSubstitution> table = [] {
    // Chinese text in the Latin face is drawn in the Song face, as the original system's font
    // linking did; it also keeps the line of a mixed title one designed line high.
    const std::vector<std::string> sans = {"Liberation Sans", "AR PL SungtiL GB", "AR PL UMing CN"};
    const std::vector<std::string> song = {"AR PL SungtiL GB", "AR PL UMing CN"};
    return std::vector<FontSubstitution>{
        {"MS Sans Serif", sans}, {"Microsoft Sans Serif", sans},
        {"宋体", song},          {"SimSun", song},
        {"新宋体", song},        {"NSimSun", song},
    };
  }();
  return table;
}

void InstallDesignedFontSubstitutions() {
  for (const FontSubstitution& s : DesignedFontSubstitutions()) {
    const QString designed = QString::fromStdString(s.designed);
    const QStringList present = QFont::substitutes(designed);
    QStringList add;
    for (const std::string& name : s.substitutes) {
      const QString substitute = QString::fromStdString(name);
      if (!present.contains(substitute)) add << substitute;
    }
    if (!add.isEmpty()) QFont::insertSubstitutions(designed, add);
  }
}

}  // namespace tarnsheets
