# Compiler and linker flags of all our own targets; third-party code is built without the warnings.
#
# ov_flags is an interface target: every library and program of ours links it.
add_library(ov_flags INTERFACE)
target_compile_features(ov_flags INTERFACE cxx_std_20 c_std_11)
target_include_directories(ov_flags INTERFACE ${PROJECT_SOURCE_DIR})
set(ov_warnings -Wall -Wextra -Werror -Wshadow -Wconversion -Wsign-conversion -Wformat=2 -Wundef
    -Wcast-qual -Wvla)
set(ov_cxx_warnings -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wextra-semi)
target_compile_options(ov_flags INTERFACE
    ${ov_warnings}
    $<$<COMPILE_LANGUAGE:CXX>:${ov_cxx_warnings}>
    -fstack-protector-strong)

if(WIN32)
  target_compile_definitions(ov_flags INTERFACE
      UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601 __USE_MINGW_ANSI_STDIO=1)
  # dbghelp names functions from DWARF 4 and older only; the compiler's default is 5.
  # Unreferenced functions go: the static C++ runtime brings many that nobody calls.
  target_compile_options(ov_flags INTERFACE -gdwarf-4 -ffunction-sections -fdata-sections)
  # The stack protector's own functions come with the flag at the link.
  target_link_options(ov_flags INTERFACE
      -fstack-protector-strong -static -Wl,--gc-sections -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat)
elseif(OV_SANITIZE)
  # Everything in this build is instrumented, the third-party code too, so that its memory is seen.
  add_compile_options(-fsanitize=${OV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${OV_SANITIZE})
endif()
