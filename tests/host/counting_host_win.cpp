#include "tests/host/counting_host.h"

#include <windows.h>

#include <cstring>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "tests/host/browser_functions.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::Host {

namespace {

CountingHost* currentHost = nullptr;

constexpr uint64_t kThreadEndMs = 2000;

}  // namespace

CountingHost& CountingHost::current() {
  return *currentHost;
}

CountingHost::CountingHost(std::wstring library)
    : calls(faults),
      memory(faults),
      identifiers(faults, memory),
      objects(faults),
      page(faults, objects, memory, identifiers),
      path_(std::move(library)),
      threadsBefore_(threadIds()) {
  if (currentHost != nullptr) throw std::runtime_error("there is a host already");
  module_ = LoadLibraryW(path_.c_str());
  if (module_ == nullptr) {
    throw std::runtime_error("LoadLibrary failed: " + std::to_string(GetLastError()));
  }
  loaded_ = true;
  const auto resolve = [this](auto& function, const char* name) {
    void* address = symbol(name);
    if (address == nullptr) throw std::runtime_error(std::string("no entry ") + name);
    std::memcpy(&function, &address, sizeof function);
  };
  resolve(initialize_, "NP_Initialize");
  resolve(getEntryPoints_, "NP_GetEntryPoints");
  resolve(shutdown_, "NP_Shutdown");
  currentHost = this;
}

CountingHost::~CountingHost() {
  if (loaded_) FreeLibrary(static_cast<HMODULE>(module_));
  currentHost = nullptr;
}

void* CountingHost::symbol(const char* name) const {
  const FARPROC address = GetProcAddress(static_cast<HMODULE>(module_), name);
  void* pointer;
  std::memcpy(&pointer, &address, sizeof pointer);
  return pointer;
}

NPError CountingHost::initialize(const TableShape& shape) {
  NPNetscapeFuncs table;
  fillBrowserFunctions(table);
  table.size = shape.size;
  if (shape.edit) shape.edit(table);
  const GuardedBytes bytes(shape.bytes);
  std::memset(bytes.data(), 0x5A, bytes.size());
  std::memcpy(bytes.data(), &table, std::min(bytes.size(), sizeof table));
  const NPError error =
      initialize_(static_cast<NPNetscapeFuncs*>(static_cast<void*>(bytes.data())));
  initialized_ = error == NPERR_NO_ERROR;
  return error;
}

NPError CountingHost::initializeWithoutTable() {
  return initialize_(nullptr);
}

NPError CountingHost::getEntryPoints() {
  plugin_ = {};
  plugin_.size = sizeof plugin_;
  return getEntryPoints_(&plugin_);
}

NPError CountingHost::getEntryPoints(NPPluginFuncs* table) {
  return getEntryPoints_(table);
}

NPError CountingHost::shutdown() {
  initialized_ = false;
  return shutdown_();
}

void CountingHost::unload() {
  if (instances != 0) faults.add("an instance was never destroyed");
  if (initialized_) shutdown();
  if (const size_t ours = pluginThreads(); ours != 0) {
    faults.add(std::to_string(ours) + " threads of the plug-in are alive");
  }
  loaded_ = false;
  FreeLibrary(static_cast<HMODULE>(module_));
}

size_t CountingHost::pluginThreads() const {
  return threadsStartedIn(module_).size();
}

bool CountingHost::mapped() const {
  return moduleMapped(path_);
}

std::vector<std::string> CountingHost::finish() {
  if (loaded_) {
    // An instance that ended inside a call of its page's gives the library back at the next
    // messages.
    const uint64_t release = milliseconds() + kThreadEndMs;
    while (pluginThreads() != 0 && milliseconds() < release) {
      pumpMessages();
      pause();
    }
    unload();
  }
  if (mapped()) faults.add("the library is still mapped");
  // A joined thread leaves the system's list a moment after its handle is signalled.
  const uint64_t deadline = milliseconds() + kThreadEndMs;
  while (extraThreads() != 0 && milliseconds() < deadline) pause();
  if (extraThreads() != 0) faults.add(std::to_string(extraThreads()) + " threads more than before");
  memory.check();
  if (memory.live() != 0) {
    faults.add(std::to_string(memory.live()) + " blocks of browser memory were never freed, " +
               std::to_string(memory.live(kPluginBlock)) + " of them the plug-in's");
  }
  for (const std::string& line : objects.describe()) faults.add("live object - " + line);
  if (async.waiting() != 0) faults.add("queued calls are left");
  return faults.take();
}

size_t CountingHost::extraThreads() const {
  std::set<uint32_t> others = threadsStartedIn(GetModuleHandleW(nullptr));
  others.merge(threadsOfCom());
  size_t count = 0;
  for (const uint32_t id : threadIds()) {
    if (!threadsBefore_.contains(id) && !others.contains(id)) ++count;
  }
  return count;
}

void CountingHost::pumpOnce() {
  pumpMessages();
  async.run();
}

bool CountingHost::pumpUntil(const std::function<bool()>& done, uint64_t timeoutMs) {
  const uint64_t deadline = milliseconds() + timeoutMs;
  while (!done()) {
    if (milliseconds() > deadline) return false;
    pumpOnce();
    pause();
  }
  return true;
}

void CountingHost::pumpFor(uint64_t ms) {
  pumpUntil([] { return false; }, ms);
}

}  // namespace Vantrel::Web::Host
