#include "runtime/time/platform.h"

#include <windows.h>

#include <ctime>

#include "runtime/errors/last_code.h"

namespace ov {

ov_rc read_tick_frequency(uint64_t* frequency) {
  LARGE_INTEGER value;
  if (!QueryPerformanceFrequency(&value)) return last_code();
  *frequency = static_cast<uint64_t>(value.QuadPart);
  return 0;
}

ov_rc read_ticks(uint64_t* ticks) {
  LARGE_INTEGER value;
  if (!QueryPerformanceCounter(&value)) return last_code();
  *ticks = static_cast<uint64_t>(value.QuadPart);
  return 0;
}

ov_rc break_down_utc(int64_t time, std::tm* tm) {
  return _gmtime64_s(tm, &time);
}

ov_rc break_down_local(int64_t time, std::tm* tm) {
  return _localtime64_s(tm, &time);
}

int64_t compose_utc(std::tm* tm) {
  return _mkgmtime64(tm);
}

int64_t compose_local(std::tm* tm) {
  return _mktime64(tm);
}

}  // namespace ov
