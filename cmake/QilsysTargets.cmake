# What every target of this tree shares: dependencies, warnings, sanitizers, the system's name in file suffixes, and
# the functions that make test, benchmark and fuzz programs.

find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(TBB REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc)

# Only the header of the status codes is used; nothing of gRPC is linked.
find_path(QILSYS_GRPC_INCLUDE_DIR grpcpp/support/status_code_enum.h REQUIRED)
mark_as_advanced(QILSYS_GRPC_INCLUDE_DIR)

if(NOT WIN32)
  # Stack walks open libdw when there is one; what is needed to build is its headers.
  find_path(QILSYS_LIBDW_INCLUDE_DIR elfutils/libdwfl.h REQUIRED)
  mark_as_advanced(QILSYS_LIBDW_INCLUDE_DIR)
endif()

add_library(qilsys_grpc_header INTERFACE)
target_include_directories(qilsys_grpc_header SYSTEM INTERFACE ${QILSYS_GRPC_INCLUDE_DIR})

add_library(qilsys_dependencies INTERFACE)
target_link_libraries(qilsys_dependencies INTERFACE qilsys_grpc_header Threads::Threads Boost::headers TBB::tbb ICU::uc)
if(WIN32)
  target_compile_definitions(qilsys_dependencies INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
  target_link_libraries(qilsys_dependencies INTERFACE bcrypt psapi powrprof ws2_32 mswsock)
endif()

if(WIN32)
  set(QILSYS_SYSTEM win)
else()
  set(QILSYS_SYSTEM linux)
endif()

# Which processor's own instructions may be chosen from at run time: the suffix of the files that know them.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
  set(QILSYS_PROCESSOR x86)
else()
  set(QILSYS_PROCESSOR generic)
endif()

if(MSVC)
  # The language as the standard has it; sources are UTF-8; the tables of tests are larger than an object may be by default.
  add_compile_options(/utf-8 /permissive- /Zc:__cplusplus /Zc:preprocessor /Zc:inline /EHsc /bigobj)
else()
  # Part of C++ since 2014, which clang leaves out by default before version 19.
  add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,Clang>:-fsized-deallocation>)
endif()

option(QILSYS_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
option(QILSYS_TESTS_ONE_BY_ONE "Register every test case with CTest, rather than every test program" ON)
set(QILSYS_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined")

if((QILSYS_SANITIZE OR QILSYS_FUZZ) AND MSVC)
  message(FATAL_ERROR "QILSYS_SANITIZE and QILSYS_FUZZ are for GCC and Clang.")
endif()

if(QILSYS_SANITIZE)
  add_compile_options(-fsanitize=${QILSYS_SANITIZE} -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QILSYS_SANITIZE})
endif()

if(QILSYS_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(QILSYS_CCACHE ccache)
  mark_as_advanced(QILSYS_CCACHE)
  if(QILSYS_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QILSYS_CCACHE})
  endif()
endif()

add_library(qilsys_warnings INTERFACE)
if(MSVC)
  # 4324: what is aligned on purpose is padded on purpose.
  target_compile_options(qilsys_warnings INTERFACE /W4 /wd4324 $<$<BOOL:${QILSYS_WARNINGS_AS_ERRORS}>:/WX>)
else()
  target_compile_options(qilsys_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                                   $<$<BOOL:${QILSYS_WARNINGS_AS_ERRORS}>:-Werror>)
endif()

# Adds a test program NAME_tests from SOURCES; it links the compiled code itself, so that it sees inside. With OUTSIDE it
# links the shared library, as a host does.
function(qilsys_add_tests name)
  cmake_parse_arguments(arg "OUTSIDE" "" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name}_tests ${arg_SOURCES})
  if(arg_OUTSIDE)
    set(library qilsys::qilsys)
    if(WIN32)
      # Where the system looks for the library first.
      set_target_properties(${name}_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
    endif()
  else()
    set(library qilsys_inside)
  endif()
  target_link_libraries(${name}_tests PRIVATE ${library} qilsys_warnings qilsys_test_support GTest::gtest_main
                                              ${arg_LIBRARIES})
  if(QILSYS_TESTS_ONE_BY_ONE)
    # Rows of tables carry their name in the name of the test; their bytes say nothing more.
    gtest_discover_tests(${name}_tests NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300 LABELS "${name};${arg_LABELS}")
  else()
    # Under a sanitizer, and under Wine, starting the program costs more than most test cases.
    add_test(NAME ${name}_tests COMMAND ${name}_tests --gtest_brief=1 --gtest_output=xml:${name}_tests.xml)
    set_tests_properties(${name}_tests PROPERTIES TIMEOUT 900 LABELS "${name};${arg_LABELS}")
  endif()
endfunction()

# Adds a benchmark program NAME_benchmark from SOURCES, and a test that runs each of its benchmarks once, briefly.
function(qilsys_add_benchmark name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name}_benchmark ${arg_SOURCES})
  target_include_directories(${name}_benchmark PRIVATE ${PROJECT_SOURCE_DIR}/benchmarks)
  target_link_libraries(${name}_benchmark PRIVATE qilsys_inside qilsys_warnings benchmark::benchmark_main ${arg_LIBRARIES})
  set_property(GLOBAL APPEND PROPERTY QILSYS_BENCHMARKS ${name}_benchmark)
  if(QILSYS_BUILD_TESTS)
    # From version 1.8 on the flag takes a number of iterations; before, only a time.
    if(benchmark_VERSION VERSION_GREATER_EQUAL 1.8)
      set(once --benchmark_min_time=1x)
    else()
      set(once --benchmark_min_time=0.000001)
    endif()
    add_test(NAME ${name}_benchmark.once COMMAND ${name}_benchmark ${once})
    set_tests_properties(${name}_benchmark.once PROPERTIES TIMEOUT 300 LABELS benchmark)
  endif()
endfunction()

# Adds a fuzz program NAME_fuzz from SOURCES, which define LLVMFuzzerTestOneInput. With QILSYS_FUZZ and clang it is a
# libFuzzer program; else a small main replays the files of CORPUS, which is a test with every compiler.
function(qilsys_add_fuzz_target name)
  cmake_parse_arguments(arg "" "CORPUS" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name}_fuzz ${arg_SOURCES})
  target_link_libraries(${name}_fuzz PRIVATE qilsys_inside qilsys_warnings ${arg_LIBRARIES})
  get_filename_component(corpus "${arg_CORPUS}" ABSOLUTE)
  if(QILSYS_FUZZ)
    target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
    set(replay -runs=0 ${corpus})
  else()
    target_sources(${name}_fuzz PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/ReplayMain.cpp)
    set(replay ${corpus})
  endif()
  if(QILSYS_BUILD_TESTS)
    add_test(NAME ${name}_fuzz.replay COMMAND ${name}_fuzz ${replay})
    set_tests_properties(${name}_fuzz.replay PROPERTIES TIMEOUT 300 LABELS fuzz)
  endif()
endfunction()
