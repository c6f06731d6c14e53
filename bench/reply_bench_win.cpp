// What long replies cost, through the library and real sockets:
// - the script call vantrelHttpRequest with a reply of 64 MiB / of 32 MiB, with a length in its
// head
//   and without one;
// - the processor time of an asynchronous reply of 64 MiB with debug lines / without them.
// The client is a server in a process of its own, so that its time is not counted.
// usage: reply_bench

#include <windows.h>

#include <string>

#include "bench/bench.h"
#include "bench/child_win.h"
#include "bench/plain_browser_win.h"
#include "runtime/ov_log.h"
#include "tests/host/scratch_profile.h"

namespace Vantrel::Web::Bench {
namespace {

constexpr int kTurns = 5;
constexpr size_t kHalf = size_t{32} << 20;
constexpr size_t kWhole = size_t{64} << 20;
constexpr int kAllLines = 3;

void growthRow(const char* name, const std::string& path, PlainInstance& instance) {
  const auto replyOf = [&](size_t size) {
    return [&instance, size, text = path + std::to_string(size)] {
      require(instance.call("vantrelHttpRequest", {"GET", text, "{}"}) == size, "the whole reply");
    };
  };
  printRow(name, ratio(kTurns, replyOf(kWhole), replyOf(kHalf)), Aim::atMost(2.1));
}

double processorSeconds() {
  FILETIME created;
  FILETIME ended;
  FILETIME kernel;
  FILETIME user;
  require(GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user) != FALSE,
          "GetProcessTimes");
  const auto seconds = [](const FILETIME& time) {
    return 1e-7 * static_cast<double>(uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
  };
  return seconds(kernel) + seconds(user);
}

void debugRow(PlainBrowser& browser, PlainInstance& instance) {
  const auto setLevel = browser.exported<decltype(ov_dbg_set_all)>("ov_dbg_set_all");
  const std::string path = kSizedPath + std::to_string(kWhole);
  size_t received = 0;
  PageFunction function([&received](std::string_view text) { received = text.size(); });
  const auto fetch = [&] {
    received = 0;
    instance.call("vantrelHttpRequestAsync", {"GET", path, "{}"}, &function);
    browser.runUntil([&received] { return received != 0; });
    require(received == kWhole, "the whole reply");
  };
  const auto atLevel = [&](int32_t level) {
    return [&fetch, setLevel, level] {
      setLevel(level);
      fetch();
    };
  };
  const auto measure = [](auto& work) {
    const double before = processorSeconds();
    work();
    return processorSeconds() - before;
  };
  printRow("CPU of an asynchronous 64 MiB reply, debug lines / none",
           ratioBy(measure, kTurns, atLevel(kAllLines), atLevel(0)), Aim::atMost(1.05));
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main() {
  using namespace Vantrel::Web::Bench;
  return runRows([] {
    const Vantrel::Web::Host::ScratchProfile profile;
    const Server server;
    profile.writeServiceUrl(uriText(server.port()));
    PlainBrowser browser;
    PlainInstance instance(browser);
    growthRow("reply of 64 MiB / of 32 MiB, with a length", kSizedPath, instance);
    growthRow("reply of 64 MiB / of 32 MiB, without one", kUnsizedPath, instance);
    debugRow(browser, instance);
  });
}
