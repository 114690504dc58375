// The sheet object: building the form, the property surface and the lifecycle.
#include "sheet/sheet_engine.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "tarnsheets/messages.h"

namespace tarnsheets {

namespace {

// The container is told about these keys; the texts are what hosts and bags rely on.
constexpr const char kDefaultFontName[] = "MS Sans Serif";
constexpr double kDefaultFontSize = 10;
constexpr Color kDefaultCaptionColor = 0xBB5522;
constexpr Color kDefaultBackgroundColor = 0xEEEEEE;
constexpr Color kDefaultTitleTextColor = 0;

void ApplyFixed(Control& control, const FixedControl& spec) {
  control.Move(spec.rect.Left, spec.rect.Top, spec.rect.Width, spec.rect.Height);
  if (!spec.caption.empty()) control.SetCaption(std::string(spec.caption));
  if (spec.tab_index != kNoIndex) control.SetTabIndex(spec.tab_index);
  control.SetTabStop(spec.tab_stop);
  control.SetVisible(spec.visible);
  control.SetEnabled(spec.enabled);
}

}  // namespace

namespace {

// The reduced forms in the entity form's terms: what the shared procedures read (class name, size,
// colours, font, rows, sentinels, option record).
// The part of a reduced form that reads like an entity form: class name, size, font, no picture.
template <typename Reduced>
std::unique_ptr<FormTable> FormOf(const Reduced& form, OptionRecord options) {
  auto table = std::make_unique<FormTable>();
  table->class_name = form.class_name;
  table->width = form.width;
  table->height = form.height;
  table->font = form.font;
  table->picture = Glyph::kNone;
  table->options = options;
  return table;
}

std::unique_ptr<const FormTable> AppointmentAsForm(const AppointmentFormTable& form) {
  // After an update the record is shown again only while nothing is pending.
  std::unique_ptr<FormTable> table =
      FormOf(form, OptionRecord{/*CaptionMenu=*/false, /*RedrawOnlyWhenIdle=*/true,
                                /*StatusElseArm=*/false, /*NegativeCountShows=*/false,
                                /*CaptionSpaceFollows=*/false, /*NewRecordEvent=*/false,
                                /*CaptionDefault=*/""});
  table->back_color = form.back_color;
  table->fixed.Pic_TableStart = form.Pic_TableStart;
  table->fixed.Pic_TableUp = form.Pic_TableUp;
  table->fixed.Pic_TableDown = form.Pic_TableDown;
  table->rows = form.rows;
  return table;
}

std::unique_ptr<const FormTable> CurrencyAsForm(const CurrencyFormTable& form) {
  return FormOf(form, OptionRecord{false, false, false, false, false, false, ""});
}

}  // namespace

SheetEngine::SheetEngine(Toolkit& toolkit, Container& parent, const FormTable& form,
                         const std::string& name, GlyphPictures glyph_pictures)
    : toolkit_(toolkit), form_(form) {
  Construct(parent, name, glyph_pictures);
}

SheetEngine::SheetEngine(Toolkit& toolkit, Container& parent, const AppointmentFormTable& form,
                         const std::string& name, GlyphPictures glyph_pictures)
    : toolkit_(toolkit),
      kind_(SheetKind::kAppointment),
      own_form_(AppointmentAsForm(form)),
      appointment_form_(&form),
      form_(*own_form_) {
  Construct(parent, name, glyph_pictures);
}

SheetEngine::SheetEngine(Toolkit& toolkit, Container& parent, const CurrencyFormTable& form,
                         const std::string& name, GlyphPictures glyph_pictures)
    : toolkit_(toolkit),
      kind_(SheetKind::kCurrency),
      own_form_(CurrencyAsForm(form)),
      currency_form_(&form),
      form_(*own_form_) {
  Construct(parent, name, glyph_pictures);
}

void SheetEngine::Construct(Container& parent, const std::string& name,
                            const GlyphPictures& glyph_pictures) {
  host_ = toolkit_.CreateUserControl(parent, std::string(form_.class_name), name);
  switch (kind_) {
    case SheetKind::kEntity:
      BuildControls(glyph_pictures);
      WireEvents();
      UserControl_Initialize();
      // From here on every change of size lays the sheet out.
      host_->Events().Resize = [this] { UserControl_Resize(); };
      break;
    case SheetKind::kAppointment:
      // The form keeps its designed geometry whatever size the host gives it.
      BuildAppointment(glyph_pictures);
      WireEvents();
      Appointment_Initialize();
      break;
    case SheetKind::kCurrency:
      // Nothing moves on a resize; the host only hears of it.
      BuildCurrency(glyph_pictures);
      WireEvents();
      host_->Events().Resize = [this] { RaiseEvent([](SheetEvents& host) { host.Resize(); }); };
      break;
  }
}

SheetEngine::~SheetEngine() {
  host_->Events().Resize = nullptr;
  if (DataSource_ != nullptr) DataSource_->RemoveListener(this);
  // Unloading moves the focus out of the sheet: nothing of that may reach the host or the data
  // source any more.
  observers_.clear();
  UnwireEvents();
  // The sheet's control leaves its container with the sheet; nothing is saved.
  if (host_->Parent() != nullptr) {
    try {
      toolkit_.Unload(*host_);
    } catch (const Failure&) {
      // A destructor reports nothing; the control is gone from the sheet's side either way.
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Building the designed form

void SheetEngine::BuildControls(const GlyphPictures& glyph_pictures) {
  UserControl& host = *host_;
  host.Move(host.Left(), host.Top(), form_.width, form_.height);
  host.SetBackColor(form_.back_color);
  host.SetFont(form_.font.ToFont());
  if (!form_.tag.empty()) host.SetTag(std::string(form_.tag));

  const FixedControls& fixed = form_.fixed;

  Shp_Caption_ = toolkit_.CreateShape(host, "Shp_Caption");
  MoveTo(*Shp_Caption_, fixed.Shp_Caption.rect);
  if (fixed.Shp_Caption.has_back_color) Shp_Caption_->SetBackColor(fixed.Shp_Caption.back_color);
  Shp_Caption_->SetBorderColor(fixed.Shp_Caption.border_color);
  Shp_Caption_->SetBorderWidth(static_cast<int16_t>(fixed.Shp_Caption.border_width));

  Lbl_CaptionSpace_ = toolkit_.CreateLabel(host, "Lbl_CaptionSpace");
  MoveTo(*Lbl_CaptionSpace_, fixed.Lbl_CaptionSpace.rect);
  Lbl_CaptionSpace_->SetBackColor(fixed.Lbl_CaptionSpace.back_color);
  Lbl_CaptionSpace_->SetCaption("");

  Lbl_Caption_ = toolkit_.CreateLabel(host, "Lbl_Caption");
  MoveTo(*Lbl_Caption_, fixed.Lbl_Caption.rect);
  Lbl_Caption_->SetAlignment(static_cast<int16_t>(fixed.Lbl_Caption.alignment));
  Lbl_Caption_->SetBackColor(fixed.Lbl_Caption.back_color);
  Lbl_Caption_->SetForeColor(fixed.Lbl_Caption.fore_color);
  Lbl_Caption_->SetFont(fixed.Lbl_Caption.font.ToFont());
  Lbl_Caption_->SetCaption(std::string(form_.caption));

  BuildSentinels(fixed.Pic_TableStart, fixed.Pic_TableUp, fixed.Pic_TableDown);

  Cmd_NewRecord_ = toolkit_.CreateCommandButton(host, "Cmd_NewRecord");
  ApplyFixed(*Cmd_NewRecord_, fixed.Cmd_NewRecord);
  Cmd_CopyRecord_ = toolkit_.CreateCommandButton(host, "Cmd_CopyRecord");
  ApplyFixed(*Cmd_CopyRecord_, fixed.Cmd_CopyRecord);
  Cmd_DeleteRecord_ = toolkit_.CreateCommandButton(host, "Cmd_DeleteRecord");
  ApplyFixed(*Cmd_DeleteRecord_, fixed.Cmd_DeleteRecord);
  Cmd_Undo_ = toolkit_.CreateCommandButton(host, "Cmd_Undo");
  ApplyFixed(*Cmd_Undo_, fixed.Cmd_Undo);

  std::shared_ptr<CommandButton> user_command0 =
      toolkit_.CreateCommandButton(host, "UserCommand", 0);
  ApplyFixed(*user_command0, fixed.UserCommand0);
  UserCommand_.Add(0, user_command0);

  for (const FieldRow& row : form_.rows) BuildRow(row, host, glyph_pictures);
  NumberUndesignedTabIndices();

  const PopupMenuSpec& menu = fixed.mnu_Menu;
  mnu_Menu_ = toolkit_.CreateMenu(host, nullptr, std::string(menu.name));
  mnu_Menu_->SetCaption(std::string(menu.caption));
  std::shared_ptr<Menu>* items[] = {&mnu_NewRecord_, &mnu_DeleteRecord_, &mnu_CopyRecord_,
                                    &mnu_Undo_};
  for (size_t i = 0; i < menu.items.size(); ++i) {
    const MenuItemSpec& item = menu.items[i];
    *items[i] = toolkit_.CreateMenu(host, mnu_Menu_.get(), std::string(item.name));
    (*items[i])->SetCaption(std::string(item.caption));
    (*items[i])->SetEnabled(item.enabled);
  }
}

void SheetEngine::BuildSentinels(const FixedControl& start, const FixedControl& up,
                                 const FixedControl& down) {
  Pic_TableStart_ = toolkit_.CreatePictureBox(*host_, "Pic_TableStart");
  ApplyFixed(*Pic_TableStart_, start);
  Pic_TableUp_ = toolkit_.CreatePictureBox(*host_, "Pic_TableUp");
  ApplyFixed(*Pic_TableUp_, up);
  Pic_TableDown_ = toolkit_.CreatePictureBox(*host_, "Pic_TableDown");
  ApplyFixed(*Pic_TableDown_, down);
}

// Tab indices are unique within a form, as the focus ring relies on. The table designs them for
// the sentinels and the editors; every other control takes, in creation order, the lowest number
// still free, so the record buttons come to stand between the sentinels and the labels and drop
// buttons behind the editors.
void SheetEngine::NumberUndesignedTabIndices() {
  std::set<const Control*> designed;
  const FixedControls& fixed = form_.fixed;
  const std::pair<const Control*, const FixedControl*> fixed_controls[] = {
      {Pic_TableStart_.get(), &fixed.Pic_TableStart},
      {Pic_TableUp_.get(), &fixed.Pic_TableUp},
      {Pic_TableDown_.get(), &fixed.Pic_TableDown},
      {Cmd_NewRecord_.get(), &fixed.Cmd_NewRecord},
      {Cmd_CopyRecord_.get(), &fixed.Cmd_CopyRecord},
      {Cmd_DeleteRecord_.get(), &fixed.Cmd_DeleteRecord},
      {Cmd_Undo_.get(), &fixed.Cmd_Undo},
      {UserCommand_.Exists(0) ? &UserCommand_(0) : nullptr, &fixed.UserCommand0},
  };
  for (const auto& [control, spec] : fixed_controls) {
    if (control != nullptr && spec->tab_index != kNoIndex) designed.insert(control);
  }
  for (const std::shared_ptr<Frame>& frame : frames_) designed.insert(frame.get());
  for (const std::shared_ptr<SFText>& text : Txt_Value_.Elements()) designed.insert(&text->Host());
  for (const std::shared_ptr<SFCheck>& check : Chk_Value_.Elements()) {
    designed.insert(&check->Host());
  }
  std::set<int32_t> used;
  for (const Control* control : designed) used.insert(control->TabIndex());
  int32_t next = 0;
  for (const std::shared_ptr<Control>& control : host_->AllControls()) {
    if (designed.count(control.get()) != 0) continue;
    const ControlKind kind = control->Kind();
    if (kind == ControlKind::kMenu || kind == ControlKind::kShape || kind == ControlKind::kImage) {
      continue;  // no place in the tab order
    }
    while (used.count(next) != 0) ++next;
    control->SetTabIndex(next);
    used.insert(next);
  }
}

void SheetEngine::BuildRow(const FieldRow& row, Container& host,
                           const GlyphPictures& glyph_pictures) {
  const std::string tag(row.tag);
  if (row.has_title()) {
    std::shared_ptr<Label> label = toolkit_.CreateLabel(host, "Lbl_Title", row.title.index);
    MoveTo(*label, row.title.rect);
    label->SetAlignment(kAlignRight);
    label->SetCaption(std::string(row.title.caption));
    label->SetTag(tag);
    Lbl_Title_.Add(row.title.index, label);
  }
  if (row.editor.kind == EditorKind::kText) {
    std::shared_ptr<SFText> text = SFText::Create(toolkit_, host, "Txt_Value", row.editor.index);
    if (row.editor.style != 0) {
      // A designed Style other than one line comes from the form's stored properties, the only
      // way to a Style of 2.
      MemoryPropertyBag bag;
      text->WriteProperties(bag);
      bag.Set("Style", Variant(static_cast<int32_t>(row.editor.style)));
      text->ReadProperties(bag);
    }
    UserControl& editor = text->Host();
    MoveTo(editor, row.editor.rect);
    editor.SetTag(tag);
    editor.SetTabIndex(row.editor.tab_index);
    editor.SetVisible(row.editor.visible);
    Txt_Value_.Add(row.editor.index, text);
  } else if (row.editor.kind == EditorKind::kCheck) {
    std::shared_ptr<SFCheck> check = SFCheck::Create(toolkit_, host, "Chk_Value", row.editor.index);
    UserControl& editor = check->Host();
    MoveTo(editor, row.editor.rect);
    editor.SetTag(tag);
    editor.SetTabIndex(row.editor.tab_index);
    editor.SetVisible(row.editor.visible);
    Chk_Value_.Add(row.editor.index, check);
  }
  if (row.has_button()) {
    std::shared_ptr<CommandButton> button =
        toolkit_.CreateCommandButton(host, "Cmd_Value", row.button.index);
    MoveTo(*button, row.button.rect);
    button->SetTag(tag);
    button->SetTabStop(false);
    button->SetCaption("");
    if (glyph_pictures && row.button.glyph != Glyph::kNone) {
      button->SetPicture(glyph_pictures(row.button.glyph));
    }
    Cmd_Value_.Add(row.button.index, button);
  }
}

// ---------------------------------------------------------------------------------------------
// Observers

void SheetEngine::AddObserver(SheetEvents* observer) {
  if (observer == nullptr) return;
  if (std::find(observers_.begin(), observers_.end(), observer) == observers_.end()) {
    observers_.push_back(observer);
  }
}

void SheetEngine::RemoveObserver(SheetEvents* observer) {
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

void SheetEngine::Report(const char* title, const Failure& failure) {
  int32_t number = failure.Number();
  ShowError(toolkit_, title, number, failure.Description());
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void SheetEngine::UserControl_Initialize() {
  mnu_NewRecord_->SetCaption(LoadMessage(101));
  mnu_DeleteRecord_->SetCaption(LoadMessage(102));
  mnu_CopyRecord_->SetCaption(LoadMessage(103));
  mnu_Undo_->SetCaption(LoadMessage(104));
  Cmd_NewRecord_->SetCaption(LoadMessage(107));
  Cmd_DeleteRecord_->SetCaption(LoadMessage(108));
  Cmd_CopyRecord_->SetCaption(LoadMessage(109));
  Cmd_Undo_->SetCaption(LoadMessage(110));
  // The focus sentinels stay just outside the visible area.
  for (PictureBox* sentinel : {Pic_TableStart_.get(), Pic_TableUp_.get(), Pic_TableDown_.get()}) {
    sentinel->Move(-sentinel->Width(), -sentinel->Height());
  }
  TextEditState_ = 0;
  Layout_Capture(DesignWidth_, DesignHeight_, DesignLayout_);
}

void SheetEngine::UserControl_InitProperties() {
  if (kind_ == SheetKind::kCurrency) {
    Color_Title_Text_ = kDefaultTitleTextColor;
    Color_Background_ = kDefaultBackgroundColor;
    EditModify_ = true;
    return;
  }
  if (kind_ == SheetKind::kAppointment) {
    Color_Title_Text_ = kDefaultTitleTextColor;
    Color_Caption_ = kDefaultCaptionColor;
    Color_Active_ = kDefaultCaptionColor;
    Color_Background_ = kDefaultBackgroundColor;
    EditModify_ = true;
    Apply_Colors("");
    return;
  }
  Color_Caption_ = kDefaultCaptionColor;
  Color_Active_ = kDefaultCaptionColor;
  Color_Title_Text_ = kDefaultTitleTextColor;
  Color_Background_ = kDefaultBackgroundColor;
  EditModify_ = true;
  EditAddNew_ = true;
  EditCopy_ = true;
  EditDelete_ = true;
  Style_ = 0;
  Lbl_Caption_->SetVisible(true);
  Lbl_CaptionSpace_->SetVisible(true);
  Shp_Caption_->SetVisible(true);
  Cmd_NewRecord_->SetVisible(false);
  Cmd_DeleteRecord_->SetVisible(false);
  Cmd_CopyRecord_->SetVisible(false);
  Cmd_Undo_->SetVisible(false);
}

void SheetEngine::UserControl_ReadProperties(const PropertyBag& bag) {
  if (kind_ != SheetKind::kEntity) {
    ReducedReadProperties(bag);
    return;
  }
  // 1. The permissions, the style and the editors' border colour, without the setters.
  EditModify_ = bag.ReadBool("EditModify", true);
  EditAddNew_ = bag.ReadBool("EditAddNew", true);
  EditCopy_ = bag.ReadBool("EditCopy", true);
  EditDelete_ = bag.ReadBool("EditDelete", true);
  Style_ = bag.ReadLong("Style", 0);
  Color_Active_ = bag.ReadColor("Color_Active", kDefaultCaptionColor);
  // 2.
  for (const std::shared_ptr<SFText>& text : Txt_Value_.Elements()) {
    text->SetBorderColor(Color_Active_);
  }
  for (const std::shared_ptr<SFCheck>& check : Chk_Value_.Elements()) {
    check->SetBorderColor(Color_Active_);
  }
  // 3.
  ApplyStyleVisibility();
  // 4. Only a sheet that already has a data source sets its record commands here.
  if (SheetRecordset_ != nullptr) {
    mnu_NewRecord_->SetEnabled(EditAddNew_);
    Cmd_NewRecord_->SetEnabled(EditAddNew_);
    Cmd_DeleteRecord_->SetEnabled(EditDelete_);
    mnu_DeleteRecord_->SetEnabled(EditDelete_);
    mnu_CopyRecord_->SetEnabled(EditCopy_);
    Cmd_CopyRecord_->SetEnabled(EditCopy_);
    if (EditModify_) {
      mnu_Undo_->SetEnabled(false);
      Cmd_Undo_->SetEnabled(false);
    }
  }
  // 5.
  ApplyStyleVisibility();
  // 6. The first title's font from the bag, then every control but the caption.
  const Font ambient = host_->AmbientFont();
  const std::string font_name = bag.ReadString("FontName", ambient.name);
  const double font_size = bag.ReadDouble("FontSize", ambient.size);
  Label& first_title = Lbl_Title_(0);
  Font title_font = first_title.GetFont();
  title_font.name = font_name;
  first_title.SetFont(title_font);
  title_font = first_title.GetFont();
  title_font.size = font_size;
  first_title.SetFont(title_font);
  SetFontOnAllControls([&font_name, font_size](Font& font) {
    font.name = font_name;
    font.size = font_size;
  });
  // 7.
  Layout_Caption(true);
  // 8. The field only: no events are connected and no permission is pushed. A bag of values
  // holds no object, so the field is emptied.
  (void)bag.ReadProperty("SheetRecordset", Variant());
  SheetRecordset_ = nullptr;
  // 9.
  Color_Title_Text_ = bag.ReadColor("Color_Title_Text", kDefaultTitleTextColor);
  Color_Caption_ = bag.ReadColor("Color_Caption", kDefaultCaptionColor);
  Color_Background_ = bag.ReadColor("Color_Background", kDefaultBackgroundColor);
  // 10.
  Apply_Colors("");
  // 11.
  RaiseSheetStatusChange();
}

void SheetEngine::ReducedReadProperties(const PropertyBag& bag) {
  const Font ambient = host_->AmbientFont();
  if (kind_ == SheetKind::kCurrency) {
    // The fonts first, errors ignored; then the fields.
    const std::string font_name = bag.ReadString("FontName", ambient.name);
    const double font_size = bag.ReadDouble("FontSize", ambient.size);
    SetFontOnAllControls([&font_name, font_size](Font& font) {
      font.name = font_name;
      font.size = font_size;
    });
    (void)bag.ReadProperty("SheetRecordset", Variant());
    SheetRecordset_ = nullptr;
    Color_Title_Text_ = bag.ReadColor("Color_Title_Text", kDefaultTitleTextColor);
    Color_Background_ = bag.ReadColor("Color_Background", kDefaultBackgroundColor);
    EditModify_ = bag.ReadBool("EditModify", true);
    Apply_Colors("");
    return;
  }
  // Appointment: the model's order without style, flags, buttons and caption strip.
  EditModify_ = bag.ReadBool("EditModify", true);
  Color_Active_ = bag.ReadColor("Color_Active", kDefaultCaptionColor);
  for (const std::shared_ptr<SFText>& text : Txt_Value_.Elements()) {
    text->SetBorderColor(Color_Active_);
  }
  for (const std::shared_ptr<SFCheck>& check : Chk_Value_.Elements()) {
    check->SetBorderColor(Color_Active_);
  }
  const std::string font_name = bag.ReadString("FontName", ambient.name);
  const double font_size = bag.ReadDouble("FontSize", ambient.size);
  Label& first_title = Lbl_Title_(0);
  Font title_font = first_title.GetFont();
  title_font.name = font_name;
  title_font.size = font_size;
  first_title.SetFont(title_font);
  SetFontOnAllControls([&font_name, font_size](Font& font) {
    font.name = font_name;
    font.size = font_size;
  });
  (void)bag.ReadProperty("SheetRecordset", Variant());
  SheetRecordset_ = nullptr;
  Color_Title_Text_ = bag.ReadColor("Color_Title_Text", kDefaultTitleTextColor);
  Color_Caption_ = bag.ReadColor("Color_Caption", kDefaultCaptionColor);
  Color_Background_ = bag.ReadColor("Color_Background", kDefaultBackgroundColor);
  Apply_Colors("");
}

void SheetEngine::ReducedWriteProperties(PropertyBag& bag) const {
  const Font title_font = Lbl_Title_(0).GetFont();
  bag.WriteProperty("SheetRecordset", Variant(), Variant());
  bag.WriteColor("Color_Title_Text", Color_Title_Text_, kDefaultTitleTextColor);
  if (kind_ == SheetKind::kAppointment) {
    bag.WriteColor("Color_Caption", Color_Caption_, kDefaultCaptionColor);
    bag.WriteColor("Color_Active", Color_Active_, kDefaultCaptionColor);
  }
  bag.WriteColor("Color_Background", Color_Background_, kDefaultBackgroundColor);
  bag.WriteProperty("FontName", Variant(title_font.name), Variant(kDefaultFontName));
  bag.WriteProperty("FontSize", Variant(title_font.size), Variant(kDefaultFontSize));
  bag.WriteProperty("EditModify", Variant(EditModify_), Variant(true));
}

void SheetEngine::UserControl_WriteProperties(PropertyBag& bag) const {
  if (kind_ != SheetKind::kEntity) {
    ReducedWriteProperties(bag);
    return;
  }
  // The data source is an object that a bag of values cannot hold: written as nothing.
  bag.WriteProperty("SheetRecordset", Variant(), Variant());
  // Written, never read: a reloaded sheet keeps its designed caption and caption font.
  bag.WriteProperty("Caption", Variant(Lbl_Caption_->Caption()),
                    Variant(std::string(form_.options.CaptionDefault)));
  bag.WriteColor("Color_Title_Text", Color_Title_Text_, kDefaultTitleTextColor);
  bag.WriteColor("Color_Caption", Color_Caption_, kDefaultCaptionColor);
  bag.WriteColor("Color_Active", Color_Active_, kDefaultCaptionColor);
  bag.WriteColor("Color_Background", Color_Background_, kDefaultBackgroundColor);
  bag.WriteFontProperty("CaptionFont", Lbl_Caption_->GetFont(), host_->AmbientFont());
  const Font title_font = Lbl_Title_(0).GetFont();
  bag.WriteProperty("FontName", Variant(title_font.name), Variant(kDefaultFontName));
  bag.WriteProperty("FontSize", Variant(title_font.size), Variant(kDefaultFontSize));
  bag.WriteProperty("EditModify", Variant(EditModify_), Variant(true));
  bag.WriteProperty("EditDelete", Variant(EditDelete_), Variant(true));
  bag.WriteProperty("EditAddNew", Variant(EditAddNew_), Variant(true));
  bag.WriteProperty("EditCopy", Variant(EditCopy_), Variant(true));
  bag.WriteProperty("Style", Variant(Style_), Variant(int32_t{0}));
  // UserCommandsWidth is reported as changed but never stored.
}

// ---------------------------------------------------------------------------------------------
// Property surface

int32_t SheetEngine::UserCommandsWidth() const {
  return static_cast<int32_t>(std::trunc(UserCommand_(0).Width()));
}

void SheetEngine::SetUserCommandsWidth(int32_t width) {
  UserCommand_(0).SetWidth(width);
  Notify("UserCommandsWidth");
  // Element 0 is the template; the others take its width. Nothing is placed here.
  const int32_t count = UserCommand_.Count();
  for (int32_t i = 1; i <= count - 1; ++i) UserCommand_(i).SetWidth(UserCommand_(0).Width());
}

ClsSheetsUserCommands& SheetEngine::SheetUserCommands() {
  if (!SheetUserCommands_) SheetUserCommands_ = std::make_unique<ClsSheetsUserCommands>(toolkit_);
  return *SheetUserCommands_;
}

ClsSheetsTitles& SheetEngine::SheetTitles() {
  if (!SheetTitles_) SheetTitles_ = std::make_unique<ClsSheetsTitles>(toolkit_);
  return *SheetTitles_;
}

void SheetEngine::ApplyStyleVisibility() {
  if (Style_ != 0 && Style_ != 1) return;
  Lbl_Caption_->SetVisible(true);
  Lbl_CaptionSpace_->SetVisible(true);
  Shp_Caption_->SetVisible(true);
  const bool buttons = Style_ == 1;
  Cmd_NewRecord_->SetVisible(buttons);
  Cmd_DeleteRecord_->SetVisible(buttons);
  Cmd_CopyRecord_->SetVisible(buttons);
  Cmd_Undo_->SetVisible(buttons);
}

void SheetEngine::SetStyle(int32_t style) {
  Style_ = style;
  ApplyStyleVisibility();
  Notify("Style");
}

void SheetEngine::UndoRule() {
  if (!EditAddNew_ && !EditDelete_ && !EditCopy_ && !EditModify_) {
    mnu_Undo_->SetEnabled(false);
    Cmd_Undo_->SetEnabled(false);
  }
}

// A permission's setter: stores, tells the container, opens or closes its pair at once whatever
// the status, then the Undo rule and the status change.
void SheetEngine::SetPermission(bool& field, bool v, const char* key, Menu& menu,
                                CommandButton& button) {
  field = v;
  Notify(key);
  menu.SetEnabled(v);
  button.SetEnabled(v);
  UndoRule();
  RaiseSheetStatusChange();
}

void SheetEngine::SetEditAddNew(bool v) {
  SetPermission(EditAddNew_, v, "EditAddNew", *mnu_NewRecord_, *Cmd_NewRecord_);
}

void SheetEngine::SetEditCopy(bool v) {
  SetPermission(EditCopy_, v, "EditCopy", *mnu_CopyRecord_, *Cmd_CopyRecord_);
}

void SheetEngine::SetEditDelete(bool v) {
  SetPermission(EditDelete_, v, "EditDelete", *mnu_DeleteRecord_, *Cmd_DeleteRecord_);
}

void SheetEngine::SetEditModify(bool v) {
  EditModify_ = v;
  Notify("EditModify");
  if (kind_ != SheetKind::kEntity) return;  // no buttons, no menu
  // Setting it False disables nothing by itself; only the Undo rule may.
  if (v) {
    mnu_Undo_->SetEnabled(true);
    Cmd_Undo_->SetEnabled(true);
  }
  UndoRule();
  RaiseSheetStatusChange();
}

void SheetEngine::SetFontOnAllControls(const std::function<void(Font&)>& change) {
  for (const std::shared_ptr<Control>& control : host_->AllControls()) {
    if (control->Name() == "Lbl_Caption") continue;
    try {
      // The text editors carry their font on their boxes; the check editors have none.
      SFText* text = nullptr;
      bool check = false;
      for (const std::shared_ptr<SFText>& t : Txt_Value_.Elements()) {
        if (t->HostPtr() == control) text = t.get();
      }
      for (const std::shared_ptr<SFCheck>& c : Chk_Value_.Elements()) {
        if (c->HostPtr() == control) check = true;
      }
      if (check) throw PlatformFailure(kErrNotSupported);
      if (text != nullptr) {
        Font font = text->GetFont();
        change(font);
        text->SetFont(font);
      } else {
        Font font = control->GetFont();
        change(font);
        control->SetFont(font);
      }
    } catch (const Failure&) {
      // Controls without a font are passed over.
    }
  }
}

std::string SheetEngine::FontName() const { return Lbl_Title_(0).GetFont().name; }

void SheetEngine::SetFontName(const std::string& name) {
  SetFontOnAllControls([&name](Font& font) { font.name = name; });
  Notify("FontName");
}

float SheetEngine::FontSize() const {
  // Through a fixed-point value of four decimals.
  const double fixed = std::nearbyint(Lbl_Title_(0).GetFont().size * 10000.0) / 10000.0;
  return static_cast<float>(fixed);
}

void SheetEngine::SetFontSize(float size) {
  SetFontOnAllControls([size](Font& font) { font.size = size; });
  Notify("FontSize");
}

Font SheetEngine::CaptionFont() const { return Lbl_Caption_->GetFont(); }

void SheetEngine::SetCaptionFont(const Font& font) {
  Lbl_Caption_->SetFont(font);
  Notify("CaptionFont");
}

std::string SheetEngine::Caption() const { return Lbl_Caption_->Caption(); }

void SheetEngine::SetCaption(const std::string& caption) {
  Lbl_Caption_->SetCaption(caption);
  Notify("Caption");
  host_->Drawing().SetDrawingFont(Lbl_Caption_->GetFont());
  Layout_Caption(true);
}

void SheetEngine::SetSheetRecordset(DataSource* data_source) {
  SheetRecordset_ = data_source;
  if (DataSource_ != nullptr && DataSource_ != data_source) DataSource_->RemoveListener(this);
  DataSource_ = data_source;
  if (data_source != nullptr) data_source->AddListener(this);
  if (data_source != nullptr && kind_ == SheetKind::kEntity) {
    // The only place where the permissions reach the data source.
    data_source->SetAllowAddNew(EditAddNew_);
    data_source->SetAllowCopy(EditCopy_);
    data_source->SetAllowDelete(EditDelete_);
    data_source->SetAllowModify(EditModify_);
  }
  Notify("SheetRecordset");
}

void SheetEngine::SetColor_Caption(Color color) {
  Color_Caption_ = color;
  Notify("Color_Caption");
  Apply_Colors("Color_Caption");
}

void SheetEngine::SetColor_Active(Color color) {
  Color_Active_ = color;
  for (const std::shared_ptr<SFText>& text : Txt_Value_.Elements()) text->SetBorderColor(color);
  for (const std::shared_ptr<SFCheck>& check : Chk_Value_.Elements()) {
    check->SetBorderColor(color);
  }
  // The notification key is "Color_Caption" here, not "Color_Active"; containers rely on it.
  Notify("Color_Caption");
}

void SheetEngine::SetColor_Title_Text(Color color) {
  Color_Title_Text_ = color;
  Notify("Color_Title_Text");
  Apply_Colors("Color_Title_Text");
}

void SheetEngine::SetColor_Background(Color color) {
  Color_Background_ = color;
  Notify("Color_Background");
  Apply_Colors("Color_Background");
}

void SheetEngine::Apply_Colors(const std::string& property_name) {
  if (kind_ != SheetKind::kEntity) {
    // No caption strip: Color_Caption has no arm. Appointment colours its frames with the sheet.
    if (property_name == "Color_Title_Text") {
      for (const std::shared_ptr<Label>& label : Lbl_Title_.Elements()) {
        label->SetForeColor(Color_Title_Text_);
      }
    } else if (property_name == "Color_Background") {
      host_->SetBackColor(Color_Background_);
      for (const std::shared_ptr<Frame>& frame : frames_) frame->SetBackColor(Color_Background_);
    } else if (property_name.empty()) {
      Apply_Colors("Color_Title_Text");
      if (kind_ == SheetKind::kAppointment) Apply_Colors("Color_Caption");
      Apply_Colors("Color_Background");
    }
    return;
  }
  if (property_name == "Color_Title_Text") {
    for (const std::shared_ptr<Label>& label : Lbl_Title_.Elements()) {
      label->SetForeColor(Color_Title_Text_);
    }
  } else if (property_name == "Color_Background") {
    host_->SetBackColor(Color_Background_);
  } else if (property_name == "Color_Caption") {
    if (HasFocus_) {
      Shp_Caption_->SetBorderColor(Color_Caption_);
    } else {
      // The fill, not the border: the border keeps its colour until the focus leaves.
      Shp_Caption_->SetBackColor(kSysActiveBorder);
    }
    Lbl_Caption_->SetBackColor(HasFocus_ ? Color_Caption_ : kSysActiveBorder);
    Lbl_CaptionSpace_->SetBackColor(Lbl_Caption_->BackColor());
  } else if (property_name.empty()) {
    Apply_Colors("Color_Title_Text");
    Apply_Colors("Color_Caption");
    Apply_Colors("Color_Background");
  }
}

}  // namespace tarnsheets
