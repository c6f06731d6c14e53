// The program where the plug-in looks for it: the real data directory and an installation.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/client_exchange.h"
#include "tests/support/client_process.h"
#include "tests/support/installed_client.h"

#include <windows.h>

namespace Vantrel::StandIn {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using Web::TestSupport::ClientProcess;
using Web::TestSupport::InstalledClient;
using Web::TestSupport::readClientAddress;
using Web::TestSupport::realClientDataDir;

// Starts a program as the plug-in does, and knows its end.
class StartedProgram {
 public:
  explicit StartedProgram(const std::filesystem::path& program) {
    std::wstring command = program.wstring();
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                               nullptr, nullptr, &startup, &process_));
  }
  ~StartedProgram() {
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }
  StartedProgram(const StartedProgram&) = delete;
  StartedProgram& operator=(const StartedProgram&) = delete;

  DWORD id() const { return process_.dwProcessId; }
  bool ended() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0; }
  DWORD exitCode() const {
    WaitForSingleObject(process_.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
  }

 private:
  PROCESS_INFORMATION process_{};
};

std::wstring installDir() {
  std::array<wchar_t, MAX_PATH> text{};
  DWORD size = sizeof text;
  LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, L"SOFTWARE\\Orvane\\Orvane Vantrel\\v2",
                                L"InstallDir", RRF_RT_REG_SZ, nullptr, text.data(), &size);
  return status == ERROR_SUCCESS ? text.data() : L"";
}

TEST(RealClientTest, WithoutAKnobItsFilesAreWhereThePlugInLooks) {
  ClientProcess client;
  ASSERT_TRUE(client.waitUntilListening());
  EXPECT_EQ(readClientAddress(realClientDataDir()).processId, client.processId());
  EXPECT_THAT(replyTo(client.port(), pingText()), EndsWith(R"({"status":"ready"})"));
}

TEST(RealClientTest, AKilledClientLeavesItsFilesUntilTheObjectGoes) {
  {
    ClientProcess client;
    ASSERT_TRUE(client.waitUntilListening());
    client.kill();
    EXPECT_EQ(readClientAddress(realClientDataDir()).processId, client.processId());
  }
  EXPECT_EQ(readClientAddress(realClientDataDir()).uriText, "");
}

TEST(RealClientTest, AnInstalledClientRunsWithItsOwnSettings) {
  InstalledClient installed("exit_code=7\n");
  EXPECT_TRUE(installed.running().empty());
  StartedProgram program(installed.program());
  while (installed.address().processId != program.id() || installed.address().port == 0) Sleep(10);
  EXPECT_THAT(installed.running(), ElementsAre(program.id()));
  replyTo(installed.address().port, pingText());
  EXPECT_THAT(installed.records(), ElementsAre(pingText()));
  replyTo(installed.address().port,
          requestText("POST", "/v5/vantrel/shutdown", installed.address().key()));
  EXPECT_EQ(program.exitCode(), 7U);
}

TEST(RealClientTest, TheRegistryNamesTheInstallationWhileItLasts) {
  std::wstring before = installDir();
  {
    InstalledClient installed;
    EXPECT_EQ(std::filesystem::path(installDir() + L"bin/orvanevantrel.exe"), installed.program());
    EXPECT_TRUE(installDir().ends_with(L"\\"));
    EXPECT_TRUE(std::filesystem::exists(installed.program()));
  }
  EXPECT_EQ(installDir(), before);
}

TEST(RealClientTest, AnInstalledClientThatStillRunsEndsWithTheObject) {
  auto installed = std::make_unique<InstalledClient>("slow_start_ms=3600000\n");
  StartedProgram program(installed->program());
  EXPECT_FALSE(program.ended());
  installed.reset();
  EXPECT_TRUE(program.ended());
}

}  // namespace
}  // namespace Vantrel::StandIn
