#include "browsers/shared/plugin_log.h"

#include <windows.h>
#include <shlobj.h>

#include <utility>

#include "runtime/ov_log.h"
#include "service/locations.h"
#include "text/wide_text.h"

namespace Vantrel::Web {

namespace {

constexpr char kLogDirectory[] = "\\var\\log";
constexpr char kLogName[] = "\\orvane-vantrel-browser-plugin.log";
constexpr int32_t kFileLog = 2;
constexpr int32_t kDebugLevel = 3;

bool initialized = false;
std::string logPath;

}  // namespace

const std::string& pluginLogPath() {
  if (logPath.empty()) {
    const std::string directory = pluginBaseDir() + kLogDirectory;
    // Where the directory cannot be made, opening the log tells so.
    SHCreateDirectoryExW(nullptr, toWide(directory).c_str(), nullptr);
    logPath = directory + kLogName;
  }
  return logPath;
}

void openPluginLog() {
  if (std::exchange(initialized, true)) return;
  ov_log_init(kFileLog, pluginLogPath().c_str());
  ov_dbg_set(kDebugLevel);
  ov_dbg_set_all(kDebugLevel);
}

void closePluginLog() {
  if (std::exchange(initialized, false)) ov_log_cleanup();
}

}  // namespace Vantrel::Web
