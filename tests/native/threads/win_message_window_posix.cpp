// The hand-over to the browser's thread for native test builds: a queue in place of the window's,
// which runPostedCalls drains as a message loop would.

#include <algorithm>
#include <deque>
#include <mutex>

#include "tests/native/threads/posted_calls.h"
#include "threads/win_message_window.h"

namespace Vantrel::Web {

namespace {

struct PostedCall {
  const WinMessageWindow* window;
  AsyncFunction function;
  void* argument;
};

std::mutex queueMutex;  // guards queue
std::deque<PostedCall> queue;

}  // namespace

WinMessageWindow::WinMessageWindow() : hWnd_(this) {}

WinMessageWindow::~WinMessageWindow() {
  const std::lock_guard<std::mutex> lock(queueMutex);
  std::erase_if(queue, [this](const PostedCall& call) { return call.window == this; });
}

uint32_t WinMessageWindow::post(AsyncFunction function, void* argument) {
  const std::lock_guard<std::mutex> lock(queueMutex);
  queue.push_back({this, function, argument});
  return 0;
}

int runPostedCalls() {
  int count = 0;
  for (;; ++count) {
    std::unique_lock<std::mutex> lock(queueMutex);
    if (queue.empty()) return count;
    const PostedCall call = queue.front();
    queue.pop_front();
    lock.unlock();
    call.function(call.argument);
  }
}

}  // namespace Vantrel::Web
