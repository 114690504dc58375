// tarnsheets-demo [--db FILE] [--lang 1033|2052] [--screenshot DIR]
//
// Without --screenshot: the demo window over the sample sales database (created on first run in
// the user's data directory unless --db names another file). With --screenshot DIR: renders every
// public control on its first record to DIR/<Class>.png on Qt's offscreen platform and exits.
// --lang chooses the language of the messages and titles by setting the process's locale.
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "apps/demo/bound_control.h"
#include "apps/demo/demo_window.h"
#include "apps/demo/screenshots.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "toolkits/qt/qt_toolkit.h"

namespace {

int Usage(const std::string& why) {
  std::fprintf(stderr,
               "tarnsheets-demo: %s\n"
               "usage: tarnsheets-demo [--db FILE] [--lang 1033|2052] [--screenshot DIR] "
               "[--control CLASS]\n",
               why.c_str());
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  std::string database, screenshot_dir, language, control;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool has_value = i + 1 < argc;
    if (arg == "--db" || arg == "--screenshot" || arg == "--lang" || arg == "--control") {
      if (!has_value) return Usage(arg + " needs a value");
      const std::string value = argv[++i];
      if (arg == "--db") database = value;
      if (arg == "--screenshot") screenshot_dir = value;
      if (arg == "--lang") language = value;
      if (arg == "--control") control = value;
    } else if (arg == "--help" || arg == "-h") {
      Usage("the TarnSheets demo host");
      return 0;
    } else {
      return Usage("unknown argument " + arg);
    }
  }
  // The language is the locale's; the library reads it once, on first use, so it is set before
  // anything of the library runs.
  if (!language.empty()) {
    if (language != "1033" && language != "2052") {
      return Usage("--lang takes 1033 (English) or 2052 (Simplified Chinese), not " + language);
    }
    const char* locale = language == "2052" ? "zh_CN.UTF-8" : "en_US.UTF-8";
    setenv("LC_ALL", locale, 1);
    setenv("LANG", locale, 1);
  }
  if (!screenshot_dir.empty()) setenv("QT_QPA_PLATFORM", "offscreen", 1);

  try {
    if (database.empty()) {
      database = tarnsheets::DemoDataDirectory() + "/sample.db";
      if (tarnsheets::EnsureSampleDatabase(database)) {
        std::printf("tarnsheets-demo: created the sample database %s\n", database.c_str());
      }
    } else if (!std::filesystem::exists(database)) {
      return Usage("no database file " + database);
    }

    QApplication app(argc, argv);
    if (!screenshot_dir.empty()) {
      tarnsheets::QtToolkit toolkit(tarnsheets::QtToolkit::DialogMode::kAnswered);
      std::vector<std::string> classes;
      if (!control.empty()) classes.push_back(control);
      const auto files = tarnsheets::RenderScreenshots(toolkit, database, screenshot_dir, classes);
      std::printf("tarnsheets-demo: %zu screenshots (language %d) in %s\n", files.size(),
                  tarnsheets::MessageLanguage(), screenshot_dir.c_str());
      return 0;
    }
    tarnsheets::QtToolkit toolkit;
    tarnsheets::DemoWindow window(toolkit, database, tarnsheets::DemoConfigDirectory());
    window.show();
    if (!window.ShowControl(control.empty() ? "Opportunity" : control)) return 1;
    return app.exec();
  } catch (const tarnsheets::Failure& f) {
    std::fprintf(stderr, "tarnsheets-demo: %s\n", f.Description().c_str());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "tarnsheets-demo: %s\n", e.what());
    return 1;
  }
}
