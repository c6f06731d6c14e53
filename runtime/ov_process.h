/* Processes and dynamic libraries of the base runtime. Part of ov_runtime.h.

   Results are 0 or an error code: the system's, or one of those of ov_errors.h that are named here.
   Texts are UTF-8; one that is not gives OV_EINVAL, as does a null pointer that is not said to be
   allowed. No argument may overlap another. */
#pragma once

#include "runtime/ov_errors.h"
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

/* States of ov_process_exited. */
#define OV_PROCESS_RUNNING 0
#define OV_PROCESS_EXITED 1

/* Polls for the end: `*state` is OV_PROCESS_RUNNING or OV_PROCESS_EXITED; with the latter
   `*exitCode` is filled and the handles are closed, so that a further call gives OV_EBADF. A
   process that exits with 259 counts as running for ever. */
ov_rc ov_process_exited(ov_process* process, int32_t* state, int32_t* exitCode);

/* Reads a variable of this process as UTF-8. OV_EINVAL if it is not set or empty, OV_EBUFFER if it
   has `size` characters or more, OV_ERANGE if it is shorter but its UTF-8 form does not fit `size`
   bytes; `buffer` holds nothing of use then. */
ov_rc ov_process_getenv(const char* name, char* buffer, size_t size);

/* Sets a variable of this process, or with a null value removes it. OV_ERANGE for a name of more
   than 8191 characters and for a value of more than 32766, the most that the system takes. */
ov_rc ov_process_setenv(const char* name, const char* value);

/* Starts a process from a command line, with the caller's startup values and no window; `*process`
   is filled, and its two handles are the caller's to close or ov_process_exited's. For this and all
   other starters: a command of more than 32767 characters gives OV_ERANGE, one of 32767 the system
   refuses, and a program named without a folder is looked for where the system looks: this
   program's folder, the current one, the system's, then PATH. */
ov_rc ov_process_create(ov_process* process, const char* command);

/* Starts a process that is not followed, with "SystemRoot" and `count` entries "NAME=value" (4094
   at most) as its whole environment; waits up to 500 ms for its end. OV_ENOMEM when the environment
   does not fit 32766 bytes or is not UTF-8. `reserved` is not read. */
ov_rc ov_process_spawnas(const char* command, const char* const* environment, int32_t count,
                         int32_t reserved);
ov_rc ov_process_spawn(const char* command, const char* const* environment, int32_t count);

/* Starts a process with no window, and pipes to its standard streams: `*stdinOut` is the write end
   of its input, `*stdoutOut` and `*stderrOut` are the read ends of its output. They are the
   caller's to close; a null pointer stands for no pipe, and the child then has the stream that this
   process was started with or else its own one. The child's ends of the pipes stay open in this
   process too, so a reader sees no end of the output: poll ov_process_exited.
   `process` may be null; then the process is not followed. `hook`, which may be null, is called
   with the record and `hookArgument` before anything is made; its result, if not 0, is returned. If
   it leaves a `user_token` in the record, by ov_process_runas, the process runs as that user, in
   `directory` or for null in the user's profile, and the token is closed; a process that runs as
   the caller stays in the caller's directory. `reserved` is not read. On failure every handle made
   is closed and what was handed out is null. */
ov_rc ov_process_fork(ov_process* process, const char* command, const char* directory,
                      void* reserved, ov_rc (*hook)(ov_process* process, void* argument),
                      void* hookArgument, void** stdinOut, void** stdoutOut, void** stderrOut);

/* A user, "DOMAIN\user" or "user", and the password. */
typedef struct {
  const char* user;
  const char* password;
} ov_credentials;

/* Logs the user on and fills `user_token`, `user_name` and `domain` of the record; all ones remain
   in `user_token` on failure. OV_ERANGE for a part of 512 characters or more. */
ov_rc ov_process_runas(ov_process* process, const ov_credentials* credentials);

/* Runs `function` as the service of that name, which the service manager must have started this
   process for, and ends the process with the exit code 0 when the service has stopped. The
   arguments must live that long. Returns on failure only: OV_EINVAL on a second call, OV_ERANGE
   for a name of more than 256 characters, else the system's code. How the function learns that it
   should stop is the caller's matter. */
ov_rc ov_process_daemonize(int32_t (*function)(int32_t argc, char** argv), int32_t argc,
                           char** argv, const char* serviceName);

/* Ends a process with the exit code 0. */
ov_rc ov_process_kill(ov_process* process);

/* States of ov_process_wait. */
#define OV_PROCESS_WAIT_ENDED 0
#define OV_PROCESS_WAIT_TIMEOUT 1
#define OV_PROCESS_WAIT_ABANDONED 2
#define OV_PROCESS_WAIT_FAILED 3

/* Waits for the end, so many milliseconds at most, or without limit with -1. `*state` is one of
   OV_PROCESS_WAIT_...; for the last of them the result is the failure's code. The handles stay
   open.
 */
ov_rc ov_process_wait(ov_process* process, int32_t milliseconds, int32_t* state);

/* Writes this process's id into "DIRECTORY/var/run/orvane/NAME.pid", where the directory must be
   there, and hands out the file's path, to be given to ov_process_destroy_pidfile. On failure the
   path is null; OV_EBUFFER for a path of 520 bytes or more. */
ov_rc ov_process_create_pidfile(const char* directory, const char* name, char** pathOut);

/* Deletes the file, frees the path and sets null. */
void ov_process_destroy_pidfile(char** path);

/* A loaded library; null when closed. */
typedef void* ov_library;

/* Marks the record closed; tests it: 1 if a library is open, else 0. */
void ov_library_init(ov_library* library);
int32_t ov_library_is_open(const ov_library* library);

/* Loads a library. A relative path is handed to the system as it is: without a folder that looks
   among the libraries that are loaded already, then in this program's folder, the system's, the
   current one and those of PATH, so name what you mean by its full path. On failure the record is
   closed. */
ov_rc ov_library_open(ov_library* library, const char* path);

/* Lets go of it; does nothing for a closed record. */
ov_rc ov_library_close(ov_library* library);

/* Hands out the address of what the library exports under the name; null on failure, and OV_EBADF
   for a closed record. */
ov_rc ov_library_symbol(ov_library* library, const char* name, void** out);

OV_END_DECLS
