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
      : name_(std::move(listenerName)), order_(sharedOrder) {}

  void transferEventOccurred(const std::string& text) override {
    const std::lock_guard lock(mutex_);
    events_.push_back(text);
    if (order_ != nullptr) order_->push_back(name_ + text);
    changed_.notify_all();
    if (throwsOnce) {
      throwsOnce = false;
      throw std::runtime_error("listener %s failed");
    }
  }
  std::vector<std::string> all() const {
    const std::lock_guard lock(mutex_);
    return events_;
  }
  bool waitFor(size_t count) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(30),
                             [&] { return events_.size() >= count; });
  }

  bool throwsOnce = false;

 private:
  const std::string name_;
  std::vector<std::string>* order_;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<std::string> events_;
};

class TransfersPollerTest : public testing::Test {
 protected:
  TransfersPollerTest() {
    files_.writeUrl(server_.url() + "\nkey");
    poller_.setAppId("app");
    poller_.addListener(&listener_);
  }

  ~TransfersPollerTest() override { finish(); }

  void finish() {
    poller_.stop();
    server_.release();
    poller_.join();
  }

  std::string tokenOfRequest(size_t index) const {
    const std::string body = messageBody(server_.requests(kPath).at(index));
    const std::string begin = "\"iteration_token\": \"";
    const size_t at = body.find(begin) + begin.size();
    return body.substr(at, body.find("\",\n") - at);
  }

  const TestSupport::ServiceFiles files_;
  TestSupport::FakePlatform platform_;
  TestSupport::LogRecorder log_;
  ScriptedServer server_;
  Listener listener_;
  TransfersPoller poller_;
};

TEST_F(TransfersPollerTest, BytesOfTheFirstRequest) {
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 1));
  finish();
  const std::string body = document("", "app");
  EXPECT_EQ(server_.requests(kPath)[0],
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
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 3));
  finish();
  const std::vector<uint32_t> sleeps = platform_.sleeps();
  EXPECT_GE(sleeps.size(), server_.requests(kPath).size());
  for (const uint32_t sleep : sleeps) EXPECT_EQ(sleep, 1000U);
}

TEST_F(TransfersPollerTest, NeitherTokenNorIdIsEscaped) {
  poller_.setAppId("a\"b\\c");
  server_.next(kPath, Script::reply("{\"iteration_token\":\"x\\\"y\\\\z\"}"));
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 2));
  finish();
  EXPECT_EQ(messageBody(server_.requests(kPath)[1]), document("x\"y\\z", "a\"b\\c"));
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
  for (const std::string& reply : replies) server_.next(kPath, Script::reply(reply));
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, replies.size() + 1));
  finish();
  const std::vector<std::string> expected = {"", "one", "1.50", "", "four", "", "six", "", "", ""};
  for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(tokenOfRequest(i), expected[i]) << i;
  std::vector<std::string> events = listener_.all();
  ASSERT_GE(events.size(), replies.size());
  events.resize(replies.size());
  EXPECT_EQ(events, replies);
}

TEST_F(TransfersPollerTest, ReplyWithErrorIsReportedAndItsTokenNotTaken) {
  const std::string error = "{\"iteration_token\":\"bad\",\"error\":null,\"t\":\"%s\"}";
  server_.next(kPath, Script::reply("{\"iteration_token\":\"good\"}"));
  server_.next(kPath, Script::reply(error));
  server_.always(kPath, Script::reply("{\"iteration_token\":\"next\"}"));
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 3));
  ASSERT_TRUE(listener_.waitFor(2));
  finish();
  EXPECT_EQ(tokenOfRequest(2), "good");
  EXPECT_EQ(listener_.all()[1], "{\"iteration_token\":\"next\"}");
  EXPECT_EQ(log_.lines("ERR"),
            std::vector<std::string>{"Transfer poller response contained an error: " + error});
}

TEST_F(TransfersPollerTest, ReplyThatIsNoJsonIsReportedAndKeepsTheToken) {
  server_.next(kPath, Script::reply("{\"iteration_token\":\"good\"}"));
  server_.next(kPath, Script::reply("{\"iteration_token\":"));
  server_.always(kPath, Script::reply("{}"));
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 3));
  ASSERT_TRUE(listener_.waitFor(2));
  finish();
  EXPECT_EQ(tokenOfRequest(2), "good");
  EXPECT_EQ(listener_.all()[1], "{}");
  ASSERT_EQ(log_.lines("ERR").size(), 1U) << log_.text();
  const std::string prefix = "Error parsing JSON: ";
  EXPECT_EQ(log_.lines("ERR")[0].rfind(prefix, 0), 0U);
  EXPECT_GT(log_.lines("ERR")[0].size(), prefix.size());
}

TEST_F(TransfersPollerTest, FailedExchangeKeepsTokenAndAddress) {
  server_.next(kPath, Script::reply("{\"iteration_token\":\"good\"}"));
  server_.next(kPath, Script());
  server_.next(kPath, Script().send("garbage"));
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 4));
  finish();
  EXPECT_EQ(tokenOfRequest(2), "good");
  EXPECT_EQ(tokenOfRequest(3), "good");
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
  EXPECT_EQ(log_.countContaining("DBG Reading Orvane Vantrel URL from"), 1U);
}

