// ControlArray: elements that share a name and are told apart by an index.
//
// Works for toolkit controls (ControlArray<TextBox>) and for the library's own composite controls
// (ControlArray<SFText>) alike. It holds a shared reference to each element, so an element that is
// unloaded while one of its handlers runs stays valid until the handler returns.
#ifndef TARNSHEETS_PLATFORM_CONTROL_ARRAY_H_
#define TARNSHEETS_PLATFORM_CONTROL_ARRAY_H_

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "tarnsheets/failure.h"

namespace tarnsheets {

template <typename T>
class ControlArray {
 public:
  // Makes the element `index` from element 0, the template.
  using Maker = std::function<std::shared_ptr<T>(const T& element0, int32_t index)>;

  // Number of loaded elements.
  int32_t Count() const { return static_cast<int32_t>(elements_.size()); }
  bool Exists(int32_t index) const { return elements_.count(index) != 0; }
  // The lowest and highest loaded index. REQUIRES: Count() > 0.
  int32_t LBound() const { return elements_.begin()->first; }
  int32_t UBound() const { return elements_.rbegin()->first; }

  // The element; fails with 340 naming the index when it is not loaded.
  T& operator()(int32_t index) const { return *Element(index); }
  const std::shared_ptr<T>& Element(int32_t index) const {
    auto it = elements_.find(index);
    if (it == elements_.end()) throw ControlArrayElementMissing(index);
    return it->second;
  }

  // The loaded indices in ascending order, as a snapshot that a handler cannot change under the
  // caller.
  std::vector<int32_t> Indices() const {
    std::vector<int32_t> out;
    out.reserve(elements_.size());
    for (const auto& [index, element] : elements_) out.push_back(index);
    return out;
  }
  // The loaded elements in index order, as a snapshot.
  std::vector<std::shared_ptr<T>> Elements() const {
    std::vector<std::shared_ptr<T>> out;
    out.reserve(elements_.size());
    for (const auto& [index, element] : elements_) out.push_back(element);
    return out;
  }

  // Puts an element that already exists (a designed one) under `index`. Fails with 360 when the
  // index is loaded.
  void Add(int32_t index, std::shared_ptr<T> element) {
    if (Exists(index)) throw PlatformFailure(kErrObjectAlreadyLoaded);
    elements_.emplace(index, std::move(element));
  }

  // Loads element `index` made by `make` from element 0. Fails with 340 (for index 0) when
  // element 0 is missing and with 360 when `index` is already loaded; nothing changes then.
  T& Load(int32_t index, const Maker& make) {
    if (Exists(index)) throw PlatformFailure(kErrObjectAlreadyLoaded);
    const std::shared_ptr<T> element0 = Element(0);
    std::shared_ptr<T> element = make(*element0, index);
    // The maker may run handlers; check again before taking the place.
    if (Exists(index)) throw PlatformFailure(kErrObjectAlreadyLoaded);
    T& ref = *element;
    elements_.emplace(index, std::move(element));
    return ref;
  }

  // Removes element `index` from the array and returns it (the caller unloads it from its
  // toolkit). Fails with 340 when it is not loaded.
  std::shared_ptr<T> Unload(int32_t index) {
    auto it = elements_.find(index);
    if (it == elements_.end()) throw ControlArrayElementMissing(index);
    std::shared_ptr<T> element = std::move(it->second);
    elements_.erase(it);
    return element;
  }

  void Clear() { elements_.clear(); }

 private:
  std::map<int32_t, std::shared_ptr<T>> elements_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_PLATFORM_CONTROL_ARRAY_H_
