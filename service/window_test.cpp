#include "service/window.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "service/locations.h"
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
  WindowTest() { files_.writeUrl(server_.url() + "\nkey"); }

  const TestSupport::ServiceFiles files_;
  TestSupport::FakePlatform platform_;
  TestSupport::LogRecorder log_;
  ScriptedServer server_;
};

TEST_F(WindowTest, BytesOnTheWire) {
  EXPECT_TRUE(AboutWindow().display(""));
  EXPECT_EQ(server_.requests("/windows/about/"),
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
  EXPECT_EQ(server_.requests("/windows/transfer-manager/").size(), 1U);
  EXPECT_EQ(server_.requests("/windows/about/x/y").size(), 1U);
  EXPECT_EQ(server_.requests("/windows/preferences/").size(), 1U);
}

TEST_F(WindowTest, ErrorStatusIsSuccess) {
  server_.always("/windows/about/", Script().send(TestSupport::httpReply("", "404 Not Found")));
  EXPECT_TRUE(AboutWindow().display(""));
}

TEST_F(WindowTest, ClientThatDoesNotRunIsStartedAndAskedInTheSameCall) {
  files_.removeUrl();
  TestSupport::resetServiceCaches(files_.appDataDirectory(), "orvanevantrel.exe");
  platform_.onStart = [this](const std::string&) {
    files_.writeUrl(server_.url() + "\nkey");
    return 0;
  };
  EXPECT_TRUE(PreferencesWindow().display(""));
  EXPECT_EQ(platform_.starts().size(), 1U);
  EXPECT_EQ(server_.requests("/windows/preferences/").size(), 1U);
}

TEST_F(WindowTest, ClientThatCannotBeStartedIsFalseAndReported) {
  files_.removeUrl();
  EXPECT_FALSE(AboutWindow().display(""));
  EXPECT_EQ(log_.lines("ERR").back(), kErrorContacting);
  EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(WindowTest, CloseWithoutAReplyIsFalseAndReported) {
  server_.always("/windows/about/", Script());
  EXPECT_FALSE(AboutWindow().display(""));
  EXPECT_EQ(log_.lines("ERR"),
            std::vector<std::string>{std::string("Error displaying window: ") + kErrorContacting});
}

TEST_F(WindowTest, AddressThatGoesAwayAfterTheLaunchIsFalseAndReported) {
  constexpr char kPing[] = "/v5/vantrel/info/ping";
  server_.always(kPing, Script().hold().send(TestSupport::httpReply("{}")));
  std::thread remover([&] {
    server_.waitForRequests(kPing, 1);
    files_.removeUrl();
    clearVantrelUrl();
    server_.release();
  });
  EXPECT_FALSE(AboutWindow().display(""));
  remover.join();
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{kErrorCreatingRequest});
}

}  // namespace
}  // namespace Vantrel::Web
