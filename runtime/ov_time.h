/* A monotonic clock in microseconds, intervals between its readings, and calendar formatting. Part
   of ov_runtime.h. Any thread may call everything here. Calendar times are seconds since 1970. */
#pragma once

#include <time.h> /* Read by C too. NOLINT(modernize-deprecated-headers) */

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* A reading of the monotonic clock: time since ov_time_init, not the time of day. */
typedef struct ov_timeval {
  int32_t sec, usec;
} ov_timeval;

/* Starts the clock; 0, also when it runs already, or the system's code. */
ov_rc ov_time_init(void);
/* Logs the clock's constants. */
void ov_time_print(void);
/* Ticks per second of the clock's source; 0 before ov_time_init. */
void ov_time_sys_tick_frequency(uint64_t* frequency);

/* Reads the clock, starting it if need be. OV_EINVAL for null, or the system's code. */
ov_rc ov_time_gettimeofday(ov_timeval* now);
/* Microseconds from `earlier` to now. OV_EINVAL for null arguments; also, with a log line and *usec
   0, for an `earlier` in the future. */
ov_rc ov_time_get_usec_since(const ov_timeval* earlier, int64_t* usec);
/* The same, for intervals known to be short. */
ov_rc ov_time_get_usec_since_small(const ov_timeval* earlier, int64_t* usec);
/* The same, and stores the present reading in *now first, to measure a chain of intervals. */
ov_rc ov_time_getnstore_usec_since(const ov_timeval* earlier, ov_timeval* now, int64_t* usec);
/* a - b in microseconds; may be negative. */
int64_t ov_time_get_usec_diff(const ov_timeval* a, const ov_timeval* b);
/* Adds `usec` microseconds. */
void ov_time_tv_incr(ov_timeval* tv, int64_t usec);
/* Subtracts `usec` microseconds, at most 1000000 of them. */
void ov_time_tv_dec(ov_timeval* tv, int64_t usec);

/* Break down a time as UTC or as the machine's local time. OV_EINVAL for null arguments or a time
   that the platform's calendar does not cover (before 1970). */
ov_rc ov_time_gmtime(const int64_t* time, struct tm* tm);
ov_rc ov_time_localtime(const int64_t* time, struct tm* tm);
/* The reverse, from UTC or from local time; `tm` is normalised. OV_EINVAL when there is none. */
ov_rc ov_time_timegm(struct tm* tm, int64_t* time);
ov_rc ov_time_mktime(struct tm* tm, int64_t* time);
/* From 100-nanosecond units since 1601 to seconds since 1970; 0 always. */
ov_rc ov_time_convert_epoch(int64_t* time, int64_t filetime);

/* strftime with two more conversions: %L, milliseconds (here always 000), and %z, the present
   offset from UTC as in +0130 (UTC itself is -0000). `out` holds `size` bytes and is left alone on
   failure. OV_EINVAL for null arguments, OV_ERANGE for a text that is empty or does not fit,
   OV_ENOMEM without memory.
 */
ov_rc ov_time_strftime(char* out, size_t size, const char* format, const struct tm* tm);
/* The same of a time broken down as UTC, as local time, or of a time with microseconds, as UTC. A
   failure leaves `out` alone. */
void ov_time_strftime_sec(char* out, size_t size, const char* format, const int64_t* time);
void ov_time_strftime_sec_local(char* out, size_t size, const char* format, const int64_t* time);
void ov_time_strftime_usec(char* out, size_t size, const char* format, const ov_timeval* tv);

OV_END_DECLS
