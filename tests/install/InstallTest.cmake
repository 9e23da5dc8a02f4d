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

run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/by-cmake -G Ninja -D CMAKE_CXX_COMPILER=${CXX}
    -D CMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/by-cmake)
run(${WORK_DIR}/by-cmake/consumer)
expect_consumer_output()

set(ENV{PKG_CONFIG_PATH} ${WORK_DIR}/prefix/${LIBDIR}/pkgconfig)
run(pkg-config --cflags --libs qilsys)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${CXX} -std=c++20 ${CONSUMER_DIR}/main.cpp -o ${WORK_DIR}/by-pkg-config ${flags})
set(ENV{LD_LIBRARY_PATH} ${WORK_DIR}/prefix/${LIBDIR})
run(${WORK_DIR}/by-pkg-config)
expect_consumer_output()
