#include "apps/script/script_host.h"

#include <fstream>
#include <set>
#include <sstream>
#include <utility>

#include "apps/script/json_bag.h"
#ifdef TARNSHEETS_SCRIPT_WITH_SQLITE
#include "datasources/sqlite/sqlite_data_source.h"
#endif
#include "apps/script/titles_reader.h"
#include "datasources/memory/memory_fixture.h"
#include "editors/sf_check.h"
#include "editors/sf_text.h"
#include "messages/frm_show_err.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/titles.h"
#include "tarnsheets/user_commands.h"

namespace tarnsheets {
namespace {

constexpr int kMaxEventDepth = 32;

const std::set<std::string>& Verbs() {
  static const auto* const verbs =
      new std::set<std::string>{"screen",  "create", "save-properties", "source", "get",  "set",
                                "call",    "titles", "commands",        "focus",  "type", "key",
                                "click",   "menu",   "resize",          "ds",     "on",   "ctl",
                                "focused", "count"};
  return *verbs;
}

// The by-reference arguments a script may answer, per event.
const std::map<std::string, std::set<std::string>>& EventArguments() {
  static const auto* const events = new std::map<std::string, std::set<std::string>>{
      {"Text", {"Cancel", "User", "Mode"}},
      {"Button", {}},
      {"SheetStatusChange", {}},
      {"ExitFocus", {"Cancel"}},
      {"EnterFocus", {}},
      {"UserCommand", {}},
      {"NewRecord", {"User"}},
      {"Resize", {}},
  };
  return *events;
}

void NeedArgs(const std::vector<Token>& args, size_t min, size_t max, const char* usage) {
  if (args.size() < min || args.size() > max) {
    throw ScriptError("wrong number of arguments: " + std::to_string(args.size()) +
                      " given; usage: " + usage);
  }
}

std::vector<ScriptValue> Values(const std::vector<Token>& args, size_t from) {
  std::vector<ScriptValue> values;
  for (size_t i = from; i < args.size(); ++i) {
    if (args[i].has_key) throw ScriptError("unexpected " + args[i].key + "=");
    values.push_back(ParseValue(args[i]));
  }
  return values;
}

std::string Lit(const std::string& s) { return StringLiteral(s); }
std::string Lit(bool b) { return b ? "True" : "False"; }
std::string Rect(const SheetRect& r) { return ScriptValue::OfRect(r).ToString(); }
std::string Obj(const std::shared_ptr<SheetForm>& f) { return f ? "Object" : "Nothing"; }
ScriptValue Bool(bool b) { return ScriptValue::Of(Variant(b)); }
ScriptValue Long(int32_t n) { return ScriptValue::Of(Variant(n)); }
ScriptValue Str(const std::string& s) { return ScriptValue::Of(Variant(s)); }
ScriptValue Twip(Twips t) { return ScriptValue::Of(Variant(t)); }

std::string ControlLabel(const Control& c) {
  return c.Index() < 0 ? c.Name() : c.Name() + "(" + std::to_string(c.Index()) + ")";
}

}  // namespace

std::string ScriptFailure::ToString() const {
  return file + ":" + std::to_string(line) + ": " + message;
}

ScriptHost::ScriptHost(std::ostream& out, ScriptOptions options) : out_(out), options_(options) {
  toolkit_.SetDialogObserver([this](const DialogRecord& record) { OnDialog(record); });
  toolkit_.SetPopupMenuAnswer([this](const Menu& menu) { return AnswerPopup(menu); });
}

ScriptHost::~ScriptHost() {
  DestroyControl();
  ReleaseSource();
  toolkit_.SetDialogObserver(nullptr);
  toolkit_.SetPopupMenuAnswer(nullptr);
}

std::optional<ScriptFailure> ScriptHost::Run(std::string_view text, const std::string& file,
                                             const std::string& base_dir) {
  lines_.clear();
  std::string line;
  for (const char c : text) {
    if (c == '\n') {
      lines_.push_back(std::move(line));
      line.clear();
    } else {
      line += c;
    }
  }
  if (!line.empty()) lines_.push_back(std::move(line));
  file_ = file;
  base_dir_ = base_dir;
  pending_.reset();
  next_line_ = 0;
  while (next_line_ < lines_.size()) {
    const size_t index = next_line_++;
    Statement statement;
    statement.line = static_cast<int>(index) + 1;
    try {
      statement.tokens = Tokenize(lines_[index]);
    } catch (const ScriptError& e) {
      return ScriptFailure{file_, statement.line, e.what()};
    }
    if (statement.tokens.empty()) continue;
    try {
      ExecuteAndReport(statement);
    } catch (const ScriptError& e) {
      pending_ = ScriptFailure{file_, statement.line, e.what()};
    }
    if (pending_) return pending_;
    FlushNotifications();
  }
  FlushNotifications();
  return std::nullopt;
}

void ScriptHost::ExecuteAndReport(const Statement& statement) {
  try {
    Execute(statement);
  } catch (const Failure& failure) {
    Emit("! " + std::to_string(failure.Number()) + " " + Lit(failure.Description()));
  }
}

void ScriptHost::Execute(const Statement& statement) {
  const Token& verb_token = statement.tokens.front();
  if (verb_token.kind != Token::Kind::kWord || verb_token.has_key ||
      Verbs().count(verb_token.text) == 0) {
    throw ScriptError("unknown statement " + (verb_token.kind == Token::Kind::kString
                                                  ? Lit(verb_token.text)
                                                  : verb_token.text));
  }
  const std::string& verb = verb_token.text;
  const std::vector<Token> args(statement.tokens.begin() + 1, statement.tokens.end());
  if (verb == "screen") return DoScreen(args);
  if (verb == "create") return DoCreate(args);
  if (verb == "save-properties") return DoSaveProperties(args);
  if (verb == "source") return DoSource(args);
  if (verb == "get") return DoGet(args);
  if (verb == "set") return DoSet(args);
  if (verb == "call") return DoCall(args);
  if (verb == "titles") return DoTitles(args);
  if (verb == "commands") return DoCommands(args);
  if (verb == "focus") return DoFocus(args);
  if (verb == "type") return DoType(args);
  if (verb == "key") return DoKey(args);
  if (verb == "click") return DoClick(args);
  if (verb == "menu") {
    NeedArgs(args, 1, 1, "menu ITEM");
    throw ScriptError(
        "menu: no pop-up menu is open (a `menu` line must follow the line that "
        "opens one)");
  }
  if (verb == "resize") return DoResize(args);
  if (verb == "ds") return DoDs(args);
  if (verb == "on") return DoOn(statement);
  if (verb == "ctl") return DoCtl(args);
  if (verb == "focused") return DoFocused(args);
  if (verb == "count") return DoCount(args);
}

// --- Files.

std::string ScriptHost::PathOf(const std::string& name) const {
  if (name.empty() || name[0] == '/' || base_dir_.empty()) return name;
  return base_dir_ + "/" + name;
}

std::string ScriptHost::ReadFile(const std::string& name) const {
  std::ifstream in(PathOf(name), std::ios::binary);
  if (!in) throw ScriptError("cannot read file " + name);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// --- The control and the data source.

ControlAdapter& ScriptHost::RequireControl(const std::string& verb) {
  if (!control_) throw ScriptError(verb + ": no control; `create CLASS` first");
  return *control_;
}

RecordSource& ScriptHost::RequireSource(const std::string& verb) {
  if (!source_.owned) throw ScriptError(verb + ": no data source; `source memory FILE` first");
  return *source_.owned;
}

MemoryDataSource& ScriptHost::RequireMemorySource(const std::string& verb) {
  RequireSource(verb);
  if (source_.memory == nullptr) {
    throw ScriptError(verb + ": a test setting of the in-memory source; this source is SQLite");
  }
  return *source_.memory;
}

void ScriptHost::DestroyControl() {
  FlushNotifications();
  if (control_) control_->RemoveObserver(this);
  control_.reset();
  if (window_) {
    std::shared_ptr<Form> window = std::move(window_);
    try {
      toolkit_.Unload(*window);
    } catch (const Failure&) {
      // The window is gone from the script's side either way.
    }
  }
}

void ScriptHost::ReleaseSource() {
  source_.tracer.reset();
  source_.memory = nullptr;
  source_.owned.reset();
}

void ScriptHost::DoScreen(const std::vector<Token>& args) {
  NeedArgs(args, 2, 2, "screen TX TY");
  const double x = ParseValue(args[0]).ToDouble(), y = ParseValue(args[1]).ToDouble();
  if (x <= 0 || y <= 0) throw ScriptError("screen: twips per pixel must be above 0");
  toolkit_.SetTwipsPerPixel(x, y);
}

void ScriptHost::DoCreate(const std::vector<Token>& args) {
  NeedArgs(args, 1, 3, "create CLASS [from FILE]");
  if (args.size() == 2 || (args.size() == 3 && !args[1].IsWord("from"))) {
    throw ScriptError("usage: create CLASS [from FILE]");
  }
  const std::string class_name = TextArgument(args[0]);
  bool known = false;
  for (const std::string& name : ControlClassNames()) known = known || name == class_name;
  if (!known) throw ScriptError("unknown control class " + class_name);
  std::unique_ptr<MemoryPropertyBag> bag;
  if (args.size() == 3) {
    bag = std::make_unique<MemoryPropertyBag>();
    BagFromJson(ReadFile(TextArgument(args[2])), TextArgument(args[2]), bag.get());
  }
  DestroyControl();
  window_ = toolkit_.CreateForm("FrmHost");
  window_->SetClientSize(15000, 12000);
  window_->Show();
  control_ = CreateControl(class_name, toolkit_, *window_, class_name + "1", bag.get());
  control_->AddObserver(this);
}

void ScriptHost::DoSaveProperties(const std::vector<Token>& args) {
  NeedArgs(args, 1, 1, "save-properties FILE");
  ControlAdapter& control = RequireControl("save-properties");
  MemoryPropertyBag bag;
  control.WriteProperties(bag);
  const std::string name = TextArgument(args[0]);
  std::ofstream out(PathOf(name), std::ios::binary | std::ios::trunc);
  if (!out) throw ScriptError("cannot write file " + name);
  out << BagToJson(bag);
  out.close();
  if (!out) throw ScriptError("cannot write file " + name);
  for (const std::string& line : bag.TranscriptLines()) Emit("bag " + line);
}

void ScriptHost::DoSource(const std::vector<Token>& args) {
  NeedArgs(args, 1, 3, "source memory FILE [closed] | source sqlite DBFILE TABLE | source nothing");
  const std::string kind = args[0].text;
  if (args[0].IsWord("nothing")) {
    NeedArgs(args, 1, 1, "source nothing");
    RequireControl("source").SetDataSource(nullptr);
    return;
  }
  if (!args[0].IsWord("sqlite") && !args[0].IsWord("memory")) {
    throw ScriptError("unknown kind of source " + kind + " (memory, sqlite or nothing)");
  }
  ControlAdapter& control = RequireControl("source");
  Source next;
  bool open = true;
  if (args[0].IsWord("sqlite")) {
    NeedArgs(args, 3, 3, "source sqlite DBFILE TABLE");
#ifdef TARNSHEETS_SCRIPT_WITH_SQLITE
    const std::string file = TextArgument(args[1]);
    if (!std::ifstream(PathOf(file))) throw ScriptError("cannot read file " + file);
    try {
      next.owned = SqliteDataSource::Create(PathOf(file), TextArgument(args[2]), &toolkit_);
    } catch (const Failure& failure) {
      throw ScriptError(failure.Description());
    }
#else
    throw ScriptError("source sqlite: this tarnsheets-script is not built with SQLite");
#endif
  } else {
    NeedArgs(args, 2, 3, "source memory FILE [closed]");
    if (args.size() == 3 && !args[2].IsWord("closed")) {
      throw ScriptError("usage: source memory FILE [closed]");
    }
    open = args.size() == 2;
    const std::string name = TextArgument(args[1]);
    const std::string json = ReadFile(name);
    try {
      std::unique_ptr<MemoryDataSource> memory = MemoryFixtureFromText(json, name, &toolkit_);
      next.memory = memory.get();
      next.owned = std::move(memory);
    } catch (const Failure& failure) {
      throw ScriptError(failure.Description());
    }
  }
  DataSource* bound = next.owned.get();
  if (options_.trace_ds) {
    next.tracer = std::make_unique<TracingDataSource>(
        *next.owned, [this](const std::string& line) { Emit(line); });
    bound = next.tracer.get();
  }
  // The control leaves the old source before it is released.
  Source old = std::move(source_);
  source_ = std::move(next);
  try {
    control.SetDataSource(bound);
  } catch (...) {
    old.tracer.reset();
    throw;
  }
  old.tracer.reset();
  old.owned.reset();
  if (open) source_.owned->Open();
}

// --- Properties and methods of the control.

void ScriptHost::DoGet(const std::vector<Token>& args) {
  NeedArgs(args, 1, 1, "get PROP");
  ControlAdapter& control = RequireControl("get");
  ScriptValue value;
  if (!control.Get(args[0].text, &value)) {
    throw ScriptError(control.ClassName() + " has no property " + args[0].text);
  }
  EmitResult(value);
}

void ScriptHost::DoSet(const std::vector<Token>& args) {
  NeedArgs(args, 2, 4, "set PROP VALUE");
  ControlAdapter& control = RequireControl("set");
  const std::vector<ScriptValue> values = Values(args, 1);
  if (!control.Set(args[0].text, values)) {
    throw ScriptError(control.ClassName() + " has no property " + args[0].text);
  }
}

void ScriptHost::DoCall(const std::vector<Token>& args) {
  NeedArgs(args, 1, 8, "call METHOD [ARG ...]");
  ControlAdapter& control = RequireControl("call");
  const std::vector<ScriptValue> values = Values(args, 1);
  std::optional<ScriptValue> result;
  if (!control.Call(args[0].text, values, &result)) {
    throw ScriptError(control.ClassName() + " has no method " + args[0].text);
  }
  if (result) EmitResult(*result);
}

void ScriptHost::DoTitles(const std::vector<Token>& args) {
  NeedArgs(args, 1, 64,
           "titles add NAME [FIELD=VALUE ...] | titles read FILE COLUMNSNAME "
           "[CONDITION] | titles METHOD [ARG ...]");
  ClsSheetsTitles* titles = RequireControl("titles").Titles();
  if (titles == nullptr) throw ScriptError(control_->ClassName() + " has no SheetTitles");
  const std::string method = args[0].text;
  if (args[0].IsWord("add")) {
    NeedArgs(args, 2, 64, "titles add NAME [FIELD=VALUE ...]");
    static const std::set<std::string> kFields = {"DisplayName", "Description", "DisplayFormat",
                                                  "MultiLine", "DisplayCommand"};
    std::vector<std::pair<std::string, ScriptValue>> fields;
    for (size_t i = 2; i < args.size(); ++i) {
      if (!args[i].has_key || kFields.count(args[i].key) == 0) {
        throw ScriptError(
            "titles add: expected FIELD=VALUE with FIELD one of DisplayName, "
            "Description, DisplayFormat, MultiLine, DisplayCommand; got " +
            (args[i].has_key ? args[i].key + "=" : args[i].text));
      }
      Token value = args[i];
      value.has_key = false;
      fields.emplace_back(args[i].key, ParseValue(value));
    }
    const ClsSheetsTitles::TitleRef title = titles->Add(TextArgument(args[1]));
    if (!title) return;
    for (const auto& [field, value] : fields) {
      if (field == "DisplayName") title->DisplayName = value.ToText();
      if (field == "Description") title->Description = value.ToText();
      if (field == "DisplayFormat") title->DisplayFormat = value.ToText();
      if (field == "MultiLine") title->MultiLine = value.ToBool();
      if (field == "DisplayCommand") title->DisplayCommand = value.ToBool();
    }
    return;
  }
  if (args[0].IsWord("read")) {
    NeedArgs(args, 3, 4, "titles read FILE COLUMNSNAME [CONDITION]");
    const std::string name = TextArgument(args[1]);
    const std::string condition = args.size() == 4 ? TextArgument(args[3]) : std::string();
    EmitResult(
        Bool(ReadTitlesFromJson(*titles, ReadFile(name), name, TextArgument(args[2]), condition)));
    return;
  }
  if (method == "Count") {
    NeedArgs(args, 1, 1, "titles Count");
    EmitResult(Long(titles->Count()));
  } else if (method == "Remove") {
    NeedArgs(args, 2, 2, "titles Remove KEY");
    EmitResult(Bool(titles->Remove(KeyArgument(args[1]))));
  } else if (method == "Clear") {
    NeedArgs(args, 1, 1, "titles Clear");
    EmitResult(Bool(titles->Clear()));
  } else if (method == "GetFieldName") {
    NeedArgs(args, 2, 2, "titles GetFieldName DISPLAYNAME");
    EmitResult(Str(titles->GetFieldName(TextArgument(args[1]))));
  } else if (method == "GetFieldDisplayName") {
    NeedArgs(args, 2, 2, "titles GetFieldDisplayName NAME");
    EmitResult(Str(titles->GetFieldDisplayName(TextArgument(args[1]))));
  } else if (method == "CaptionName") {
    NeedArgs(args, 1, 2, "titles CaptionName [VALUE]");
    if (args.size() == 2) {
      titles->SetCaptionName(ParseValue(args[1]).AsVariant());
    } else {
      EmitResult(ScriptValue::Of(titles->CaptionName()));
    }
  } else if (method == "Item") {
    NeedArgs(args, 2, 3, "titles Item KEY [FIELD]");
    const ClsSheetsTitles::TitleRef title = titles->Item(KeyArgument(args[1]));
    if (args.size() == 2 || !title) {
      EmitResult(ScriptValue::ObjectOrNothing(title != nullptr));
      return;
    }
    const std::string field = args[2].text;
    if (field == "Name") {
      EmitResult(Str(title->Name));
    } else if (field == "DisplayName") {
      EmitResult(Str(title->DisplayName));
    } else if (field == "Description") {
      EmitResult(Str(title->Description));
    } else if (field == "DisplayFormat") {
      EmitResult(Str(title->DisplayFormat));
    } else if (field == "MultiLine") {
      EmitResult(Bool(title->MultiLine));
    } else if (field == "DisplayCommand") {
      EmitResult(Bool(title->DisplayCommand));
    } else {
      throw ScriptError("ClsSheetsTitle has no field " + field);
    }
  } else {
    throw ScriptError("ClsSheetsTitles has no member " + method);
  }
}

void ScriptHost::DoCommands(const std::vector<Token>& args) {
  NeedArgs(args, 1, 3, "commands add NAME DISPLAY | commands remove KEY | commands count");
  ClsSheetsUserCommands* commands = RequireControl("commands").Commands();
  if (commands == nullptr) throw ScriptError(control_->ClassName() + " has no SheetUserCommands");
  if (args[0].IsWord("add")) {
    NeedArgs(args, 3, 3, "commands add NAME DISPLAY");
    commands->Add(TextArgument(args[1]), TextArgument(args[2]));
  } else if (args[0].IsWord("remove")) {
    NeedArgs(args, 2, 2, "commands remove KEY");
    commands->Remove(KeyArgument(args[1]));
  } else if (args[0].IsWord("count")) {
    NeedArgs(args, 1, 1, "commands count");
    EmitResult(Long(commands->Count()));
  } else if (args[0].IsWord("item")) {
    NeedArgs(args, 2, 3, "commands item KEY [Name|DisplayName]");
    const ClsSheetsUserCommands::CommandRef command = commands->Item(KeyArgument(args[1]));
    if (args.size() == 2) {
      EmitResult(ScriptValue::ObjectOrNothing(command != nullptr));
    } else if (args[2].IsWord("Name")) {
      EmitResult(Str(command->Name()));
    } else if (args[2].IsWord("DisplayName")) {
      EmitResult(Str(command->DisplayName()));
    } else {
      throw ScriptError("ClsSheetsUserCommand has no property " + args[2].text);
    }
  } else {
    throw ScriptError("unknown commands statement " + args[0].text + " (add, remove, count)");
  }
}

// --- The user.

std::shared_ptr<Control> ScriptHost::Resolve(const Token& token) {
  ControlName name;
  if (token.kind != Token::Kind::kWord || token.has_key || !ParseControlName(token.text, &name)) {
    throw ScriptError("not a control name: " + token.text);
  }
  UserControl& host = RequireControl("control " + token.text).Host();
  if (name.index < 0 && (name.name == "UserControl" || name.name == host.Name())) {
    return host.shared_from_this();
  }
  std::shared_ptr<Control> control = host.FindControl(name.name, name.index);
  if (!control) throw ScriptError("unknown control " + name.ToString());
  return control;
}

void ScriptHost::DoFocus(const std::vector<Token>& args) {
  NeedArgs(args, 1, 1, "focus CONTROL | focus outside");
  if (args[0].IsWord("outside")) {
    toolkit_.FocusOutside();
    return;
  }
  Resolve(args[0])->SetFocus();
}

void ScriptHost::DoType(const std::vector<Token>& args) {
  NeedArgs(args, 1, 1, "type \"TEXT\"");
  if (args[0].kind != Token::Kind::kString || args[0].has_key) {
    throw ScriptError("type takes a quoted text");
  }
  toolkit_.TypeText(args[0].text);
}

void ScriptHost::DoKey(const std::vector<Token>& args) {
  NeedArgs(args, 1, 1, "key NAME");
  static const std::map<std::string, std::pair<int16_t, int16_t>> kKeys = {
      {"Tab", {kKeyTab, 0}},
      {"ShiftTab", {kKeyTab, kShiftMask}},
      {"Esc", {kKeyEscape, 0}},
      {"Space", {kKeySpace, 0}},
      {"Delete", {kKeyDelete, 0}},
      {"Backspace", {kKeyBack, 0}},
      {"Enter", {kKeyReturn, 0}},
      {"Left", {kKeyLeft, 0}},
      {"Right", {kKeyRight, 0}},
      {"Home", {kKeyHome, 0}},
      {"End", {kKeyEnd, 0}},
      {"ShiftLeft", {kKeyLeft, kShiftMask}},
      {"ShiftRight", {kKeyRight, kShiftMask}},
      {"ShiftHome", {kKeyHome, kShiftMask}},
      {"ShiftEnd", {kKeyEnd, kShiftMask}}};
  const auto it = kKeys.find(args[0].text);
  if (it == kKeys.end() || args[0].has_key || args[0].kind != Token::Kind::kWord) {
    throw ScriptError("unknown key " + args[0].text +
                      " (Tab, ShiftTab, Esc, Space, Delete, Backspace, Enter, Left, Right, "
                      "Home, End, and Shift with Left, Right, Home, End)");
  }
  toolkit_.PressKey(it->second.first, it->second.second);
}

void ScriptHost::DoClick(const std::vector<Token>& args) {
  NeedArgs(args, 1, 2, "click CONTROL [right]");
  if (args.size() == 2 && !args[1].IsWord("right")) {
    throw ScriptError("usage: click CONTROL [right]");
  }
  std::shared_ptr<Control> control = Resolve(args[0]);
  // A click on a text editor lands on the box it shows.
  if (SFText* editor = control_->TextEditorOf(*control)) {
    control = editor->Txt_Text(editor->ActiveBox()).shared_from_this();
  }
  if (args.size() == 2) {
    toolkit_.RightClick(*control);
  } else {
    toolkit_.Click(*control);
  }
}

void ScriptHost::DoResize(const std::vector<Token>& args) {
  NeedArgs(args, 2, 2, "resize WIDTH HEIGHT");
  UserControl& host = RequireControl("resize").Host();
  const double width = ParseValue(args[0]).ToDouble(), height = ParseValue(args[1]).ToDouble();
  host.Move(host.Left(), host.Top(), width, height);
}

std::string ScriptHost::AnswerPopup(const Menu& menu) {
  // The next statement of the script chooses, when it is a `menu` line.
  for (size_t i = next_line_; i < lines_.size(); ++i) {
    std::vector<Token> tokens;
    try {
      tokens = Tokenize(lines_[i]);
    } catch (const ScriptError&) {
      return "";  // reported when the line is reached
    }
    if (tokens.empty()) continue;
    if (!tokens[0].IsWord("menu")) return "";
    next_line_ = i + 1;
    const int line = static_cast<int>(i) + 1;
    if (tokens.size() != 2) {
      SetPending(line, "wrong number of arguments: " + std::to_string(tokens.size() - 1) +
                           " given; usage: menu ITEM");
      return "";
    }
    for (const auto& item : menu.Items()) {
      if (item->Name() == tokens[1].text || item->Caption() == tokens[1].text) {
        return item->Name();
      }
    }
    SetPending(line, "menu: " + menu.Name() + " has no item " + tokens[1].text);
    return "";
  }
  return "";
}

// --- The data source.

void ScriptHost::DoDs(const std::vector<Token>& args) {
  NeedArgs(args, 1, 8, "ds OP [ARG ...]");
  RecordSource& source = RequireSource("ds");
  const std::string op = args[0].text;
  auto need = [&](size_t min, size_t max, const char* usage) { NeedArgs(args, min, max, usage); };
  if (op == "field") return DoDsField(args);
  if (op == "force") return DoDsForce(args);
  if (op == "refuse" || op == "accept") {
    need(2, 2, "ds refuse FIELD | ds accept FIELD");
    MemoryDataSource& memory = RequireMemorySource("ds " + op);
    if (op == "refuse") {
      memory.RefuseField(TextArgument(args[1]));
    } else {
      memory.AcceptField(TextArgument(args[1]));
    }
    return;
  }
  if (op == "fail") {
    need(4, 4, "ds fail OP NUMBER \"DESCRIPTION\"");
    const int32_t number = ParseValue(args[2]).ToLong();
    RequireMemorySource("ds fail").FailNextCall(TextArgument(args[1]), number,
                                                ParseValue(args[3]).ToText());
    return;
  }
  // Permissions: read without a value, set with one.
  using Getter = bool (DataSource::*)() const;
  using Setter = void (DataSource::*)(bool);
  static const std::map<std::string, std::pair<Getter, Setter>> kPermissions = {
      {"AllowAddNew", {&DataSource::AllowAddNew, &DataSource::SetAllowAddNew}},
      {"AllowCopy", {&DataSource::AllowCopy, &DataSource::SetAllowCopy}},
      {"AllowDelete", {&DataSource::AllowDelete, &DataSource::SetAllowDelete}},
      {"AllowModify", {&DataSource::AllowModify, &DataSource::SetAllowModify}}};
  if (const auto it = kPermissions.find(op); it != kPermissions.end()) {
    need(1, 2, "ds AllowX [VALUE]");
    if (args.size() == 2) {
      (source.*(it->second.second))(ParseValue(args[1]).ToBool());
    } else {
      EmitResult(Bool((source.*(it->second.first))()));
    }
    return;
  }
  using BoolOp = bool (DataSource::*)();
  static const std::map<std::string, BoolOp> kBoolOps = {
      {"Refresh", &DataSource::Refresh},           {"MoveFirst", &DataSource::MoveFirst},
      {"MovePrevious", &DataSource::MovePrevious}, {"MoveNext", &DataSource::MoveNext},
      {"MoveLast", &DataSource::MoveLast},         {"NewQuery", &DataSource::NewQuery},
      {"RefineQuery", &DataSource::RefineQuery},   {"ExecuteQuery", &DataSource::ExecuteQuery}};
  if (const auto it = kBoolOps.find(op); it != kBoolOps.end()) {
    need(1, 1, "ds OP");
    EmitResult(Bool((source.*(it->second))()));
    return;
  }
  using LongOp = int32_t (DataSource::*)() const;
  static const std::map<std::string, LongOp> kLongOps = {
      {"SelectRowsStatus", &DataSource::SelectRowsStatus},
      {"EditStatus", &DataSource::EditStatus},
      {"RecordCount", &DataSource::RecordCount},
      {"AbsolutePosition", &DataSource::AbsolutePosition},
      {"FieldCount", &DataSource::FieldCount}};
  if (const auto it = kLongOps.find(op); it != kLongOps.end()) {
    need(1, 1, "ds OP");
    EmitResult(Long((source.*(it->second))()));
    return;
  }
  if (op == "ReadOnly") {
    need(1, 1, "ds ReadOnly");
    EmitResult(Bool(source.ReadOnly()));
  } else if (op == "RowEditable") {
    need(1, 2, "ds RowEditable [ROW]");
    EmitResult(Bool(source.RowEditable(args.size() == 2 ? ParseValue(args[1]).ToLong() : 0)));
  } else if (op == "UpdateRecord") {
    need(1, 1, "ds UpdateRecord");
    EmitResult(Long(source.UpdateRecord()));
  } else if (op == "SetFieldValue") {
    need(3, 4, "ds SetFieldValue NAME VALUE [FLAG]");
    const int32_t flag = args.size() == 4 ? ParseValue(args[3]).ToLong() : 0;
    EmitResult(
        Bool(source.SetFieldValue(KeyArgument(args[1]), ParseValue(args[2]).AsVariant(), flag)));
  } else if (op == "ParseFieldValue") {
    need(3, 3, "ds ParseFieldValue NAME VALUE");
    Variant value = ParseValue(args[2]).AsVariant();
    source.ParseFieldValue(KeyArgument(args[1]), value);
    EmitResult(ScriptValue::Of(value));
  } else if (op == "DeleteRecord" || op == "CopyRecord" || op == "NewRecord" ||
             op == "UndoRecord" || op == "CancelQuery" || op == "Open" || op == "Close") {
    need(1, 1, "ds OP");
    if (op == "DeleteRecord") source.DeleteRecord();
    if (op == "CopyRecord") source.CopyRecord();
    if (op == "NewRecord") source.NewRecord();
    if (op == "UndoRecord") source.UndoRecord();
    if (op == "CancelQuery") source.CancelQuery();
    if (op == "Open") source.Open();
    if (op == "Close") source.Close();
  } else {
    throw ScriptError("unknown data-source operation " + op);
  }
}

void ScriptHost::DoDsField(const std::vector<Token>& args) {
  NeedArgs(args, 3, 4, "ds field NAME PROP | ds field NAME SetValue VALUE");
  DataSourceField& field = RequireSource("ds field").Fields(KeyArgument(args[1]));
  const std::string prop = args[2].text;
  if (prop == "SetValue") {
    NeedArgs(args, 4, 4, "ds field NAME SetValue VALUE");
    field.SetValue(ParseValue(args[3]).AsVariant());
    return;
  }
  NeedArgs(args, 3, 3, "ds field NAME PROP");
  if (prop == "Value") {
    EmitResult(ScriptValue::Of(field.Value()));
  } else if (prop == "Symbol") {
    EmitResult(Str(field.Symbol()));
  } else if (prop == "DataType") {
    EmitResult(Long(field.DataType()));
  } else if (prop == "DateKind") {
    EmitResult(Long(field.DateKind()));
  } else if (prop == "NumberKind") {
    EmitResult(Long(field.NumberKind()));
  } else if (prop == "Updatable") {
    EmitResult(Bool(field.Updatable()));
  } else if (prop == "ReferenceName") {
    EmitResult(Str(field.ReferenceName()));
  } else if (prop == "FieldName") {
    EmitResult(Str(field.FieldName()));
  } else {
    throw ScriptError("a field has no property " + prop);
  }
}

void ScriptHost::DoDsForce(const std::vector<Token>& args) {
  NeedArgs(args, 3, 3, "ds force PROP VALUE");
  MemoryDataSource& source = RequireMemorySource("ds force");
  const std::string prop = args[1].text;
  const ScriptValue value = ParseValue(args[2]);
  if (prop == "EditStatus") {
    source.ForceEditStatus(value.ToLong());
  } else if (prop == "RecordCount") {
    source.ForceRecordCount(value.ToLong());
  } else if (prop == "ReadOnly") {
    source.ForceReadOnly(value.ToBool());
  } else if (prop == "SelectRowsStatus") {
    source.ForceSelectRowsStatus(value.ToLong());
  } else if (prop == "RowEditable") {
    source.ForceRowEditable(value.ToBool());
  } else {
    throw ScriptError("ds force: unknown setting " + prop +
                      " (EditStatus, RecordCount, ReadOnly, SelectRowsStatus, RowEditable)");
  }
}

// --- Answers to events.

void ScriptHost::DoOn(const Statement& statement) {
  const std::vector<Token>& t = statement.tokens;
  if (t.size() < 3)
    throw ScriptError(
        "usage: on EVENT ARG=VALUE ... | on EVENT do STATEMENT | "
        "on EVENT clear");
  const std::string event = t[1].text;
  const auto known = EventArguments().find(event);
  if (known == EventArguments().end() || t[1].has_key) {
    throw ScriptError("unknown event " + event +
                      " (Text, Button, SheetStatusChange, ExitFocus, EnterFocus, UserCommand, "
                      "NewRecord, Resize)");
  }
  if (t[2].IsWord("clear")) {
    if (t.size() != 3) throw ScriptError("usage: on EVENT clear");
    answers_.erase(event);
    return;
  }
  if (t[2].IsWord("do")) {
    Statement nested;
    nested.line = statement.line;
    nested.tokens.assign(t.begin() + 3, t.end());
    if (nested.tokens.empty()) throw ScriptError("on " + event + " do: no statement");
    const Token& verb = nested.tokens.front();
    if (verb.kind != Token::Kind::kWord || verb.has_key || Verbs().count(verb.text) == 0) {
      throw ScriptError("unknown statement " + verb.text + " after do");
    }
    answers_[event].statements.push_back(std::move(nested));
    return;
  }
  std::vector<std::pair<std::string, ScriptValue>> given;
  for (size_t i = 2; i < t.size(); ++i) {
    if (!t[i].has_key || known->second.count(t[i].key) == 0) {
      std::string allowed;
      for (const std::string& a : known->second) allowed += (allowed.empty() ? "" : ", ") + a;
      throw ScriptError("on " + event + ": expected ARG=VALUE with ARG one of: " +
                        (allowed.empty() ? "(none; this event has no answer)" : allowed));
    }
    Token value = t[i];
    value.has_key = false;
    given.emplace_back(t[i].key, ParseValue(value));
  }
  Answers& answers = answers_[event];
  for (auto& [name, value] : given) {
    bool replaced = false;
    for (auto& [old_name, old_value] : answers.arguments) {
      if (old_name == name) old_value = value, replaced = true;
    }
    if (!replaced) answers.arguments.emplace_back(name, value);
  }
}

const ScriptValue* ScriptHost::AnswerFor(const std::string& event, const std::string& name) const {
  const auto it = answers_.find(event);
  if (it == answers_.end()) return nullptr;
  for (const auto& [arg, value] : it->second.arguments) {
    if (arg == name) return &value;
  }
  return nullptr;
}

void ScriptHost::RunEventStatements(const std::string& event) {
  const auto it = answers_.find(event);
  if (it == answers_.end() || pending_) return;
  // A copy: a statement may change the answers while they run.
  const std::vector<Statement> statements = it->second.statements;
  for (const Statement& statement : statements) {
    if (pending_) return;
    if (depth_ >= kMaxEventDepth) {
      SetPending(statement.line, "events nested deeper than " + std::to_string(kMaxEventDepth) +
                                     " levels (an `on " + event + " do` that raises " + event +
                                     " again?)");
      return;
    }
    ++depth_;
    try {
      ExecuteAndReport(statement);
    } catch (const ScriptError& e) {
      SetPending(statement.line, e.what());
    }
    --depth_;
  }
}

void ScriptHost::SetPending(int line, const std::string& message) {
  if (!pending_) pending_ = ScriptFailure{file_, line, message};
}

// Each event: its line, the `do` statements, then the answers.

void ScriptHost::Text(const std::string& FieldName, const std::string& TextValue, SheetRect& Rect_,
                      bool& Cancel, int32_t& User, std::shared_ptr<SheetForm>& Frm, int32_t& Mode,
                      std::shared_ptr<SheetForm>& ParentForm) {
  Emit("event Text FieldName=" + Lit(FieldName) + " TextValue=" + Lit(TextValue) +
       " Rect=" + Rect(Rect_) + " Cancel=" + Lit(Cancel) + " User=" + std::to_string(User) +
       " Frm=" + Obj(Frm) + " Mode=" + std::to_string(Mode) + " ParentForm=" + Obj(ParentForm));
  RunEventStatements("Text");
  try {
    if (const ScriptValue* v = AnswerFor("Text", "Cancel")) Cancel = v->ToBool();
    if (const ScriptValue* v = AnswerFor("Text", "User")) User = v->ToLong();
    if (const ScriptValue* v = AnswerFor("Text", "Mode")) Mode = v->ToLong();
  } catch (const Failure& failure) {
    SetPending(0, "on Text: " + failure.Description());
  }
}

void ScriptHost::Button(const std::string& FieldName, SheetRect& Rect_) {
  Emit("event Button FieldName=" + Lit(FieldName) + " Rect=" + Rect(Rect_));
  RunEventStatements("Button");
}

void ScriptHost::SheetStatusChange() {
  Emit("event SheetStatusChange");
  RunEventStatements("SheetStatusChange");
}

void ScriptHost::ExitFocus(bool& Cancel) {
  Emit("event ExitFocus Cancel=" + Lit(Cancel));
  RunEventStatements("ExitFocus");
  try {
    if (const ScriptValue* v = AnswerFor("ExitFocus", "Cancel")) Cancel = v->ToBool();
  } catch (const Failure& failure) {
    SetPending(0, "on ExitFocus: " + failure.Description());
  }
}

void ScriptHost::EnterFocus() {
  Emit("event EnterFocus");
  RunEventStatements("EnterFocus");
}

void ScriptHost::UserCommand(const std::string& Name) {
  Emit("event UserCommand Name=" + Lit(Name));
  RunEventStatements("UserCommand");
}

void ScriptHost::NewRecord(int32_t& User) {
  Emit("event NewRecord User=" + std::to_string(User));
  RunEventStatements("NewRecord");
  try {
    if (const ScriptValue* v = AnswerFor("NewRecord", "User")) User = v->ToLong();
  } catch (const Failure& failure) {
    SetPending(0, "on NewRecord: " + failure.Description());
  }
}

void ScriptHost::Resize() {
  Emit("event Resize");
  RunEventStatements("Resize");
}

// --- Reading controls.

void ScriptHost::DoCtl(const std::vector<Token>& args) {
  NeedArgs(args, 2, 2, "ctl CONTROL PROP | ctl CONTROL draw");
  std::shared_ptr<Control> control = Resolve(args[0]);
  const std::string prop = args[1].text;
  SFText* text = control_->TextEditorOf(*control);
  SFCheck* check = control_->CheckEditorOf(*control);
  if (prop == "draw") {
    for (const DrawOp& op : toolkit_.DrawOps(*control)) Emit("draw " + op.ToString());
    return;
  }
  auto text_box = [&]() -> TextBox& {
    auto* box = dynamic_cast<TextBox*>(control.get());
    if (box == nullptr) throw PlatformFailure(kErrNotSupported);
    return *box;
  };
  ScriptValue v;
  if (prop == "Text") {
    v = Str(text != nullptr ? text->Text() : text_box().Text());
  } else if (prop == "Locked") {
    v = Bool(text != nullptr    ? text->Locked()
             : check != nullptr ? check->Locked()
                                : text_box().Locked());
  } else if (prop == "SelStart") {
    v = Long(text != nullptr ? text->SelStart() : text_box().SelStart());
  } else if (prop == "SelLength") {
    v = Long(text != nullptr ? text->SelLength() : text_box().SelLength());
  } else if (prop == "Value") {
    if (check == nullptr) throw PlatformFailure(kErrNotSupported);
    v = Long(check->Value());
  } else if (prop == "BorderColor") {
    if (text != nullptr) {
      v = ScriptValue::OfColor(text->BorderColor());
    } else if (check != nullptr) {
      v = ScriptValue::OfColor(check->BorderColor());
    } else if (auto* shape = dynamic_cast<Shape*>(control.get())) {
      v = ScriptValue::OfColor(shape->BorderColor());
    } else {
      throw PlatformFailure(kErrNotSupported);
    }
  } else if (prop == "BackColor") {
    v = ScriptValue::OfColor(text != nullptr ? text->BackColor() : control->BackColor());
  } else if (prop == "ForeColor") {
    v = ScriptValue::OfColor(text != nullptr ? text->ForeColor() : control->ForeColor());
  } else if (prop == "FontName") {
    v = Str(text != nullptr ? text->GetFont().name : control->GetFont().name);
  } else if (prop == "FontSize") {
    v = Twip(text != nullptr ? text->GetFont().size : control->GetFont().size);
  } else if (prop == "Visible") {
    v = Bool(control->Visible());
  } else if (prop == "Enabled") {
    v = Bool(control->Enabled());
  } else if (prop == "Caption") {
    v = Str(control->Caption());
  } else if (prop == "Tag") {
    v = Str(control->Tag());
  } else if (prop == "Left") {
    v = Twip(control->Left());
  } else if (prop == "Top") {
    v = Twip(control->Top());
  } else if (prop == "Width") {
    v = Twip(control->Width());
  } else if (prop == "Height") {
    v = Twip(control->Height());
  } else if (prop == "TabIndex") {
    v = Long(control->TabIndex());
  } else if (prop == "TabStop") {
    v = Bool(control->TabStop());
  } else {
    throw ScriptError("ctl: unknown property " + prop +
                      " (Text, Locked, Visible, Enabled, Caption, Tag, Left, Top, Width, Height, "
                      "BackColor, ForeColor, BorderColor, Value, TabIndex, TabStop, FontName, "
                      "FontSize, SelStart, SelLength, draw)");
  }
  EmitResult(v);
}

void ScriptHost::DoFocused(const std::vector<Token>& args) {
  NeedArgs(args, 0, 0, "focused");
  const Control* focus = toolkit_.GetFocus();
  if (focus == nullptr) {
    Emit("= Nothing");
    return;
  }
  // The focus may sit in a box inside an editor: name the control as the form names it.
  const Container* host = control_ ? &control_->Host() : nullptr;
  const Control* c = focus;
  while (true) {
    const Container* owner = c->Owner();
    if (owner == nullptr || owner == host || owner->Kind() == ControlKind::kForm) break;
    c = owner;
  }
  Emit("= " + ControlLabel(*c));
}

void ScriptHost::DoCount(const std::vector<Token>& args) {
  NeedArgs(args, 1, 1, "count ARRAY");
  ControlName name;
  if (args[0].kind != Token::Kind::kWord || !ParseControlName(args[0].text, &name) ||
      name.index >= 0) {
    throw ScriptError("count takes the name of a control array: " + args[0].text);
  }
  int32_t count = 0;
  bool single = false;
  for (const auto& control : RequireControl("count").Host().AllControls()) {
    if (control->Name() != name.name) continue;
    if (control->Index() >= 0) {
      ++count;
    } else {
      single = true;
    }
  }
  if (count == 0) {
    throw ScriptError(single ? name.name + " is not a control array"
                             : "unknown control array " + name.name);
  }
  EmitResult(Long(count));
}

// --- The transcript.

void ScriptHost::Emit(const std::string& line) {
  if (pending_) return;
  FlushNotifications();
  out_ << line << '\n';
}

void ScriptHost::FlushNotifications() {
  if (!control_ || pending_) return;
  UserControl& host = control_->Host();
  const std::vector<std::string> keys = toolkit_.NotifiedProperties(host);
  if (keys.empty()) return;
  toolkit_.ClearNotifiedProperties(host);
  for (const std::string& key : keys) out_ << "notify " << key << '\n';
}

void ScriptHost::OnDialog(const DialogRecord& record) {
  switch (record.kind) {
    case DialogRecord::Kind::kMessageBox:
      Emit(std::string("msgbox ") +
           (record.style == MessageBoxStyle::kCritical ? "critical" : "plain") +
           " title=" + Lit(record.title) + " text=" + Lit(record.text));
      break;
    case DialogRecord::Kind::kModalForm:
      if (const std::shared_ptr<FrmShowErr> err = FrmShowErr::Existing();
          err != nullptr && err->form().Name() == record.name) {
        Emit("errordialog caption=" + Lit(record.title) + " title=" + Lit(err->Txt_Title().Text()) +
             " text=" + Lit(err->Txt_ErrDescription().Text()));
      } else {
        Emit("form " + record.name + " caption=" + Lit(record.title) + " text=" + Lit(record.text));
      }
      break;
    case DialogRecord::Kind::kPopupMenu:
      Emit("popup " + record.name);
      break;
  }
}

}  // namespace tarnsheets
