/* Processes and dynamic libraries of the base runtime. Part of ov_runtime.h. Results are 0 or an
 * error code. */
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

/* Sets a variable of this process, or with a null value removes it. */
ov_rc ov_process_setenv(const char* name, const char* value);

/* Starts a process from a command line, with the caller's startup values and no window; `*process`
   is filled, and its two handles are the caller's to close or ov_process_exited's. */
ov_rc ov_process_create(ov_process* process, const char* command);

/* Starts a process that is not followed, with "SystemRoot" and `count` entries "NAME=value" (4094
   at most) as its whole environment; waits up to 500 ms for its end. 8 when the environment does
   not fit 32766 bytes or is not UTF-8. `reserved` is not read. */
ov_rc ov_process_spawnas(const char* command, const char* const* environment, int32_t count,
                         int32_t reserved);
ov_rc ov_process_spawn(const char* command, const char* const* environment, int32_t count);

/* Ends a process with the exit code 0. */
ov_rc ov_process_kill(ov_process* process);

/* Waits for the end, so many milliseconds at most, or without limit with -1. `*state`: 0 exited, 1
   the time ran out, 2 the wait was abandoned, 3 it failed, with its code as the result. The handles
   stay open. */
ov_rc ov_process_wait(ov_process* process, int32_t milliseconds, int32_t* state);

/* Writes this process's id into "DIRECTORY/var/run/orvane/NAME.pid", where the directory must be
   there, and hands out the file's path, to be given to ov_process_destroy_pidfile. On failure the
   path is null. */
ov_rc ov_process_create_pidfile(const char* directory, const char* name, char** pathOut);

/* Deletes the file, frees the path and sets null. */
void ov_process_destroy_pidfile(char** path);

/* A loaded library; null when closed. */
typedef void* ov_library;

/* Marks the record closed; tests it: 1 if a library is open, else 0. */
void ov_library_init(ov_library* library);
int32_t ov_library_is_open(const ov_library* library);

/* Loads a library. */
ov_rc ov_library_open(ov_library* library, const char* path);

/* Lets go of it; does nothing for a closed record. */
ov_rc ov_library_close(ov_library* library);

/* Hands out the address of what the library exports under the name. */
ov_rc ov_library_symbol(ov_library* library, const char* name, void** out);

OV_END_DECLS
