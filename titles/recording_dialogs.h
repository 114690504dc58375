// Test support: a Dialogs that records every message box instead of showing it.
#ifndef TARNSHEETS_TITLES_RECORDING_DIALOGS_H_
#define TARNSHEETS_TITLES_RECORDING_DIALOGS_H_

#include <string>
#include <vector>

#include "tarnsheets/dialogs.h"

namespace tarnsheets {

struct RecordedBox {
  std::string title;
  std::string text;
  MessageBoxStyle style;
};

class RecordingDialogs : public Dialogs {
 public:
  void MessageBox(const std::string& title, const std::string& text,
                  MessageBoxStyle style) override {
    boxes.push_back(RecordedBox{title, text, style});
  }

  std::vector<RecordedBox> boxes;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TITLES_RECORDING_DIALOGS_H_
