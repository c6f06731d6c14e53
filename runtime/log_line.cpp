#include "runtime/log_line.h"

#include <algorithm>
#include <cstring>

#include "runtime/log_internal.h"

namespace ov {

bool LogLine::compose(int32_t level, const char* format, va_list arguments) {
  char* const start = room_ + log_header_room;
  const int32_t name = ov_snprintf(start, log_level_bound, "%s ", log_level_name(level));
  if (name < 0) return false;
  const int32_t text = ov_vsnprintf(start + name, log_text_bound, format, arguments);
  if (text < 0) return false;
  length_ = std::min(static_cast<size_t>(name + text), log_text_limit);
  std::memcpy(start + length_, "\r\n", 3);
  return true;
}

bool LogLine::stamp(int32_t repeats, const std::tm& time, uint32_t process, uint32_t thread) {
  char header[log_header_room];
  const int year = time.tm_year + 1900;
  const int month = time.tm_mon + 1;
  // The two forms write the thread's id differently; readers of the log know both.
  const int32_t length =
      repeats == 0 ? ov_snprintf(header, sizeof header, "%04d-%02d-%02d %02d:%02d:%02d [%x-%08x] ",
                                 year, month, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
                                 process, thread)
                   : ov_snprintf(header, sizeof header,
                                 "Last message repeated %d times\r\n"
                                 "%04d-%02d-%02d %02d:%02d:%02d [%x-%x] ",
                                 repeats, year, month, time.tm_mday, time.tm_hour, time.tm_min,
                                 time.tm_sec, process, thread);
  if (length < 0) return false;
  header_length_ = static_cast<size_t>(length);
  std::memcpy(room_ + log_header_room - header_length_, header, header_length_);
  return true;
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
