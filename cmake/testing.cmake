# GoogleTest from Debian's source package, and ov_test(), which makes one test program.
#
# ov_test(name SOURCES ... LIBS ... [PROPERTIES ...]): a program of GoogleTest cases; CTest runs
# every case in a process of its own, so a crash fails one case and a hang is that case's time-out.
enable_testing()
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
include(GoogleTest)

# How test sources are compiled, behind all other flags: what they check is compiled as it ships; they
# themselves need a quick compiler and lines in a backtrace. Without any optimization GCC keeps
# thousands of small functions, over which the linker for Windows takes four times as long; with
# little of it GCC takes more for uninitialized than there is.
add_library(ov_test_flags INTERFACE)
target_compile_options(ov_test_flags INTERFACE
    -g1 "$<$<CXX_COMPILER_ID:GNU>:-Og;-Wno-maybe-uninitialized>")
target_link_libraries(ov_test_flags INTERFACE gmock)

# The headers that nearly every test has, parsed once for each preset. Test sources include what they
# use all the same: clang-tidy reads them without this.
add_library(ov_test_headers OBJECT ${CMAKE_CURRENT_LIST_DIR}/test_headers.cpp)
target_link_libraries(ov_test_headers PRIVATE ov_flags ov_test_flags)
target_precompile_headers(ov_test_headers PRIVATE
    <gmock/gmock.h> <gtest/gtest.h> <algorithm> <array> <atomic> <chrono> <cstdint> <cstring>
    <filesystem> <fstream> <functional> <map> <memory> <mutex> <optional> <sstream> <string>
    <string_view> <thread> <vector>)

# ov_test_target(name LIBS): links what a program or a library of test sources needs, and compiles it
# as they are.
function(ov_test_target name)
  target_link_libraries(${name} PRIVATE ov_flags ${ARGN} ov_test_flags)
  target_precompile_headers(${name} REUSE_FROM ov_test_headers)
  get_target_property(c_sources ${name} SOURCES)
  list(FILTER c_sources INCLUDE REGEX "\\.c$")
  set_source_files_properties(${c_sources} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
endfunction()

function(ov_test name)
  cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LIBS;PROPERTIES" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  add_executable(${name} ${arg_SOURCES})
  ov_test_target(${name} ${arg_LIBS} gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${arg_TIMEOUT} ${arg_PROPERTIES})
endfunction()
