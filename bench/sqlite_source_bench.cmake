# The SQLite data source next to raw SQLite, at 10,000 and 1,000,000 rows.
if(TARGET tarnsheets_sample_data)
  add_executable(sqlite_source_bench ${CMAKE_CURRENT_LIST_DIR}/sqlite_source_bench.cc)
  target_link_libraries(sqlite_source_bench PRIVATE tarnsheets_sample_data benchmark::benchmark)
  # The smoke run in the test suite takes the small size only.
  add_test(NAME sqlite_source_bench_smoke
    COMMAND sqlite_source_bench --benchmark_min_time=0.001 --benchmark_filter=/10000$)
endif()
