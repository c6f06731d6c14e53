// The service of this process, with the calls of the service manager replaced by ours. One case: a
// process is a service at most once.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

// What the service manager was told and asked, and what it does.
struct Manager {
  bool starts = false;     // runs the service in the dispatcher, and the dispatcher succeeds
  bool registers = false;  // takes the control handler
  Messages calls;
  LPHANDLER_FUNCTION handler = nullptr;
} manager;

std::string utf8(const wchar_t* text) {
  char out[1024];
  size_t bytes = sizeof out;
  EXPECT_EQ(0, ov_wchar_to_utf8(text, out, &bytes));
  return out;
}

BOOL WINAPI startDispatcher(const SERVICE_TABLE_ENTRYW* table) {
  manager.calls.push_back("start " + utf8(table[0].lpServiceName));
  EXPECT_EQ(nullptr, table[1].lpServiceName);
  EXPECT_EQ(nullptr, table[1].lpServiceProc);
  table[0].lpServiceProc(0, nullptr);
  if (manager.starts) return TRUE;
  SetLastError(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT);
  return FALSE;
}

SERVICE_STATUS_HANDLE WINAPI registerHandler(LPCWSTR name, LPHANDLER_FUNCTION handler) {
  manager.calls.push_back("register " + utf8(name));
  manager.handler = handler;
  return manager.registers ? reinterpret_cast<SERVICE_STATUS_HANDLE>(&manager) : nullptr;
}

BOOL WINAPI setStatus(SERVICE_STATUS_HANDLE handle, LPSERVICE_STATUS status) {
  EXPECT_EQ(reinterpret_cast<SERVICE_STATUS_HANDLE>(&manager), handle);
  EXPECT_EQ(16U, status->dwServiceType);
  EXPECT_EQ(0U, status->dwWin32ExitCode);
  manager.calls.push_back("state " + std::to_string(status->dwCurrentState) + " controls " +
                          std::to_string(status->dwControlsAccepted));
  return TRUE;
}

}  // namespace

extern "C" {
decltype(&StartServiceCtrlDispatcherW) __imp_StartServiceCtrlDispatcherW = startDispatcher;
decltype(&RegisterServiceCtrlHandlerW) __imp_RegisterServiceCtrlHandlerW = registerHandler;
decltype(&SetServiceStatus) __imp_SetServiceStatus = setStatus;
}

namespace {

int32_t serve(int32_t argc, char** argv) {
  manager.calls.push_back("serve " + std::to_string(argc) + " " + argv[0]);
  manager.handler(SERVICE_CONTROL_INTERROGATE);
  manager.handler(SERVICE_CONTROL_STOP);
  manager.handler(SERVICE_CONTROL_SHUTDOWN);
  return 9;
}

ov_rc daemonize(const char* name) {
  static char first[] = "one";
  static char* argv[] = {first, nullptr};
  return ov_process_daemonize(serve, 1, argv, name);
}

[[noreturn]] void serveUntilTheEnd() {
  manager.starts = true;
  manager.registers = true;
  daemonize("ends");
  _exit(3);
}

TEST(ServiceTest, RunsOnceInAProcess) {
  EXPECT_EXIT(serveUntilTheEnd(), ::testing::ExitedWithCode(0), "");
  ov::CapturedLog log;
  EXPECT_EQ(22, ov_process_daemonize(nullptr, 0, nullptr, "x"));
  EXPECT_EQ(22, ov_process_daemonize(serve, 0, nullptr, nullptr));
  manager.registers = true;
  EXPECT_EQ(122, daemonize(std::string(257, 'x').c_str()));
  EXPECT_EQ(22, daemonize("\xFF"));
  EXPECT_EQ(1063, daemonize("t\xC3\xA4sted"));
  EXPECT_EQ((Messages{"start t\xC3\xA4sted", "register t\xC3\xA4sted", "state 2 controls 0",
                      "state 4 controls 5", "serve 1 one", "state 3 controls 5",
                      "state 3 controls 5", "state 1 controls 0"}),
            manager.calls);
  EXPECT_EQ((Messages{"LOG Service main called", "LOG Process handler called (4)",
                      "LOG Process handler called (1)",
                      "LOG received SERVICE_CONTROL_STOP setting SERVICE_STOP_PENDING\n",
                      "LOG Process handler called (5)",
                      "LOG received SERVICE_CONTROL_STOP setting SERVICE_STOP_PENDING\n",
                      "LOG Service main: updated_status to SERVICE_STOPPED\n"}),
            log.take());
  manager.calls.clear();
  manager.handler(SERVICE_CONTROL_STOP);  // too late: the service has stopped
  EXPECT_EQ(Messages{}, manager.calls);
  log.take();
  EXPECT_EQ(22, daemonize("again"));
  EXPECT_EQ(Messages{}, manager.calls);
  EXPECT_EQ(Messages{"DBG ov_process_daemonize(): already running as a daemon"}, log.take());
}

[[noreturn]] void serveUnregistered() {
  ov::CapturedLog log;
  const ov_rc error = daemonize("refused");
  const bool right = error == 1063 &&
                     manager.calls == Messages{"start refused", "register refused"} &&
                     log.take() == Messages{"LOG Service main called"};
  _exit(right ? 0 : 4);
}

TEST(ServiceTest, WithoutAControlHandlerNothingRuns) {
  EXPECT_EXIT(serveUnregistered(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
