// Starting processes that need neither pipes nor another user.
#include <windows.h>

#include <memory>
#include <new>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_process.h"
#include "runtime/process/environment_block.h"
#include "runtime/process/token_win.h"
#include "runtime/process/wide_command_win.h"

using namespace ov;

static_assert(sizeof(wchar_t) == sizeof(uint16_t));

namespace {

constexpr DWORD kGraceMilliseconds = 500;
constexpr size_t kRootSize = 502;

// Without a console window, with `environment` or, for null, that of this process.
ov_rc start(wchar_t* command, void* environment, PROCESS_INFORMATION* started) {
  STARTUPINFOW startup;
  GetStartupInfoW(&startup);
  const DWORD flags = CREATE_NO_WINDOW | (environment == nullptr ? 0 : CREATE_UNICODE_ENVIRONMENT);
  return code_of(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, flags, environment,
                                nullptr, &startup, started));
}

}  // namespace

ov_rc ov_process_create(ov_process* process, const char* command) {
  if (process == nullptr) return OV_EINVAL;
  *process = {};
  process->user_token = INVALID_HANDLE_VALUE;
  WideCommand wide(command);
  if (wide.error() != 0) return wide.error();
  PROCESS_INFORMATION started;
  const ov_rc error = start(wide.text(), nullptr, &started);
  if (error != 0) {
    OV_DEBUG("ov_process_create(): error starting process (errno=%d)", error);
    return error;
  }
  note_started(process, started);
  return 0;
}

ov_rc ov_process_spawnas(const char* command, const char* const* environment, int32_t count,
                         int32_t) {
  struct Block {
    uint16_t units[kEnvironmentBlockUnits];
  };
  const std::unique_ptr<Block> block(new (std::nothrow) Block);
  if (block == nullptr) return OV_ENOMEM;
  char root[kRootSize];
  if (ov_process_getenv("SystemRoot", root, sizeof root) != 0) root[0] = '\0';
  ov_rc error = build_environment_block(root, environment, count, block->units);
  if (error != 0) return error;
  WideCommand wide(command);
  if (wide.error() != 0) return wide.error();
  PROCESS_INFORMATION started;
  error = start(wide.text(), block->units, &started);
  if (error != 0) return error;
  WaitForSingleObject(started.hProcess, kGraceMilliseconds);
  CloseHandle(started.hProcess);
  CloseHandle(started.hThread);
  return 0;
}

ov_rc ov_process_spawn(const char* command, const char* const* environment, int32_t count) {
  return ov_process_spawnas(command, environment, count, 0);
}
