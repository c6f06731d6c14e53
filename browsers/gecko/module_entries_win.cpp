// The entries that a browser with the Netscape plug-in interface calls once per load and unload of
// the module, on its own thread.

#include <windows.h>
#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include <exception>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/instance_functions.h"
#include "browsers/gecko/stale_copies.h"
#include "browsers/shared/plugin_log.h"
#include "runtime/ov_log.h"
#include "runtime/ov_time.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::Gecko {

namespace {

ULONG_PTR gdiplusToken = 0;

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

void startModule() {
  try {
    ov_time_init();
    plugin_log_init();
    removeStalePluginCopies();
    startPlatform();
  } catch (const std::exception&) {
    // Without a log there is nobody to tell; the module still works.
  }
}

NPError initialize(const NPNetscapeFuncs* funcs) {
  startModule();
  ov_log("\n\nInitializing Orvane Web Gecko plugin\n");
  OV_DEBUG("OW_PopulateNetscapeFunctionTable()");
  copyBrowserFunctions(*funcs);
  RunnableScheduler::init();
  return NPERR_NO_ERROR;
}

// A browser that gives no table gets no module: nothing of it stays behind.
NPError refuseNullTable() {
  try {
    ov_time_init();
    plugin_log_init();
    ov_err("OW_PopulateNetscapeFunctionTable() - Null argument");
    plugin_log_shutdown();
  } catch (const std::exception&) {
    // Without a log there is nobody to tell.
  }
  return NPERR_INVALID_FUNCTABLE_ERROR;
}

void shutdown() {
  ov_log("Shutting down Orvane Web Gecko plugin");
  RunnableScheduler::cleanup();
  freeUndeliveredCalls();
  plugin_log_shutdown();
  OleUninitialize();
  Gdiplus::GdiplusShutdown(gdiplusToken);
  gdiplusToken = 0;
}

}  // namespace

}  // namespace Vantrel::Web::Gecko

extern "C" {

NPError NP_ABI NP_Initialize(NPNetscapeFuncs* funcs) {
  try {
    return funcs != nullptr ? Vantrel::Web::Gecko::initialize(funcs)
                            : Vantrel::Web::Gecko::refuseNullTable();
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
    return NPERR_GENERIC_ERROR;
  }
}

NPError NP_ABI NP_GetEntryPoints(NPPluginFuncs* funcs) {
  OV_DEBUG("NP_GetEntryPoints()");
  return Vantrel::Web::Gecko::OW_PopulatePluginFunctionTable(funcs);
}

NPError NP_ABI NP_Shutdown() {
  try {
    Vantrel::Web::Gecko::shutdown();
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
  return NPERR_NO_ERROR;
}

}  // extern "C"
