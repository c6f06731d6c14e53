#include "process_end.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "options.h"

namespace engine {
namespace {

void endByFault(int status, void*) {
  std::fprintf(stderr, "orvane-browser: ended by a fault of the plug-in, status %d\n", status);
  std::fflush(nullptr);
  _exit(kExitFault);
}

}  // namespace

void endProcessAfter(double seconds) {
  std::thread([seconds] {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    std::fprintf(stderr, "orvane-browser: the plug-in or the page does not return; ended\n");
    _exit(kExitTimeLimit);
  }).detach();
}

void catchExit() {
  on_exit(endByFault, nullptr);
}

}  // namespace engine
