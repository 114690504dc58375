#include "tarnsheets/user_commands.h"

#include <algorithm>
#include <utility>

#include "tarnsheets/dialogs.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"

namespace tarnsheets {

ClsSheetsUserCommands::ClsSheetsUserCommands(Dialogs& dialogs,
                                             CommandChangeHandler creation_listener)
    : dialogs_(dialogs) {
  if (creation_listener) AddCommandChangeListener(std::move(creation_listener));
  RaiseCommandChange();
}

ClsSheetsUserCommands::~ClsSheetsUserCommands() {
  // A listener that fails at the object's end cannot be reported to anybody; the end goes on.
  try {
    RaiseCommandChange();
  } catch (...) {
  }
}

ClsSheetsUserCommands::CommandRef ClsSheetsUserCommands::Add(const std::string& name,
                                                             const std::string& display_name) {
  CommandRef added;
  try {
    auto command = std::make_shared<ClsSheetsUserCommand>();
    command->display_name_ = display_name;
    command->name_ = name;
    if (!name.empty()) {
      mCol.Add(command, name);
    } else {
      mCol.Add(command);
    }
    added = std::move(command);
  } catch (const Failure& failure) {
    ShowErrorBox(dialogs_, "Add", failure.Number(), failure.Description());
    return nullptr;
  }
  // A failure of a listener is the listener's: it passes to whoever called Add.
  RaiseCommandChange();
  return added;
}

ClsSheetsUserCommands::CommandRef ClsSheetsUserCommands::Item(const Variant& name) const {
  return mCol.Item(name);
}

int32_t ClsSheetsUserCommands::Count() const { return mCol.Count(); }

void ClsSheetsUserCommands::Remove(const Variant& vnt_index_key) {
  mCol.Remove(vnt_index_key);
  RaiseCommandChange();
}

std::vector<ClsSheetsUserCommands::CommandRef> ClsSheetsUserCommands::NewEnum() const {
  return std::vector<CommandRef>(mCol.begin(), mCol.end());
}

ClsSheetsUserCommands::ListenerId ClsSheetsUserCommands::AddCommandChangeListener(
    CommandChangeHandler handler) {
  const ListenerId id = next_listener_id_++;
  listeners_.emplace_back(id, std::make_shared<CommandChangeHandler>(std::move(handler)));
  return id;
}

void ClsSheetsUserCommands::RemoveCommandChangeListener(ListenerId id) {
  listeners_.erase(std::remove_if(listeners_.begin(), listeners_.end(),
                                  [id](const auto& entry) { return entry.first == id; }),
                   listeners_.end());
}

void ClsSheetsUserCommands::RaiseCommandChange() {
  // A listener may add or drop listeners, or change the collection, while it runs: walk a copy,
  // and skip a listener that an earlier one dropped.
  const auto snapshot = listeners_;
  for (const auto& [id, handler] : snapshot) {
    const bool still_registered =
        std::any_of(listeners_.begin(), listeners_.end(),
                    [id = id](const auto& entry) { return entry.first == id; });
    if (still_registered && *handler) (*handler)();
  }
}

}  // namespace tarnsheets
