#include "tests/support/client_process.h"

#include <windows.h>

#include <stdexcept>

namespace Vantrel::Web::TestSupport {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kConfVariable = L"ORVANE_CLIENT_CONF";
constexpr DWORD kListenWaitMs = 20000;
constexpr DWORD kListenStepMs = 10;
constexpr DWORD kKillWaitMs = 10000;

[[noreturn]] void fail(const char* what) {
  throw std::runtime_error(std::string(what) + " failed: " + std::to_string(GetLastError()));
}

class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() { CloseHandle(handle_); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

// A job whose processes end when its last handle is closed, even by a crash.
HANDLE makeJob() {
  HANDLE job = CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (job == nullptr ||
      !SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits))
    fail("CreateJobObjectW");
  return job;
}

PROCESS_INFORMATION startProgram(const std::wstring& arguments, const fs::path& conf) {
  std::wstring command = L"\"" + clientProgram().wstring() + L"\" " + arguments;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  SetEnvironmentVariableW(kConfVariable, conf.c_str());
  BOOL started =
      CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE,
                     CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr, nullptr, &startup, &process);
  SetEnvironmentVariableW(kConfVariable, nullptr);
  if (!started) fail("CreateProcessW");
  return process;
}

}  // namespace

struct ClientProcess::Handles {
  Handles(HANDLE processHandle, DWORD processId) : process(processHandle), id(processId) {}

  Handle job{makeJob()};
  Handle process;
  DWORD id;
};

ClientProcess::ClientProcess(const std::string& knobs, DataDir dataDir,
                             const std::wstring& arguments)
    : dataDir_(dataDir == DataDir::kOwn ? folder_.path() / "data" : realClientDataDir()) {
  removeClientFiles(dataDir_);
  fs::path conf = folder_.path() / "client.conf";
  folder_.configure(conf, (dataDir == DataDir::kOwn ? "data_dir=data\n" : "") + knobs);
  PROCESS_INFORMATION process = startProgram(arguments, conf);
  Handle thread(process.hThread);
  handles_ = std::make_unique<Handles>(process.hProcess, process.dwProcessId);
  AssignProcessToJobObject(handles_->job.get(), handles_->process.get());
  ResumeThread(thread.get());
}

ClientProcess::~ClientProcess() {
  kill();
  removeClientFiles(dataDir_);
}

bool ClientProcess::waitUntilListening() const {
  for (DWORD waited = 0; waited < kListenWaitMs; waited += kListenStepMs) {
    ClientAddress found = address();
    if (found.processId == handles_->id && found.port != 0) return true;
    if (waitForExit(kListenStepMs)) return false;
  }
  return false;
}

void ClientProcess::kill() {
  TerminateProcess(handles_->process.get(), 1);
  WaitForSingleObject(handles_->process.get(), kKillWaitMs);
}

std::optional<uint32_t> ClientProcess::waitForExit(uint32_t milliseconds) const {
  if (WaitForSingleObject(handles_->process.get(), milliseconds) != WAIT_OBJECT_0) return {};
  DWORD code = 0;
  GetExitCodeProcess(handles_->process.get(), &code);
  return code;
}

uint32_t ClientProcess::processId() const {
  return handles_->id;
}

}  // namespace Vantrel::Web::TestSupport
