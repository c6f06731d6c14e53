/* The process-wide log: flags, the three levels, the calls, and the log file. Part of
   ov_runtime.h. Any thread may call everything here; no call changes the caller's last error. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* Levels of a message, in the order of their names "ERR", "LOG", "DBG". */
#define OV_LEVEL_ERR 0
#define OV_LEVEL_LOG 1
#define OV_LEVEL_DBG 2

/* Master switch, 1 at the start; 0 silences every level. */
OV_DATA int32_t g_log_enabled;
/* Non-zero lets level 2 through; 0 at the start. */
OV_DATA int32_t g_debug_enabled;
/* Verbosity that call sites test themselves, 0 at the start; the log functions never read it. */
OV_DATA int32_t g_dbg_level;

/* A debug line: one comparison when debugging is off, and then no argument is evaluated. */
#define OV_DEBUG(...)                          \
  do {                                         \
    if (g_dbg_level >= 2) ov_dbg(__VA_ARGS__); \
  } while (0)

/* Log at level LOG, ERR or DBG; 0 always. Text from outside goes through "%s", never as format. */
int32_t ov_log(const char* format, ...) OV_PRINTF(1, 2);
int32_t ov_err(const char* format, ...) OV_PRINTF(1, 2);
int32_t ov_dbg(const char* format, ...) OV_PRINTF(1, 2);

/* Log at a level of the caller's choice (above 2 reads as DBG, below 0 as ERR). 0 also when the
   level is switched off; OV_EINVAL before the log is set up; OV_ELOG when the text cannot be
   formatted for a function sink. The text is cut at 4093 bytes (file) or 4091 bytes (function
   sink). */
ov_rc ov_log_msg(int32_t level, const char* format, ...) OV_PRINTF(2, 3);
ov_rc ov_log_vmsg(int32_t level, const char* format, va_list arguments) OV_PRINTF(2, 0);

/* Sends every message to `sink` as level name, one blank and text, with no line end. 0, also when
   the log is set up already (then nothing changes); OV_ERANGE for a null sink. */
ov_rc ov_log_init_function(void (*sink)(const char* text));

/* Write and read g_log_enabled. */
void ov_log_set(int32_t enabled);
int32_t ov_log_get(void);
/* Write and read g_debug_enabled. */
void ov_dbg_set(int32_t enabled);
int32_t ov_dbg_get(void);
/* Writes g_dbg_level. */
void ov_dbg_set_all(int32_t level);

/* Bounded formatting; `dst` is always terminated when `size` is not 0. The length written, or less
   than 0 when the text cannot be formatted: what `dst` holds then means nothing. No argument may
   lie in `dst`. With size 0 (dst may be null) the length needed. A text that is cut makes
   ov_snprintf return size - 1 and log it at debug level; ov_vsnprintf returns size. */
int32_t ov_snprintf(char* dst, size_t size, const char* format, ...) OV_PRINTF(3, 4);
int32_t ov_vsnprintf(char* dst, size_t size, const char* format, va_list arguments) OV_PRINTF(3, 0);

/* Opens the text log behind `path` (UTF-8, up to 519 bytes; "-" is standard error; a suffix ":N"
   is a size limit of N MiB). Mode 3 is refused with OV_EINVAL, all other modes mean the same. 0,
   also when the log is set up already; OV_EINVAL for a null path or a file that cannot be opened,
   OV_EPATHMAX for a path too long, OV_ERANGE when the default directory cannot be composed, or the
   system's code. */
ov_rc ov_log_init(int32_t mode, const char* path);
/* Highest level that is also echoed to standard error; -1, the value at the start, echoes none. */
void ov_log_set_echo(int32_t level);
/* Size in MiB at which a generation of the log file is full; values from 4096 are ignored, 2048 to
   4095 and negative ones mean no limit, 0 a limit of 0. */
void ov_log_set_logfile_size(int32_t megabytes);
/* Forces what was logged to the disk; does nothing without an open log file. */
void ov_log_flush(void);
/* Closes the log, of whatever form; a later initialisation may open it again. */
void ov_log_cleanup(void);

/* Writes a backtrace of the calling thread as ERR lines: the addresses of up to 66 frames in one
   line, then a line for each with the name of its function, as far as one is known. From the set-up
   of the log to its end a hard fault of the process is logged in the same way. */
void ov_log_btrace(void);

OV_END_DECLS
