// Message boxes: the one service that engine code, collections and data sources all use to tell
// the user something. The toolkit implements it; a data source is handed one when it is created.
#ifndef TARNSHEETS_DIALOGS_H_
#define TARNSHEETS_DIALOGS_H_

#include <string>

namespace tarnsheets {

enum class MessageBoxStyle {
  kPlain,     // OK button, no icon: a condition that is no failure of the program
  kCritical,  // OK button, critical icon: a trapped failure in a collection class
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;

  // Shows a modal box with an OK button and returns when the user has closed it.
  // The box runs a nested message loop: the host's events may arrive before it returns.
  virtual void MessageBox(const std::string& title, const std::string& text,
                          MessageBoxStyle style) = 0;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DIALOGS_H_
