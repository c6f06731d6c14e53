// Processes as another user: the log-on, and the start in that user's place.
#include <windows.h>
#include <userenv.h>

#include <cstring>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/process/starting_win.h"

using namespace ov;

namespace {

constexpr DWORD kFlags = CREATE_NO_WINDOW | CREATE_DEFAULT_ERROR_MODE | CREATE_NEW_PROCESS_GROUP |
                         CREATE_UNICODE_ENVIRONMENT;
// The child gets this long before the user's environment goes.
constexpr DWORD kPauseMilliseconds = 500;

// In characters, with the terminator.
constexpr size_t kPasswordSize = 512;

// A password as wide text, wiped at the end, whatever became of it.
class Password {
 public:
  explicit Password(const char* source) {
    size_t bytes = sizeof text_;
    error_ = ov_utf8_to_wchar(source, text_, &bytes);
  }
  ~Password() { SecureZeroMemory(text_, sizeof text_); }
  Password(const Password&) = delete;
  Password& operator=(const Password&) = delete;
  ov_rc error() const { return error_; }
  const wchar_t* text() const { return text_; }

 private:
  wchar_t text_[kPasswordSize];
  ov_rc error_;
};

// Puts the user's two parts into the record.
ov_rc split_user(const char* user, ov_process* process) {
  const char* const separator = strchr(user, '\\');
  char domain[sizeof process->domain / sizeof *process->domain] = "";
  if (separator != nullptr) {
    const auto length = static_cast<size_t>(separator - user);
    if (length >= sizeof domain) return OV_ERANGE;
    memcpy(domain, user, length);
    domain[length] = '\0';
  }
  size_t bytes = sizeof process->domain;
  const ov_rc error = ov_utf8_to_wchar(domain, process->domain, &bytes);
  if (error != 0) return error;
  bytes = sizeof process->user_name;
  return ov_utf8_to_wchar(separator == nullptr ? user : separator + 1, process->user_name, &bytes);
}

}  // namespace

ov_rc ov_process_runas(ov_process* process, const ov_credentials* credentials) {
  if (process == nullptr || credentials == nullptr || credentials->user == nullptr ||
      credentials->password == nullptr) {
    return OV_EINVAL;
  }
  ov_rc error = split_user(credentials->user, process);
  if (error != 0) return error;
  const Password password(credentials->password);
  if (password.error() != 0) return password.error();
  // Without a domain the system wants none at all, rather than an empty one.
  const wchar_t* const domain = process->domain[0] == L'\0' ? nullptr : process->domain;
  HANDLE token = INVALID_HANDLE_VALUE;
  if (!LogonUserW(process->user_name, domain, password.text(), LOGON32_LOGON_INTERACTIVE,
                  LOGON32_PROVIDER_DEFAULT, &token)) {
    error = last_code();
    ov_err("Err %d failed to set token to user %s in process runas", error, credentials->user);
    return error;
  }
  process->user_token = token;
  return 0;
}

UserSession::~UserSession() {
  // The user may not unload a profile, not even its own: that takes this process's own rights. Wine
  // allows it to anybody.
  if (impersonates_) RevertToSelf();
  if (profile_ != nullptr) UnloadUserProfile(process_->user_token, profile_);
  if (started_) Sleep(kPauseMilliseconds);
  if (environment_ != nullptr) DestroyEnvironmentBlock(environment_);
  close_token(process_);
}

ov_rc UserSession::open() {
  PROFILEINFOW profile = {};
  profile.dwSize = sizeof profile;
  profile.lpUserName = process_->user_name;
  if (!LoadUserProfileW(process_->user_token, &profile)) return last_code();
  profile_ = profile.hProfile;
  if (!CreateEnvironmentBlock(&environment_, process_->user_token, TRUE)) return last_code();
  if (!ImpersonateLoggedOnUser(process_->user_token)) return last_code();
  impersonates_ = true;
  return 0;
}

ov_rc UserSession::start(wchar_t* command, const wchar_t* directory, const ChildPipes& pipes) {
  wchar_t profileDirectory[OV_PATH_SIZE];
  if (directory == nullptr) {
    DWORD size = OV_PATH_SIZE;
    if (!GetUserProfileDirectoryW(process_->user_token, profileDirectory, &size)) {
      return last_code();
    }
    directory = profileDirectory;
  }
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
  startup.wShowWindow = SW_HIDE;
  pipes.fill(&startup);
  PROCESS_INFORMATION started;
  const QuietDrives quiet;
  if (!CreateProcessAsUserW(process_->user_token, nullptr, command, nullptr, nullptr,
                            pipes.any() ? TRUE : FALSE, kFlags, environment_, directory, &startup,
                            &started)) {
    return last_code();
  }
  started_ = true;
  note_started(process_, started);
  return 0;
}
