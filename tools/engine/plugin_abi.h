// The plug-in interface as this process sees it. The published header is compiled with the Windows
// calling convention, so its function types are those of the plug-in's library. The engine's own
// tables have the same members in the same order with the native convention: its pointers travel
// in the same records and pass through native() before they are called.
#pragma once

#define NP_ABI __attribute__((ms_abi))
#include "browsers/gecko/netscape_plugin_api.h"

namespace engine {

// The engine's function behind a pointer that was read from one of its tables.
template <typename Result, typename... Args>
auto native(Result(NP_ABI* function)(Args...)) {
  return reinterpret_cast<Result (*)(Args...)>(function);
}

// A native function as the member of a table that only the engine reads.
template <typename Result, typename... Args>
auto asTableMember(Result (*function)(Args...)) {
  return reinterpret_cast<Result(NP_ABI*)(Args...)>(function);
}

// The engine's window record has one member more than the Windows one.
struct EngineWindow {
  void* window;
  int32_t x, y;
  uint32_t width, height;
  NPRect clipRect;
  void* systemInfo;
  NPWindowType type;
};
static_assert(sizeof(EngineWindow) == 48 && offsetof(EngineWindow, type) == 40);

}  // namespace engine
