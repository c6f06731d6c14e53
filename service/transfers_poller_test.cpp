#include "service/transfers_poller.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"

namespace Vantrel::Web {
namespace {

using TestSupport::messageBody;
using TestSupport::Script;
using TestSupport::ScriptedServer;

constexpr char kPath[] = "/v5/vantrel/transfers/activity";

// The request's document, written out once.
std::string document(const std::string& token, const std::string& appId) {
  return "{\n    \"iteration_token\": \"" + token +
         "\",\n    \"orvane_vantrel_settings\" : {\n        \"app_id\": \"" + appId +
         "\"\n    }\n}\n";
}

class Listener final : public TransferEventListener {
 public:
  explicit Listener(std::string listenerName = {}, std::vector<std::string>* sharedOrder = nullptr)
      : name(std::move(listenerName)), order(sharedOrder) {}

  void transferEventOccurred(const std::string& text) override {
    const std::lock_guard lock(mutex);
    events.push_back(text);
    if (order) order->push_back(name + text);
    changed.notify_all();
    if (throwsOnce) {
      throwsOnce = false;
      throw std::runtime_error("listener %s failed");
    }
  }
  std::vector<std::string> all() const {
    const std::lock_guard lock(mutex);
    return events;
  }
  bool waitFor(size_t count) const {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::seconds(30), [&] { return events.size() >= count; });
  }

  bool throwsOnce = false;

 private:
  const std::string name;
  std::vector<std::string>* order;
  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  std::vector<std::string> events;
};

class TransfersPollerTest : public testing::Test {
 protected:
  TransfersPollerTest() {
    files.writeUrl(server.url() + "\nkey");
    poller.setAppId("app");
    poller.addListener(&listener);
  }

  ~TransfersPollerTest() override { finish(); }

  void finish() {
    poller.stop();
    server.release();
    poller.join();
  }

  std::string tokenOfRequest(size_t index) const {
    const std::string body = messageBody(server.requests(kPath).at(index));
    const std::string begin = "\"iteration_token\": \"";
    const size_t at = body.find(begin) + begin.size();
    return body.substr(at, body.find("\",\n") - at);
  }

  const TestSupport::ServiceFiles files;
  TestSupport::FakePlatform platform;
  TestSupport::LogRecorder log;
  ScriptedServer server;
  Listener listener;
  TransfersPoller poller;
};

TEST_F(TransfersPollerTest, BytesOfTheFirstRequest) {
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 1));
  finish();
  const std::string body = document("", "app");
  EXPECT_EQ(server.requests(kPath)[0],
            "POST /v5/vantrel/transfers/activity HTTP/1.1\r\n"
            "Authorization-key: key\r\n"
            "Connection: close\r\n"
            "Content-Length: " +
                std::to_string(body.size()) +
                "\r\n"
                "Content-Type: application/vnd.orvane.xferreq+json\r\n"
                "User-Agent: Orvane Vantrel\r\n"
                "\r\n" +
                body);
}

TEST_F(TransfersPollerTest, SleepsASecondBeforeEveryRequest) {
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 3));
  finish();
  const std::vector<uint32_t> sleeps = platform.sleeps();
  EXPECT_GE(sleeps.size(), server.requests(kPath).size());
  for (const uint32_t sleep : sleeps) EXPECT_EQ(sleep, 1000U);
}

TEST_F(TransfersPollerTest, NeitherTokenNorIdIsEscaped) {
  poller.setAppId("a\"b\\c");
  server.next(kPath, Script::reply("{\"iteration_token\":\"x\\\"y\\\\z\"}"));
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 2));
  finish();
  EXPECT_EQ(messageBody(server.requests(kPath)[1]), document("x\"y\\z", "a\"b\\c"));
}

