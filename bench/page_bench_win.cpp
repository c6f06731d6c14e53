// What the page waits for without any exchange:
// - the script call queryVersion / the line that it leaves in the log, both in the library;
// - work posted to the browser's thread, until it was delivered / a message posted to a bare window
//   and taken from the queue (links the threads: no script method posts such work by itself);
// - the end of an instance that has a session, in milliseconds.
// usage: page_bench

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "bench/child_win.h"
#include "bench/plain_browser_win.h"
#include "runtime/ov_log.h"
#include "tests/host/scratch_profile.h"
#include "threads/one_shot_manager.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::Bench {
namespace {

constexpr int kTurns = 401;
constexpr int kCallsInTurn = 10;
constexpr int kInstances = 15;
constexpr const char* kVersionMethods[] = {"queryVersion", "queryBuildVersion"};
constexpr DWORD kFirstPauseMs = 100;
constexpr DWORD kPauseStepMs = 37;

// Two methods in turns: a line that repeats the one before it is not written but counted.
void versionRow(const PlainBrowser& browser, PlainInstance& instance) {
  const auto debug = browser.exported<decltype(ov_dbg)>("ov_dbg");
  const auto calls = [&instance] {
    for (const char* method : kVersionMethods) {
      require(instance.call(method, {}) != 0, "a version");
    }
  };
  const auto lines = [debug] {
    for (const char* method : kVersionMethods) debug("%s(): argCount=%u", method, 0U);
  };
  printRow("queryVersion / its log line",
           ratio(kTurns, times(kCallsInTurn, calls), times(kCallsInTurn, lines)),
           Aim::atMost(1.25));
}

// Takes messages from this thread's queue until `done`.
void pumpUntil(const bool& done) {
  MSG message;
  while (!done && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

LRESULT CALLBACK noteMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_USER) return DefWindowProcW(window, message, wParam, lParam);
  *reinterpret_cast<bool*>(lParam) = true;
  return 0;
}

HWND bareWindow() {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = noteMessage;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = L"BareWindow";
  RegisterClassW(&windowClass);
  const HWND window = CreateWindowExW(0, L"BareWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                      windowClass.hInstance, nullptr);
  require(window != nullptr, "a window");
  return window;
}

class Noted : public Runnable {
 public:
  explicit Noted(bool& ran) : ran_(ran) {}
  bool stopped() const override { return false; }
  void run() override { ran_ = true; }
  void stop() override {}

 private:
  bool& ran_;
};

void deliveryRow() {
  RunnableScheduler::init();
  OneShotManager manager;
  const HWND window = bareWindow();
  const auto scheduled = [&manager] {
    bool ran = false;
    RunnableScheduler::scheduleRunnable(&manager, std::make_unique<Noted>(ran), nullptr);
    pumpUntil(ran);
  };
  const auto posted = [window] {
    bool arrived = false;
    PostMessageW(window, WM_USER, 0, reinterpret_cast<LPARAM>(&arrived));
    pumpUntil(arrived);
  };
  printRow("post to delivery / PostMessage round trip",
           ratio(kTurns, times(kCallsInTurn, scheduled), times(kCallsInTurn, posted)),
           Aim::atMost(1.1));
  DestroyWindow(window);
}

void endRow(const PlainBrowser& browser) {
  std::vector<double> milliseconds;
  for (DWORD i = 0; i < kInstances; ++i) {
    PlainInstance instance(browser);
    require(instance.call("initSession", {"bench", ""}) != 0, "a session");
    // Ends fall into different moments of the second between two polls.
    Sleep(kFirstPauseMs + i * kPauseStepMs);
    milliseconds.push_back(secondsOf([&instance] { instance.end(); }) * 1000);
  }
  printRow("end of an instance with a session, ms", figuresOf(milliseconds), Aim::atMost(5));
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main() {
  using namespace Vantrel::Web::Bench;
  return runRows([] {
    const Vantrel::Web::Host::ScratchProfile profile;
    const Server server;
    profile.writeServiceUrl(uriText(server.port()));
    const PlainBrowser browser;
    {
      PlainInstance instance(browser);
      versionRow(browser, instance);
    }
    deliveryRow();
    endRow(browser);
  });
}
