#include "service/window.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "service/service_url.h"
#include "service/testing.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"
#include "text/error_texts.h"

namespace Vantrel::Web {
namespace {

using TestSupport::Script;
using TestSupport::ScriptedServer;

class WindowTest : public testing::Test {
 protected:
  WindowTest() { files.writeUrl(server.url() + "\nkey"); }

  const TestSupport::ServiceFiles files;
  TestSupport::FakePlatform platform;
  TestSupport::LogRecorder log;
  ScriptedServer server;
};

TEST_F(WindowTest, BytesOnTheWire) {
  EXPECT_TRUE(AboutWindow().display(""));
  EXPECT_EQ(server.requests("/windows/about/"),
            std::vector<std::string>{"GET /windows/about/ HTTP/1.1\r\n"
                                     "Authorization-key: key\r\n"
                                     "Connection: close\r\n"
                                     "Content-Length: 0\r\n"
                                     "Content-Type: application/vnd.orvane.xferreq+xml\r\n"
                                     "User-Agent: Orvane Vantrel\r\n"
                                     "\r\n"});
}

TEST_F(WindowTest, EveryWindowHasItsPath) {
  EXPECT_TRUE(TransferManagerWindow().display(""));
  EXPECT_TRUE(AboutWindow().display("x/y"));
  EXPECT_TRUE(PreferencesWindow().display(""));
  EXPECT_EQ(server.requests("/windows/transfer-manager/").size(), 1U);
  EXPECT_EQ(server.requests("/windows/about/x/y").size(), 1U);
  EXPECT_EQ(server.requests("/windows/preferences/").size(), 1U);
}

TEST_F(WindowTest, ErrorStatusIsSuccess) {
  server.always("/windows/about/", Script().send(TestSupport::httpReply("", "404 Not Found")));
  EXPECT_TRUE(AboutWindow().display(""));
}

TEST_F(WindowTest, ClientThatDoesNotRunIsStartedAndAskedInTheSameCall) {
  files.removeUrl();
  resetServiceCaches(files.appDataDirectory(), "orvanevantrel.exe");
  platform.onStart = [this](const std::string&) {
    files.writeUrl(server.url() + "\nkey");
    return 0;
  };
  EXPECT_TRUE(PreferencesWindow().display(""));
  EXPECT_EQ(platform.starts().size(), 1U);
  EXPECT_EQ(server.requests("/windows/preferences/").size(), 1U);
}

TEST_F(WindowTest, ClientThatCannotBeStartedIsFalseAndReported) {
  files.removeUrl();
  EXPECT_FALSE(AboutWindow().display(""));
  EXPECT_EQ(log.lines("ERR").back(), kErrorContacting);
  EXPECT_EQ(server.connections(), 0U);
}

TEST_F(WindowTest, CloseWithoutAReplyIsFalseAndReported) {
  server.always("/windows/about/", Script());
  EXPECT_FALSE(AboutWindow().display(""));
  EXPECT_EQ(log.lines("ERR"),
            std::vector<std::string>{std::string("Error displaying window: ") + kErrorContacting});
}

TEST_F(WindowTest, AddressThatGoesAwayAfterTheLaunchIsFalseAndReported) {
  constexpr char kPing[] = "/v5/vantrel/info/ping";
  server.always(kPing, Script().hold().send(TestSupport::httpReply("{}")));
  std::thread remover([&] {
    server.waitForRequests(kPing, 1);
    files.removeUrl();
    clearVantrelUrl();
    server.release();
  });
  EXPECT_FALSE(AboutWindow().display(""));
  remover.join();
  EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{kErrorCreatingRequest});
}

}  // namespace
}  // namespace Vantrel::Web
