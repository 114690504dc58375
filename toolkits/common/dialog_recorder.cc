#include "toolkits/common/dialog_recorder.h"

#include "toolkits/common/control_rules.h"

namespace tarnsheets {

void DialogRecorder::Record(DialogRecord record) {
  records_.push_back(record);
  if (observer_) {
    // The observer may replace itself while it runs.
    const auto observer = observer_;
    observer(record);
  }
}

DialogRecord MessageBoxRecord(const std::string& title, const std::string& text,
                              MessageBoxStyle style) {
  DialogRecord record;
  record.kind = DialogRecord::Kind::kMessageBox;
  record.title = title;
  record.text = text;
  record.style = style;
  return record;
}

DialogRecord ModalFormRecord(const Form& form, std::string text_box_texts) {
  DialogRecord record;
  record.kind = DialogRecord::Kind::kModalForm;
  record.title = form.Caption();
  record.name = form.Name();
  record.text = std::move(text_box_texts);
  return record;
}

DialogRecord PopupMenuRecord(const Menu& menu) {
  DialogRecord record;
  record.kind = DialogRecord::Kind::kPopupMenu;
  record.title = menu.Name();
  record.name = menu.Name();
  bool first = true;
  for (const auto& item : menu.Items()) {
    if (!item->Visible()) continue;
    if (!first) record.text += "|";
    record.text += item->Caption();
    first = false;
  }
  return record;
}

void ChoosePopupMenuItem(Menu& menu, const std::string& name) {
  if (name.empty()) return;
  for (const auto& item : menu.Items()) {
    if (item->Name() == name) {
      ClickMenuItem(*item);
      return;
    }
  }
}

}  // namespace tarnsheets
