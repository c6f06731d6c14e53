#include "runtime/time/platform.h"

#include <ctime>

#include "runtime/ov_errors.h"

namespace ov {
namespace {

constexpr uint64_t kTicksPerSecond = 10000000;
// The end of the platform's calendar, in the year 3000.
constexpr int64_t kLastTime = 32535291599;

bool covered(int64_t time) {
  return time >= 0 && time <= kLastTime;
}

}  // namespace

ov_rc read_tick_frequency(uint64_t* frequency) {
  *frequency = kTicksPerSecond;
  return 0;
}

ov_rc read_ticks(uint64_t* ticks) {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  *ticks = static_cast<uint64_t>(now.tv_sec) * kTicksPerSecond +
           static_cast<uint64_t>(now.tv_nsec) / 100;
  return 0;
}

ov_rc break_down_utc(int64_t time, std::tm* tm) {
  const time_t seconds = time;
  return covered(time) && gmtime_r(&seconds, tm) != nullptr ? 0 : OV_EINVAL;
}

ov_rc break_down_local(int64_t time, std::tm* tm) {
  const time_t seconds = time;
  return covered(time) && localtime_r(&seconds, tm) != nullptr ? 0 : OV_EINVAL;
}

int64_t compose_utc(std::tm* tm) {
  const int64_t time = timegm(tm);
  return covered(time) ? time : -1;
}

int64_t compose_local(std::tm* tm) {
  const int64_t time = mktime(tm);
  return covered(time) ? time : -1;
}

}  // namespace ov
