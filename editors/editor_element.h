// Creating an editor and loading a new element of an editor array, shared by SFText and SFCheck.
#ifndef TARNSHEETS_EDITORS_EDITOR_ELEMENT_H_
#define TARNSHEETS_EDITORS_EDITOR_ELEMENT_H_

#include <memory>
#include <string>
#include <utility>

#include "tarnsheets/property_bag.h"
#include "tarnsheets/toolkit.h"

namespace tarnsheets {

// A new editor in `parent` as a form designer places it: the user control of the editor's class
// is created, the editor built inside it and given the initial properties of a new control, then
// it takes its designed size.
template <typename Editor>
std::shared_ptr<Editor> CreateEditor(Toolkit& toolkit, Container& parent, const std::string& name,
                                     int32_t index, Twips width, Twips height) {
  std::shared_ptr<UserControl> host =
      toolkit.CreateUserControl(parent, Editor::kClassName, name, index);
  std::shared_ptr<Editor> control = Editor::Attach(toolkit, std::move(host));
  control->InitProperties();
  UserControl& h = control->Host();
  h.Move(h.Left(), h.Top(), width, height);
  return control;
}

// A new element `index` of the array that `element0` heads: the toolkit loads a hidden copy of
// the host, the editor is built inside it, and it reads the properties that element 0 writes now,
// so that it starts as element 0 is. Fails with 360 when the index is loaded already.
template <typename Editor>
std::shared_ptr<Editor> LoadEditorElement(Toolkit& toolkit, const Editor& element0, int32_t index) {
  std::shared_ptr<UserControl> host = LoadControlAs<UserControl>(toolkit, element0.Host(), index);
  std::shared_ptr<Editor> control = Editor::Attach(toolkit, std::move(host));
  MemoryPropertyBag bag;
  element0.WriteProperties(bag);
  control->ReadProperties(bag);
  return control;
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_EDITORS_EDITOR_ELEMENT_H_
