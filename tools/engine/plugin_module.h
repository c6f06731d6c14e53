// The Windows library: what its version resource says and its entry points. Owned by main(); every
// call is for the plug-in's thread.
#pragma once

#include <string>

#include "plugin_abi.h"

namespace engine {

// What a browser reads from the version resource before it loads a plug-in, as UTF-8.
struct PluginInfo {
  std::string mimeType;
  std::string extensions;
  std::string name;
};

class PluginModule {
 public:
  PluginModule() = default;
  ~PluginModule();
  PluginModule(const PluginModule&) = delete;
  PluginModule& operator=(const PluginModule&) = delete;

  // Loads the library, a Unix path. On failure error() says why, and false is returned.
  bool load(const std::string& path);
  const std::string& error() const { return failure_; }
  const PluginInfo& info() const { return description_; }

  // NP_Initialize and NP_GetEntryPoints, in this order.
  NPError initialize(NPNetscapeFuncs* browser, NPPluginFuncs* plugin);
  // NP_Shutdown, if initialize() went well, and the unloading of the library.
  void close();

 private:
  bool readVersionResource(const std::string& path);
  bool fail(const std::string& reason);

  void* handle_ = nullptr;
  NP_InitializeProcPtr initializeEntry_ = nullptr;
  NP_GetEntryPointsProcPtr entryPointsEntry_ = nullptr;
  NP_ShutdownProcPtr shutdownEntry_ = nullptr;
  bool initialized_ = false;
  PluginInfo description_;
  std::string failure_;
};

}  // namespace engine
