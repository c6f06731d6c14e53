// For tests that replace imports: the real call behind one, found without any import that a test
// may have replaced as well.
#pragma once

#include <windows.h>
#include <winternl.h>

#include <cstdlib>
#include <cstring>

extern "C" NTSTATUS NTAPI LdrGetProcedureAddress(HMODULE module, const ANSI_STRING* name,
                                                 ULONG ordinal, void** address);

namespace ov {

template <typename Function>
Function unreplaced_call(const wchar_t* module, const char* name) {
  const auto length = static_cast<USHORT>(std::strlen(name));
  const ANSI_STRING text = {length, length, const_cast<char*>(name)};
  void* address = nullptr;
  if (LdrGetProcedureAddress(GetModuleHandleW(module), &text, 0, &address) != 0) std::abort();
  Function function;
  std::memcpy(&function, &address, sizeof function);
  return function;
}

}  // namespace ov
