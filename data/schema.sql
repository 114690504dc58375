-- The fixed part of the sample sales database. The entity tables (one per sheet, with the form
-- tags as columns) are created by the generator from the forms themselves.

-- How each column is shown: DataType, DateKind, NumberKind, Updatable and, for money columns, the
-- column that holds the currency code.
CREATE TABLE tarn_field_meta (
  table_name TEXT NOT NULL,
  column_name TEXT NOT NULL,
  data_type INTEGER,
  date_kind INTEGER,
  number_kind INTEGER,
  updatable INTEGER,
  reference_name TEXT,
  PRIMARY KEY (table_name, column_name)
);

-- Currencies with their symbols; money columns point here through their currency column.
CREATE TABLE Currency (
  CurrencyCode TEXT PRIMARY KEY,
  CurrencyName TEXT NOT NULL,
  ChineseName TEXT,
  Symbol TEXT NOT NULL,
  ExchangeRate REAL
);

-- The values a drop button offers for a column.
CREATE TABLE LookupValue (
  ColumnName TEXT NOT NULL,
  SortOrder INTEGER NOT NULL,
  Value TEXT NOT NULL,
  ChineseValue TEXT,
  PRIMARY KEY (ColumnName, SortOrder)
);

-- The table of titles: every title in both languages, grouped by ColumnName (the sheet's class).
CREATE TABLE SheetTitles (
  ColumnName TEXT NOT NULL,
  EnglishDisplayColumnName TEXT,
  ChineseDisplayColumnName TEXT,
  Name TEXT NOT NULL,
  EnglishDecription TEXT,
  ChineseDecription TEXT,
  EnglishDisplayName TEXT,
  ChineseDisplayName TEXT,
  MultiLine INTEGER,
  DisplayFormat TEXT,
  DisplayCommand INTEGER
);
CREATE INDEX SheetTitlesByGroup ON SheetTitles (ColumnName);
