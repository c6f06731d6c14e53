#include "time_limit.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "options.h"

namespace engine {

void endProcessAfter(double seconds) {
  std::thread([seconds] {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    std::fprintf(stderr, "orvane-browser: the plug-in or the page does not return; ended\n");
    _exit(exitTimeLimit);
  }).detach();
}

}  // namespace engine
