// tarnsheets-sample-db OUT.db [--opportunities N] [--rows N] [--seed N]
// Builds the sample sales database at OUT.db, which must not exist yet.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "data/sample_database.h"
#include "tarnsheets/failure.h"

namespace {

int Usage(const char* why) {
  std::fprintf(stderr,
               "tarnsheets-sample-db: %s\n"
               "usage: tarnsheets-sample-db OUT.db [--opportunities N] [--rows N] [--seed N]\n",
               why);
  return 2;
}

bool ReadCount(const char* text, long long* out) {
  char* end = nullptr;
  const long long v = std::strtoll(text, &end, 10);
  if (end == text || *end != '\0' || v < 0) return false;
  *out = v;
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::string out;
  tarnsheets::SampleDatabaseOptions options;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--opportunities" || arg == "--rows" || arg == "--seed") {
      long long v = 0;
      if (i + 1 >= argc || !ReadCount(argv[i + 1], &v)) {
        return Usage((arg + " needs a whole number of 0 or more").c_str());
      }
      ++i;
      if (arg == "--opportunities") options.opportunities = v;
      if (arg == "--rows") options.rows_per_table = v;
      if (arg == "--seed") options.seed = static_cast<uint64_t>(v);
    } else if (!arg.empty() && arg[0] == '-') {
      return Usage(("unknown option " + arg).c_str());
    } else if (out.empty()) {
      out = arg;
    } else {
      return Usage(("a second output file " + arg).c_str());
    }
  }
  if (out.empty()) return Usage("no output file");
  try {
    tarnsheets::BuildSampleDatabase(out, options);
  } catch (const tarnsheets::Failure& f) {
    std::fprintf(stderr, "tarnsheets-sample-db: %s\n", f.Description().c_str());
    return 1;
  }
  std::printf("%s: %lld opportunities, %lld rows in every other table\n", out.c_str(),
              static_cast<long long>(options.opportunities),
              static_cast<long long>(options.rows_per_table));
  return 0;
}