TEST_F(TransfersPollerTest, UnknownAddressIsWaitedForAndNothingIsStarted) {
  files_.removeUrl();
  platform_.onSleep = [this](uint32_t) {
    if (platform_.sleeps().size() == 5) files_.writeUrl(server_.url() + "\nkey");
    return 0;
  };
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 1));
  finish();
  EXPECT_TRUE(platform_.starts().empty());
  EXPECT_TRUE(server_.requests("/v5/vantrel/info/ping").empty());
}

TEST_F(TransfersPollerTest, ClientThatComesBackOnItsPortIsReachedWithoutAnyAction) {
  auto other = std::make_unique<ScriptedServer>();
  const uint16_t port = other->port();
  files_.writeUrl(other->url() + "\nkey");
  poller_.start();
  ASSERT_TRUE(listener_.waitFor(1));
  other.reset();
  const size_t sleepsBefore = platform_.sleeps().size();
  while (platform_.sleeps().size() < sleepsBefore + 5) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  const size_t eventsBefore = listener_.all().size();
  other = std::make_unique<ScriptedServer>(port);
  EXPECT_TRUE(listener_.waitFor(eventsBefore + 1));
  finish();
}

TEST_F(TransfersPollerTest, ListenersHearInOrderOfRegistration) {
  std::vector<std::string> order;
  Listener first("1", &order);
  Listener second("2", &order);
  poller_.removeListener(&listener_);
  poller_.addListener(&second);
  poller_.addListener(&first);
  poller_.addListener(&second);
  poller_.start();
  ASSERT_TRUE(first.waitFor(1));
  poller_.removeListener(&first);
  finish();
  ASSERT_GE(order.size(), 3U);
  EXPECT_EQ((std::vector<std::string>(order.begin(), order.begin() + 3)),
            (std::vector<std::string>{"2{}", "1{}", "2{}"}));
}

TEST_F(TransfersPollerTest, RemovedListenerIsNeverCalledAgain) {
  poller_.start();
  ASSERT_TRUE(listener_.waitFor(1));
  poller_.removeListener(&listener_);
  const size_t heard = listener_.all().size();
  const size_t asked = server_.requests(kPath).size();
  ASSERT_TRUE(server_.waitForRequests(kPath, asked + 3));
  finish();
  EXPECT_EQ(listener_.all().size(), heard);
}

TEST_F(TransfersPollerTest, RemovingTakesTheFirstMatchAndIgnoresStrangers) {
  Listener stranger;
  poller_.addListener(&listener_);
  log_.clear();
  poller_.removeListener(&stranger);
  EXPECT_EQ(log_.countContaining("TransferPoller::removeListener() - size=2"), 1U);
  EXPECT_EQ(log_.countContaining("removed"), 0U);
  poller_.removeListener(&listener_);
  EXPECT_EQ(log_.countContaining("TransferPoller::removeListener() - removed"), 1U);
  log_.clear();
  poller_.addListener(&stranger);
  EXPECT_EQ(log_.countContaining("TransferPoller::addListener() - size=1"), 1U);
}

TEST_F(TransfersPollerTest, ListenerThatThrowsDoesNotEndThePolling) {
  listener_.throwsOnce = true;
  poller_.start();
  ASSERT_TRUE(listener_.waitFor(2));
  finish();
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{"listener %s failed"});
}

TEST_F(TransfersPollerTest, StopDuringASleepSendsNoFurtherRequest) {
  platform_.onSleep = [this](uint32_t) {
    poller_.stop();
    return 0;
  };
  poller_.start();
  poller_.join();
  EXPECT_EQ(server_.connections(), 0U);
  EXPECT_EQ(platform_.sleeps().size(), 1U);
}

TEST_F(TransfersPollerTest, StopEndsThePause) {
  platform_.pausesAreEndless = true;
  poller_.start();
  while (platform_.sleeps().empty()) std::this_thread::yield();
  poller_.stop();
  poller_.join();
  EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(TransfersPollerTest, StopEndsAnExchangeWithASilentClient) {
  server_.always(kPath, Script().hold());
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 1));
  poller_.stop();
  poller_.join();
  EXPECT_TRUE(listener_.all().empty());
  EXPECT_EQ(server_.requests(kPath).size(), 1U);
}

TEST_F(TransfersPollerTest, StopDuringAnExchangeDropsItsReply) {
  server_.always(kPath, Script().hold().send(TestSupport::httpReply("{}")));
  poller_.start();
  ASSERT_TRUE(server_.waitForRequests(kPath, 1));
  poller_.stop();
  server_.release();
  poller_.join();
  EXPECT_TRUE(listener_.all().empty());
  EXPECT_EQ(server_.requests(kPath).size(), 1U);
}

TEST_F(TransfersPollerTest, LogTellsEachStepOfItsLife) {
  {
    TransfersPoller other;
    EXPECT_EQ(log_.countContaining(" TransfersPoller()"), 2U);
    other.stop();
    other.join();
  }
  EXPECT_EQ(log_.countContaining(" TransferPoller::stop() - done?=0"), 1U);
  EXPECT_EQ(log_.countContaining(" ~TransfersPoller() - started?=0"), 1U);
  poller_.start();
  ASSERT_TRUE(listener_.waitFor(1));
  finish();
  EXPECT_EQ(log_.countContaining(" TransferPoller::run()"), 2U);
  EXPECT_EQ(log_.countContaining(" TransferPoller::run() - done"), 1U);
  EXPECT_GE(log_.countContaining(" TransferPoller::notifyListeners() - size=1"), 1U);
  poller_.stop();
  EXPECT_EQ(log_.countContaining(" TransferPoller::stop() - done?=1"), 1U);
}

}  // namespace
}  // namespace Vantrel::Web
