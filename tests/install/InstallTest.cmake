# Run with cmake -P: install, move the prefix, then build and run the consumer by CMake and by pkg-config.

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_consumer_output)
  if(NOT output MATCHES "the consumer works")
    message(FATAL_ERROR "the consumer printed: ${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/first)
# An installed tree may be moved: nothing in it names the place.
file(RENAME ${WORK_DIR}/first ${WORK_DIR}/prefix)

if(TOOLCHAIN)
  # What is looked for on another system is looked for below these roots only.
  set(toolchain -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -D CMAKE_FIND_ROOT_PATH=${WORK_DIR}/prefix
                -D QILSYS_WINDOWS_PREFIX=${TOOLCHAIN_PREFIX})
endif()
if(SYSTEM STREQUAL win)
  # Where the system, or Wine for it, looks for the library; by the package it is built with nothing else.
  set(ENV{PATH} "${WORK_DIR}/prefix/bin:$ENV{PATH}")
  set(ENV{WINEPATH} "Z:${WORK_DIR}/prefix/bin")
endif()

run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/by-cmake -G Ninja -D CMAKE_CXX_COMPILER=${CXX} ${toolchain}
    -D CMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/by-cmake)
run(${EMULATOR} ${WORK_DIR}/by-cmake/consumer${SUFFIX})
expect_consumer_output()

set(ENV{PKG_CONFIG_PATH} ${WORK_DIR}/prefix/${LIBDIR}/pkgconfig)
run(pkg-config --cflags --libs qilsys)
separate_arguments(flags UNIX_COMMAND "${output}")
if(TOOLCHAIN)
  # The header of the status codes, which stands where every compiler looks if it is this system's.
  list(APPEND flags -I${GRPC_INCLUDE_DIR})
endif()
run(${CXX} -std=c++20 ${CONSUMER_DIR}/main.cpp -o ${WORK_DIR}/by-pkg-config${SUFFIX} ${flags})
set(ENV{LD_LIBRARY_PATH} ${WORK_DIR}/prefix/${LIBDIR})
run(${EMULATOR} ${WORK_DIR}/by-pkg-config${SUFFIX})
expect_consumer_output()
