// The library registered by the system's program for it, in a process of its own, as an installer
// does.
#include <gmock/gmock.h>

#include <windows.h>

#include <string>

#include "tests/activex/registered_keys_win.h"
#include "tests/host/scratch_profile.h"
#include "text/wide_text.h"

namespace Vantrel::Web {
namespace {

using testing::IsEmpty;
using TestSupport::added;
using TestSupport::expectedClasses;
using TestSupport::exportRegistry;
using TestSupport::libraryPath;
using TestSupport::RegistryExport;
using TestSupport::withoutTypeLibrary;

// The parts that a program may write to when it is installed. Not the system's own one, in which
// Wine notes its screen whenever the first window appears.
RegistryExport wholeRegistry() {
  RegistryExport all = exportRegistry(HKEY_LOCAL_MACHINE, L"Software");
  for (const auto& entry : exportRegistry(HKEY_CURRENT_USER, L"", {L"Software\\Wine"})) {
    all.insert({L"user\\" + entry.first, entry.second});
  }
  return all;
}

// How it ended.
DWORD regsvr32(const std::wstring& options) {
  std::wstring command = L"regsvr32.exe /s " + options + L" \"" + libraryPath() + L"\"";
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  PROCESS_INFORMATION process = {};
  if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                     &process) == FALSE) {
    return ~DWORD{0};
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = ~DWORD{0};
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

TEST(RegsvrTest, InAndOutLeavesTheWholeRegistryAsItWas) {
  const Host::ScratchProfile profile;
  const RegistryExport before = wholeRegistry();
  ASSERT_GT(before.size(), 1000u);
  EXPECT_EQ(regsvr32(L""), 0u);
  RegistryExport classes;
  for (const auto& entry : added(before, wholeRegistry())) {
    if (entry.first.find(L"Wow6432Node\\") != std::wstring::npos) {
      // The system's copy of the type library for 32-bit programs.
      EXPECT_TRUE(entry.first.find(L"Interface\\") != std::wstring::npos ||
                  entry.first.find(L"TypeLib\\") != std::wstring::npos);
      continue;
    }
    const std::wstring below = L"Classes\\";
    ASSERT_TRUE(entry.first.starts_with(below)) << toUtf8(entry.first);
    classes[entry.first.substr(below.size())] = entry.second;
  }
  EXPECT_EQ(withoutTypeLibrary(classes), expectedClasses());
  EXPECT_EQ(regsvr32(L"/u"), 0u);
  const RegistryExport after = wholeRegistry();
  EXPECT_THAT(added(before, after), IsEmpty());
  EXPECT_EQ(before.size(), after.size());
}

}  // namespace
}  // namespace Vantrel::Web
