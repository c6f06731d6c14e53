// Running this process as a Windows service, and the files that hold a running process's id.
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"

using namespace ov;

namespace {

// In characters: the longest name that the service manager takes, with the terminator.
constexpr size_t kNameSize = 257;

// Set once and for good: a process is a service at most once.
std::atomic<bool> is_daemon{false};

// Written before the dispatcher starts, read by the service's own thread.
struct Daemon {
  int32_t (*function)(int32_t, char**);
  int32_t argc;
  char** argv;
  wchar_t name[kNameSize];
} daemon;

// The state as the service manager knows it. The service's thread and that of the controls report;
// the lock keeps the reports in the order of the states.
class ServiceState {
 public:
  void setHandle(SERVICE_STATUS_HANDLE handle) { handle_ = handle; }
  void report(DWORD state, DWORD controls) {
    AcquireSRWLockExclusive(&lock_);
    status_.dwCurrentState = state;
    status_.dwControlsAccepted = controls;
    SetServiceStatus(handle_, &status_);
    ReleaseSRWLockExclusive(&lock_);
  }
  // Reports that the service is about to stop, unless it has.
  void reportStopping() {
    AcquireSRWLockExclusive(&lock_);
    if (status_.dwCurrentState != SERVICE_STOPPED) {
      status_.dwCurrentState = SERVICE_STOP_PENDING;
      SetServiceStatus(handle_, &status_);
    }
    ReleaseSRWLockExclusive(&lock_);
  }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
  // Guarded by the lock, but for the handle, which is set before the first report.
  SERVICE_STATUS status_ = {SERVICE_WIN32_OWN_PROCESS, SERVICE_START_PENDING, 0, 0, 0, 0, 0};
  SERVICE_STATUS_HANDLE handle_ = nullptr;
} service;

void WINAPI handle_control(DWORD control) {
  ov_log("Process handler called (%u)", static_cast<unsigned>(control));
  if (control != SERVICE_CONTROL_STOP && control != SERVICE_CONTROL_SHUTDOWN) return;
  ov_log("received SERVICE_CONTROL_STOP setting SERVICE_STOP_PENDING\n");
  service.reportStopping();
}

void WINAPI service_main(DWORD, wchar_t**) {
  ov_log("Service main called");
  const SERVICE_STATUS_HANDLE handle = RegisterServiceCtrlHandlerW(daemon.name, handle_control);
  if (handle == nullptr) return;
  service.setHandle(handle);
  service.report(SERVICE_START_PENDING, 0);
  service.report(SERVICE_RUNNING, SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN);
  daemon.function(daemon.argc, daemon.argv);
  service.report(SERVICE_STOPPED, 0);
  ov_log("Service main: updated_status to SERVICE_STOPPED\n");
}

// The mode of a pid file.
constexpr int32_t kMode = 0744;

ov_rc report(const char* what, const char* path, ov_rc error) {
  char text[512];
  ov_err("%s pid file '%s', errno:%d, err desc:%s", what, path, error,
         ov_platform_errstr_inline(error, text, sizeof text));
  return error;
}

ov_rc write_id(const char* path) {
  char content[32];
  size_t length = 0;
  ov_str_printf_to(content, sizeof content, &length, "%llu\n",
                   static_cast<unsigned long long>(GetCurrentProcessId()));
  ov_file file;
  ov_rc error = ov_file_openwrite(path, &file, kMode);
  if (error != 0) return report("Unable to open", path, error);
  uint32_t written = 0;
  error = ov_file_write(&file, content, static_cast<uint32_t>(length), &written);
  if (error == 0 && written != length) error = OV_EBUFFER;
  if (error != 0) {
    report("Failure writing to", path, error);
  } else {
    error = ov_file_truncate(&file, written);
  }
  ov_file_close(&file);
  return error;
}

}  // namespace

ov_rc ov_process_daemonize(int32_t (*function)(int32_t, char**), int32_t argc, char** argv,
                           const char* serviceName) {
  if (function == nullptr || serviceName == nullptr) return OV_EINVAL;
  wchar_t name[kNameSize];
  size_t bytes = sizeof name;
  if (const ov_rc error = ov_utf8_to_wchar(serviceName, name, &bytes)) return error;
  if (is_daemon.exchange(true)) {
    OV_DEBUG("ov_process_daemonize(): already running as a daemon");
    return OV_EINVAL;
  }
  daemon.function = function;
  daemon.argc = argc;
  daemon.argv = argv;
  memcpy(daemon.name, name, bytes);
  SERVICE_TABLE_ENTRYW table[] = {{daemon.name, service_main}, {nullptr, nullptr}};
  if (!StartServiceCtrlDispatcherW(table)) return last_code();
  ExitProcess(0);
}

ov_rc ov_process_create_pidfile(const char* directory, const char* name, char** pathOut) {
  if (pathOut == nullptr) return OV_EINVAL;
  *pathOut = nullptr;
  if (directory == nullptr || name == nullptr) return OV_EINVAL;
  char* path = static_cast<char*>(malloc(OV_PATH_SIZE));
  if (path == nullptr) return OV_ENOMEM;
  ov_rc error =
      ov_str_printf_to(path, OV_PATH_SIZE, nullptr, "%s/var/run/orvane/%s.pid", directory, name);
  if (error != 0) {
    free(path);  // a path that was cut is not ours to delete
    return error;
  }
  error = write_id(path);
  if (error != 0) {
    ov_process_destroy_pidfile(&path);
  } else {
    *pathOut = path;
  }
  return error;
}

void ov_process_destroy_pidfile(char** path) {
  if (path == nullptr || *path == nullptr) return;
  const ov_rc error = ov_file_delete(*path);
  if (error != 0) report("Failure deleting", *path, error);
  free(*path);
  *path = nullptr;
}
