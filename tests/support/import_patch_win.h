// For a scope, a call that a loaded library imports goes to a function of the test's. One at a time
// for each call; the library must not be in it at either end.
#pragma once

#include <windows.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace Vantrel::Web::TestSupport {

class ImportPatch {
 public:
  // Throws std::runtime_error if the library does not import a function of that name.
  template <typename Function>
  ImportPatch(HMODULE library, const char* name, Function* replacement)
      : slot_(slotOf(library, name)), former_(*slot_) {
    write(reinterpret_cast<ULONGLONG>(replacement));
  }
  ~ImportPatch() { write(former_); }
  ImportPatch(const ImportPatch&) = delete;
  ImportPatch& operator=(const ImportPatch&) = delete;

  // The library's own call.
  template <typename Function>
  Function* former() const {
    return reinterpret_cast<Function*>(former_);
  }

 private:
  template <typename T>
  static T* at(HMODULE library, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(library) + offset);
  }

  static ULONGLONG* slotOf(HMODULE library, const char* name) {
    const auto* const dos = at<IMAGE_DOS_HEADER>(library, 0);
    const auto* const headers = at<IMAGE_NT_HEADERS64>(library, static_cast<size_t>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* module = at<IMAGE_IMPORT_DESCRIPTOR>(library, directory.VirtualAddress);
         module->Name != 0; ++module) {
      const auto* names = at<IMAGE_THUNK_DATA64>(library, module->OriginalFirstThunk);
      auto* slots = at<IMAGE_THUNK_DATA64>(library, module->FirstThunk);
      for (; names->u1.AddressOfData != 0; ++names, ++slots) {
        if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
        const auto* const entry = at<IMAGE_IMPORT_BY_NAME>(library, names->u1.AddressOfData);
        if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) {
          return &slots->u1.Function;
        }
      }
    }
    throw std::runtime_error(std::string("no import of ") + name);
  }

  void write(ULONGLONG value) {
    DWORD protection = 0;
    VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &protection);
    *slot_ = value;
    VirtualProtect(slot_, sizeof *slot_, protection, &protection);
  }

  ULONGLONG* const slot_;
  const ULONGLONG former_;
};

}  // namespace Vantrel::Web::TestSupport
