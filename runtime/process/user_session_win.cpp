#include "runtime/process/user_session_win.h"

#include <userenv.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_paths.h"
#include "runtime/process/token_win.h"

namespace ov {
namespace {

constexpr DWORD kFlags = CREATE_NO_WINDOW | CREATE_DEFAULT_ERROR_MODE | CREATE_NEW_PROCESS_GROUP |
                         CREATE_UNICODE_ENVIRONMENT;
// The child gets this long before the user's environment goes.
constexpr DWORD kPauseMilliseconds = 500;

}  // namespace

UserSession::~UserSession() {
  if (profile_ != nullptr) UnloadUserProfile(process_->user_token, profile_);
  if (impersonates_) RevertToSelf();
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
  if (!CreateProcessAsUserW(process_->user_token, nullptr, command, nullptr, nullptr,
                            pipes.any() ? TRUE : FALSE, kFlags, environment_, directory, &startup,
                            &started)) {
    return last_code();
  }
  started_ = true;
  note_started(process_, started);
  return 0;
}

}  // namespace ov
