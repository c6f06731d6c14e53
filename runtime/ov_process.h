/* Processes of the base runtime. Part of ov_runtime.h. Results are 0 or an error code. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* A process, the caller's record. */
typedef struct {
  void* process; /* null once ov_process_exited has seen the end */
  void* thread;
  uint32_t process_id;
  uint32_t thread_id;
  void* user_token; /* all ones when there is none */
  wchar_t user_name[512];
  wchar_t domain[512];
} ov_process;

/* Polls for the end: `*state` is 0 while the process runs, and 1 when it has exited; then
   `*exitCode` is filled and the handles are closed, so that a further call gives 6. */
ov_rc ov_process_exited(ov_process* process, int32_t* state, int32_t* exitCode);

/* Reads a variable of this process as UTF-8. 22 if it is not set or empty, 28677 if it does not fit
   `size` bytes. */
ov_rc ov_process_getenv(const char* name, char* buffer, size_t size);

OV_END_DECLS
