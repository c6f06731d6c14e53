#include "service/platform.h"

#include <windows.h>
#include <shlobj.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "runtime/ov_strings.h"
#include "text/wide_text.h"

namespace Vantrel::Web {

namespace {

constexpr size_t kCommandSize = 8192;  // bytes

ov_rc lastError() {
  const auto code = static_cast<ov_rc>(GetLastError());
  return code != 0 ? code : errno;
}

void closeHandle(void*& handle) {
  if (handle != nullptr) CloseHandle(handle);
  handle = nullptr;
}

}  // namespace

int32_t localAppDataDirectory(std::string* directory) {
  wchar_t wide[MAX_PATH] = L"";
  const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, wide);
  if (result >= 0) *directory = toUtf8(wide);
  return result;
}

StartedProcess::StartedProcess() : record() {
  record.user_token = INVALID_HANDLE_VALUE;
}

StartedProcess::~StartedProcess() {
  closeHandle(record.thread);
  closeHandle(record.process);
}

ov_rc StartedProcess::start(const std::string& path) {
  wchar_t application[kCommandSize / sizeof(wchar_t)] = L"";
  size_t size = sizeof application;
  if (const ov_rc code = ov_utf8_to_wchar(path.c_str(), application, &size)) return code;
  // The path names the executable itself, so that no part of it before a blank is tried instead;
  // the platform may write into the command text.
  wchar_t command[std::size(application)];
  std::copy(std::begin(application), std::end(application), command);
  STARTUPINFOW startup = {};
  static_assert(sizeof startup == 104);
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started = {};
  if (!CreateProcessW(application, command, nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &startup, &started)) {
    return lastError();
  }
  record.process = started.hProcess;
  record.thread = started.hThread;
  record.process_id = started.dwProcessId;
  record.thread_id = started.dwThreadId;
  return 0;
}

ov_rc allowForeground(int32_t processId) {
  return AllowSetForegroundWindow(static_cast<DWORD>(processId)) ? 0 : lastError();
}

}  // namespace Vantrel::Web
