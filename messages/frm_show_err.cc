#include "messages/frm_show_err.h"

#include <cstdlib>

#include "tarnsheets/messages.h"

namespace tarnsheets {
namespace {

// The one shared instance; empty when no report is open.
std::shared_ptr<FrmShowErr>& SharedInstance() {
  static std::shared_ptr<FrmShowErr> instance;
  return instance;
}

Font DialogFont() {
  Font font;
  font.name = "MS Sans Serif";
  font.size = 9.75;
  font.bold = false;
  return font;
}

Picture MakeErrorIcon() {
  constexpr int kSize = 32;
  constexpr Color kRed = Rgb(0xE0, 0x20, 0x20);
  constexpr Color kWhite = Rgb(0xFF, 0xFF, 0xFF);
  constexpr Color kClear = Rgb(0xC0, 0xC0, 0xC0);  // the button face the icon stands on
  Picture icon{"ErrorIcon", kSize, kSize, std::vector<Color>(kSize * kSize, kClear)};
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      // Pixel centres measured from the icon's centre, in half pixels.
      const int dx = 2 * x + 1 - kSize, dy = 2 * y + 1 - kSize;
      if (dx * dx + dy * dy > 30 * 30) continue;
      // The cross: the two diagonals, three pixels wide, inside a margin of the disc.
      const bool on_cross = (std::abs(dx - dy) <= 3 || std::abs(dx + dy) <= 3) &&
                            std::abs(dx) <= 16 && std::abs(dy) <= 16;
      icon.pixels[static_cast<size_t>(y * kSize + x)] = on_cross ? kWhite : kRed;
    }
  }
  return icon;
}

}  // namespace

const Picture& FrmShowErr::ErrorIcon() {
  static const Picture icon = MakeErrorIcon();
  return icon;
}

std::shared_ptr<FrmShowErr> FrmShowErr::Instance(Toolkit& toolkit) {
  std::shared_ptr<FrmShowErr>& instance = SharedInstance();
  if (!instance) {
    instance.reset(new FrmShowErr(toolkit));
    // Using the form loads it.
    instance->Form_Load();
  }
  return instance;
}

std::shared_ptr<FrmShowErr> FrmShowErr::Existing() { return SharedInstance(); }

FrmShowErr::FrmShowErr(Toolkit& toolkit) : toolkit_(toolkit) {
  form_ = toolkit_.CreateForm("FrmShowErr");
  form_->SetClientSize(kClientWidth, kClientHeight);
  // Fixed size, no minimise or maximise button, centred on the screen, with its error icon.
  form_->SetBorderStyle(kFixedDialog);
  form_->SetStartUpPosition(kCenterScreen);
  form_->SetIcon(ErrorIcon());

  txt_title_ = toolkit_.CreateTextBox(*form_, "Txt_Title", -1, /*multi_line=*/false);
  txt_title_->Move(150, 75, 6315, 315);
  txt_title_->SetLocked(true);
  txt_title_->SetTabStop(false);
  txt_title_->SetBackColor(kSysButtonFace);
  txt_title_->SetFont(DialogFont());

  txt_err_description_ =
      toolkit_.CreateTextBox(*form_, "Txt_ErrDescription", -1, /*multi_line=*/true);
  txt_err_description_->Move(150, 525, 6315, 1815);
  txt_err_description_->SetLocked(true);
  txt_err_description_->SetBackColor(kSysButtonFace);
  txt_err_description_->SetFont(DialogFont());

  cmd_ok_ = toolkit_.CreateCommandButton(*form_, "CmdOk");
  cmd_ok_->Move(5250, 2475, 1215, 315);
  cmd_ok_->SetDefault(true);
  cmd_ok_->SetFont(DialogFont());

  // The button comes first in the tab order, then the description, then the title.
  cmd_ok_->SetTabIndex(0);
  txt_err_description_->SetTabIndex(1);
  txt_title_->SetTabIndex(2);

  // The callbacks hold no reference to this object: the form can outlive it while the toolkit
  // finishes a close.
  cmd_ok_->Events().Click = [] {
    if (auto self = SharedInstance()) self->CmdOk_Click();
  };
  form_->Events().Unload = [form = form_.get()] {
    std::shared_ptr<FrmShowErr> self = SharedInstance();
    if (self && &self->form() == form) self->Form_Unload();
  };
}

FrmShowErr::~FrmShowErr() {
  // The callbacks must not outlive the object they were written for.
  cmd_ok_->Events().Click = nullptr;
  form_->Events().Unload = nullptr;
}

void FrmShowErr::ShowModal() { toolkit_.ShowModal(*form_); }

void FrmShowErr::Form_Load() {
  // The title bar reads message 600, the button's text, rather than the "Error" of 601: the
  // dialog has always looked so.
  cmd_ok_->SetCaption(LoadMessage(600));
  form_->SetCaption(LoadMessage(600));
}

void FrmShowErr::CmdOk_Click() { toolkit_.Unload(*form_); }

void FrmShowErr::Form_Unload() {
  // The next report starts with a fresh form.
  SharedInstance().reset();
}

}  // namespace tarnsheets
