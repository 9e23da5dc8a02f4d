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
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --config ${CONFIG} --prefix ${WORK_DIR}/first)
# An installed tree may be moved: nothing in it names the place.
file(RENAME ${WORK_DIR}/first ${WORK_DIR}/prefix)

# The consumer is built as the library was.
set(configure -G ${GENERATOR} -D CMAKE_BUILD_TYPE=${CONFIG})
if(PLATFORM)
  list(APPEND configure -A ${PLATFORM})
endif()
if(NOT GENERATOR MATCHES "Visual Studio")
  list(APPEND configure -D CMAKE_CXX_COMPILER=${CXX})
endif()
if(TOOLCHAIN)
  list(APPEND configure -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
endif()
if(CROSS)
  # What is looked for on another system is looked for below these roots only.
  list(APPEND configure -D CMAKE_FIND_ROOT_PATH=${WORK_DIR}/prefix -D QILSYS_WINDOWS_PREFIX=${TOOLCHAIN_PREFIX})
  # By the package the program is built with nothing else; Wine looks here for the library.
  set(ENV{WINEPATH} "Z:${WORK_DIR}/prefix/bin")
elseif(SYSTEM STREQUAL win)
  # First the installed library, then what it stands on, which lies beside the built one.
  set(ENV{PATH} "${WORK_DIR}/prefix/bin;${LIBRARY_DIR};$ENV{PATH}")
endif()

# The expression keeps generators of several configurations from adding a folder for each.
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/by-cmake ${configure} -D CMAKE_PREFIX_PATH=${WORK_DIR}/prefix
    -D CMAKE_RUNTIME_OUTPUT_DIRECTORY=${WORK_DIR}/by-cmake/bin$<0:>)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/by-cmake --config ${CONFIG})
run(${EMULATOR} ${WORK_DIR}/by-cmake/bin/consumer${SUFFIX})
expect_consumer_output()

if(MSVC)
  message("left out: MSVC takes no flags of pkg-config")
  return()
endif()
set(ENV{PKG_CONFIG_PATH} ${WORK_DIR}/prefix/${LIBDIR}/pkgconfig)
run(pkg-config --cflags --libs qilsys)
separate_arguments(flags UNIX_COMMAND "${output}")
if(CROSS)
  # The header of the status codes, which stands where every compiler looks if it is this system's.
  list(APPEND flags -I${GRPC_INCLUDE_DIR})
endif()
run(${CXX} -std=c++20 ${CONSUMER_DIR}/main.cpp -o ${WORK_DIR}/by-pkg-config${SUFFIX} ${flags})
set(ENV{LD_LIBRARY_PATH} ${WORK_DIR}/prefix/${LIBDIR})
run(${EMULATOR} ${WORK_DIR}/by-pkg-config${SUFFIX})
expect_consumer_output()
