// The library of a control, loaded by its path and asked for its class objects without any
// registration. Shared by the containers of a process; made and ended by one thread.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <cstdint>
#include <set>
#include <string>

#include "tests/host/faults.h"

namespace Vantrel::Web::Container {

class ControlLibrary {
 public:
  // Throws std::runtime_error when the library or one of its two entries is missing.
  explicit ControlLibrary(std::wstring path);
  ControlLibrary(const ControlLibrary&) = delete;
  ControlLibrary& operator=(const ControlLibrary&) = delete;
  ~ControlLibrary();

  // The two entries.
  HRESULT classObject(REFCLSID classId, REFIID id, void** result) const;
  HRESULT canUnload() const { return canUnload_(); }
  // A new object of that class. `outer` as in IClassFactory.
  HRESULT create(REFCLSID classId, IUnknown* outer, REFIID id, void** result) const;
  HMODULE module() const { return module_; }

  // Asks whether it may be unloaded, unloads it and looks what is left of it: threads, the mapping.
  void finish(Host::Faults& faults);

 private:
  using ClassObjectEntry = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  using CanUnloadEntry = HRESULT(STDAPICALLTYPE*)();

  size_t extraThreads() const;

  const std::wstring path_;
  const std::set<uint32_t> threadsBefore_;
  HMODULE module_ = nullptr;
  ClassObjectEntry classObject_ = nullptr;
  CanUnloadEntry canUnload_ = nullptr;
};

}  // namespace Vantrel::Web::Container
