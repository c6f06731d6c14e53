// The cached address and the question whether a client answers there.
#include "service/locations.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "service/launch.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"

namespace Vantrel::Web {
namespace {

using TestSupport::Script;
using TestSupport::ScriptedServer;

constexpr char kPingPath[] = "/v5/vantrel/info/ping";

class ServiceUrlTest : public testing::Test {
 protected:
  const TestSupport::ServiceFiles files_;
  TestSupport::LogRecorder log_;
};

TEST_F(ServiceUrlTest, ReadsTheFirstLineOfTheFile) {
  files_.writeUrl("http://127.0.0.1:33001\nkey\n");
  const Url url = vantrelUrl();
  EXPECT_EQ(url.url, "http://127.0.0.1:33001\nkey\n");
  EXPECT_EQ(url.host, "127.0.0.1");
  EXPECT_EQ(url.port(0), 33001);
}

TEST_F(ServiceUrlTest, EveryReadOfTheAddressLogsTheKeyToo) {
  files_.writeUrl("http://127.0.0.1:1\nkey");
  vantrelUrl();
  EXPECT_EQ(log_.lines(),
            (std::vector<std::string>{"DBG Reading Orvane Vantrel URL from " + files_.urlFile(),
                                      "DBG Read Orvane Vantrel URL: http://127.0.0.1:1\nkey",
                                      "DBG Reading Orvane Vantrel UUID from " + files_.urlFile(),
                                      "DBG Vantrel UUID: key"}));
}

TEST_F(ServiceUrlTest, CachedAddressIsNotReadAgain) {
  files_.writeUrl("http://127.0.0.1:1\nkey");
  vantrelUrl();
  log_.clear();
  files_.writeUrl("http://127.0.0.1:2\nkey");
  EXPECT_EQ(vantrelUrl().port(0), 1);
  EXPECT_EQ(log_.text(), "");
}

TEST_F(ServiceUrlTest, ClearedAddressIsReadAgain) {
  files_.writeUrl("http://127.0.0.1:1\nkey");
  vantrelUrl();
  files_.writeUrl("http://127.0.0.1:2\nkey");
  clearVantrelUrl();
  EXPECT_EQ(vantrelUrl().port(0), 2);
}

TEST_F(ServiceUrlTest, MissingOrEmptyFileIsUnknownAndTriedAgain) {
  const std::string failure = "DBG Failed to read Orvane Vantrel URL from " + files_.urlFile();
  EXPECT_EQ(vantrelUrl().url, "");
  EXPECT_EQ(log_.count(failure), 1U);
  files_.writeUrl("");
  EXPECT_EQ(vantrelUrl().url, "");
  EXPECT_EQ(log_.count(failure), 2U);
  files_.writeUrl("http://127.0.0.1:1");
  EXPECT_EQ(vantrelUrl().port(0), 1);
}

TEST_F(ServiceUrlTest, TextThatIsNoUrlIsReportedUnknownAndTriedAgain) {
  files_.writeUrl("127.0.0.1:1\nkey");
  EXPECT_EQ(vantrelUrl().url, "");
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{"Invalid URL: 127.0.0.1:1\nkey"});
  EXPECT_EQ(log_.count("DBG Read Orvane Vantrel URL: "), 1U);
  files_.writeUrl("http://127.0.0.1:1\nkey");
  EXPECT_EQ(vantrelUrl().port(0), 1);
}

TEST_F(ServiceUrlTest, ThreadsMayReadAndClearAtTheSameTime) {
  files_.writeUrl("http://127.0.0.1:1\nkey");
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&wrong, i] {
      for (int round = 0; round < 200; ++round) {
        if (i == 0) clearVantrelUrl();
        if (vantrelUrl().host != "127.0.0.1") ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

class PingTest : public ServiceUrlTest {
 protected:
  void pointTo(uint16_t port) {
    files_.writeUrl("http://127.0.0.1:" + std::to_string(port) + "\nkey");
  }

  ScriptedServer server_;
};

TEST_F(PingTest, NoAddressIsNoClientAndNoConnection) {
  EXPECT_FALSE(pingVantrel());
  EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(PingTest, AnswerCounts) {
  pointTo(server_.port());
  EXPECT_TRUE(pingVantrel());
  EXPECT_EQ(server_.requests(), std::vector<std::string>{"GET /v5/vantrel/info/ping HTTP/1.1\r\n"
                                                         "Connection: close\r\n"
                                                         "Content-Length: 0\r\n"
                                                         "User-Agent: Orvane Vantrel\r\n"
                                                         "\r\n"});
}

TEST_F(PingTest, ErrorStatusCountsToo) {
  pointTo(server_.port());
  server_.otherwise(Script().send(TestSupport::httpReply("", "500 Internal Server Error")));
  EXPECT_TRUE(pingVantrel());
}

TEST_F(PingTest, GarbageDoesNotCount) {
  pointTo(server_.port());
  server_.otherwise(Script().send("garbage"));
  EXPECT_FALSE(pingVantrel());
  EXPECT_EQ(server_.connections(), 1U);
}

TEST_F(PingTest, ClientThatRestartedOnAnotherPortIsFoundInTheSameCall) {
  pointTo(TestSupport::unusedPort());
  vantrelUrl();
  pointTo(server_.port());
  EXPECT_TRUE(pingVantrel());
  EXPECT_EQ(server_.requests(kPingPath).size(), 1U);
  EXPECT_EQ(vantrelUrl().port(0), server_.port());
}

TEST_F(PingTest, ClientThatMovedTwiceIsFollowed) {
  ScriptedServer second;
  pointTo(second.port());
  vantrelUrl();
  // The second server answers nothing useful, and by then the client has moved on.
  second.otherwise(Script());
  pointTo(server_.port());
  EXPECT_TRUE(pingVantrel());
  EXPECT_EQ(second.connections(), 1U);
}

TEST_F(PingTest, SilentPortIsReadAgainOnceAndStaysCached) {
  server_.otherwise(Script());
  pointTo(server_.port());
  vantrelUrl();
  log_.clear();
  EXPECT_FALSE(pingVantrel());
  EXPECT_EQ(server_.connections(), 1U);
  EXPECT_EQ(log_.countContaining("Reading Orvane Vantrel URL from"), 1U);
  files_.writeUrl("http://127.0.0.1:9\nkey");
  EXPECT_EQ(vantrelUrl().port(0), server_.port());
}

TEST_F(PingTest, AddressThatIsGoneAfterAFailureIsNoClient) {
  pointTo(TestSupport::unusedPort());
  vantrelUrl();
  files_.removeUrl();
  EXPECT_FALSE(pingVantrel());
  EXPECT_EQ(vantrelUrl().url, "");
}

TEST_F(PingTest, AddressWithoutAPortIsNoClient) {
  // With no port the whole file text is the host, and its line feed makes it unresolvable.
  files_.writeUrl("http://127.0.0.1\nkey");
  EXPECT_FALSE(pingVantrel());
  EXPECT_EQ(log_.count("ERR TcpSocket::connect() Couldn't resolve address for: 127.0.0.1\nkey"),
            3U);
}

}  // namespace
}  // namespace Vantrel::Web
