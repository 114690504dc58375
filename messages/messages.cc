#include "tarnsheets/messages.h"

#include <cstdlib>
#include <limits>

#include "messages/frm_show_err.h"
#include "messages/message_table.h"
#include "messages/show_error.h"
#include "tarnsheets/dialogs.h"
#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

// The language of this process; 0 until decided. One thread runs the library, so a plain
// variable will do.
int32_t g_language = 0;

int32_t LanguageFromEnvironment() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && value[0] != '\0') return MessageLanguageForLocale(value);
  }
  return kLanguageEnglish;
}

// What the error dialog adds to a reported number: this takes the object-error base off.
constexpr int32_t kErrorNumberOffset = 0x7FFC0000;

}  // namespace

int32_t MessageLanguageForLocale(const std::string& locale) {
  return locale.rfind("zh", 0) == 0 ? kLanguageChinese : kLanguageEnglish;
}

int32_t MessageLanguage() {
  if (g_language == 0) g_language = LanguageFromEnvironment();
  return g_language;
}

void SetMessageLanguageForTest(int32_t language) { g_language = language; }

std::string LoadMessage(int32_t number) { return LoadMessage(number, MessageLanguage()); }

std::string LoadMessage(int32_t number, int32_t language) {
  for (const MessageEntry& entry : MessageTable(language)) {
    if (entry.number == number) return std::string(entry.text);
  }
  return "";
}

std::vector<int32_t> MessageNumbers(int32_t language) {
  std::vector<int32_t> numbers;
  for (const MessageEntry& entry : MessageTable(language)) numbers.push_back(entry.number);
  return numbers;
}

std::string ErrorReportText(int32_t number, const std::string& description) {
  return LoadMessage(1) + std::to_string(number) + "\r\n" + description;
}

void ShowErrorBox(Dialogs& dialogs, const std::string& title, int32_t number,
                  const std::string& description) {
  dialogs.MessageBox(title, ErrorReportText(number, description), MessageBoxStyle::kCritical);
}

void ReduceErrorNumber(int32_t& number) {
  // The sum is checked for overflow, as the platform's 32-bit addition is: a positive number of
  // 0x40000 or more fails here and the caller's variable keeps its value.
  if (number > std::numeric_limits<int32_t>::max() - kErrorNumberOffset) {
    throw PlatformFailure(kErrOverflow);
  }
  number += kErrorNumberOffset;
  // Outside the application's range 1..65534 the number was no object error: take the sum back.
  if (number < 1 || number >= 65535) number -= kErrorNumberOffset;
}

void ShowErrorThrough(const ErrorReportPresenter& present, const std::string& title,
                      int32_t& number, const std::string& description) {
  ReduceErrorNumber(number);
  if (description.empty() && number == 0) return;  // nothing to report
  present(title, ErrorReportText(number, description));
}

void ShowError(Toolkit& toolkit, const std::string& title, int32_t& number,
               const std::string& description) {
  ShowErrorThrough(
      [&toolkit](const std::string& report_title, const std::string& text) {
        // Held across the modal loop: closing the form releases the shared instance.
        const std::shared_ptr<FrmShowErr> dialog = FrmShowErr::Instance(toolkit);
        dialog->Txt_Title().SetText(report_title);
        dialog->Txt_ErrDescription().SetText(text);
        dialog->ShowModal();
      },
      title, number, description);
}

}  // namespace tarnsheets
