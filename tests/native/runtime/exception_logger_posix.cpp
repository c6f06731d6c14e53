// Backtraces from the C library, without names; there is no handler of faults in sanitizer builds,
// which have their own.
#include "runtime/faults/exception_logger.h"

#include <execinfo.h>

#include "runtime/errors/platform.h"
#include "runtime/faults/backtrace.h"

namespace ov {

void capture_backtrace(Backtrace* backtrace, int usual) {
  void* frames[kCalledFrames + kSkippedFrames];
  const int count = ::backtrace(frames, usual + kSkippedFrames) - kSkippedFrames;
  backtrace->count = count < 0 ? 0 : count;
  for (int i = 0; i < backtrace->count; ++i) backtrace->frames[i] = frames[i + kSkippedFrames];
}

bool find_symbol(void*, uint32_t, Symbol*) {
  // As the debugging library leaves it behind.
  set_last_error(126);
  return true;
}

void exception_logger_install() {}
void exception_logger_remove() {}

}  // namespace ov
