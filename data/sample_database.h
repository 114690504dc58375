// The sample sales database: one table per entity sheet, Appointment and Currency, with the form
// tags as columns, realistic rows in English and Chinese, lookup values for the drop buttons and
// the table of titles in both languages. The same seed always gives the same database.
#ifndef TARNSHEETS_DATA_SAMPLE_DATABASE_H_
#define TARNSHEETS_DATA_SAMPLE_DATABASE_H_

#include <cstdint>
#include <string>

namespace tarnsheets {

struct SampleDatabaseOptions {
  int64_t opportunities = 1000;  // rows of the Opportunity table
  int64_t rows_per_table = 40;   // rows of every other entity table and of Appointment
  uint64_t seed = 20260301;
};

// Creates the database at `path`, which must not exist yet. Fails with Failure(kErrDatabase)
// saying what failed; a partly written file is removed.
void BuildSampleDatabase(const std::string& path, const SampleDatabaseOptions& options = {});

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATA_SAMPLE_DATABASE_H_
