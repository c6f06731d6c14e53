#include "runtime/log/line.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <ctime>

#include "runtime/log/internal.h"
#include "runtime/log/platform.h"
#include "runtime/ov_time.h"

namespace ov {
namespace {

char* put(char* at, std::string_view text) {
  std::memcpy(at, text.data(), text.size());
  return at + text.size();
}

// In hexadecimal digits, eight of them if `padded`.
char* put_thread(char* at, uint32_t thread, bool padded) {
  char digits[8];
  const auto length =
      static_cast<size_t>(std::to_chars(digits, digits + sizeof digits, thread, 16).ptr - digits);
  for (size_t i = length; padded && i < sizeof digits; ++i) *at++ = '0';
  return put(at, {digits, length});
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

// Written by hand: the formatter would take as long as the system takes to write the line.
void LogLine::stamp(int32_t repeats, std::string_view time, uint32_t process, uint32_t thread) {
  char header[kLogHeaderRoom];
  char* end = header;
  if (repeats > 0) {
    end = put(end, "Last message repeated ");
    end = std::to_chars(end, header + sizeof header, repeats).ptr;
    end = put(end, " times\r\n");
  }
  end = put(put(end, time), " [");
  end = std::to_chars(end, header + sizeof header, process, 16).ptr;
  *end++ = '-';
  // The two forms write the thread's id differently; readers of the log know both.
  end = put_thread(end, thread, repeats == 0);
  end = put(end, "] ");
  headerLength_ = static_cast<size_t>(end - header);
  std::memcpy(room_ + kLogHeaderRoom - headerLength_, header, headerLength_);
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
