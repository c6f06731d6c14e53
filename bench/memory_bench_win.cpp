// The most memory that the library takes for a reply and for a request of 64 MiB, above what the
// process held before the call and as a multiple of 64 MiB. What the page holds of its own, the
// request's text, counts to before; the text of the reply that the page is given counts to the
// call. Each is seen in a process of its own, which this program starts again for every turn.
// usage: memory_bench [WHAT PORT]

#include <windows.h>

#include <psapi.h>

#include <cstring>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "bench/child_win.h"
#include "bench/plain_browser_win.h"
#include "tests/host/scratch_profile.h"

namespace Vantrel::Web::Bench {
namespace {

constexpr int kTurns = 3;
constexpr size_t kSize = size_t{64} << 20;
constexpr char kSized[] = "sized";
constexpr char kUnsized[] = "unsized";
constexpr char kOneText[] = "text";
constexpr char kManyTexts[] = "texts";

PROCESS_MEMORY_COUNTERS memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  require(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) != FALSE,
          "GetProcessMemoryInfo");
  return counters;
}

// One text of 64 MiB in a small document.
std::string bodyOfOneText() {
  std::string body = R"({"text":")";
  body.reserve(kSize);
  body.append(kSize - body.size() - 2, 'x').append("\"}");
  return body;
}

// An array of objects with a path each, as a specification has it.
std::string bodyOfManyTexts() {
  const std::string entry =
      R"({"source":"C:/Users/somebody/Documents/Projects/archive/camera/take_000001/frame.dpx"},)";
  std::string body = R"({"paths":[)";
  body.reserve(kSize);
  while (body.size() + entry.size() + 2 <= kSize) body += entry;
  body.back() = ']';
  body += '}';
  return body;
}

// In the process of its own: makes the call and prints the bytes that it took at most.
void measure(const std::string& what, uint16_t port) {
  const Host::ScratchProfile profile;
  profile.writeServiceUrl(uriText(port));
  const PlainBrowser browser;
  PlainInstance instance(browser);
  const std::string path = (what == kUnsized ? kUnsizedPath : kSizedPath) + std::to_string(kSize);
  std::string body;
  if (what == kOneText) body = bodyOfOneText();
  if (what == kManyTexts) body = bodyOfManyTexts();
  const size_t before = memory().WorkingSetSize;
  if (body.empty()) {
    require(instance.call("vantrelHttpRequest", {"GET", path, "{}"}) == kSize, "the whole reply");
  } else {
    require(instance.call("vantrelHttpRequest", {"POST", "/any", body}) == 2, "the reply");
  }
  std::printf("%zu\n", memory().PeakWorkingSetSize - before);
  static_cast<void>(std::fflush(stdout));
}

void peakRow(const char* name, const char* what, const Server& server, const Aim& aim) {
  std::vector<double> turns;
  for (int turn = 0; turn < kTurns; ++turn) {
    Child child(std::string("memory_bench.exe ") + what + " " + std::to_string(server.port()));
    turns.push_back(std::stod(child.readLine()) / static_cast<double>(kSize));
  }
  printRow(name, figuresOf(turns), aim);
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main(int argc, char* argv[]) {
  using namespace Vantrel::Web::Bench;
  return runRows([&] {
    if (argc == 3) {
      measure(argv[1], static_cast<uint16_t>(std::stoul(argv[2])));
      return;
    }
    const Server server;
    peakRow("peak memory of a 64 MiB reply with a length / 64 MiB", kSized, server,
            Aim::atMost(2.2));
    peakRow("peak memory of a 64 MiB reply without one / 64 MiB", kUnsized, server,
            Aim::atMost(2.2));
    peakRow("peak memory of a 64 MiB request, one text / 64 MiB", kOneText, server,
            Aim::atMost(2.5));
    peakRow("peak memory of a 64 MiB request, 100-byte paths / 64 MiB", kManyTexts, server,
            Aim::atMost(2.5));
  });
}
