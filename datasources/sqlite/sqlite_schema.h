// The schema that the SQLite source reads and keeps besides the table or view it shows: the
// optional tables of ours (tarn_field_meta, tarn_source_key, tarn_row_count; see
// sqlite_data_source.h), the row counter's triggers, and the currency table. The source's own
// reading of its columns, key, view triggers and symbols (SqliteDataSource::ReadSchema,
// ChooseViewKey, ProbeViewTriggers, ReadSymbols, PrepareCounter) is in sqlite_schema.cc.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_SCHEMA_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_SCHEMA_H_

#include <sqlite3.h>

#include <string>

namespace tarnsheets {

// True when the database of `db` has a table called `name` (the optional metadata tables).
bool HasTable(sqlite3* db, const char* name);

// True when the row counter of `table` is installed: the table tarn_row_count with a row for
// `table`, and both of its triggers. Fails with Failure(kErrDatabase) when the schema cannot be
// read.
bool HasRowCounter(sqlite3* db, const std::string& table);

// Installs the row counter of `table` in the database of `db`: the table tarn_row_count, its row
// for `table` (filled by one COUNT(*)) and the triggers that keep it on every insert and delete.
// One transaction; fails with Failure(kErrDatabase) and changes nothing.
void InstallRowCounter(sqlite3* db, const std::string& table);

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_SCHEMA_H_
