// The platform's keyed collection, as the titles and user-command collections hold their items.
//
// Items stay in insertion order. An item is reached by its one-based position or by its string
// key; keys compare without regard to case (Unicode-aware: see FoldKeyCase). Adding a key that is
// already present fails with 457; asking for a key or position that is not there fails with 5.
// An item added without a key is reachable by position only.
#ifndef TARNSHEETS_KEYED_COLLECTION_H_
#define TARNSHEETS_KEYED_COLLECTION_H_

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

// The form under which a key is compared: the UTF-8 text with every cased letter folded to its
// small form. Folds ASCII, Latin-1 Supplement, Latin Extended-A and Additional, Greek, Cyrillic,
// Armenian and the fullwidth Latin letters; everything else (CJK, digits, punctuation) passes
// unchanged, and so do bytes that are no valid UTF-8.
std::string FoldKeyCase(std::string_view text);

// True when the two texts are equal without regard to case, as keys are compared.
bool KeysEqual(std::string_view a, std::string_view b);

template <typename T>
class KeyedCollection {
 private:
  struct Entry {
    T item;
    std::optional<std::string> key;  // as given, not folded
  };

 public:
  // Walks the items in order. Adding or removing items invalidates it.
  class const_iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = const T*;
    using reference = const T&;

    const_iterator() = default;
    reference operator*() const { return it_->item; }
    pointer operator->() const { return &it_->item; }
    const_iterator& operator++() {
      ++it_;
      return *this;
    }
    const_iterator operator++(int) {
      const_iterator old = *this;
      ++it_;
      return old;
    }
    friend bool operator==(const const_iterator& a, const const_iterator& b) {
      return a.it_ == b.it_;
    }

   private:
    friend class KeyedCollection;
    explicit const_iterator(typename std::vector<Entry>::const_iterator it) : it_(it) {}
    typename std::vector<Entry>::const_iterator it_;
  };

  // Adds `item` at the end without a key.
  void Add(T item) { entries_.push_back(Entry{std::move(item), std::nullopt}); }

  // Adds `item` at the end under `key`. Fails with 457 when a key equal to `key` without regard
  // to case is present; the collection is then unchanged.
  void Add(T item, std::string_view key) {
    std::string folded = FoldKeyCase(key);
    if (index_.count(folded) != 0) throw PlatformFailure(kErrDuplicateKey);
    entries_.push_back(Entry{std::move(item), std::string(key)});
    index_.emplace(std::move(folded), entries_.size() - 1);
  }

  int32_t Count() const { return static_cast<int32_t>(entries_.size()); }

  // The item at one-based `position`. Fails with 5 when there is none.
  const T& Item(int32_t position) const { return entries_[CheckedOffset(position)].item; }

  // The item under `key`. Fails with 5 when there is none.
  const T& ItemByKey(std::string_view key) const { return entries_[KeyOffset(key)].item; }

  // By key when `index` is a text, else by position: a number is rounded to a whole position as
  // the platform converts it. Null fails with 94, a text that is no key and a position that is
  // not there with 5, a number out of the 32-bit range with 6.
  const T& Item(const Variant& index) const { return entries_[VariantOffset(index)].item; }

  bool ContainsKey(std::string_view key) const { return index_.count(FoldKeyCase(key)) != 0; }

  // The key an item was added under, or nothing for an item without a key.
  // REQUIRES: 1 <= position <= Count().
  const std::optional<std::string>& KeyAt(int32_t position) const {
    return entries_[CheckedOffset(position)].key;
  }

  // Removes the item at `position`, under `key`, or at the place `index` names (see Item).
  // Fails as Item does, and then changes nothing.
  void Remove(int32_t position) { EraseAt(CheckedOffset(position)); }
  void RemoveByKey(std::string_view key) { EraseAt(KeyOffset(key)); }
  void Remove(const Variant& index) { EraseAt(VariantOffset(index)); }

  void Clear() {
    entries_.clear();
    index_.clear();
  }

  const_iterator begin() const { return const_iterator(entries_.begin()); }
  const_iterator end() const { return const_iterator(entries_.end()); }

 private:
  size_t CheckedOffset(int32_t position) const {
    if (position < 1 || position > Count()) throw PlatformFailure(kErrInvalidProcedureCall);
    return static_cast<size_t>(position - 1);
  }

  size_t KeyOffset(std::string_view key) const {
    auto it = index_.find(FoldKeyCase(key));
    if (it == index_.end()) throw PlatformFailure(kErrInvalidProcedureCall);
    return it->second;
  }

  size_t VariantOffset(const Variant& index) const {
    if (index.IsString()) return KeyOffset(index.StringValue());
    return CheckedOffset(index.ToLong());
  }

  void EraseAt(size_t offset) {
    if (entries_[offset].key) index_.erase(FoldKeyCase(*entries_[offset].key));
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(offset));
    // The offsets behind the removed item move one place forward.
    for (auto& [folded, at] : index_) {
      if (at > offset) --at;
    }
  }

  std::vector<Entry> entries_;
  std::unordered_map<std::string, size_t> index_;  // folded key -> offset in entries_
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_KEYED_COLLECTION_H_
