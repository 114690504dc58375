// User commands: the host's own buttons on a sheet's caption strip. ClsSheetsUserCommand is one
// entry (a name and a display text, fixed once added); ClsSheetsUserCommands is the sheet's
// ordered keyed collection of them, which the sheet turns into buttons when it next places them.
#ifndef TARNSHEETS_USER_COMMANDS_H_
#define TARNSHEETS_USER_COMMANDS_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tarnsheets/keyed_collection.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

class Dialogs;

// One command entry. Hosts read it; only ClsSheetsUserCommands::Add writes it.
class ClsSheetsUserCommand {
 public:
  static constexpr const char* kClassId = "48323d24-a922-42dd-b1d8-0e34e884b549";

  const std::string& DisplayName() const { return display_name_; }
  const std::string& Name() const { return name_; }

 private:
  friend class ClsSheetsUserCommands;

  std::string display_name_;
  std::string name_;
};

class ClsSheetsUserCommands {
 public:
  static constexpr const char* kClassId = "b32c0a46-9464-432e-9edd-9e22670929d1";

  using CommandRef = std::shared_ptr<const ClsSheetsUserCommand>;
  // A listener of CommandChange. It runs synchronously inside Add and Remove and may call back
  // into the collection.
  using CommandChangeHandler = std::function<void()>;
  using ListenerId = int32_t;

  // `dialogs` shows the box of a failed Add; it must outlive the collection. CommandChange is
  // raised at the end of creation, which only `creation_listener` can hear; it stays registered
  // (under the id 1) like any other listener.
  explicit ClsSheetsUserCommands(Dialogs& dialogs,
                                 CommandChangeHandler creation_listener = nullptr);
  // Raises CommandChange once more, at the object's end.
  ~ClsSheetsUserCommands();
  ClsSheetsUserCommands(const ClsSheetsUserCommands&) = delete;
  ClsSheetsUserCommands& operator=(const ClsSheetsUserCommands&) = delete;

  // Creates an entry with both texts, adds it under the key `name` (without a key when `name` is
  // empty), raises CommandChange and returns the entry. On failure (a name already present, in
  // any case: 457) shows the critical box "Add", does not raise CommandChange and returns
  // nullptr; the collection is then unchanged.
  CommandRef Add(const std::string& name, const std::string& display_name);

  // The default member: the entry under a text key, or at a one-based position. Fails to the
  // caller (Failure 5) when there is none.
  CommandRef Item(const Variant& name) const;
  CommandRef operator[](const Variant& name) const { return Item(name); }

  int32_t Count() const;

  // Removes the entry under a text key or at a position, then raises CommandChange. Fails to the
  // caller (Failure 5) when there is none, without the event.
  void Remove(const Variant& vnt_index_key);

  // The entries in order, as a snapshot: changing the collection while walking it is safe.
  std::vector<CommandRef> NewEnum() const;

  // Range-for over the entries in order. The collection must not change during the walk.
  KeyedCollection<CommandRef>::const_iterator begin() const { return mCol.begin(); }
  KeyedCollection<CommandRef>::const_iterator end() const { return mCol.end(); }

  // Registers a CommandChange listener and returns its id. Listeners are called in the order of
  // registration.
  ListenerId AddCommandChangeListener(CommandChangeHandler handler);
  // Drops a listener; an unknown id is ignored. A listener may drop itself while it runs.
  void RemoveCommandChangeListener(ListenerId id);

 private:
  void RaiseCommandChange();

  Dialogs& dialogs_;
  KeyedCollection<CommandRef> mCol;
  // The CommandChange listeners; changed only by the two listener methods.
  std::vector<std::pair<ListenerId, std::shared_ptr<CommandChangeHandler>>> listeners_;
  ListenerId next_listener_id_ = 1;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_USER_COMMANDS_H_