TEST_F(TransfersPollerTest, TokenTravelsFromReplyToRequest) {
  const std::vector<std::string> replies = {"{\"iteration_token\":\"one\",\"x\":1}",
                                            "{\"iteration_token\":1.50}",
                                            "{}",
                                            "{\"iteration_token\":\"four\"}",
                                            "{\"iteration_token\":null}",
                                            "{\"iteration_token\":\"six\"}",
                                            "{\"iteration_token\":{}}",
                                            "{\"iteration_token\":true}",
                                            "[\"iteration_token\"]"};
  for (const std::string& reply : replies) server.next(kPath, Script::reply(reply));
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, replies.size() + 1));
  finish();
  const std::vector<std::string> expected = {"", "one", "1.50", "", "four", "", "six", "", "", ""};
  for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(tokenOfRequest(i), expected[i]) << i;
  std::vector<std::string> events = listener.all();
  ASSERT_GE(events.size(), replies.size());
  events.resize(replies.size());
  EXPECT_EQ(events, replies);
}

TEST_F(TransfersPollerTest, ReplyWithErrorIsReportedAndItsTokenNotTaken) {
  const std::string error = "{\"iteration_token\":\"bad\",\"error\":null,\"t\":\"%s\"}";
  server.next(kPath, Script::reply("{\"iteration_token\":\"good\"}"));
  server.next(kPath, Script::reply(error));
  server.always(kPath, Script::reply("{\"iteration_token\":\"next\"}"));
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 3));
  ASSERT_TRUE(listener.waitFor(2));
  finish();
  EXPECT_EQ(tokenOfRequest(2), "good");
  EXPECT_EQ(listener.all()[1], "{\"iteration_token\":\"next\"}");
  EXPECT_EQ(log.lines("ERR"),
            std::vector<std::string>{"Transfer poller response contained an error: " + error});
}

TEST_F(TransfersPollerTest, ReplyThatIsNoJsonIsReportedAndKeepsTheToken) {
  server.next(kPath, Script::reply("{\"iteration_token\":\"good\"}"));
  server.next(kPath, Script::reply("{\"iteration_token\":"));
  server.always(kPath, Script::reply("{}"));
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 3));
  ASSERT_TRUE(listener.waitFor(2));
  finish();
  EXPECT_EQ(tokenOfRequest(2), "good");
  EXPECT_EQ(listener.all()[1], "{}");
  ASSERT_EQ(log.lines("ERR").size(), 1U) << log.text();
  const std::string prefix = "Error parsing JSON: ";
  EXPECT_EQ(log.lines("ERR")[0].rfind(prefix, 0), 0U);
  EXPECT_GT(log.lines("ERR")[0].size(), prefix.size());
}

TEST_F(TransfersPollerTest, FailedExchangeKeepsTokenAndAddress) {
  server.next(kPath, Script::reply("{\"iteration_token\":\"good\"}"));
  server.next(kPath, Script());
  server.next(kPath, Script().send("garbage"));
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 4));
  finish();
  EXPECT_EQ(tokenOfRequest(2), "good");
  EXPECT_EQ(tokenOfRequest(3), "good");
  EXPECT_TRUE(log.lines("ERR").empty()) << log.text();
  EXPECT_EQ(log.countContaining("DBG Reading Orvane Vantrel URL from"), 1U);
}

TEST_F(TransfersPollerTest, UnknownAddressIsWaitedForAndNothingIsStarted) {
  files.removeUrl();
  platform.onSleep = [this](uint32_t) {
    if (platform.sleeps().size() == 5) files.writeUrl(server.url() + "\nkey");
    return 0;
  };
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 1));
  finish();
  EXPECT_TRUE(platform.starts().empty());
  EXPECT_TRUE(server.requests("/v5/vantrel/info/ping").empty());
}

TEST_F(TransfersPollerTest, ClientThatComesBackOnItsPortIsReachedWithoutAnyAction) {
  auto other = std::make_unique<ScriptedServer>();
  const uint16_t port = other->port();
  files.writeUrl(other->url() + "\nkey");
  poller.start();
  ASSERT_TRUE(listener.waitFor(1));
  other.reset();
  const size_t sleepsBefore = platform.sleeps().size();
  while (platform.sleeps().size() < sleepsBefore + 5) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  const size_t eventsBefore = listener.all().size();
  other = std::make_unique<ScriptedServer>(port);
  EXPECT_TRUE(listener.waitFor(eventsBefore + 1));
  finish();
}

