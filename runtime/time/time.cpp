// The monotonic clock and intervals between its readings.
#include <algorithm>
#include <atomic>
#include <cinttypes>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_time.h"
#include "runtime/time/platform.h"
#include "runtime/time/ticks.h"

namespace {

constexpr int64_t kUsecPerSec = 1000000;

// Threads that start the clock at once write the same numbers here, and the first one's
// `start_ticks`, which is not 0 once all the others are in place.
std::atomic<uint64_t> tick_frequency = 0;
std::atomic<uint64_t> tick_multiplier = 0;
std::atomic<uint64_t> usec_multiplier = 0;
std::atomic<uint64_t> start_ticks = 0;

// The difference, or 22 and a log line for an `earlier` in the future.
ov_rc interval(const char* name, const ov_timeval& earlier, const ov_timeval& now, int64_t* usec) {
  const int64_t difference = ov_time_get_usec_diff(&now, &earlier);
  if (difference >= 0) {
    *usec = difference;
    return 0;
  }
  ov_err("%s: big old %" PRId32 ".%" PRId32 " > %" PRId32 ".%" PRId32, name, earlier.sec,
         earlier.usec, now.sec, now.usec);
  return OV_EINVAL;
}

ov_rc interval_since(const char* name, const ov_timeval* earlier, int64_t* usec) {
  if (earlier == nullptr || usec == nullptr) return OV_EINVAL;
  *usec = 0;
  ov_timeval now;
  if (const ov_rc error = ov_time_gettimeofday(&now)) return error;
  return interval(name, *earlier, now, usec);
}

}  // namespace

ov_rc ov_time_init(void) {
  if (start_ticks.load() != 0) return 0;
  uint64_t frequency = 0;
  uint64_t ticks = 0;
  if (const ov_rc error = ov::read_tick_frequency(&frequency)) {
    ov_log("Error from QueryPerformanceFrequency, error=%d", error);
    return error;
  }
  if (const ov_rc error = ov::read_ticks(&ticks)) return error;
  const ov::TickScale scale = ov::tick_scale(frequency);
  tick_frequency.store(frequency);
  tick_multiplier.store(scale.tickMultiplier);
  usec_multiplier.store(scale.usecMultiplier);
  uint64_t not_started = 0;
  start_ticks.compare_exchange_strong(not_started, std::max<uint64_t>(ticks, 1));
  return 0;
}

void ov_time_print(void) {
  ov_log("Time init: ticks per sec=%" PRId64 " start_ticks=%" PRIu64,
         static_cast<int64_t>(tick_frequency.load()), start_ticks.load());
  ov_log("           multipliers tick=%" PRIu64 " usec=%" PRIu64, tick_multiplier.load(),
         usec_multiplier.load());
}

void ov_time_sys_tick_frequency(uint64_t* frequency) {
  if (frequency != nullptr) *frequency = tick_frequency.load();
}

ov_rc ov_time_gettimeofday(ov_timeval* now) {
  if (now == nullptr) return OV_EINVAL;
  if (start_ticks.load() == 0) {
    if (const ov_rc error = ov_time_init()) return error;
  }
  uint64_t ticks = 0;
  if (const ov_rc error = ov::read_ticks(&ticks)) return error;
  // Another thread may have started the clock a little later than this one read the counter.
  const uint64_t elapsed = ticks - std::min(ticks, start_ticks.load());
  const uint64_t usec =
      ov::ticks_to_usec(elapsed, {tick_multiplier.load(), usec_multiplier.load()});
  now->sec = static_cast<int32_t>(usec / kUsecPerSec);
  now->usec = static_cast<int32_t>(usec % kUsecPerSec);
  return 0;
}

ov_rc ov_time_get_usec_since(const ov_timeval* earlier, int64_t* usec) {
  return interval_since("get_usec_since", earlier, usec);
}

ov_rc ov_time_get_usec_since_small(const ov_timeval* earlier, int64_t* usec) {
  return interval_since("get_usec_since_small", earlier, usec);
}

ov_rc ov_time_getnstore_usec_since(const ov_timeval* earlier, ov_timeval* now, int64_t* usec) {
  if (earlier == nullptr || now == nullptr || usec == nullptr) return OV_EINVAL;
  // A copy, since a chain of intervals may keep one record for both.
  const ov_timeval from = *earlier;
  *usec = 0;
  if (const ov_rc error = ov_time_gettimeofday(now)) return error;
  return interval("getnstore_usec_since", from, *now, usec);
}

int64_t ov_time_get_usec_diff(const ov_timeval* a, const ov_timeval* b) {
  if (a == nullptr || b == nullptr) return 0;
  return (int64_t{a->sec} - b->sec) * kUsecPerSec - b->usec + a->usec;
}

void ov_time_tv_incr(ov_timeval* tv, int64_t usec) {
  if (tv == nullptr) return;
  tv->sec = static_cast<int32_t>(tv->sec + usec / kUsecPerSec);
  tv->usec = static_cast<int32_t>(tv->usec + usec % kUsecPerSec);
  if (tv->usec < kUsecPerSec) return;
  tv->usec -= static_cast<int32_t>(kUsecPerSec);
  tv->sec = static_cast<int32_t>(int64_t{tv->sec} + 1);
}

void ov_time_tv_dec(ov_timeval* tv, int64_t usec) {
  if (tv == nullptr) return;
  int64_t left = tv->usec - std::min(usec, kUsecPerSec);
  if (left < 0) {
    left += kUsecPerSec;
    tv->sec = static_cast<int32_t>(int64_t{tv->sec} - 1);
  }
  tv->usec = static_cast<int32_t>(left);
}
