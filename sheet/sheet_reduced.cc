// The two reduced controls on the engine: `Appointment`, an entity form in three frames without
// caption strip, record buttons, menu, host commands or layout; and `Currency`, a list of rows
// that it builds from its titles at run time.
#include <cmath>

#include "sheet/require.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/messages.h"

namespace tarnsheets {

// ---------------------------------------------------------------------------------------------
// Appointment

void SheetEngine::BuildAppointment(const GlyphPictures& glyph_pictures) {
  const AppointmentFormTable& form = *appointment_form_;
  UserControl& host = *host_;
  host.Move(host.Left(), host.Top(), form.width, form.height);
  host.SetBackColor(form.back_color);
  host.SetFont(form.font.ToFont());
  for (const FrameSpec& spec : form.frames) {
    std::shared_ptr<Frame> frame = toolkit_.CreateFrame(host, std::string(spec.name));
    MoveTo(*frame, spec.rect);
    frame->SetCaption(std::string(spec.caption));
    frame->SetTabIndex(spec.tab_index);
    frames_.push_back(frame);
  }
  BuildSentinels(form.Pic_TableStart, form.Pic_TableUp, form.Pic_TableDown);
  // Below the form's lower edge; no logic reads them.
  for (const ImageSpec& spec : form.images) {
    std::shared_ptr<Image> image = toolkit_.CreateImage(host, std::string(spec.name), spec.index);
    if (glyph_pictures && spec.picture != Glyph::kNone) {
      const Picture picture = glyph_pictures(spec.picture);
      image->SetPicture(picture);
      image->Move(spec.Left, spec.Top, picture.width * toolkit_.TwipsPerPixelX(),
                  picture.height * toolkit_.TwipsPerPixelY());
    } else {
      image->Move(spec.Left, spec.Top);
    }
    Image1_.Add(spec.index, image);
  }
  for (const FieldRow& row : form.rows) {
    Container& parent = row.frame >= 1 && row.frame <= static_cast<int>(frames_.size())
                            ? static_cast<Container&>(*frames_[row.frame - 1])
                            : static_cast<Container&>(host);
    BuildRow(row, parent, glyph_pictures);
  }
  NumberUndesignedTabIndices();
}

void SheetEngine::Appointment_Initialize() {
  for (PictureBox* sentinel : {Pic_TableStart_.get(), Pic_TableUp_.get(), Pic_TableDown_.get()}) {
    sentinel->Move(-sentinel->Width(), -sentinel->Height());
  }
  for (size_t i = 0; i < frames_.size(); ++i) {
    frames_[i]->SetCaption(LoadMessage(700 + static_cast<int32_t>(i)));
  }
}

// Editable when the source is writable, the column and the row may change, and the host permits
// modifying; new records and copies have no rule of their own here.
bool SheetEngine::AppointmentFieldEditable(DataSourceField& field) {
  DataSource& data_source = Require(SheetRecordset_);
  const bool read_only = data_source.ReadOnly();
  const bool updatable = field.Updatable();
  const bool row_editable = data_source.RowEditable(data_source.AbsolutePosition());
  return !read_only && updatable && row_editable && EditModify_;
}

void SheetEngine::Appointment_RecordCommand(const std::string& command) {
  DataSource& data_source = Require(SheetRecordset_);
  if (command == "Cancel Record") {
    data_source.UndoRecord();
    return;
  }
  if (Save_FieldValue(-1)) return;
  if (command == "Add New Record") {
    data_source.NewRecord(0);
  } else if (command == "Delete Record") {
    data_source.DeleteRecord();
  } else if (command == "Copy Record") {
    data_source.CopyRecord();
  }
}

// ---------------------------------------------------------------------------------------------
// Currency

void SheetEngine::BuildCurrency(const GlyphPictures& glyph_pictures) {
  const CurrencyFormTable& form = *currency_form_;
  UserControl& host = *host_;
  host.Move(host.Left(), host.Top(), form.width, form.height);
  host.SetFont(form.font.ToFont());
  // Three hidden patterns; element 0 of each array stays hidden for good.
  std::shared_ptr<CommandButton> button = toolkit_.CreateCommandButton(host, "Cmd_Value", 0);
  MoveTo(*button, form.cmd_value.rect);
  button->SetCaption("");
  if (glyph_pictures && form.cmd_value.glyph != Glyph::kNone) {
    button->SetPicture(glyph_pictures(form.cmd_value.glyph));
  }
  button->SetTabStop(false);
  button->SetTabIndex(form.cmd_value_tab_index);
  button->SetVisible(false);
  Cmd_Value_.Add(0, button);

  std::shared_ptr<SFText> text = SFText::Create(toolkit_, host, "Txt_Value", 0);
  MemoryPropertyBag bag;
  text->WriteProperties(bag);
  bag.Set("Style", Variant(static_cast<int32_t>(form.txt_value_style)));
  text->ReadProperties(bag);
  text->SetText(std::string(form.txt_value_text));
  MoveTo(text->Host(), form.txt_value_rect);
  text->Host().SetTabIndex(form.txt_value_tab_index);
  text->Host().SetVisible(false);
  Txt_Value_.Add(0, text);

  std::shared_ptr<Label> label = toolkit_.CreateLabel(host, "Lbl_Title", 0);
  MoveTo(*label, form.lbl_title_rect);
  label->SetCaption(std::string(form.lbl_title_caption));
  label->SetAlignment(static_cast<int16_t>(form.lbl_title_alignment));
  label->SetTabIndex(form.lbl_title_tab_index);
  label->SetVisible(false);
  Lbl_Title_.Add(0, label);
}

// Editable by the data source's own permissions: status 0 and 2 by AllowModify, 4 and 5 by
// AllowAddNew (a copy too), and always the column, the sheet's EditModify, the source's ReadOnly
// and the row.
bool SheetEngine::CurrencyFieldEditable(DataSourceField& field) {
  DataSource& data_source = Require(SheetRecordset_);
  const int32_t status = data_source.EditStatus();
  const bool permitted = ((status == dsBrowse || status == 2) && data_source.AllowModify()) ||
                         (status == dsNewRecord && data_source.AllowAddNew()) ||
                         (status == dsCopyRecord && data_source.AllowAddNew());
  return permitted && field.Updatable() && EditModify_ && !data_source.ReadOnly() &&
         data_source.RowEditable(data_source.AbsolutePosition());
}

bool SheetEngine::Currency_InitDisplay() {
  try {
    // 1. The rows of an earlier call go, from the highest element down to 1.
    for (int32_t i = Lbl_Title_.UBound(); i >= 1; --i) {
      if (Lbl_Title_.Exists(i)) toolkit_.Unload(*Lbl_Title_.Unload(i));
    }
    for (int32_t i = Txt_Value_.UBound(); i >= 1; --i) {
      if (Txt_Value_.Exists(i)) toolkit_.Unload(Txt_Value_.Unload(i)->Host());
    }
    for (int32_t i = Cmd_Value_.UBound(); i >= 1; --i) {
      if (Cmd_Value_.Exists(i)) toolkit_.Unload(*Cmd_Value_.Unload(i));
    }
    // 2.
    (void)SysSetDefaultTitles();
    // 3.
    if (SheetRecordset_ == nullptr) return false;
    // 4. One row a title: title, editor and, when the title asks for it, a drop button taken
    // from the editor's right end.
    const Twips px = toolkit_.TwipsPerPixelX();
    const Twips py = toolkit_.TwipsPerPixelY();
    const int32_t count = SheetTitles().Count();
    for (int32_t i = 1; i <= count; ++i) {
      const ClsSheetsTitle& title = Require(SheetTitles().Item(Variant(i)));
      Label& label = Lbl_Title_.Load(i, [this](const Label& element0, int32_t index) {
        return LoadControlAs<Label>(toolkit_, element0, index);
      });
      label.SetTag(title.Name);
      const Twips top =
          i == 1 ? 15 * py : Lbl_Title_(i - 1).Top() + Lbl_Title_(i - 1).Height() + 3 * py;
      label.Move(15 * px, top);
      label.SetVisible(true);
      SFText& editor = Txt_Value_.Load(i, [this](const SFText& element0, int32_t index) {
        return SFText::LoadElement(toolkit_, element0, index);
      });
      UserControl& box = editor.Host();
      box.SetTag(title.Name);
      // The gap is taken from the vertical unit.
      box.Move(label.Left() + label.Width() + 5 * py, label.Top());
      box.SetVisible(true);
      WireTextEditor(i);
      if (title.DisplayCommand) {
        CommandButton& button =
            Cmd_Value_.Load(i, [this](const CommandButton& element0, int32_t index) {
              return LoadControlAs<CommandButton>(toolkit_, element0, index);
            });
        button.SetTag(title.Name);
        button.Move(box.Left() + box.Width() - button.Width(), box.Top());
        box.SetWidth(box.Width() - button.Width());
        button.SetVisible(true);
        WireDropButton(i);
      }
    }
    // 5.
    Display_field();
    Display_Value();
    // 6. The control takes the size of its rows; a last row without a button fails here.
    if (Lbl_Title_.Count() > 1) {
      const int32_t n = Txt_Value_.UBound();
      const UserControl& last = Txt_Value_(n).Host();
      host_->SetWidth(last.Left() + last.Width() + Cmd_Value_(n).Width() + 15 * px);
      const Label& lowest = Lbl_Title_(Lbl_Title_.UBound());
      host_->SetHeight(lowest.Top() + lowest.Height() + 15 * py);
    }
    return false;
  } catch (const Failure& failure) {
    Report("InitDispaly", failure);
    return true;
  }
}

}  // namespace tarnsheets
