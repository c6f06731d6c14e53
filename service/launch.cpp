#include "service/launch.h"

#include <atomic>
#include <exception>
#include <string>

#include "runtime/ov_log.h"
#include "runtime/ov_threads.h"
#include "service/http_request.h"
#include "service/locations.h"
#include "service/platform.h"
#include "service/vantrel_request.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

namespace {

constexpr int32_t kPollStepMs = 100;

// States that ov_process_exited tells.
constexpr int32_t kExited = 1;
constexpr int32_t kTerminated = 2;

// Set by the instance that was created last, read by whatever thread launches.
std::atomic<int32_t> launchTimeoutMs{kDefaultLaunchTimeoutMs};

// Whether the wait can go on: the new process lives. The reason is logged if it does not.
bool stillRuns(ov_process& process) {
  int32_t state = 0;
  int32_t exitCode = 0;
  if (const ov_rc code = ov_process_exited(&process, &state, &exitCode)) {
    ov_err("Warning: Checking Orvane Vantrel process state failed (%d)", code);
    return false;
  }
  if (state == kExited) {
    ov_log("Warning: Orvane Vantrel process exited (%d)", exitCode);
    return false;
  }
  if (state == kTerminated) {
    ov_err("Orvane Vantrel process terminated unexpectedly");
    return false;
  }
  return true;
}

// Whether the client at the known address takes connections, which a client on this machine tells
// at once. One whose queue is full says nothing, for longer than an end may wait.
bool takesConnections(const ConnectionPurpose& purpose) {
  const Url url = vantrelUrl();
  if (url.url.empty()) return false;
  TcpSocket socket;
  if (socket.connect(url.host, url.port(0), purpose) == 0) return true;
  clearVantrelUrl();
  return false;
}

// Whether the new client is up. Nobody may wait for an answer any more once the breaker is broken.
bool isUp(const ConnectionPurpose& purpose) {
  if (purpose.breaker == nullptr || !purpose.breaker->broken()) return pingVantrel(purpose);
  return takesConnections({.awaitsNewClient = true, .briefly = true});
}

// Waits until the new process answers. The wait is counted in steps: a question that takes long
// does not shorten the number of tries.
bool waitForAnswer(ov_process& process, int32_t timeoutMs, const ConnectionPurpose& purpose) {
  for (int64_t waited = 0; waited < timeoutMs;) {
    if (isUp(purpose)) {
      OV_DEBUG("Waited %dms for Vantrel to launch and write URL file",
               static_cast<int32_t>(waited));
      return true;
    }
    // It was up, and asked, and silent.
    if (purpose.breaker != nullptr && purpose.breaker->hasCut()) return false;
    if (const ov_rc code = ov_thread_sleep(kPollStepMs)) {
      ov_err("Warning: Thread sleep failed (%d)", code);
      return false;
    }
    waited += kPollStepMs;
    if (!stillRuns(process)) return false;
  }
  ov_log("Warning: Timed out waiting for Orvane Vantrel to launch");
  return false;
}

}  // namespace

void setLaunchTimeout(int32_t milliseconds) {
  launchTimeoutMs = milliseconds;
}

bool pingVantrel(const ConnectionPurpose& purpose) {
  for (;;) {
    const Url url = vantrelUrl();
    if (url.url.empty()) return false;
    HttpRequest request(url.host, url.port(0));
    request.path = std::string(kServicePath) + "/info/ping";
    request.method = "GET";
    if (request.invoke(purpose)) return true;
    if (purpose.breaker != nullptr && purpose.breaker->broken()) return false;
    clearVantrelUrl();
    const Url reread = vantrelUrl();
    // On another port the client has restarted; on the same one nobody answers.
    if (reread.url.empty() || reread.port(0) == url.port(0)) return false;
  }
}

bool launchVantrel(SocketBreaker* breaker) {
  ConnectionPurpose purpose;
  purpose.breaker = breaker;
  if (pingVantrel(purpose)) return true;
  if (breaker != nullptr && breaker->broken()) return false;
  const std::string path = vantrelExecutablePath();
  if (path.empty()) return false;
  ov_log("Launching Orvane Vantrel - Command: %s", path.c_str());
  StartedProcess process;
  if (const ov_rc code = process.start(path)) {
    ov_err("%s", describeSystemError("Failed to launch Orvane Vantrel: ", code).c_str());
    return false;
  }
  const int32_t timeoutMs = launchTimeoutMs;
  ov_log("Waiting %dms for Orvane Vantrel to launch", timeoutMs);
  // The question must go to the address that the new process writes.
  clearVantrelUrl();
  purpose.awaitsNewClient = true;
  return waitForAnswer(process.record, timeoutMs, purpose);
}

void allowVantrelForeground() {
  try {
    if (const ov_rc code = allowForeground(vantrelProcessId())) {
      ov_log("Warning: AllowSetForegroundWindow failed (%d)", code);
    }
  } catch (const std::exception& error) {
    ov_log("Warning: Failed to get Orvane Vantrel's process ID: %s", error.what());
  }
}

}  // namespace Vantrel::Web
