// What the sources of the log share. Any thread may call it.
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>

#include "runtime/ov_log.h"

namespace ov {

// How the log is set up. The sink's number is refused as a mode by ov_log_init.
constexpr int32_t kLogStateNone = 0;
constexpr int32_t kLogStateFile = 2;
constexpr int32_t kLogStateSink = 3;

// Written under the log's lock.
extern std::atomic<int32_t> log_state;

// Room for a message to a sink, its terminator included.
constexpr size_t kLogMessageRoom = 4096;
// Bound of the level name and its blank, and of the text behind them in a sink's message.
constexpr size_t kLogLevelBound = 5;
constexpr size_t kLogSinkTextBound = 4092;

// "ERR", "LOG" or "DBG".
const char* log_level_name(int32_t level);

}  // namespace ov
