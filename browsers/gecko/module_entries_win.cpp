// The entries that a browser with the Netscape plug-in interface calls once per load and unload of
// the module, on its own thread.

#include <windows.h>
#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include <utility>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/instance_functions.h"
#include "browsers/gecko/stale_copies.h"
#include "browsers/shared/module_life.h"
#include "runtime/ov_log.h"
#include "threads/guarded.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::Gecko {

namespace {

ULONG_PTR gdiplusToken = 0;

// Between NP_Initialize and NP_Shutdown. A browser may call either twice.
bool started = false;

// What the platform needs of us; the module loads without any of it.
void startPlatform() {
  const Gdiplus::GdiplusStartupInput input(nullptr, FALSE, FALSE);
  Gdiplus::GdiplusStartup(&gdiplusToken, &input, nullptr);
  const HRESULT result = OleInitialize(nullptr);
  if (FAILED(result)) {
    ov_err("COrvaneWebApp::InitInstance() - OleInitialize failed: %x,",
           static_cast<unsigned>(result));
  }
}

NPError initialize(const NPNetscapeFuncs& funcs) {
  if (!std::exchange(started, true)) {
    startModule();
    guarded(removeStalePluginCopies);
    startPlatform();
  }
  ov_log("\n\nInitializing Orvane Web Gecko plugin\n");
  OV_DEBUG("OW_PopulateNetscapeFunctionTable()");
  copyBrowserFunctions(funcs);
  RunnableScheduler::init();
  return NPERR_NO_ERROR;
}

// A browser that gives no table gets no face: only the module starts, so that the log tells of it.
NPError refuseNullTable() {
  const ModuleStart start;
  ov_err("OW_PopulateNetscapeFunctionTable() - Null argument");
  return NPERR_INVALID_FUNCTABLE_ERROR;
}

// Browsers of this platform ask before NP_Initialize.
NPError entryPoints(NPPluginFuncs* funcs) {
  const ModuleStart start;
  OV_DEBUG("NP_GetEntryPoints()");
  return OW_PopulatePluginFunctionTable(funcs);
}

void shutdown() {
  ov_log("Shutting down Orvane Web Gecko plugin");
  if (!std::exchange(started, false)) return;
  endModule();
  OleUninitialize();
  Gdiplus::GdiplusShutdown(gdiplusToken);
  gdiplusToken = 0;
}

}  // namespace

}  // namespace Vantrel::Web::Gecko

extern "C" {

NPError NP_ABI NP_Initialize(NPNetscapeFuncs* funcs) {
  using namespace Vantrel::Web;
  return guarded(NPERR_GENERIC_ERROR, [funcs] {
    return funcs != nullptr ? Gecko::initialize(*funcs) : Gecko::refuseNullTable();
  });
}

NPError NP_ABI NP_GetEntryPoints(NPPluginFuncs* funcs) {
  using namespace Vantrel::Web;
  return guarded(NPERR_GENERIC_ERROR, [funcs] { return Gecko::entryPoints(funcs); });
}

NPError NP_ABI NP_Shutdown() {
  Vantrel::Web::guarded(Vantrel::Web::Gecko::shutdown);
  return NPERR_NO_ERROR;
}

}  // extern "C"
