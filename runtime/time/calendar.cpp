// Calendar times and their formatting.
#include "runtime/time/calendar.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_time.h"
#include "runtime/time/platform.h"

namespace {

constexpr int64_t kSecondsPerHour = 3600;
constexpr int64_t kSecondsPerMinute = 60;
constexpr int64_t kUsecPerSec = 1000000;
constexpr int32_t kUsecPerMsec = 1000;
// From 1601 to 1970, in microseconds.
constexpr int64_t kEpochDistance = 11644473600000000;
// Results up to this size are formatted on the stack.
constexpr size_t kStackRoom = 512;

// The present offset of the machine's local time, in seconds; 0 if the calendar cannot tell.
int64_t present_utc_offset() {
  const int64_t now = std::time(nullptr);
  std::tm local = {};
  if (ov::break_down_local(now, &local) != 0) return 0;
  const int64_t shifted = ov::compose_utc(&local);
  return shifted == -1 ? 0 : shifted - now;
}

// The format with the two conversions of our own replaced; may throw bad_alloc. "%%" stays whole,
// so that an "L" or "z" behind it is a letter.
std::string expand(const char* format, int32_t milliseconds) {
  std::string expanded;
  for (; *format; ++format) {
    expanded += *format;
    if (*format != '%' || format[1] == 0) continue;
    const char conversion = *++format;
    if (conversion == 'L') {
      char text[8];
      ov_snprintf(text, sizeof text, "%03u", static_cast<unsigned>(milliseconds));
      expanded.replace(expanded.size() - 1, 1, text);
    } else if (conversion == 'z') {
      char text[ov::kUtcOffsetRoom];
      ov::format_utc_offset(present_utc_offset(), text);
      expanded.replace(expanded.size() - 1, 1, text);
    } else {
      expanded += conversion;
    }
  }
  return expanded;
}

// A format for dates reads nothing but the broken-down time, so one from the caller does no harm.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

// Formats aside first: the standard library leaves an undefined text behind when it does not fit.
ov_rc format_expanded(char* out, size_t size, const char* format, const std::tm* tm) {
  char on_stack[kStackRoom];
  std::unique_ptr<char[]> on_heap;
  if (size > kStackRoom) {
    on_heap.reset(new (std::nothrow) char[size]);
    if (!on_heap) return OV_ENOMEM;
  }
  char* const text = on_heap ? on_heap.get() : on_stack;
  const size_t length = std::strftime(text, size, format, tm);
  if (length == 0) return OV_ERANGE;
  std::memcpy(out, text, length + 1);
  return 0;
}

#pragma GCC diagnostic pop

ov_rc format_time(char* out, size_t size, const char* format, const std::tm* tm,
                  int32_t milliseconds) {
  if (out == nullptr || size == 0 || format == nullptr || tm == nullptr) return OV_EINVAL;
  try {
    const std::string expanded = expand(format, std::clamp(milliseconds, 0, 999));
    return format_expanded(out, size, expanded.c_str(), tm);
  } catch (const std::bad_alloc&) {
    return OV_ENOMEM;
  }
}

}  // namespace

namespace ov {

void format_utc_offset(int64_t seconds, char (&text)[kUtcOffsetRoom]) {
  const int64_t distance = std::min<int64_t>(std::abs(seconds), 99 * kSecondsPerHour);
  ov_snprintf(text, sizeof text, "%c%02d%02d", seconds > 0 ? '+' : '-',
              static_cast<int>(distance / kSecondsPerHour),
              static_cast<int>(distance % kSecondsPerHour / kSecondsPerMinute));
}

}  // namespace ov

ov_rc ov_time_gmtime(const int64_t* time, struct tm* tm) {
  return time != nullptr && tm != nullptr ? ov::break_down_utc(*time, tm) : OV_EINVAL;
}

ov_rc ov_time_localtime(const int64_t* time, struct tm* tm) {
  return time != nullptr && tm != nullptr ? ov::break_down_local(*time, tm) : OV_EINVAL;
}

ov_rc ov_time_timegm(struct tm* tm, int64_t* time) {
  if (tm == nullptr || time == nullptr) return OV_EINVAL;
  *time = ov::compose_utc(tm);
  return *time == -1 ? OV_EINVAL : 0;
}

ov_rc ov_time_mktime(struct tm* tm, int64_t* time) {
  if (tm == nullptr || time == nullptr) return OV_EINVAL;
  *time = ov::compose_local(tm);
  return *time == -1 ? OV_EINVAL : 0;
}

ov_rc ov_time_convert_epoch(int64_t* time, int64_t filetime) {
  if (time != nullptr) *time = (filetime / 10 - kEpochDistance) / kUsecPerSec;
  return 0;
}

ov_rc ov_time_strftime(char* out, size_t size, const char* format, const struct tm* tm) {
  return format_time(out, size, format, tm, 0);
}

void ov_time_strftime_sec(char* out, size_t size, const char* format, const int64_t* time) {
  std::tm tm;
  if (ov_time_gmtime(time, &tm) == 0) format_time(out, size, format, &tm, 0);
}

void ov_time_strftime_sec_local(char* out, size_t size, const char* format, const int64_t* time) {
  std::tm tm;
  if (ov_time_localtime(time, &tm) == 0) format_time(out, size, format, &tm, 0);
}

void ov_time_strftime_usec(char* out, size_t size, const char* format, const ov_timeval* tv) {
  if (tv == nullptr) return;
  const int64_t time = tv->sec;
  std::tm tm;
  if (ov_time_gmtime(&time, &tm) != 0) return;
  format_time(out, size, format, &tm, tv->usec / kUsecPerMsec);
}
