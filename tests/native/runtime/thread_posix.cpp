// The threads of the base runtime on POSIX threads, for sanitizer builds.
#include <cerrno>
#include <pthread.h>
#include <ctime>

#include <atomic>
#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/errors/asserts.h"
#include "runtime/sync/coarse_clock.h"
#include "runtime/sync/internal.h"

using namespace ov;

namespace {

std::atomic<uint32_t> last_id{0};
thread_local uint32_t self_id = 0;

// Shared by a thread and the record that joins it.
struct State {
  pthread_t native;
  std::atomic<bool> filled{false};  // the record is, and the thread may run
  std::atomic<bool> ended{false};
};

struct Start {
  ov_thread_fn function;
  void* argument;
  uint32_t id;
  std::shared_ptr<State> state;
};

struct EndMark {
  explicit EndMark(std::shared_ptr<State> s) : state(std::move(s)) {}
  ~EndMark() { state->ended = true; }
  std::shared_ptr<State> state;
};

void* run(void* argument) {
  const std::unique_ptr<Start> start(static_cast<Start*>(argument));
  const EndMark mark(start->state);  // also when ov_thread_exit unwinds
  self_id = start->id;
  start->state->filled.wait(false);
  start->function(start->argument);
  return nullptr;
}

std::shared_ptr<State>* state_of(const ov_thread* thread) {
  const bool open =
      thread != nullptr && thread->handle != nullptr && thread->handle != kClosedHandle;
  return open ? static_cast<std::shared_ptr<State>*>(thread->handle) : nullptr;
}

ov_rc refused() {
  count_failed_assert();
  return OV_EINVAL;
}

}  // namespace

ov_rc ov_thread_spawn(ov_thread* thread, ov_thread_fn function, void* argument) {
  if (function == nullptr) return refused();
  const auto state = std::make_shared<State>();
  auto start = std::make_unique<Start>(Start{function, argument, ++last_id, state});
  const uint32_t id = start->id;
  const int error = pthread_create(&state->native, nullptr, run, start.get());
  if (error != 0) {
    ov_log("ov_thread_spawn failed, err=%d", error);
    return error;
  }
  static_cast<void>(start.release());  // the thread has it
  if (thread == nullptr) {
    pthread_detach(state->native);
  } else {
    thread->handle = new std::shared_ptr<State>(state);
    thread->id = id;
  }
  state->filled = true;
  state->filled.notify_one();
  return 0;
}

ov_rc ov_thread_join(ov_thread* thread) {
  if (thread == nullptr) return refused();
  std::shared_ptr<State>* const state = state_of(thread);
  if (state == nullptr) {
    ov_log("ov_thread_join failed, err=%d", OV_EBADF);
    return OV_EBADF;
  }
  const int error = pthread_join((*state)->native, nullptr);
  if (error != 0) {
    ov_log("ov_thread_join failed, err=%d", error);
    return error;
  }
  delete state;
  thread->handle = kClosedHandle;
  return 0;
}

uint64_t ov::coarse_milliseconds() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1000 + static_cast<uint64_t>(now.tv_nsec) / 1000000;
}

ov_rc ov_thread_sleep(uint32_t milliseconds) {
  timespec left{static_cast<time_t>(milliseconds / 1000), milliseconds % 1000 * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
  return 0;
}

uint32_t ov_thread_self(void) {
  if (self_id == 0) self_id = ++last_id;
  return self_id;
}

uint32_t ov_thread_getid(const ov_thread* thread) {
  return thread == nullptr ? 0 : thread->id;
}

int32_t ov_thread_alive(const ov_thread* thread) {
  const std::shared_ptr<State>* const state = state_of(thread);
  return state == nullptr || (*state)->ended.load() ? 1 : 0;
}

void ov_thread_exit(void) {
  pthread_exit(nullptr);
}
