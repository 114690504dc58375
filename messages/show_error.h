// The steps of the error dialog apart from the dialog itself, so that they can be driven on
// their own.
#ifndef TARNSHEETS_MESSAGES_SHOW_ERROR_H_
#define TARNSHEETS_MESSAGES_SHOW_ERROR_H_

#include <cstdint>
#include <functional>
#include <string>

namespace tarnsheets {

// Shows a report: puts `title` and `text` on the dialog and returns when the user has closed it.
using ErrorReportPresenter = std::function<void(const std::string& title, const std::string& text)>;

// ShowError's steps: reduces `number` in place (an overflow fails from here, before anything is
// shown), returns when the number is 0 and the description empty, else hands the title and
// ErrorReportText(number, description) to `present`.
void ShowErrorThrough(const ErrorReportPresenter& present, const std::string& title,
                      int32_t& number, const std::string& description);

}  // namespace tarnsheets

#endif  // TARNSHEETS_MESSAGES_SHOW_ERROR_H_
