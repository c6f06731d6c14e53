// For tests that replace imports: the real call behind one, found without GetProcAddress, which a
// test may have replaced as well.
#pragma once

#include <windows.h>
#include <winternl.h>

#include <cstdlib>
#include <cstring>

extern "C" NTSTATUS NTAPI LdrGetProcedureAddress(HMODULE module, const ANSI_STRING* name,
                                                 ULONG ordinal, void** address);

namespace ov {

// A library that is not there yet is loaded and stays.
template <typename Function>
Function real_call(const wchar_t* library, const char* name) {
  HMODULE module = GetModuleHandleW(library);
  if (module == nullptr) module = LoadLibraryW(library);
  const auto length = static_cast<USHORT>(std::strlen(name));
  const ANSI_STRING text = {length, length, const_cast<char*>(name)};
  void* address = nullptr;
  if (LdrGetProcedureAddress(module, &text, 0, &address) != 0) std::abort();
  Function function;
  std::memcpy(&function, &address, sizeof function);
  return function;
}

}  // namespace ov
