# tarnsheets_library(NAME SOURCES ... [DEPS ...])
#   A static library of our own with the public headers under include/ visible.
function(tarnsheets_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:include>)
  if(ARG_DEPS)
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  endif()
endfunction()

# tarnsheets_test(NAME SOURCES ... [DEPS ...])
#   A GoogleTest executable registered with CTest, test by test.
function(tarnsheets_test name)
  if(NOT TARNSHEETS_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ENVIRONMENT "LC_ALL=C")
endfunction()
