// Renders every public control, bound to its table of the sample database and showing its first
// record, to a PNG file per control: DIRECTORY/<Class>.png.
#ifndef TARNSHEETS_APPS_DEMO_SCREENSHOTS_H_
#define TARNSHEETS_APPS_DEMO_SCREENSHOTS_H_

#include <string>
#include <vector>

namespace tarnsheets {

class QtToolkit;

// Renders the controls named in `classes` (all nineteen when empty) with `toolkit`, which should
// answer its dialogs (QtToolkit::DialogMode::kAnswered). Creates `directory` when missing. Returns
// the files written, in the order of the classes. Fails with Failure naming the control or file;
// the files written before stay.
std::vector<std::string> RenderScreenshots(QtToolkit& toolkit, const std::string& database,
                                           const std::string& directory,
                                           std::vector<std::string> classes = {});

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_DEMO_SCREENSHOTS_H_
