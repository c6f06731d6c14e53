// The hand-over to the browser's thread for native test builds: a queue in place of the window's,
// which the test's message loop drains.

#include <algorithm>
#include <deque>
#include <mutex>

#include "tests/support/message_loop.h"
#include "threads/guarded.h"
#include "threads/win_message_window.h"

namespace Vantrel::Web {

namespace {

constexpr uint32_t kNoSuchWindow = 1400;

struct PostedCall {
  const WinMessageWindow* window;
  AsyncFunction function;
  void* argument;
};

std::mutex queueMutex;  // guards what follows
std::deque<PostedCall> queue;
int32_t madeWindows = 0;
int32_t firstWholeWindow = 0;  // the number of the first one that takes posts

}  // namespace

WinMessageWindow::WinMessageWindow() : hWnd_(this) {
  const std::lock_guard<std::mutex> lock(queueMutex);
  number_ = madeWindows++;
}

WinMessageWindow::~WinMessageWindow() {
  const std::lock_guard<std::mutex> lock(queueMutex);
  std::erase_if(queue, [this](const PostedCall& call) { return call.window == this; });
}

uint32_t WinMessageWindow::post(AsyncFunction function, void* argument) {
  const std::lock_guard<std::mutex> lock(queueMutex);
  if (number_ < firstWholeWindow) return kNoSuchWindow;
  queue.push_back({this, function, argument});
  return 0;
}

namespace TestSupport {

void runMessageLoop() {
  for (;;) {
    std::unique_lock<std::mutex> lock(queueMutex);
    if (queue.empty()) return;
    const PostedCall call = queue.front();
    queue.pop_front();
    lock.unlock();
    guarded([&call] { call.function(call.argument); });
  }
}

void breakMessageWindows() {
  const std::lock_guard<std::mutex> lock(queueMutex);
  firstWholeWindow = madeWindows;
}

}  // namespace TestSupport

}  // namespace Vantrel::Web
