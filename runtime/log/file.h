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
constexpr uint64_t kDefaultLogSize = 0xa00000;
// Bytes written between two looks at the size of the file.
constexpr uint64_t kLogCheckInterval = 65536;
// Digits tried in one go for a generation that is not full.
constexpr int kLogAdvanceLimit = kLogGenerationCount;

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
  void setEchoLevel(int32_t level) { echoLevel_.store(level); }
  void setMaxSize(uint64_t size) { maxSize_.store(size); }

 private:
  ov_rc setPath(const char* path);
  void takeSizeSuffix(const char* path);
  ov_rc moveToDefaultDirectory(const char* name);
  ov_rc checkRotation();
  ov_rc rotateIfFull();
  ov_rc openGeneration();
  ov_rc openDigit(const LogGenerations& generations, int digit);
  bool isFull();
  ov_rc writeAll(std::string_view bytes);

  std::atomic<uint64_t> maxSize_ = kDefaultLogSize;
  std::atomic<int32_t> echoLevel_ = -1;
  bool toStderr_ = false;
  ov_file file_ = nullptr;
  bool open_ = false;  // whether `file_` is an open file
  char path_[kLogPathRoom] = {};
  char generationPath_[kLogGenerationPathRoom] = {};  // of `file_`
  uint32_t process_ = 0;
  uint64_t bytesSinceCheck_ = 0;
  LogFold fold_;
  LogClock clock_;
  // Held around a rotation; that it can be made and taken is part of what the log needs.
  ov_mutex rotation_ = {};
  bool rotationMade_ = false;
};

extern constinit LogFile log_file;

}  // namespace ov
