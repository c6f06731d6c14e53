// Processes as another user, with the calls that the system has for that replaced by ours, which
// note their order, fail where a case wants it, and otherwise do the real thing with this process's
// own token.
#include <windows.h>
#include <userenv.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_process.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/real_call_win.h"

namespace {

using Messages = std::vector<std::string>;

// The call that fails, and the code it leaves.
struct Told {
  std::string failing;
  DWORD code = 5;
  Messages calls;
  std::wstring user, domain, password, profileUser, directory;
  bool hasDomain = false;
  DWORD logonType = 0, provider = 9, flags = 0, startupFlags = 0;
  WORD show = 9;
  BOOL inherited = 9;
  HANDLE streams[3] = {};
  const wchar_t* passwordBuffer = nullptr;
} told;

bool succeeds(const std::string& call) {
  told.calls.push_back(call);
  if (told.failing != call) return true;
  SetLastError(told.code);
  return false;
}

BOOL WINAPI logonUser(LPCWSTR user, LPCWSTR domain, LPCWSTR password, DWORD type, DWORD provider,
                      PHANDLE token) {
  told.user = user;
  told.hasDomain = domain != nullptr;
  told.domain = domain == nullptr ? L"" : domain;
  told.password = password;
  told.passwordBuffer = password;
  told.logonType = type;
  told.provider = provider;
  if (!succeeds("LogonUser")) return FALSE;
  return OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, token);
}

BOOL WINAPI loadProfile(HANDLE token, LPPROFILEINFOW profile) {
  told.profileUser = profile->lpUserName;
  if (!succeeds("LoadUserProfile")) return FALSE;
  return ov::real_call<decltype(&LoadUserProfileW)>(L"userenv.dll", "LoadUserProfileW")(token,
                                                                                        profile);
}

BOOL WINAPI unloadProfile(HANDLE token, HANDLE profile) {
  succeeds("UnloadUserProfile");
  return ov::real_call<decltype(&UnloadUserProfile)>(L"userenv.dll", "UnloadUserProfile")(token,
                                                                                          profile);
}

BOOL WINAPI impersonate(HANDLE token) {
  if (!succeeds("ImpersonateLoggedOnUser")) return FALSE;
  return ov::real_call<decltype(&ImpersonateLoggedOnUser)>(L"advapi32.dll",
                                                           "ImpersonateLoggedOnUser")(token);
}

BOOL WINAPI revert() {
  succeeds("RevertToSelf");
  return ov::real_call<decltype(&RevertToSelf)>(L"advapi32.dll", "RevertToSelf")();
}

BOOL WINAPI profileDirectory(HANDLE token, LPWSTR out, LPDWORD size) {
  if (!succeeds("GetUserProfileDirectory")) return FALSE;
  return ov::real_call<decltype(&GetUserProfileDirectoryW)>(
      L"userenv.dll", "GetUserProfileDirectoryW")(token, out, size);
}

BOOL WINAPI createAsUser(HANDLE token, LPCWSTR program, LPWSTR command, LPSECURITY_ATTRIBUTES first,
                         LPSECURITY_ATTRIBUTES second, BOOL inherit, DWORD flags, LPVOID block,
                         LPCWSTR directory, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION started) {
  told.inherited = inherit;
  told.flags = flags;
  told.directory = directory;
  told.startupFlags = startup->dwFlags;
  told.show = startup->wShowWindow;
  told.streams[0] = startup->hStdInput;
  told.streams[1] = startup->hStdOutput;
  told.streams[2] = startup->hStdError;
  EXPECT_EQ(nullptr, program);
  EXPECT_NE(nullptr, block);
  if (!succeeds("CreateProcessAsUser")) return FALSE;
  return ov::real_call<decltype(&CreateProcessAsUserW)>(L"advapi32.dll", "CreateProcessAsUserW")(
      token, program, command, first, second, inherit, flags, block, directory, startup, started);
}

void WINAPI sleep(DWORD milliseconds) {
  told.calls.push_back("Sleep " + std::to_string(milliseconds));
}

