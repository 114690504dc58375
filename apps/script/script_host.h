// ScriptHost: plays a script of host calls, user actions and data-source calls against one public
// control on the headless toolkit, and writes the transcript of what the host sees.
//
// The language is a public interface: statements, lexical rules and transcript lines are kept
// stable and only ever extended. Choices of this host where the language leaves room:
// - Relative file names in a script are taken from the directory of the script file (from the
//   working directory for standard input).
// - A pop-up menu opens in the middle of a user action. When it opens, the host looks at the next
//   statement of the script: if that is `menu ITEM`, the item is chosen while the menu is open
//   (its Click runs before the action that opened the menu goes on) and that line is used up;
//   otherwise the menu closes with no choice. A `menu` line that no open menu uses up is an error.
// - `on EVENT do STATEMENT` runs STATEMENT after the event's line is written and before the
//   by-reference answers of `on EVENT ARG=VALUE` are set. Several `do` lines run in their order.
//   Events nest up to 32 levels deep; a deeper nesting is an error of the script.
// - The container's notifications (`notify KEY`) are written before the next line of any other
//   kind and at the end of each statement, so they keep their place among events.
#ifndef TARNSHEETS_APPS_SCRIPT_SCRIPT_HOST_H_
#define TARNSHEETS_APPS_SCRIPT_SCRIPT_HOST_H_

#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "apps/script/control_adapter.h"
#include "apps/script/script_lexer.h"
#include "apps/script/tracing_data_source.h"
#include "datasources/common/record_source.h"
#include "datasources/memory/memory_data_source.h"
#include "tarnsheets/sheet.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {

struct ScriptOptions {
  // Write every call the control makes on its data source ("ds> ...").
  bool trace_ds = false;
};

// A malformed line: the script file, the line (1-based) and what is wrong.
struct ScriptFailure {
  std::string file;
  int line = 0;
  std::string message;

  // "file:line: message"
  std::string ToString() const;
};

class ScriptHost : private SheetEvents {
 public:
  explicit ScriptHost(std::ostream& out, ScriptOptions options = {});
  ~ScriptHost() override;
  ScriptHost(const ScriptHost&) = delete;
  ScriptHost& operator=(const ScriptHost&) = delete;

  // Plays `text`, named `file` in failures; relative paths are taken from `base_dir` ("" for the
  // working directory). The control, data source and answers stay for the next Run. Returns the
  // first malformed line, after which nothing more of the script runs; std::nullopt when every
  // line ran.
  std::optional<ScriptFailure> Run(std::string_view text, const std::string& file,
                                   const std::string& base_dir);

 private:
  struct Statement {
    int line = 0;
    std::vector<Token> tokens;
  };
  // The data source of the script: the in-memory source, and the tracer that the control is
  // given instead with --trace-ds. The tracer goes first when the two are released.
  struct Source {
    std::unique_ptr<RecordSource> owned;  // the in-memory or the SQLite source
    MemoryDataSource* memory = nullptr;   // the same object when it is the in-memory source
    std::unique_ptr<TracingDataSource> tracer;
  };
  // What the host does on an event.
  struct Answers {
    std::vector<std::pair<std::string, ScriptValue>> arguments;
    std::vector<Statement> statements;
  };

  // Runs one statement; a Failure that passes out of the control is written as "! N DESC".
  void ExecuteAndReport(const Statement& statement);
  void Execute(const Statement& statement);

  void DoScreen(const std::vector<Token>& args);
  void DoCreate(const std::vector<Token>& args);
  void DoSaveProperties(const std::vector<Token>& args);
  void DoSource(const std::vector<Token>& args);
  void DoGet(const std::vector<Token>& args);
  void DoSet(const std::vector<Token>& args);
  void DoCall(const std::vector<Token>& args);
  void DoTitles(const std::vector<Token>& args);
  void DoCommands(const std::vector<Token>& args);
  void DoFocus(const std::vector<Token>& args);
  void DoType(const std::vector<Token>& args);
  void DoKey(const std::vector<Token>& args);
  void DoClick(const std::vector<Token>& args);
  void DoResize(const std::vector<Token>& args);
  void DoDs(const std::vector<Token>& args);
  void DoDsField(const std::vector<Token>& args);
  void DoDsForce(const std::vector<Token>& args);
  void DoOn(const Statement& statement);
  void DoCtl(const std::vector<Token>& args);
  void DoFocused(const std::vector<Token>& args);
  void DoCount(const std::vector<Token>& args);

  ControlAdapter& RequireControl(const std::string& verb);
  RecordSource& RequireSource(const std::string& verb);
  MemoryDataSource& RequireMemorySource(const std::string& verb);
  std::shared_ptr<Control> Resolve(const Token& token);
  std::string ReadFile(const std::string& name) const;
  std::string PathOf(const std::string& name) const;
  void DestroyControl();
  void ReleaseSource();

  // The transcript.
  void Emit(const std::string& line);
  void EmitResult(const ScriptValue& value) { Emit("= " + value.ToString()); }
  void FlushNotifications();
  void OnDialog(const DialogRecord& record);
  std::string AnswerPopup(const Menu& menu);
  void SetPending(int line, const std::string& message);

  // Host events.
  void Text(const std::string& FieldName, const std::string& TextValue, SheetRect& Rect,
            bool& Cancel, int32_t& User, std::shared_ptr<SheetForm>& Frm, int32_t& Mode,
            std::shared_ptr<SheetForm>& ParentForm) override;
  void Button(const std::string& FieldName, SheetRect& Rect) override;
  void SheetStatusChange() override;
  void ExitFocus(bool& Cancel) override;
  void EnterFocus() override;
  void UserCommand(const std::string& Name) override;
  void NewRecord(int32_t& User) override;
  void Resize() override;
  // Runs the `do` statements of `event`.
  void RunEventStatements(const std::string& event);
  // The answer to argument `name` of `event`, if the script gave one.
  const ScriptValue* AnswerFor(const std::string& event, const std::string& name) const;

  std::ostream& out_;
  ScriptOptions options_;
  HeadlessToolkit toolkit_;

  // Released in reverse order: the control before its window, both before the data source.
  Source source_;
  std::shared_ptr<Form> window_;
  std::unique_ptr<ControlAdapter> control_;

  std::map<std::string, Answers> answers_;
  int depth_ = 0;

  // The script being run: its lines, the next line to run, and where it lives.
  std::vector<std::string> lines_;
  size_t next_line_ = 0;
  std::string file_;
  std::string base_dir_;
  // A malformed line met inside an event or a pop-up menu; nothing more is written once it is set.
  std::optional<ScriptFailure> pending_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_SCRIPT_SCRIPT_HOST_H_
