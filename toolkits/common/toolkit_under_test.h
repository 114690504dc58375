// The toolkit that the shared behaviour tests run on: the headless toolkit, or the Qt toolkit
// with its dialogs answered at once when the test binary is built with TARNSHEETS_TEST_ON_QT.
#ifndef TARNSHEETS_TOOLKITS_COMMON_TOOLKIT_UNDER_TEST_H_
#define TARNSHEETS_TOOLKITS_COMMON_TOOLKIT_UNDER_TEST_H_

#include "tarnsheets/failure.h"
#ifdef TARNSHEETS_TEST_ON_QT
#include "toolkits/qt/qt_toolkit.h"
#else
#include "toolkits/headless/headless_toolkit.h"
#endif

namespace tarnsheets {

#ifdef TARNSHEETS_TEST_ON_QT
class ToolkitUnderTest : public QtToolkit {
 public:
  ToolkitUnderTest() : QtToolkit(QtToolkit::DialogMode::kAnswered) {}
};
#else
using ToolkitUnderTest = HeadlessToolkit;
#endif

// The number of the Failure that `fn` throws; 0 when it throws none.
inline int FailureNumber(auto&& fn) {
  try {
    fn();
  } catch (const Failure& f) {
    return f.Number();
  }
  return 0;
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_TOOLKIT_UNDER_TEST_H_
