#include "tests/container/control_library_win.h"

#include <stdexcept>
#include <utility>

#include "dialogs/dialog_com_win.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::Container {

namespace {

constexpr uint64_t kThreadEndMs = 5000;

template <typename Entry>
Entry entryOf(HMODULE module, const char* name) {
  const FARPROC address = GetProcAddress(module, name);
  if (address == nullptr) throw std::runtime_error(std::string("the library has no ") + name);
  Entry entry;
  static_assert(sizeof entry == sizeof address);
  __builtin_memcpy(&entry, &address, sizeof entry);
  return entry;
}

}  // namespace

ControlLibrary::ControlLibrary(std::wstring path)
    : path_(std::move(path)),
      threadsBefore_(Host::threadIds()),
      module_(LoadLibraryW(path_.c_str())) {
  if (module_ == nullptr) throw std::runtime_error("the library cannot be loaded");
  classObject_ = entryOf<ClassObjectEntry>(module_, "DllGetClassObject");
  canUnload_ = entryOf<CanUnloadEntry>(module_, "DllCanUnloadNow");
}

ControlLibrary::~ControlLibrary() {
  if (module_ != nullptr) FreeLibrary(module_);
}

HRESULT ControlLibrary::classObject(REFCLSID classId, REFIID id, void** result) const {
  return classObject_(classId, id, result);
}

HRESULT ControlLibrary::create(REFCLSID classId, IUnknown* outer, REFIID id, void** result) const {
  ComPointer<IClassFactory> factory;
  const HRESULT found = classObject(classId, IID_IClassFactory, factory.putVoid());
  if (FAILED(found)) return found;
  return factory->CreateInstance(outer, id, result);
}

void ControlLibrary::finish(Host::Faults& faults) {
  if (canUnload() != S_OK) faults.add("the library says that it is still in use");
  // What a dialog has held goes as soon as this thread takes messages.
  const uint64_t deadline = Host::milliseconds() + kThreadEndMs;
  while (!Host::threadsStartedIn(module_).empty() && Host::milliseconds() < deadline) {
    Host::pumpMessages();
    Host::pause();
  }
  const size_t ours = Host::threadsStartedIn(module_).size();
  if (ours != 0) faults.add(std::to_string(ours) + " threads of the control are alive");
  FreeLibrary(std::exchange(module_, nullptr));
  if (Host::moduleMapped(path_)) faults.add("the library is still mapped");
  // A joined thread leaves the system's list a moment after its handle is signalled.
  const uint64_t threadsEnd = Host::milliseconds() + kThreadEndMs;
  while (extraThreads() != 0 && Host::milliseconds() < threadsEnd) Host::pause();
  if (extraThreads() != 0) faults.add(std::to_string(extraThreads()) + " threads more than before");
}

size_t ControlLibrary::extraThreads() const {
  std::set<uint32_t> others = Host::threadsStartedIn(GetModuleHandleW(nullptr));
  others.merge(Host::threadsOfCom());
  size_t count = 0;
  for (const uint32_t id : Host::threadIds()) {
    if (!threadsBefore_.contains(id) && !others.contains(id)) ++count;
  }
  return count;
}

}  // namespace Vantrel::Web::Container
