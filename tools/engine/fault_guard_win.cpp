// Compiled without C++ exceptions: Wine takes the exception table of a native frame for its own
// kind and comes to grief, so the frame that holds the record must have none.
#include "fault_guard.h"

#include <unistd.h>
#include <windows.h>

#include <cstdio>

#include "options.h"

namespace engine {
namespace {

DWORD CDECL endByException(EXCEPTION_RECORD* exception, EXCEPTION_REGISTRATION_RECORD*, CONTEXT*,
                           EXCEPTION_REGISTRATION_RECORD**) {
  std::fprintf(stderr, "orvane-browser: the plug-in raised exception %08x at %p\n",
               static_cast<unsigned>(exception->ExceptionCode), exception->ExceptionAddress);
  std::fflush(nullptr);
  _exit(kExitFault);
}

}  // namespace

void runGuarded(const std::function<void()>& closure) {
  // The thread's block begins with the published part. Its list of frames that want exceptions
  // may hold records on the stack only.
  NT_TIB& thread = *reinterpret_cast<NT_TIB*>(NtCurrentTeb());
  EXCEPTION_REGISTRATION_RECORD record{thread.ExceptionList, endByException};
  thread.ExceptionList = &record;
  closure();
  thread.ExceptionList = record.Prev;
}

}  // namespace engine
