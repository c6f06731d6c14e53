// The text log: one open generation of the log file, or standard error. One object for the process,
// made at load time and never torn down, so that a late log call finds it; everything is called
// with the log's lock held, except the two settings.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "runtime/log/generations.h"
#include "runtime/log/line.h"
#include "runtime/ov_files.h"
#include "runtime/ov_threads.h"

namespace ov {

// Size at which a generation counts as full, unless it is set.
constexpr uint64_t default_log_size = 0xa00000;
// Bytes written between two looks at the size of the file.
constexpr uint64_t log_check_interval = 65536;
// Digits tried in one go for a generation that is not full.
constexpr int log_advance_limit = log_generation_count;

class LogFile {
 public:
  // The steps of ov_log_init behind its test of the state. `path` may be null. `*complete` tells
  // whether all of them were gone, if only to find that no file opens.
  ov_rc open(const char* path, bool* complete);
  // Writes the line, folded and stamped. A `nested` line is one that the log's own work brought up:
  // it is neither folded nor looked at for the size.
  ov_rc write(LogLine& line, int32_t level, bool nested);
  void flush();
  void close();

  // Any thread.
  void set_echo_level(int32_t level) { echo_level_.store(level); }
  void set_max_size(uint64_t size) { max_size_.store(size); }

 private:
  ov_rc set_path(const char* path);
  void take_size_suffix(const char* path);
  ov_rc move_to_default_directory(const char* name);
  ov_rc check_rotation();
  ov_rc rotate_if_full();
  ov_rc open_generation();
  ov_rc open_digit(const LogGenerations& generations, int digit);
  bool is_full();
  ov_rc write_all(std::string_view bytes);

  std::atomic<uint64_t> max_size_ = default_log_size;
  std::atomic<int32_t> echo_level_ = -1;
  bool to_stderr_ = false;
  ov_file file_ = nullptr;
  bool open_ = false;  // whether `file_` is an open file
  char path_[log_path_room] = {};
  char generation_path_[log_generation_path_room] = {};  // of `file_`
  uint32_t process_ = 0;
  uint64_t bytes_since_check_ = 0;
  LogFold fold_;
  LogClock clock_;
  // Held around a rotation; that it can be made and taken is part of what the log needs.
  ov_mutex rotation_ = {};
  bool rotation_made_ = false;
};

extern constinit LogFile log_file;

}  // namespace ov
