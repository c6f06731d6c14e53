#include "service/platform.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace Vantrel::Web {

// Tests preset the directory; one that was not preset cannot be found.
int32_t localAppDataDirectory(std::string*) {
  return -1;
}

StartedProcess::StartedProcess() : record() {}

// Collects a child that has ended; one that still runs is left to the system.
StartedProcess::~StartedProcess() {
  if (record.process_id != 0) waitpid(static_cast<pid_t>(record.process_id), nullptr, WNOHANG);
}

ov_rc StartedProcess::start(const std::string& path) {
  std::string command = path;
  char* const arguments[] = {command.data(), nullptr};
  pid_t child = 0;
  if (const int code = posix_spawn(&child, path.c_str(), nullptr, nullptr, arguments, environ)) {
    return code;
  }
  record.process_id = static_cast<uint32_t>(child);
  return 0;
}

ov_rc allowForeground(int32_t) {
  return 0;
}

}  // namespace Vantrel::Web

ov_rc ov_process_exited(ov_process* process, int32_t* state, int32_t* exitCode) {
  int status = 0;
  const pid_t child = waitpid(static_cast<pid_t>(process->process_id), &status, WNOHANG);
  if (child < 0) return errno;
  *state = child == 0 ? 0 : WIFEXITED(status) ? 1 : 2;
  if (*state == 1) *exitCode = WEXITSTATUS(status);
  if (*state != 0) process->process_id = 0;
  return 0;
}
