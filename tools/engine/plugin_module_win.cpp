#include "plugin_module.h"

#include <windows.h>
#include <winver.h>

#include <vector>

#include "windows_text.h"

namespace engine {
namespace {

std::string utf8(const WCHAR* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
  result.resize(static_cast<size_t>(size) - 1);
  return result;
}

std::string versionText(void* block, const std::string& key) {
  void* value = nullptr;
  UINT length = 0;
  const WideText query = wide("\\StringFileInfo\\040904e4\\" + key);
  if (!VerQueryValueW(block, query.data(), &value, &length) || length == 0) return {};
  return utf8(static_cast<const WCHAR*>(value));
}

}  // namespace

PluginModule::~PluginModule() {
  close();
}

bool PluginModule::fail(const std::string& reason) {
  failure_ = reason;
  return false;
}

bool PluginModule::load(const std::string& path) {
  if (!readVersionResource(path)) return false;
  HMODULE module = LoadLibraryW(windowsPath(path).data());
  if (module == nullptr)
    return fail("cannot load " + path + ": Windows error " + std::to_string(GetLastError()));
  handle_ = module;
  const auto entry = [module](const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(module, name));
  };
  initializeEntry_ = reinterpret_cast<NP_InitializeProcPtr>(entry("NP_Initialize"));
  entryPointsEntry_ = reinterpret_cast<NP_GetEntryPointsProcPtr>(entry("NP_GetEntryPoints"));
  shutdownEntry_ = reinterpret_cast<NP_ShutdownProcPtr>(entry("NP_Shutdown"));
  if (initializeEntry_ == nullptr || entryPointsEntry_ == nullptr || shutdownEntry_ == nullptr)
    return fail(path + " does not export NP_Initialize, NP_GetEntryPoints and NP_Shutdown");
  return true;
}

bool PluginModule::readVersionResource(const std::string& path) {
  const WideText file = windowsPath(path);
  const DWORD size = GetFileVersionInfoSizeW(file.data(), nullptr);
  if (size == 0) return fail("no version resource in " + path);
  std::vector<BYTE> block(size);
  if (!GetFileVersionInfoW(file.data(), 0, size, block.data()))
    return fail("the version resource of " + path + " cannot be read");
  description_.mimeType = versionText(block.data(), "MIMEType");
  description_.extensions = versionText(block.data(), "FileExtents");
  description_.name = versionText(block.data(), "ProductName");
  if (description_.mimeType.empty() || description_.name.empty() ||
      versionText(block.data(), "FileOpenName").empty())
    return fail("the version resource of " + path +
                " lacks MIMEType, FileOpenName or ProductName in block 040904e4");
  return true;
}

NPError PluginModule::initialize(NPNetscapeFuncs* browser, NPPluginFuncs* plugin) {
  const NPError result = initializeEntry_(browser);
  if (result != NPERR_NO_ERROR) return result;
  initialized_ = true;
  return entryPointsEntry_(plugin);
}

void PluginModule::close() {
  if (initialized_) shutdownEntry_();
  initialized_ = false;
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
  handle_ = nullptr;
}

}  // namespace engine
