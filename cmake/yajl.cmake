# yajl from Debian's source package, unpacked with its security patches by scripts/fetch-yajl.sh.
# The package's own build description knows only MSVC on Windows, so its nine sources get a small
# target of ours.
set(yajl_root ${PROJECT_SOURCE_DIR}/build/deps/yajl)
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/fetch-yajl.sh ${yajl_root}
                RESULT_VARIABLE yajl_fetched)
if(NOT yajl_fetched EQUAL 0)
  message(FATAL_ERROR "yajl: its source package could not be unpacked into build/deps/yajl")
endif()
set(yajl_source ${yajl_root}/source)
set(yajl_include ${CMAKE_CURRENT_BINARY_DIR}/yajl-include)
set(YAJL_MAJOR 2)
set(YAJL_MINOR 1)
set(YAJL_MICRO 0)
configure_file(${yajl_source}/src/api/yajl_version.h.cmake ${yajl_include}/yajl/yajl_version.h)
file(GLOB yajl_headers ${yajl_source}/src/api/*.h)
file(COPY ${yajl_headers} DESTINATION ${yajl_include}/yajl)
add_library(yajl STATIC
    ${yajl_source}/src/yajl.c ${yajl_source}/src/yajl_alloc.c ${yajl_source}/src/yajl_buf.c
    ${yajl_source}/src/yajl_encode.c ${yajl_source}/src/yajl_gen.c ${yajl_source}/src/yajl_lex.c
    ${yajl_source}/src/yajl_parser.c ${yajl_source}/src/yajl_tree.c ${yajl_source}/src/yajl_version.c)
target_include_directories(yajl SYSTEM PUBLIC ${yajl_include})
target_compile_options(yajl PRIVATE -w)
set_source_files_properties(${yajl_source}/src/yajl_tree.c PROPERTIES
    COMPILE_OPTIONS "-include;${PROJECT_SOURCE_DIR}/cmake/yajl_growth.h"
    OBJECT_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/yajl_growth.h)
