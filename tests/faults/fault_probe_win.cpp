// A host process that loads the library, opens its log and then fails in the way it is told.
// usage: fault_probe LIBRARY LOG WAY
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "runtime/ov_threads.h"

namespace {

// The host's own handler, behind all others, ends the process with this status.
constexpr UINT kHandledStatus = 42;

struct Library {
  HMODULE module = nullptr;
  int32_t (*init)(int32_t, const char*) = nullptr;
  int32_t (*log)(const char*, ...) = nullptr;
  void (*cleanup)() = nullptr;
  void (*backtrace)() = nullptr;
  int32_t (*mutexInit)(ov_mutex*) = nullptr;
  int32_t (*mutexAcquire)(ov_mutex*) = nullptr;
} library;

template <typename Function>
bool find(const char* name, Function* out) {
  const FARPROC address = GetProcAddress(library.module, name);
  std::memcpy(out, &address, sizeof address);
  return address != nullptr;
}

bool load(const char* path) {
  library.module = LoadLibraryA(path);
  return library.module != nullptr && find("ov_log_init", &library.init) &&
         find("ov_log", &library.log) && find("ov_log_cleanup", &library.cleanup) &&
         find("ov_log_btrace", &library.backtrace) && find("ov_mutex_init", &library.mutexInit) &&
         find("ov_mutex_acquire", &library.mutexAcquire);
}

LONG WINAPI endWithOwnStatus(EXCEPTION_POINTERS*) {
  ExitProcess(kHandledStatus);
}

}  // namespace

// Functions that the backtraces name.
extern "C" {

[[gnu::noinline]] void probe_writes_to_nowhere() {
  static volatile uintptr_t nowhere = 8;
  *reinterpret_cast<volatile int*>(nowhere) = 1;
}

[[gnu::noinline]] void probe_divides(volatile int* by) {
  *by = 1234 / *by;
}

[[gnu::noinline]] void probe_runs_no_instruction() {
  __asm__ volatile("ud2");
}

[[gnu::noinline]] void probe_runs_a_privileged_instruction() {
  __asm__ volatile("hlt");
}

int probe_recurses(volatile char* outer);
// Asked for at each call, so that the calls cannot become a loop.
int (*volatile probe_again)(volatile char*) = &probe_recurses;

[[gnu::noinline]] int probe_recurses(volatile char* outer) {
  volatile char room[60000];  // the overflow is seen well before the very end of the stack
  room[0] = *outer;
  return probe_again(room) + room[0];
}

[[gnu::noinline]] void probe_logs_a_bad_text() {
  library.log("%s", reinterpret_cast<const char*>(uintptr_t{8}));
}

[[gnu::noinline]] void probe_asks_for_a_backtrace() {
  library.backtrace();
  std::puts("");  // so that the call above is no jump
}

[[gnu::noinline]] void probe_acquires_twice() {
  ov_mutex mutex;
  library.mutexInit(&mutex);
  library.mutexAcquire(&mutex);
  library.mutexAcquire(&mutex);
}

}  // extern "C"

namespace {

int fail(std::string_view way) {
  volatile int zero = 0;
  volatile char outer = 0;
  if (way == "write") probe_writes_to_nowhere();
  if (way == "divide") probe_divides(&zero);
  if (way == "instruction") probe_runs_no_instruction();
  if (way == "privileged") probe_runs_a_privileged_instruction();
  if (way == "overflow") return probe_recurses(&outer);
  if (way == "text") probe_logs_a_bad_text();
  if (way == "reacquire") probe_acquires_twice();
  if (way == "breakpoint") DebugBreak();
  if (way == "backtrace") probe_asks_for_a_backtrace();
  if (way == "handled") {
    SetUnhandledExceptionFilter(&endWithOwnStatus);
    probe_writes_to_nowhere();
  }
  if (way == "cleaned") {
    library.cleanup();
    probe_writes_to_nowhere();
  }
  if (way == "unloaded") {
    FreeLibrary(library.module);
    probe_writes_to_nowhere();
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4 || !load(argv[1]) || library.init(2, argv[2]) != 0) return 2;
  library.log("begins");
  return fail(argv[3]);
}