BOOL WINAPI createPipe(PHANDLE readEnd, PHANDLE writeEnd, LPSECURITY_ATTRIBUTES attributes,
                       DWORD size) {
  if (!succeeds("CreatePipe")) return FALSE;
  return ov::real_call<decltype(&CreatePipe)>(L"kernel32.dll", "CreatePipe")(readEnd, writeEnd,
                                                                             attributes, size);
}

BOOL WINAPI duplicateHandle(HANDLE from, HANDLE handle, HANDLE to, LPHANDLE out, DWORD access,
                            BOOL inherit, DWORD options) {
  if (told.failing == "DuplicateHandle") {
    SetLastError(told.code);
    return FALSE;
  }
  return ov::real_call<decltype(&DuplicateHandle)>(L"kernel32.dll", "DuplicateHandle")(
      from, handle, to, out, access, inherit, options);
}

}  // namespace

// These two are not declared as imported, so the linker takes ours instead of the library's.
extern "C" BOOL WINAPI CreateEnvironmentBlock(LPVOID* block, HANDLE token, BOOL inherit) {
  EXPECT_TRUE(inherit);
  if (!succeeds("CreateEnvironmentBlock")) return FALSE;
  return ov::real_call<decltype(&CreateEnvironmentBlock)>(L"userenv.dll", "CreateEnvironmentBlock")(
      block, token, inherit);
}

extern "C" BOOL WINAPI DestroyEnvironmentBlock(LPVOID block) {
  succeeds("DestroyEnvironmentBlock");
  return ov::real_call<decltype(&DestroyEnvironmentBlock)>(L"userenv.dll",
                                                           "DestroyEnvironmentBlock")(block);
}

extern "C" {
decltype(&LogonUserW) __imp_LogonUserW = logonUser;
decltype(&LoadUserProfileW) __imp_LoadUserProfileW = loadProfile;
decltype(&UnloadUserProfile) __imp_UnloadUserProfile = unloadProfile;
decltype(&ImpersonateLoggedOnUser) __imp_ImpersonateLoggedOnUser = impersonate;
decltype(&RevertToSelf) __imp_RevertToSelf = revert;
decltype(&GetUserProfileDirectoryW) __imp_GetUserProfileDirectoryW = profileDirectory;
decltype(&CreateProcessAsUserW) __imp_CreateProcessAsUserW = createAsUser;
decltype(&Sleep) __imp_Sleep = sleep;
decltype(&CreatePipe) __imp_CreatePipe = createPipe;
decltype(&DuplicateHandle) __imp_DuplicateHandle = duplicateHandle;
}

namespace {

constexpr ov_credentials kBob = {"ACME\\bob", "secret"};

DWORD handleCount() {
  DWORD count = 0;
  EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &count));
  return count;
}

// Whether the password still stands where it was handed over, on the stack that is left behind.
bool passwordIsLeft() {
  const volatile wchar_t* const left = told.passwordBuffer;
  for (size_t i = 0; i < told.password.size(); ++i) {
    if (left[i] != told.password[i]) return false;
  }
  return true;
}

bool isImpersonated() {
  HANDLE token = nullptr;
  if (!OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) return false;
  CloseHandle(token);
  return true;
}

ov_rc logOn(ov_process* process, void* credentials) {
  return ov_process_runas(process, static_cast<const ov_credentials*>(credentials));
}

class ProcessUserTest : public ::testing::Test {
 protected:
  ProcessUserTest() { told = {}; }
  ~ProcessUserTest() override { told = {}; }

  ov_rc fork(const char* directory, void** in = nullptr, void** out = nullptr) {
    return ov_process_fork(&process_, "cmd.exe /c exit 5", directory, nullptr, logOn,
                           const_cast<ov_credentials*>(&kBob), in, out, nullptr);
  }
  int32_t exitCode() {
    int32_t state = 9;
    int32_t code = -1;
    EXPECT_EQ(0, ov_process_wait(&process_, -1, &state));
    EXPECT_EQ(0, ov_process_exited(&process_, &state, &code));
    return code;
  }
  ov_process process_ = {};
  ov::CapturedLog log_;
};

