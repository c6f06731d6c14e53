// Starts the two threads of the browser and ends them in order. This thread becomes the plug-in's.
#include <pthread.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "async_calls.h"
#include "bridge.h"
#include "console_output.h"
#include "driver.h"
#include "engine_functions.h"
#include "options.h"
#include "plugin_functions.h"
#include "plugin_module.h"
#include "plugin_windows.h"
#include "process_end.h"
#include "stub_link.h"
#include "x_display.h"

namespace {

using namespace engine;

// The script engine asks for the bounds of its stack and wants much of it; Wine's threads are no
// place for it.
constexpr size_t kEngineStackBytes = 8 * 1024 * 1024;
// What the destruction of the page and of the plug-in may take beyond the time limit.
constexpr double kGraceSeconds = 10;

struct EngineThread {
  const Options& options;
  PluginWindows& windows;
  int status;
};

void* engineThread(void* argument) {
  auto& thread = *static_cast<EngineThread*>(argument);
  thread.status = runEngine(thread.options);
  bridge().onPluginThread([&] { thread.windows.quit(); });
  return nullptr;
}

int fail(const std::string& reason) {
  std::fprintf(stderr, "orvane-browser: %s\n", reason.c_str());
  return kExitSetUp;
}

int16_t start(const void* browserFunctions, void* pluginFunctions) {
  return startPlugin(static_cast<const NPNetscapeFuncs*>(browserFunctions),
                     static_cast<NPPluginFuncs*>(pluginFunctions));
}

// Lets the engine find the stub, and the stub find us.
void publishStub(const Options& options, const PluginInfo& info) {
  static std::string mime, name;
  mime = info.mimeType + ":" + info.extensions + ":" + info.name;
  name = info.name;
  static StubLink link{mime.c_str(), name.c_str(), start};
  char address[32];
  std::snprintf(address, sizeof address, "%llx",
                static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(&link)));
  setenv(kStubLinkVariable, address, 1);
  setenv("MOZ_PLUGIN_PATH", options.stubs.c_str(), 1);
}

int runBrowser(const Options& options, PluginWindows& windows) {
  EngineThread thread{options, windows, kExitSetUp};
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kEngineStackBytes);
  pthread_t id;
  if (pthread_create(&id, &attributes, engineThread, &thread) != 0)
    return fail("cannot start the engine's thread");
  windows.run();
  pthread_join(id, nullptr);
  return thread.status;
}

void reportRun() {
  if (instancesMade() == 0)
    std::fprintf(stderr, "orvane-browser: the page made no instance of the plug-in\n");
  if (instancesAlive() != 0)
    std::fprintf(stderr, "orvane-browser: instances not destroyed: %u\n", instancesAlive());
  if (undeliveredAsyncCalls() != 0)
    std::fprintf(stderr, "orvane-browser: async calls dropped with their instance: %zu\n",
                 undeliveredAsyncCalls());
}

int run(const Options& options) {
  usePageConsole(options.consoleDescriptor);
  catchExit();
  endProcessAfter(options.limitSeconds + kGraceSeconds);
  std::string problem;
  if (!prepareDisplay(problem)) return fail(problem);
  PluginWindows windows;
  if (!windows.create()) return fail("Wine can make no window on this display");
  PluginModule module;
  if (!module.load(options.dll)) return fail(module.error());
  publishStub(options, module.info());
  usePlugin(module, windows);
  const int status = runBrowser(options, windows);
  reportRun();
  module.close();
  if (refusedCalls() != 0 && status == kExitPassed) return kExitFailed;
  return status;
}

// The arguments as they were given: Wine has turned those of main() into a code page that lacks
// most characters. In the process's own they stand behind the program, the rest is Wine's.
std::vector<std::string> unixArguments(size_t count) {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  const auto next = [&file] {
    std::string argument;
    std::getline(file, argument, '\0');
    return argument;
  };
  while (file && !next().ends_with(".exe.so")) {
  }
  std::vector<std::string> arguments(count);
  for (std::string& argument : arguments) argument = next();
  return arguments;
}

}  // namespace

int main(int argc, char**) {
  std::string problem;
  const std::optional<Options> options =
      parseOptions(unixArguments(static_cast<size_t>(argc) - 1), problem);
  const int status = options ? run(*options) : fail(problem);
  std::fflush(nullptr);
  // No clean-up of static objects: the engine's would run on the wrong thread.
  _exit(status);
}
