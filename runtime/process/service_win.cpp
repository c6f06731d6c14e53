// Running this process as a Windows service.
#include <windows.h>

#include <atomic>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_process.h"

using namespace ov;

namespace {

// Set once and for good: a process is a service at most once.
std::atomic<bool> is_daemon{false};

// Written before the dispatcher starts, read by the service's own thread.
struct Daemon {
  int32_t (*function)(int32_t, char**);
  int32_t argc;
  char** argv;
  const char* name;
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

void WINAPI service_main(DWORD, char**) {
  ov_log("Service main called");
  const SERVICE_STATUS_HANDLE handle = RegisterServiceCtrlHandlerA(daemon.name, handle_control);
  if (handle == nullptr) return;
  service.setHandle(handle);
  service.report(SERVICE_START_PENDING, 0);
  service.report(SERVICE_RUNNING, SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN);
  daemon.function(daemon.argc, daemon.argv);
  service.report(SERVICE_STOPPED, 0);
  ov_log("Service main: updated_status to SERVICE_STOPPED\n");
}

}  // namespace

ov_rc ov_process_daemonize(int32_t (*function)(int32_t, char**), int32_t argc, char** argv,
                           const char* serviceName) {
  if (function == nullptr || serviceName == nullptr) return OV_EINVAL;
  if (is_daemon.exchange(true)) {
    OV_DEBUG("ov_process_daemonize(): already running as a daemon");
    return OV_EINVAL;
  }
  daemon = {function, argc, argv, serviceName};
  SERVICE_TABLE_ENTRYA table[] = {{const_cast<char*>(serviceName), service_main},
                                  {nullptr, nullptr}};
  if (!StartServiceCtrlDispatcherA(table)) return last_code();
  ExitProcess(0);
}