TEST_F(ProcessUserTest, StartsInTheProfile) {
  ASSERT_EQ(0, fork(nullptr));
  EXPECT_EQ((Messages{"LogonUser", "LoadUserProfile", "CreateEnvironmentBlock",
                      "ImpersonateLoggedOnUser", "GetUserProfileDirectory", "CreateProcessAsUser",
                      "RevertToSelf", "UnloadUserProfile", "Sleep 500", "DestroyEnvironmentBlock"}),
            told.calls);
  EXPECT_EQ(L"bob", told.profileUser);
  EXPECT_NE(L"", told.directory);
  EXPECT_EQ(0xC000600U, told.flags);
  EXPECT_EQ(DWORD{STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW}, told.startupFlags);
  EXPECT_EQ(WORD{SW_HIDE}, told.show);
  EXPECT_FALSE(told.inherited);
  for (const HANDLE stream : told.streams) EXPECT_EQ(nullptr, stream);
  EXPECT_EQ(INVALID_HANDLE_VALUE, process_.user_token);
  EXPECT_FALSE(isImpersonated());
  EXPECT_NE(0U, process_.process_id);
  EXPECT_STREQ(L"bob", process_.user_name);
  EXPECT_STREQ(L"ACME", process_.domain);
  EXPECT_EQ(5, exitCode());
}

TEST_F(ProcessUserTest, StartsInADirectoryWithPipes) {
  void* in = nullptr;
  void* out = nullptr;
  ASSERT_EQ(0, fork("C:/windows", &in, &out));
  EXPECT_EQ(L"C:/windows", told.directory);
  EXPECT_TRUE(told.inherited);
  EXPECT_NE(nullptr, told.streams[0]);
  EXPECT_NE(nullptr, told.streams[1]);
  EXPECT_EQ(nullptr, told.streams[2]);
  EXPECT_NE(nullptr, in);
  EXPECT_NE(nullptr, out);
  EXPECT_EQ(5, exitCode());
  CloseHandle(in);
  CloseHandle(out);
}

TEST_F(ProcessUserTest, EveryFailureUndoesWhatWasDone) {
  const struct {
    const char* failing;
    Messages undone;
  } rows[] = {
      {"CreatePipe", {}},
      {"DuplicateHandle", {}},
      {"LoadUserProfile", {}},
      {"CreateEnvironmentBlock", {"UnloadUserProfile"}},
      {"ImpersonateLoggedOnUser", {"UnloadUserProfile", "DestroyEnvironmentBlock"}},
      {"GetUserProfileDirectory", {"RevertToSelf", "UnloadUserProfile", "DestroyEnvironmentBlock"}},
      {"CreateProcessAsUser", {"RevertToSelf", "UnloadUserProfile", "DestroyEnvironmentBlock"}},
  };
  fork(nullptr);
  exitCode();
  for (const auto& row : rows) {
    DWORD before = 0;
    for (int round = 0; round < 2; ++round) {  // the first may open what the system keeps
      told = {};
      told.failing = row.failing;
      told.code = 1234;
      before = round == 0 ? 0 : handleCount();
      void* in = &process_;
      void* out = &process_;
      EXPECT_EQ(1234, fork(nullptr, &in, &out)) << row.failing;
      if (told.failing != "CreatePipe" && told.failing != "DuplicateHandle") {
        EXPECT_EQ(nullptr, out);
      }
      EXPECT_EQ(nullptr, in);
      Messages undone;
      bool failed = false;
      for (const std::string& call : told.calls) {
        if (failed) undone.push_back(call);
        failed = failed || call == row.failing;
      }
      EXPECT_EQ(row.undone, undone) << row.failing;
      EXPECT_EQ(INVALID_HANDLE_VALUE, process_.user_token) << row.failing;
      EXPECT_EQ(nullptr, process_.process);
      EXPECT_FALSE(isImpersonated()) << row.failing;
    }
    EXPECT_EQ(before, handleCount()) << row.failing;
  }
}

