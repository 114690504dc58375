// FrmShowErr: the error dialog. A fixed-size modal form with the report's title in one locked
// box, its text in a second, multi-line one, and an OK button.
#ifndef TARNSHEETS_MESSAGES_FRM_SHOW_ERR_H_
#define TARNSHEETS_MESSAGES_FRM_SHOW_ERR_H_

#include <memory>
#include <string>

#include "tarnsheets/toolkit.h"

namespace tarnsheets {

class FrmShowErr {
 public:
  // The designed geometry, in twips.
  static constexpr Twips kClientWidth = 6675;
  static constexpr Twips kClientHeight = 2940;
  static constexpr int16_t kFixedDialog = 3;
  static constexpr int16_t kCenterScreen = 2;

  // The form's icon: a white cross on a red disc, 32 by 32 pixels.
  static const Picture& ErrorIcon();

  // The shared instance, created (and loaded) on first use. It lives until the form is unloaded;
  // a caller that needs it across a modal loop holds the returned pointer.
  static std::shared_ptr<FrmShowErr> Instance(Toolkit& toolkit);
  // The shared instance when one exists, else nullptr; nothing is created.
  static std::shared_ptr<FrmShowErr> Existing();

  FrmShowErr(const FrmShowErr&) = delete;
  FrmShowErr& operator=(const FrmShowErr&) = delete;
  ~FrmShowErr();

  Form& form() { return *form_; }
  TextBox& Txt_Title() { return *txt_title_; }
  TextBox& Txt_ErrDescription() { return *txt_err_description_; }
  CommandButton& CmdOk() { return *cmd_ok_; }

  // Shows the form modally; returns when it has been closed.
  void ShowModal();

 private:
  explicit FrmShowErr(Toolkit& toolkit);

  // Event procedures.
  void Form_Load();
  void CmdOk_Click();
  void Form_Unload();

  Toolkit& toolkit_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> txt_title_;
  std::shared_ptr<TextBox> txt_err_description_;
  std::shared_ptr<CommandButton> cmd_ok_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_MESSAGES_FRM_SHOW_ERR_H_
