// The numbered message table in two languages, and the two ways a trapped failure reaches the
// user: the error dialog (ShowError, sheet code) and the critical message box (ShowErrorBox,
// collection classes).
//
// The language is chosen once per process from the user's locale: the first non-empty of the
// environment variables LC_ALL, LC_MESSAGES and LANG; a value starting with "zh" gives 2052
// (Simplified Chinese), anything else, or none at all, gives 1033 (English). Texts are UTF-8.
#ifndef TARNSHEETS_MESSAGES_H_
#define TARNSHEETS_MESSAGES_H_

#include <cstdint>
#include <string>
#include <vector>

namespace tarnsheets {

class Dialogs;
class Toolkit;

inline constexpr int32_t kLanguageEnglish = 1033;
inline constexpr int32_t kLanguageChinese = 2052;

// The language of the message table for this process: 1033 or 2052. Decided on the first call
// (or by SetMessageLanguageForTest) and kept from then on.
int32_t MessageLanguage();

// The language that a locale text selects: 2052 for a text starting with "zh", else 1033.
int32_t MessageLanguageForLocale(const std::string& locale);

// Overrides the process's language (1033 or 2052); 0 drops the override and the cached choice,
// so that the next MessageLanguage() reads the environment again. Tests only.
void SetMessageLanguageForTest(int32_t language);

// The text of message `number` in the process's language. A number that is not in the table
// gives the empty text; this never fails.
std::string LoadMessage(int32_t number);

// The text of message `number` in `language` (1033 or 2052). An unknown number or language gives
// the empty text.
std::string LoadMessage(int32_t number, int32_t language);

// The numbers of the table in `language`, ascending; empty for an unknown language.
std::vector<int32_t> MessageNumbers(int32_t language);

// The text of an error report: message 1, `number` in decimal, CR LF, `description`.
std::string ErrorReportText(int32_t number, const std::string& description);

// Shows a critical message box titled `title` whose text is ErrorReportText(number, description).
// The number is shown as given: the object-error base is not taken off.
void ShowErrorBox(Dialogs& dialogs, const std::string& title, int32_t number,
                  const std::string& description);

// Reduces a reported number as the error dialog shows it, in place: 0x7FFC0000 is added (taking
// off the object-error base 0x80040000); a sum outside 1..65534 is taken back, so `number` holds
// its raw value again. Fails with Failure(6, "Overflow") when the sum overflows (a positive
// number of 0x40000 or more); `number` is then unchanged.
void ReduceErrorNumber(int32_t& number);

// The error dialog. Reduces `number` in place (see ReduceErrorNumber; an overflow fails from
// here), then, unless the number is 0 and the description empty, shows the shared FrmShowErr
// modally with `title` in its first box and ErrorReportText(number, description) in the second,
// and returns when the user has closed it.
void ShowError(Toolkit& toolkit, const std::string& title, int32_t& number,
               const std::string& description);

}  // namespace tarnsheets

#endif  // TARNSHEETS_MESSAGES_H_