TEST_F(ProcessUserTest, TokenOfAHookThatRefusesIsClosed) {
  const DWORD before = handleCount();
  const auto hook = [](ov_process* record, void*) -> ov_rc {
    EXPECT_EQ(0, ov_process_runas(record, &kBob));
    return 9;
  };
  EXPECT_EQ(9, ov_process_fork(&process_, "cmd.exe", nullptr, nullptr, hook, nullptr, nullptr,
                               nullptr, nullptr));
  EXPECT_EQ(INVALID_HANDLE_VALUE, process_.user_token);
  EXPECT_EQ(before, handleCount());
}

TEST_F(ProcessUserTest, LogOn) {
  process_.user_token = INVALID_HANDLE_VALUE;
  ASSERT_EQ(0, ov_process_runas(&process_, &kBob));
  EXPECT_FALSE(passwordIsLeft());
  EXPECT_EQ(L"bob", told.user);
  EXPECT_EQ(L"ACME", told.domain);
  EXPECT_EQ(L"secret", told.password);
  EXPECT_EQ(2U, told.logonType);
  EXPECT_EQ(0U, told.provider);
  EXPECT_NE(INVALID_HANDLE_VALUE, process_.user_token);
  CloseHandle(process_.user_token);
  const ov_credentials rest = {"a\\b\\c", ""};
  ASSERT_EQ(0, ov_process_runas(&process_, &rest));
  EXPECT_EQ(L"b\\c", told.user);
  EXPECT_EQ(L"a", told.domain);
  CloseHandle(process_.user_token);
  const ov_credentials local = {
      "b\xC3\xB6"
      "b",
      "p"};
  ASSERT_EQ(0, ov_process_runas(&process_, &local));
  EXPECT_EQ(L"b\u00F6b", told.user);
  EXPECT_FALSE(told.hasDomain);
  EXPECT_STREQ(L"", process_.domain);
  CloseHandle(process_.user_token);
}

TEST_F(ProcessUserTest, RefusedLogOn) {
  told.failing = "LogonUser";
  told.code = ERROR_LOGON_FAILURE;
  EXPECT_EQ(1326, ov_process_runas(&process_, &kBob));
  EXPECT_FALSE(passwordIsLeft());
  log_.take();
  told.calls.clear();
  EXPECT_EQ(1326, fork(nullptr));
  EXPECT_EQ(Messages{"LogonUser"}, told.calls);
  EXPECT_EQ(INVALID_HANDLE_VALUE, process_.user_token);
  EXPECT_EQ(Messages{"ERR Err 1326 failed to set token to user ACME\\bob in process runas"},
            log_.take());
}

TEST_F(ProcessUserTest, LimitsOfTheCredentials) {
  const auto logOnAs = [this](const std::string& user, const std::string& password) {
    const ov_credentials credentials = {user.c_str(), password.c_str()};
    return ov_process_runas(&process_, &credentials);
  };
  const std::string fits(511, 'x'), more(512, 'x');
  EXPECT_EQ(0, logOnAs(fits + "\\" + fits, fits));
  CloseHandle(process_.user_token);
  told.calls.clear();
  EXPECT_EQ(122, logOnAs(more + "\\x", "p"));
  EXPECT_EQ(122, logOnAs("x\\" + more, "p"));
  EXPECT_EQ(122, logOnAs(more, "p"));
  EXPECT_EQ(122, logOnAs("x", more));
  EXPECT_EQ(22, logOnAs("\xFF", "p"));
  EXPECT_EQ(22, logOnAs("\xFF\\x", "p"));
  EXPECT_EQ(22, logOnAs("x", "\xFF"));
  const ov_credentials noUser = {nullptr, "p"}, noPassword = {"u", nullptr};
  EXPECT_EQ(22, ov_process_runas(&process_, &noUser));
  EXPECT_EQ(22, ov_process_runas(&process_, &noPassword));
  EXPECT_EQ(22, ov_process_runas(&process_, nullptr));
  EXPECT_EQ(22, ov_process_runas(nullptr, &kBob));
  EXPECT_EQ(Messages{}, told.calls);
}

}  // namespace
