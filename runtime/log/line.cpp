#include "runtime/log/line.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <ctime>

#include "runtime/log/internal.h"
#include "runtime/ov_time.h"
#include "runtime/sync/coarse_clock.h"

namespace ov {
namespace {

constexpr size_t kDigitBits = 4;

size_t hex_digits(uint32_t value) {
  return (static_cast<size_t>(std::bit_width(value | 1)) + kDigitBits - 1) / kDigitBits;
}

// The last digits of the value in front of `end`; their start.
char* put_hex_before(char* end, uint32_t value, size_t digits) {
  for (; digits > 0; --digits, value >>= kDigitBits) *--end = "0123456789abcdef"[value & 0xf];
  return end;
}

char* put_before(char* end, std::string_view text) {
  std::memcpy(end - text.size(), text.data(), text.size());
  return end - text.size();
}

char* put_note_before(char* end, int32_t repeats) {
  char digits[12];
  const char* const digits_end = std::to_chars(digits, digits + sizeof digits, repeats).ptr;
  end = put_before(end, " times\r\n");
  end = put_before(end, {digits, static_cast<size_t>(digits_end - digits)});
  return put_before(end, "Last message repeated ");
}

}  // namespace

bool LogLine::compose(int32_t level, const char* format, va_list arguments) {
  char* const start = room_ + kLogHeaderRoom;
  const std::string_view name = log_level_name(level);
  std::memcpy(start, name.data(), name.size());
  start[name.size()] = ' ';
  const size_t prefix = name.size() + 1;
  const int32_t text = ov_vsnprintf(start + prefix, kLogTextBound, format, arguments);
  if (text < 0) return false;
  length_ = std::min(prefix + static_cast<size_t>(text), kLogTextLimit);
  std::memcpy(start + length_, "\r\n", 3);
  return true;
}

// Written by hand and from its end: the formatter would take as long as the system takes to write
// the line.
void LogLine::stamp(int32_t repeats, std::string_view time, uint32_t process, uint32_t thread) {
  char* const end = room_ + kLogHeaderRoom;
  char* at = put_before(end, "] ");
  // The two forms write the thread's id differently; readers of the log know both.
  at = put_hex_before(at, thread, repeats == 0 ? 2 * sizeof thread : hex_digits(thread));
  *--at = '-';
  at = put_hex_before(at, process, hex_digits(process));
  at = put_before(put_before(at, " ["), time);
  if (repeats > 0) at = put_note_before(at, repeats);
  headerLength_ = static_cast<size_t>(end - at);
}

std::string_view LogClock::now() {
  // The time of day is asked for only when it may have changed: that costs as much as all else of a
  // line together.
  const uint64_t milliseconds = coarse_milliseconds();
  if (length_ > 0 && milliseconds == readAt_) return {text_, length_};
  readAt_ = milliseconds;
  return at(std::time(nullptr));
}

std::string_view LogClock::at(int64_t now) {
  if (length_ > 0 && now == second_) return {text_, length_};
  length_ = 0;
  std::tm time;
  if (ov_time_localtime(&now, &time) != 0) return {};
  const int length =
      ov_snprintf(text_, sizeof text_, "%04d-%02d-%02d %02d:%02d:%02d", time.tm_year + 1900,
                  time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec);
  if (length < 0) return {};
  second_ = now;
  length_ = static_cast<size_t>(length);
  return {text_, length_};
}

bool LogFold::repeats(std::string_view text) {
  if (text == std::string_view(last_, length_)) {
    // The note's number stays at its greatest value rather than turning negative.
    if (count_ < INT32_MAX) ++count_;
    return true;
  }
  length_ = std::min(text.size(), sizeof last_);
  std::memcpy(last_, text.data(), length_);
  return false;
}

}  // namespace ov
