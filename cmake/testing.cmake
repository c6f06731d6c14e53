# GoogleTest from Debian's source package, and ov_test(), which makes one test program.
#
# ov_test(name SOURCES ... LIBS ... [PROPERTIES ...]): a program of GoogleTest cases; CTest runs
# every case in a process of its own, so a crash fails one case and a hang is that case's time-out.
enable_testing()
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
include(GoogleTest)

function(ov_test name)
  cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LIBS;PROPERTIES" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ov_flags ${arg_LIBS} gtest_main gmock)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${arg_TIMEOUT} ${arg_PROPERTIES})
endfunction()