TEST_F(TransfersPollerTest, ListenersHearInOrderOfRegistration) {
  std::vector<std::string> order;
  Listener first("1", &order);
  Listener second("2", &order);
  poller.removeListener(&listener);
  poller.addListener(&second);
  poller.addListener(&first);
  poller.addListener(&second);
  poller.start();
  ASSERT_TRUE(first.waitFor(1));
  poller.removeListener(&first);
  finish();
  ASSERT_GE(order.size(), 3U);
  EXPECT_EQ((std::vector<std::string>(order.begin(), order.begin() + 3)),
            (std::vector<std::string>{"2{}", "1{}", "2{}"}));
}

TEST_F(TransfersPollerTest, RemovedListenerIsNeverCalledAgain) {
  poller.start();
  ASSERT_TRUE(listener.waitFor(1));
  poller.removeListener(&listener);
  const size_t heard = listener.all().size();
  const size_t asked = server.requests(kPath).size();
  ASSERT_TRUE(server.waitForRequests(kPath, asked + 3));
  finish();
  EXPECT_EQ(listener.all().size(), heard);
}

TEST_F(TransfersPollerTest, RemovingTakesTheFirstMatchAndIgnoresStrangers) {
  Listener stranger;
  poller.addListener(&listener);
  log.clear();
  poller.removeListener(&stranger);
  EXPECT_EQ(log.countContaining("TransferPoller::removeListener() - size=2"), 1U);
  EXPECT_EQ(log.countContaining("removed"), 0U);
  poller.removeListener(&listener);
  EXPECT_EQ(log.countContaining("TransferPoller::removeListener() - removed"), 1U);
  log.clear();
  poller.addListener(&stranger);
  EXPECT_EQ(log.countContaining("TransferPoller::addListener() - size=1"), 1U);
}

TEST_F(TransfersPollerTest, ListenerThatThrowsDoesNotEndThePolling) {
  listener.throwsOnce = true;
  poller.start();
  ASSERT_TRUE(listener.waitFor(2));
  finish();
  EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{"listener %s failed"});
}

TEST_F(TransfersPollerTest, StopDuringASleepSendsNoFurtherRequest) {
  platform.onSleep = [this](uint32_t) {
    poller.stop();
    return 0;
  };
  poller.start();
  poller.join();
  EXPECT_EQ(server.connections(), 0U);
  EXPECT_EQ(platform.sleeps().size(), 1U);
}

TEST_F(TransfersPollerTest, StopDuringAnExchangeDropsItsReply) {
  server.always(kPath, Script().hold().send(TestSupport::httpReply("{}")));
  poller.start();
  ASSERT_TRUE(server.waitForRequests(kPath, 1));
  poller.stop();
  server.release();
  poller.join();
  EXPECT_TRUE(listener.all().empty());
  EXPECT_EQ(server.requests(kPath).size(), 1U);
}

TEST_F(TransfersPollerTest, LogTellsEachStepOfItsLife) {
  {
    TransfersPoller other;
    EXPECT_EQ(log.countContaining(" TransfersPoller()"), 2U);
    other.stop();
    other.join();
  }
  EXPECT_EQ(log.countContaining(" TransferPoller::stop() - done?=0"), 1U);
  EXPECT_EQ(log.countContaining(" ~TransfersPoller() - started?=0"), 1U);
  poller.start();
  ASSERT_TRUE(listener.waitFor(1));
  finish();
  EXPECT_EQ(log.countContaining(" TransferPoller::run()"), 2U);
  EXPECT_EQ(log.countContaining(" TransferPoller::run() - done"), 1U);
  EXPECT_GE(log.countContaining(" TransferPoller::notifyListeners() - size=1"), 1U);
  poller.stop();
  EXPECT_EQ(log.countContaining(" TransferPoller::stop() - done?=1"), 1U);
}

}  // namespace
}  // namespace Vantrel::Web
