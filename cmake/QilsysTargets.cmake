# What every target of this tree shares: warnings, the system's name in file suffixes, test programs.

find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(TBB REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc)
find_package(PkgConfig REQUIRED)

if(WIN32)
  set(QILSYS_SYSTEM win)
else()
  set(QILSYS_SYSTEM linux)
endif()

add_library(qilsys_warnings INTERFACE)
target_compile_options(qilsys_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)

# Adds a test program NAME_tests from SOURCES; it links the compiled code itself, so that it sees inside.
function(qilsys_add_tests name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name}_tests ${arg_SOURCES})
  target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name}_tests PRIVATE qilsys_inside qilsys_warnings GTest::gmock GTest::gtest_main ${arg_LIBRARIES})
  gtest_discover_tests(${name}_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300 LABELS "${name};${arg_LABELS}")
endfunction()
