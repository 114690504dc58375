// The record of the dialogs a toolkit showed: message boxes, modal forms and pop-up menus.
//
// For toolkit implementers, not hosts: both toolkits keep one DialogRecorder and hand out its
// records through DialogLog().
#ifndef TARNSHEETS_TOOLKITS_COMMON_DIALOG_RECORDER_H_
#define TARNSHEETS_TOOLKITS_COMMON_DIALOG_RECORDER_H_

#include <functional>
#include <string>
#include <vector>

#include "tarnsheets/dialogs.h"
#include "tarnsheets/toolkit.h"

namespace tarnsheets {

// A message box, a modal form or a pop-up menu, in the order they were shown.
struct DialogRecord {
  enum class Kind { kMessageBox, kModalForm, kPopupMenu };
  Kind kind = Kind::kMessageBox;
  std::string title;  // message box title; form caption; menu name
  // Message box text; the texts of the form's text boxes in tab order joined by "\n"; the
  // captions of the menu's visible items joined by "|".
  std::string text;
  MessageBoxStyle style = MessageBoxStyle::kPlain;  // message boxes only
  std::string name;                                 // form or menu name
};

class DialogRecorder {
 public:
  // Keeps `record` and hands it to the observer, before the dialog is answered or shown.
  void Record(DialogRecord record);
  const std::vector<DialogRecord>& Records() const { return records_; }
  void Clear() { records_.clear(); }
  void SetObserver(std::function<void(const DialogRecord&)> observer) {
    observer_ = std::move(observer);
  }

 private:
  std::vector<DialogRecord> records_;
  std::function<void(const DialogRecord&)> observer_;
};

DialogRecord MessageBoxRecord(const std::string& title, const std::string& text,
                              MessageBoxStyle style);
// A modal form: its caption, its name and `text_box_texts` (FocusRules::TextBoxTexts).
DialogRecord ModalFormRecord(const Form& form, std::string text_box_texts);
// A pop-up menu: its name and the captions of its visible items.
DialogRecord PopupMenuRecord(const Menu& menu);
// The user chose the item called `name` of a pop-up menu ("" closes the menu with no choice):
// the item is clicked when it and its menus are enabled and it is visible.
void ChoosePopupMenuItem(Menu& menu, const std::string& name);

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_DIALOG_RECORDER_H_
