# The Opportunity sheet on the Qt toolkit over the SQLite source, side by side with Qt's
# QDataWidgetMapper over a QSqlTableModel, at 10,000 and 1,000,000 rows. Built only with the Qt
# toolkit, the SQLite source and Qt's Sql module.
if(TARGET tarnsheets_qt AND TARGET tarnsheets_sqlite AND TARGET tarnsheets_sample_data)
  find_package(Qt6 QUIET COMPONENTS Widgets Sql)
  if(Qt6Widgets_FOUND AND Qt6Sql_FOUND)
    # Under the sanitizers, the Qt toolkit's leak suppressions (fontconfig's and Qt's caches that
    # live until the process ends) apply here too.
    add_executable(side_by_side_bench ${CMAKE_CURRENT_LIST_DIR}/side_by_side_bench.cc
      ${PROJECT_SOURCE_DIR}/toolkits/qt/lsan_suppressions.cc)
    target_link_libraries(side_by_side_bench PRIVATE
      tarnsheets_qt tarnsheets_sample_data tarnsheets_sqlite tarnsheets_family Qt6::Widgets
      Qt6::Sql)
    # The smoke run in the test suite takes the small size and few repetitions only; the numbers
    # come from a separate run in an optimised build.
    add_test(NAME side_by_side_bench_smoke
      COMMAND side_by_side_bench --rows 10000 --repetitions 2 --moves 200 --jumps 3)
    set_tests_properties(side_by_side_bench_smoke PROPERTIES
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C" TIMEOUT 120 LABELS qt)
  else()
    message(STATUS "TarnSheets: Qt6 Sql not found; the side-by-side benchmark is not built")
  endif()
endif()
