// tarnsheets-script: plays scripts of host calls, user actions and data-source calls against one
// public control on the headless toolkit and prints the transcript of what the host sees.
//
//   tarnsheets-script [--trace-ds] [FILE ...]      # no FILE: read standard input
//
// Exit status 0 when every line ran; 2 on a malformed line, with "file:line: message" on standard
// error and the transcript up to that line on standard output.
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "apps/script/script_host.h"

namespace {

constexpr const char kUsage[] = "usage: tarnsheets-script [--trace-ds] [FILE ...]\n";

// The directory part of a path ("" for a bare file name).
std::string DirectoryOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return "";
  return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

int main(int argc, char** argv) {
  tarnsheets::ScriptOptions options;
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--trace-ds") {
      options.trace_ds = true;
    } else if (arg == "--help" || arg == "-h") {
      std::cout << kUsage;
      return 0;
    } else if (arg.size() > 1 && arg[0] == '-' && arg != "-") {
      std::cerr << "tarnsheets-script: unknown option " << arg << "\n" << kUsage;
      return 2;
    } else {
      files.push_back(arg);
    }
  }
  if (files.empty()) files.push_back("-");

  tarnsheets::ScriptHost host(std::cout, options);
  for (const std::string& file : files) {
    std::ostringstream text;
    std::string name = file;
    std::string base_dir;
    if (file == "-") {
      text << std::cin.rdbuf();
      name = "<stdin>";
    } else {
      std::ifstream in(file, std::ios::binary);
      if (!in) {
        std::cout.flush();
        std::cerr << file << ":0: cannot read the script file\n";
        return 2;
      }
      text << in.rdbuf();
      base_dir = DirectoryOf(file);
    }
    if (const auto failure = host.Run(text.str(), name, base_dir)) {
      std::cout.flush();
      std::cerr << failure->ToString() << "\n";
      return 2;
    }
  }
  std::cout.flush();
  return 0;
}
