#include "service/launch.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "service/locations.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {
namespace {

using TestSupport::ScriptedServer;

constexpr char kExecutable[] = "C:/Program Files/%s/orvanevantrel.exe";
constexpr char kTimedOut[] = "LOG Warning: Timed out waiting for Orvane Vantrel to launch";

class LaunchTest : public testing::Test {
 protected:
  void bringClientUp() {
    server_ = std::make_unique<ScriptedServer>();
    files_.writeUrl(server_->url() + "\nkey");
  }

  // The lines that are not about sockets and files.
  std::vector<std::string> launchLines() const {
    std::vector<std::string> found;
    for (const std::string& line : log_.lines()) {
      for (const char* part : {"Launch", "Waiting", "Waited", "Warning:", "launch", "terminated"}) {
        if (line.find(part) != std::string::npos) {
          found.push_back(line);
          break;
        }
      }
    }
    return found;
  }

  const TestSupport::ServiceFiles files_{kExecutable};
  TestSupport::FakePlatform platform_;
  TestSupport::LogRecorder log_;
  std::unique_ptr<ScriptedServer> server_;
};

constexpr char kLaunching[] =
    "LOG Launching Orvane Vantrel - Command: C:/Program Files/%s/orvanevantrel.exe";

TEST_F(LaunchTest, ClientThatAnswersIsNotStarted) {
  bringClientUp();
  EXPECT_TRUE(launchVantrel());
  EXPECT_TRUE(platform_.starts().empty());
  EXPECT_EQ(server_->connections(), 1U);
  EXPECT_TRUE(launchLines().empty());
}

TEST_F(LaunchTest, NothingInstalledIsFalseWithoutAWait) {
  TestSupport::resetServiceCaches(files_.appDataDirectory());
  EXPECT_FALSE(launchVantrel());
  EXPECT_TRUE(platform_.starts().empty());
  EXPECT_TRUE(platform_.sleeps().empty());
  EXPECT_EQ(log_.count("ERR Failed to determine Orvane Vantrel executable path"), 1U);
  EXPECT_TRUE(launchLines().empty());
}

TEST_F(LaunchTest, ClientThatAnswersAtOnceIsNotWaitedFor) {
  platform_.onStart = [this](const std::string&) {
    bringClientUp();
    return 0;
  };
  EXPECT_TRUE(launchVantrel());
  EXPECT_EQ(platform_.starts(), std::vector<std::string>{kExecutable});
  EXPECT_TRUE(platform_.sleeps().empty());
  EXPECT_EQ(launchLines(), (std::vector<std::string>{
                               kLaunching, "LOG Waiting 20000ms for Orvane Vantrel to launch",
                               "DBG Waited 0ms for Vantrel to launch and write URL file"}));
  EXPECT_EQ(platform_.closedProcesses(), 1U);
}

TEST_F(LaunchTest, ClientThatComesUpLaterIsWaitedForInSteps) {
  platform_.onSleep = [this](uint32_t) {
    if (platform_.sleeps().size() == 3) bringClientUp();
    return 0;
  };
  EXPECT_TRUE(launchVantrel());
  EXPECT_EQ(platform_.sleeps(), (std::vector<uint32_t>{100, 100, 100}));
  EXPECT_EQ(launchLines().back(), "DBG Waited 300ms for Vantrel to launch and write URL file");
}

TEST_F(LaunchTest, StaleAddressIsDroppedBeforeTheWait) {
  files_.writeUrl("http://127.0.0.1:" + std::to_string(TestSupport::unusedPort()) + "\nkey");
  platform_.onStart = [this](const std::string&) {
    bringClientUp();
    return 0;
  };
  EXPECT_TRUE(launchVantrel());
  EXPECT_EQ(vantrelUrl().port(0), server_->port());
  EXPECT_EQ(log_.countContaining("Connection failed for socket"), 1U);
}

TEST_F(LaunchTest, WaitOfZeroStartsAndGivesUpAtOnce) {
  setLaunchTimeout(0);
  platform_.onStart = [this](const std::string&) {
    bringClientUp();
    return 0;
  };
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(platform_.starts().size(), 1U);
  EXPECT_TRUE(platform_.sleeps().empty());
  EXPECT_EQ(server_->connections(), 0U);
  EXPECT_EQ(launchLines(),
            (std::vector<std::string>{kLaunching, "LOG Waiting 0ms for Orvane Vantrel to launch",
                                      kTimedOut}));
}

TEST_F(LaunchTest, NegativeWaitIsNoWait) {
  setLaunchTimeout(-5);
  EXPECT_FALSE(launchVantrel());
  EXPECT_TRUE(platform_.sleeps().empty());
  EXPECT_EQ(log_.count("LOG Waiting -5ms for Orvane Vantrel to launch"), 1U);
  EXPECT_EQ(log_.count(kTimedOut), 1U);
}

TEST_F(LaunchTest, WaitEndsAtTheNextWholeStep) {
  for (const auto& [wait, steps] : {std::pair{1, 1}, {100, 1}, {101, 2}, {150, 2}, {1000, 10}}) {
    log_.clear();
    const size_t before = platform_.sleeps().size();
    setLaunchTimeout(wait);
    EXPECT_FALSE(launchVantrel());
    EXPECT_EQ(platform_.sleeps().size() - before, static_cast<size_t>(steps)) << wait;
    EXPECT_EQ(log_.count(kTimedOut), 1U) << wait;
  }
}

TEST_F(LaunchTest, ProcessThatCannotBeStartedIsReportedWithItsCode) {
  platform_.onStart = [](const std::string&) { return 2; };
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(launchLines(),
            (std::vector<std::string>{
                kLaunching, "ERR " + describeSystemError("Failed to launch Orvane Vantrel: ", 2)}));
  EXPECT_TRUE(platform_.sleeps().empty());
}

TEST_F(LaunchTest, ProcessThatDiesAtOnceEndsTheWait) {
  platform_.onExited = [](int32_t* state, int32_t* exitCode) {
    *state = 1;
    *exitCode = 7;
    return 0;
  };
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(platform_.sleeps().size(), 1U);
  EXPECT_EQ(launchLines().back(), "LOG Warning: Orvane Vantrel process exited (7)");
  EXPECT_EQ(log_.count(kTimedOut), 0U);
}

TEST_F(LaunchTest, ProcessThatExitsWithZeroIsAFailureToo) {
  platform_.onExited = [](int32_t* state, int32_t* exitCode) {
    *state = 1;
    *exitCode = 0;
    return 0;
  };
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(launchLines().back(), "LOG Warning: Orvane Vantrel process exited (0)");
}

TEST_F(LaunchTest, TerminatedProcessEndsTheWait) {
  platform_.onExited = [](int32_t* state, int32_t*) {
    *state = 2;
    return 0;
  };
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(launchLines().back(), "ERR Orvane Vantrel process terminated unexpectedly");
}

TEST_F(LaunchTest, UnknownProcessStateEndsTheWait) {
  platform_.onExited = [](int32_t*, int32_t*) { return 6; };
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(launchLines().back(), "ERR Warning: Checking Orvane Vantrel process state failed (6)");
}

TEST_F(LaunchTest, FailedSleepEndsTheWait) {
  platform_.onSleep = [](uint32_t) { return 5; };
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(launchLines().back(), "ERR Warning: Thread sleep failed (5)");
}

class ForegroundTest : public LaunchTest {};

TEST_F(ForegroundTest, IsAllowedToTheProcessOfTheFile) {
  files_.writeProcessId("4711");
  int32_t allowed = 0;
  platform_.onForeground = [&allowed](int32_t processId) {
    allowed = processId;
    return 0;
  };
  allowVantrelForeground();
  EXPECT_EQ(allowed, 4711);
  EXPECT_TRUE(log_.lines("LOG").empty()) << log_.text();
}

TEST_F(ForegroundTest, RefusalIsAWarning) {
  platform_.onForeground = [](int32_t) { return 87; };
  allowVantrelForeground();
  EXPECT_EQ(log_.lines("LOG"),
            std::vector<std::string>{"Warning: AllowSetForegroundWindow failed (87)"});
}

TEST_F(ForegroundTest, UnreadableProcessIdIsAWarning) {
  TestSupport::resetServiceCaches();
  platform_.appDataResult = -3;
  allowVantrelForeground();
  EXPECT_EQ(log_.lines("LOG"),
            std::vector<std::string>{"Warning: Failed to get Orvane Vantrel's process ID: Failed "
                                     "to determine application data directory (-3)"});
}

}  // namespace
}  // namespace Vantrel::Web
