// One line of the log: its composed text with room for the stamp in front, and the folding of lines
// that repeat. Plain values without a lock of their own.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "runtime/ov_log.h"

namespace ov {

// Room for the stamp, and for the text with its line end and a terminator.
constexpr size_t kLogHeaderRoom = 256;
constexpr size_t kLogTextRoom = 4096;
// Bound of the text behind the level's name, and the length to which both together are cut.
constexpr size_t kLogTextBound = 4090;
constexpr size_t kLogTextLimit = 4093;

class LogLine {
 public:
  // Composes level, blank and text; false when the text cannot be formatted.
  bool compose(int32_t level, const char* format, va_list arguments) OV_PRINTF(3, 0);

  // The composed text, without and with the line end.
  std::string_view text() const { return {start(), length_}; }
  std::string_view textAndEnd() const { return {start(), length_ + 2}; }
  // Puts the stamp directly in front of the text, so that the whole line leaves in one write.
  // `time` is that of LogClock. With `repeats` it opens with the note of that many repeats.
  void stamp(int32_t repeats, std::string_view time, uint32_t process, uint32_t thread);
  // Stamp, text and line end.
  std::string_view whole() const { return {start() - headerLength_, headerLength_ + length_ + 2}; }

 private:
  const char* start() const { return room_ + kLogHeaderRoom; }

  char room_[kLogHeaderRoom + kLogTextRoom];
  size_t headerLength_ = 0;
  size_t length_ = 0;
};

// The present local time as lines show it; the same text for as long as the second lasts.
class LogClock {
 public:
  // The text of the present time, until the next call; empty when it has none.
  std::string_view now();
  // The text of a time in seconds.
  std::string_view at(int64_t now);

 private:
  uint64_t readAt_ = 0;  // when the time of day was read last; 0 for never
  int64_t second_ = 0;
  size_t length_ = 0;  // 0 for none
  char text_[64] = {};
};

// Remembers the last text; it outlives a log that is closed and opened again.
class LogFold {
 public:
  // Whether `text` repeats the last one, and then counts it.
  bool repeats(std::string_view text);
  // The number of repeats since the last different text, and its end.
  int32_t count() const { return count_; }
  void clearCount() { count_ = 0; }

 private:
  char last_[kLogTextRoom] = {};
  size_t length_ = 0;
  int32_t count_ = 0;
};

}  // namespace ov
