// A Netscape plug-in host that counts. It loads one plug-in library, fills the browser's function
// table and keeps a book on everything that passes through it: calls and their threads, objects,
// memory, identifiers, queued calls. One host at a time in a process; all of it belongs to the
// constructing thread, which plays the browser's. Only the functions of the table are called from
// elsewhere, and only NPN_PluginThreadAsyncCall may be.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "browsers/gecko/netscape_plugin_api.h"
#include "tests/host/async_calls.h"
#include "tests/host/browser_memory.h"
#include "tests/host/call_log.h"
#include "tests/host/faults.h"
#include "tests/host/guarded_bytes.h"
#include "tests/host/identifiers.h"
#include "tests/host/objects.h"
#include "tests/host/page.h"

namespace Vantrel::Web::Host {

// One NPN_GetURLNotify of the plug-in.
struct UrlRequest {
  NPP npp;
  std::string url;
  bool targetGiven;
};

// The table that NP_Initialize gets. It lies in guarded memory of exactly `bytes` bytes.
struct TableShape {
  uint16_t size = sizeof(NPNetscapeFuncs);
  size_t bytes = sizeof(NPNetscapeFuncs);
  std::function<void(NPNetscapeFuncs&)> edit = {};
};

class CountingHost {
 public:
  // Loads the library. Throws std::runtime_error when it or one of the three entries is missing.
  explicit CountingHost(std::wstring library);
  CountingHost(const CountingHost&) = delete;
  CountingHost& operator=(const CountingHost&) = delete;
  // Unloads the library if finish() did not.
  ~CountingHost();

  static CountingHost& current();

  // The three entries of the module.
  NPError initialize(const TableShape& shape = {});
  NPError initializeWithoutTable();
  NPError getEntryPoints();
  NPError getEntryPoints(NPPluginFuncs* table);
  NPError shutdown();
  // An exported function or datum of the library, null when there is none.
  void* symbol(const char* name) const;
  const void* module() const { return module_; }
  NPPluginFuncs& plugin() { return plugin_; }

  // Shuts the module down if it is initialised and gives the library back. Code of it that is still
  // on the stack goes on, if the library has seen to that.
  void unload();
  // Whether the library is in the process, loaded by whomever.
  bool mapped() const;
  // Threads that began in the library's code.
  size_t pluginThreads() const;
  // Unloads the module if that was not done, and closes the books. Returns all
  // faults, those of the books included: live objects, blocks, queued calls, threads, the mapped
  // library.
  std::vector<std::string> finish();

  // Runs window messages and queued calls until `done` or the time is over. Returns done().
  bool pumpUntil(const std::function<bool()>& done, uint64_t timeoutMs = 20000);
  void pumpFor(uint64_t ms);
  // Runs what waits now, once.
  void pumpOnce();

  Faults faults;
  CallLog calls;
  BrowserMemory memory;
  Identifiers identifiers;
  Objects objects;
  Page page;
  AsyncCalls async;
  std::vector<UrlRequest> urlRequests;
  NPError urlAnswer = NPERR_NO_ERROR;
  // What NPN_UserAgent answers; null when empty.
  std::optional<std::string> userAgent = "Mozilla/5.0 (Windows NT 6.1; rv:52.0) Firefox/52.0";
  // What NPN_GetValue answers for NPNVnetscapeWindow.
  void* topWindow = nullptr;
  int instances = 0;

 private:
  // Threads that came since the construction, those of the test program itself left out.
  size_t extraThreads() const;

  const std::wstring path_;
  const std::set<uint32_t> threadsBefore_;
  void* module_ = nullptr;
  bool loaded_ = false;
  NP_InitializeProcPtr initialize_ = nullptr;
  NP_GetEntryPointsProcPtr getEntryPoints_ = nullptr;
  NP_ShutdownProcPtr shutdown_ = nullptr;
  NPPluginFuncs plugin_{};
  bool initialized_ = false;
};

}  // namespace Vantrel::Web::Host
