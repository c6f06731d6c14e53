#include "browsers/gecko/instance_functions.h"

#include <memory>
#include <string>
#include <utility>

#include "browsers/gecko/orvane_web_plugin.h"
#include "runtime/ov_log.h"
#include "threads/guarded.h"

namespace Vantrel::Web::Gecko {

namespace {

// What the browser may be told to send at once.
constexpr int32_t kWriteReady = 0x0FFFFFFF;

ovOrvaneWebPlugin* pluginOf(NPP instance) {
  return instance != nullptr ? static_cast<ovOrvaneWebPlugin*>(instance->pdata) : nullptr;
}

// Runs `function` on the instance's plug-in, or gives `otherwise`; what it throws is logged.
template <class Result, class Function>
Result withPlugin(NPP instance, Result otherwise, Function function) {
  return guarded(otherwise, [&] {
    ovOrvaneWebPlugin* const plugin = pluginOf(instance);
    return plugin != nullptr ? function(*plugin) : otherwise;
  });
}

NPError NP_ABI NPP_New(NPMIMEType, NPP instance, uint16_t, int16_t argc, char* argn[], char* argv[],
                       NPSavedData*) {
  OV_DEBUG("NPP_New() [%p]", static_cast<void*>(instance));
  if (instance == nullptr) return NPERR_INVALID_INSTANCE_ERROR;
  const NPError error = guarded(NPERR_GENERIC_ERROR, [=] {
    OV_DEBUG("Plugin parameters:");
    ElementParameters parameters;
    for (int16_t i = 0; i < argc; ++i) {
      if (argn[i] == nullptr || argv[i] == nullptr) continue;
      OV_DEBUG("  %s = %s", argn[i], argv[i]);
      parameters[argn[i]] = argv[i];
    }
    instance->pdata = std::make_unique<ovOrvaneWebPlugin>(instance, parameters).release();
    return NPERR_NO_ERROR;
  });
  if (error == NPERR_NO_ERROR) OV_DEBUG("NPP_New() - done");
  return error;
}

NPError NP_ABI NPP_Destroy(NPP instance, NPSavedData**) {
  OV_DEBUG("NPP_Destroy() [%p]", static_cast<void*>(instance));
  if (instance == nullptr) {
    ov_err("NPP_Destroy() - Null instance");
    return NPERR_INVALID_INSTANCE_ERROR;
  }
  // Cleared last: the instance's own teardown may still be reached through it.
  delete pluginOf(instance);
  instance->pdata = nullptr;
  OV_DEBUG("NPP_Destroy() - done");
  return NPERR_NO_ERROR;
}

NPError NP_ABI NPP_SetWindow(NPP instance, NPWindow* window) {
  OV_DEBUG("NPP_SetWindow()");
  return withPlugin(instance, NPERR_INVALID_INSTANCE_ERROR, [=](ovOrvaneWebPlugin& plugin) {
    plugin.setWindow(window, instance);
    return NPERR_NO_ERROR;
  });
}

NPError NP_ABI NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable,
                             uint16_t* stype) {
  OV_DEBUG("NPP_NewStream()");
  return withPlugin(instance, NPERR_INVALID_INSTANCE_ERROR, [=](ovOrvaneWebPlugin& plugin) {
    plugin.createStream(type, stream, seekable, stype);
    return NPERR_NO_ERROR;
  });
}

NPError NP_ABI NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason) {
  OV_DEBUG("NPP_DestroyStream()");
  return withPlugin(instance, NPERR_INVALID_INSTANCE_ERROR, [=](ovOrvaneWebPlugin& plugin) {
    plugin.destroyStream(stream, reason);
    return NPERR_NO_ERROR;
  });
}

void NP_ABI NPP_StreamAsFile(NPP instance, NPStream*, const char* fileName) {
  OV_DEBUG("NPP_StreamAsFile()");
  if (instance != nullptr && fileName != nullptr) ov_log("%s", fileName);
}

int32_t NP_ABI NPP_WriteReady(NPP, NPStream*) {
  OV_DEBUG("NPP_WriteReady()");
  return kWriteReady;
}

int32_t NP_ABI NPP_Write(NPP instance, NPStream* stream, int32_t offset, int32_t length,
                         void* buffer) {
  OV_DEBUG("NPP_Write()");
  return withPlugin(
      instance, int32_t{NPERR_INVALID_INSTANCE_ERROR},
      [=](ovOrvaneWebPlugin& plugin) { return plugin.write(stream, offset, length, buffer); });
}

void NP_ABI NPP_Print(NPP, void*) {
  OV_DEBUG("NPP_Print()");
}

int16_t NP_ABI NPP_HandleEvent(NPP instance, void* event) {
  OV_DEBUG("NPP_HandleEvent()");
  if (instance == nullptr) return NPERR_INVALID_INSTANCE_ERROR;
  if (event == nullptr) return 0;
  return withPlugin(instance, int16_t{NPERR_INVALID_INSTANCE_ERROR},
                    [=](ovOrvaneWebPlugin& plugin) { return plugin.handleEvent(event); });
}

void NP_ABI NPP_URLNotify(NPP, const char*, NPReason, void*) {
  OV_DEBUG("NPP_URLNotify()");
}

NPError NP_ABI NPP_GetValue(NPP instance, NPPVariable variable, void* value) {
  OV_DEBUG("NPP_GetValue()");
  return withPlugin(instance, NPERR_INVALID_INSTANCE_ERROR, [=](ovOrvaneWebPlugin& plugin) {
    if (variable == NPPVpluginScriptableNPObject && value != nullptr) {
      *static_cast<NPObject**>(value) = plugin.getScriptableObject();
    }
    return NPERR_NO_ERROR;
  });
}

NPError NP_ABI NPP_SetValue(NPP, NPNVariable, void*) {
  OV_DEBUG("NPP_SetValue()");
  return NPERR_NO_ERROR;
}

}  // namespace

NPError OW_PopulatePluginFunctionTable(NPPluginFuncs* funcs) {
  OV_DEBUG("OW_PopulatePluginFunctionTable()");
  if (funcs == nullptr) {
    ov_err("OW_PopulatePluginFunctionTable() - Null argument");
    return NPERR_INVALID_FUNCTABLE_ERROR;
  }
  constexpr int kExpectedSize = sizeof(NPPluginFuncs);
  if (funcs->size < kExpectedSize) {
    ov_err("OW_PopulatePluginFunctionTable() - Bad NPPluginFuncs size=%d (expected=%d)",
           funcs->size, kExpectedSize);
  }
  funcs->version = NP_PLUGIN_VERSION;
  funcs->newp = NPP_New;
  funcs->destroy = NPP_Destroy;
  funcs->setwindow = NPP_SetWindow;
  funcs->newstream = NPP_NewStream;
  funcs->destroystream = NPP_DestroyStream;
  funcs->asfile = NPP_StreamAsFile;
  funcs->writeready = NPP_WriteReady;
  funcs->write = NPP_Write;
  funcs->print = NPP_Print;
  funcs->event = NPP_HandleEvent;
  funcs->urlnotify = NPP_URLNotify;
  funcs->javaClass = nullptr;
  funcs->getvalue = NPP_GetValue;
  funcs->setvalue = NPP_SetValue;
  return NPERR_NO_ERROR;
}

}  // namespace Vantrel::Web::Gecko
