// How the library finds and starts a desktop client that is installed and not running.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/installed_client.h"

namespace Vantrel::Web {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class LaunchTest : public PluginTest {
 protected:
  // Installs the client and only then loads the library.
  void install(const std::string& knobs = "") {
    client_ = std::make_unique<TestSupport::InstalledClient>(knobs);
    start(kPluginLibrary);
  }
  void SetUp() override {}

  static std::vector<Host::Parameter> wait(const std::string& milliseconds) {
    return {{"vantrel-launch-wait-timeout-ms", milliseconds}};
  }

  std::unique_ptr<TestSupport::InstalledClient> client_;
};

TEST_F(LaunchTest, AnInstanceStartsTheClient) {
  install();
  Instance instance(host());
  EXPECT_THAT(client_->running(), SizeIs(1));
  EXPECT_TRUE(logHas("LOG Launching Orvane Vantrel - Command: "));
  EXPECT_TRUE(logHas("LOG Waiting 20000ms for Orvane Vantrel to launch\r\n"));
  EXPECT_TRUE(logHas("for Vantrel to launch and write URL file"));
  EXPECT_THAT(instance.call("queryVantrelVersion").value.text, HasSubstr("\"Orvane Vantrel\""));
}

TEST_F(LaunchTest, AClientThatRunsIsNotStartedAgain) {
  install();
  Instance first(host());
  Instance second(host());
  EXPECT_THAT(client_->running(), SizeIs(1));
  EXPECT_EQ(logCount("Launching Orvane Vantrel"), 1U);
}

TEST_F(LaunchTest, WithAWaitOfZeroItIsStartedAndNotWaitedFor) {
  install("slow_start_ms=60000\n");
  Instance instance(host(), wait("0"));
  EXPECT_THAT(client_->running(), SizeIs(1));
  EXPECT_TRUE(logHas("LOG Waiting 0ms for Orvane Vantrel to launch\r\n"));
  EXPECT_TRUE(logHas("LOG Warning: Timed out waiting for Orvane Vantrel to launch\r\n"));
  // One look before the start, none behind it.
  EXPECT_EQ(logCount("Reading Orvane Vantrel URL from"), 1U);
}

TEST_F(LaunchTest, TheWaitGoesInWholeSteps) {
  install("slow_start_ms=60000\n");
  Instance instance(host(), wait("150"));
  EXPECT_THAT(client_->running(), SizeIs(1));
  EXPECT_TRUE(logHas("LOG Waiting 150ms for Orvane Vantrel to launch\r\n"));
  EXPECT_TRUE(logHas("LOG Warning: Timed out waiting for Orvane Vantrel to launch\r\n"));
  EXPECT_EQ(logCount("Reading Orvane Vantrel URL from"), 3U);
}

TEST_F(LaunchTest, ASlowClientIsWaitedFor) {
  install("slow_start_ms=700\n");
  Instance instance(host());
  EXPECT_FALSE(logHas("Timed out"));
  EXPECT_THAT(instance.call("queryVantrelVersion").value.text, HasSubstr("\"Orvane Vantrel\""));
}

TEST_F(LaunchTest, AClientThatEndsAtOnceEndsTheWait) {
  install("exit_at_start=7\n");
  Instance instance(host());
  EXPECT_EQ(instance.error(), NPERR_NO_ERROR);
  EXPECT_TRUE(logHas("LOG Warning: Orvane Vantrel process exited (7)\r\n"));
  EXPECT_FALSE(logHas("Timed out"));
}

TEST_F(LaunchTest, TheLastInstanceSetsTheWaitForAll) {
  install("exit_at_start=0\n");
  Instance first(host(), wait("300"));
  Instance second(host(), wait("400"));
  EXPECT_EQ(first.call("queryVantrelVersion").value, text(errorReply(kContactError)));
  EXPECT_EQ(logCount("Waiting 300ms"), 1U);
  EXPECT_EQ(logCount("Waiting 400ms"), 2U);
}

TEST_F(LaunchTest, WithoutAnInstallationThereIsNeitherProcessNorWait) {
  start(kPluginLibrary);
  Instance instance(host());
  EXPECT_TRUE(logHas("LOG System installation directory not found in registry\r\n"));
  EXPECT_TRUE(logHas("LOG User installation directory not found in registry\r\n"));
  EXPECT_TRUE(logHas("ERR Failed to determine Orvane Vantrel executable path\r\n"));
  EXPECT_FALSE(logHas("Launching Orvane Vantrel"));
}

TEST_F(LaunchTest, AnInstallationIsLookedForAgain) {
  start(kPluginLibrary);
  Instance instance(host());
  EXPECT_EQ(instance.call("queryVantrelVersion").value, text(errorReply(kContactError)));
  client_ = std::make_unique<TestSupport::InstalledClient>();
  EXPECT_THAT(instance.call("queryVantrelVersion").value.text, HasSubstr("\"Orvane Vantrel\""));
}

TEST_F(LaunchTest, ADirectoryWithoutItsSeparatorIsNotFound) {
  client_ = std::make_unique<TestSupport::InstalledClient>();
  profile_.setUserInstallDir(client_->folder().path().wstring());
  start(kPluginLibrary);
  Instance instance(host());
  EXPECT_TRUE(logHas("ERR Failed to determine Orvane Vantrel executable path\r\n"));
  EXPECT_THAT(client_->running(), IsEmpty());
}

TEST_F(LaunchTest, AFileThatIsNoProgramIsReportedWithTheSystemsWords) {
  const auto folder = profile_.localAppData() / "broken client";
  std::filesystem::create_directories(folder / "bin");
  std::ofstream(folder / "bin" / "orvanevantrel.exe") << "no program";
  profile_.setUserInstallDir(folder.wstring() + L"\\");
  start(kPluginLibrary);
  Instance instance(host());
  EXPECT_TRUE(logHas("ERR Failed to launch Orvane Vantrel: "));
  EXPECT_TRUE(logHas(" (193)\r\n"));
  EXPECT_FALSE(logHas("Waiting 20000ms"));
}

TEST_F(LaunchTest, TheInstallationForAllUsersComesFirst) {
  client_ = std::make_unique<TestSupport::InstalledClient>();
  const auto other = profile_.localAppData() / "other client";
  std::filesystem::create_directories(other / "bin");
  std::ofstream(other / "bin" / "orvanevantrel.exe") << "no program";
  start(kPluginLibrary);
  profile_.emptySystemRegistry();
  profile_.setSystemInstallDir(other.wstring() + L"\\");
  {
    Instance instance(host());
    EXPECT_TRUE(logHas("other client"));
    EXPECT_THAT(client_->running(), IsEmpty());
  }
}

TEST_F(LaunchTest, TheUsersInstallationServesWhereTheOtherHoldsNoClient) {
  client_ = std::make_unique<TestSupport::InstalledClient>();
  start(kPluginLibrary);
  profile_.emptySystemRegistry();
  profile_.setSystemInstallDir(L"C:\\no such folder\\");
  Instance instance(host());
  EXPECT_THAT(client_->running(), SizeIs(1));
}

TEST_F(LaunchTest, AWindowCommandStartsTheClientAndAsksForTheWindow) {
  install("exit_at_start=0\n");
  Instance instance(host());
  EXPECT_THAT(client_->running(), IsEmpty());
  client_->configure("");
  EXPECT_TRUE(instance.call("displayAboutWindow").accepted);
  EXPECT_THAT(client_->running(), SizeIs(1));
  EXPECT_THAT(client_->records(), Contains(StartsWith("GET /windows/about/ HTTP/1.1\r\n")));
}

TEST_F(LaunchTest, ADirectStartStartsTheClientAndPostsItsDocument) {
  install("exit_at_start=0\n");
  Instance instance(host());
  client_->configure("");
  instance.call("startDownload", {text("http://files.host/a.txt")});
  EXPECT_THAT(client_->records(), Contains(HasSubstr("<src>http://files.host/a.txt</src>")));
}

TEST_F(LaunchTest, AQueuedRequestReachesTheNextClientOnItsPort) {
  install();
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  const uint16_t port = client_->address().port;
  client_->killAll();
  instance.call("vantrelHttpRequestAsync",
                {text("GET"), text(kVersionPath), text(""), function.value()});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_NE(client_->address().port, port);
  EXPECT_THAT(client_->running(), SizeIs(1));
  // The key went out as it was when the page asked; the new client has another.
  EXPECT_THAT(function->calls[0].arguments.at(0).text, HasSubstr("401"));
}

TEST_F(LaunchTest, AnEndDuringALaunchAnswersNobody) {
  install();
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host(), wait("1000"));
  client_->configure("slow_start_ms=60000\n");
  client_->killAll();
  for (int i = 0; i < 2; ++i) {
    instance.call("vantrelHttpRequestAsync",
                  {text("GET"), text(kVersionPath), text(""), function.value()});
  }
  ASSERT_TRUE(host().pumpUntil([this] { return logCount("Waiting 1000ms") == 2; }));
  instance.deliverLateCalls = true;
  instance.destroy();
  host().pumpOnce();
  EXPECT_THAT(function->calls, IsEmpty());
  instance.settle({.objects = {{function.get(), 2}}});
}

TEST_F(LaunchTest, SeveralInstancesStartTogether) {
  install();
  std::vector<std::unique_ptr<Instance>> instances;
  for (int i = 0; i < 5; ++i) instances.push_back(std::make_unique<Instance>(host()));
  for (const auto& instance : instances) {
    EXPECT_THAT(instance->call("queryVantrelVersion").value.text, HasSubstr("\"Orvane Vantrel\""));
  }
  EXPECT_THAT(client_->running(), SizeIs(1));
}

}  // namespace
}  // namespace Vantrel::Web
