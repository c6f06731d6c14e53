// The calls of the log, its flags, and the function sink.
#include "runtime/log/internal.h"

#include <algorithm>

#include "runtime/errors/saved_error.h"
#include "runtime/faults/exception_logger.h"
#include "runtime/faults/fault_report.h"
#include "runtime/log/file.h"
#include "runtime/log/line.h"
#include "runtime/log/lock.h"
#include "runtime/ov_errors.h"

int32_t g_log_enabled = 1;
int32_t g_debug_enabled = 0;
int32_t g_dbg_level = 0;

namespace ov {

std::atomic<int32_t> log_state = kLogStateNone;

namespace {

// Numbers of MiB from here on do not set the size.
constexpr int32_t kMegabytesEnd = 4096;

using Sink = void (*)(const char*);
std::atomic<Sink> log_sink = nullptr;

// The flags are plain exported integers that any thread may write.
int32_t read_flag(int32_t& flag) {
  return std::atomic_ref<int32_t>(flag).load(std::memory_order_relaxed);
}

void write_flag(int32_t& flag, int32_t value) {
  std::atomic_ref<int32_t>(flag).store(value, std::memory_order_relaxed);
}

bool level_passes(int32_t level) {
  if (read_flag(g_log_enabled) == 0) return false;
  return level < OV_LEVEL_DBG || read_flag(g_debug_enabled) != 0;
}

OV_PRINTF(2, 0) ov_rc send_to_sink(int32_t level, const char* format, va_list arguments) {
  const Sink sink = log_sink.load();
  if (sink == nullptr) return OV_EINVAL;
  char message[kLogMessageRoom];
  const int32_t name = ov_snprintf(message, kLogLevelBound, "%s ", log_level_name(level));
  if (name < 0) return OV_ELOG;
  if (ov_vsnprintf(message + name, kLogSinkTextBound, format, arguments) < 0) return OV_ELOG;
  sink(message);
  return 0;
}

// The line of a fault's report; used under the log's lock. Where the fault is that the stack has
// run out, a line would not fit there.
LogLine report_line;

OV_PRINTF(2, 0) void write_of_report(int32_t level, const char* format, va_list arguments) {
  const LogLock lock;
  if (!lock || !report_line.compose(level, format, arguments)) return;
  log_file.write(report_line, level, lock.nested());
}

// Composed before the lock is taken, which then covers the fold, the stamp, the write and a
// rotation. A frame of its own, since it holds the line.
[[gnu::noinline]] OV_PRINTF(2, 0) void write_to_file(int32_t level, const char* format,
                                                     va_list arguments) {
  LogLine line;
  if (!line.compose(level, format, arguments)) return;
  const LogLock lock;
  // The log may have been closed meanwhile; then no file is open.
  log_file.write(line, level, lock.nested());
}

// The steps under the log's lock; `*set_up` tells whether there is a log now that was not before.
ov_rc set_up_sink(Sink sink, bool* set_up) {
  const LogLock lock;
  if (log_state.load() != kLogStateNone) return 0;
  if (sink == nullptr) return OV_ERANGE;
  log_sink.store(sink);
  log_state.store(kLogStateSink);
  *set_up = true;
  return 0;
}

ov_rc set_up_file(int32_t mode, const char* path, bool* set_up) {
  const LogLock lock;
  if (log_state.load() != kLogStateNone) return 0;
  if (mode == kLogStateSink) return OV_EINVAL;
  // The state holds whatever becomes of the path, so that a later call changes nothing.
  log_state.store(kLogStateFile);
  return log_file.open(path, set_up);
}

}  // namespace

const char* log_level_name(int32_t level) {
  static constexpr const char* kNames[] = {"ERR", "LOG", "DBG"};
  return kNames[std::clamp<int32_t>(level, OV_LEVEL_ERR, OV_LEVEL_DBG)];
}

}  // namespace ov

ov_rc ov_log_vmsg(int32_t level, const char* format, va_list arguments) {
  if (!ov::level_passes(level)) return 0;
  const ov::SavedError keep;
  switch (ov::log_state.load()) {
    case ov::kLogStateFile:
      if (ov::FaultReport::ofThisThread() != nullptr) {
        ov::write_of_report(level, format, arguments);
      } else {
        ov::write_to_file(level, format, arguments);
      }
      return 0;
    case ov::kLogStateSink:
      return ov::send_to_sink(level, format, arguments);
    default:
      return OV_EINVAL;
  }
}

ov_rc ov_log_msg(int32_t level, const char* format, ...) {
  if (ov_log_get() == 0) return 0;
  va_list arguments;
  va_start(arguments, format);
  const ov_rc result = ov_log_vmsg(level, format, arguments);
  va_end(arguments);
  return result;
}

int32_t ov_log(const char* format, ...) {
  if (ov_log_get() == 0) return 0;
  va_list arguments;
  va_start(arguments, format);
  ov_log_vmsg(OV_LEVEL_LOG, format, arguments);
  va_end(arguments);
  return 0;
}

int32_t ov_err(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  ov_log_vmsg(OV_LEVEL_ERR, format, arguments);
  va_end(arguments);
  return 0;
}

int32_t ov_dbg(const char* format, ...) {
  if (ov_dbg_get() == 0) return 0;
  va_list arguments;
  va_start(arguments, format);
  ov_log_vmsg(OV_LEVEL_DBG, format, arguments);
  va_end(arguments);
  return 0;
}

ov_rc ov_log_init_function(void (*sink)(const char*)) {
  const ov::SavedError keep;
  bool set_up = false;
  const ov_rc result = ov::set_up_sink(sink, &set_up);
  // Without the log's lock: what it loads may itself wait for a thread that logs.
  if (set_up) ov::exception_logger_install();
  return result;
}

ov_rc ov_log_init(int32_t mode, const char* path) {
  const ov::SavedError keep;
  bool set_up = false;
  const ov_rc result = ov::set_up_file(mode, path, &set_up);
  if (set_up) ov::exception_logger_install();
  return result;
}

void ov_log_flush(void) {
  const ov::SavedError keep;
  const ov::LogLock lock;
  if (lock && ov::log_state.load() == ov::kLogStateFile) ov::log_file.flush();
}

void ov_log_cleanup(void) {
  const ov::SavedError keep;
  {
    const ov::LogLock lock;
    ov::log_file.close();
    ov::log_sink.store(nullptr);
    ov::log_state.store(ov::kLogStateNone);
  }
  ov::exception_logger_remove();
}

void ov_log_set_echo(int32_t level) {
  ov::log_file.setEchoLevel(level);
}

void ov_log_set_logfile_size(int32_t megabytes) {
  if (megabytes >= ov::kMegabytesEnd) return;
  // Shifted in 32 bits, so that from 2048 on, and below 0, the limit lies beyond any file.
  const uint32_t shifted = static_cast<uint32_t>(megabytes) << 20;
  ov::log_file.setMaxSize(static_cast<uint64_t>(int64_t{static_cast<int32_t>(shifted)}));
}

void ov_log_set(int32_t enabled) {
  ov::write_flag(g_log_enabled, enabled);
}

int32_t ov_log_get(void) {
  return ov::read_flag(g_log_enabled);
}

void ov_dbg_set(int32_t enabled) {
  ov::write_flag(g_debug_enabled, enabled);
}

int32_t ov_dbg_get(void) {
  return ov::read_flag(g_debug_enabled);
}

void ov_dbg_set_all(int32_t level) {
  ov::write_flag(g_dbg_level, level);
}
