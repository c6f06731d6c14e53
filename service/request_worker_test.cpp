#include "service/request_worker.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "service/launch.h"
#include "service/vantrel_request.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"
#include "text/error_texts.h"

namespace Vantrel::Web {
namespace {

using TestSupport::Script;
using TestSupport::ScriptedServer;

// What the callbacks of one case heard, in order, and how many were destroyed.
class Answers {
 public:
  void add(const std::string& answer) {
    const std::lock_guard lock(mutex_);
    heard_.push_back(answer);
    changed_.notify_all();
  }
  void countDestroyed() {
    const std::lock_guard lock(mutex_);
    ++destroyedCount_;
    changed_.notify_all();
  }
  std::vector<std::string> all() const {
    const std::lock_guard lock(mutex_);
    return heard_;
  }
  int destroyed() const {
    const std::lock_guard lock(mutex_);
    return destroyedCount_;
  }
  bool waitForDestroyed(int count) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(30),
                             [&] { return destroyedCount_ >= count; });
  }

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<std::string> heard_;
  int destroyedCount_ = 0;
};

class RecordingCallback : public Callback {
 public:
  RecordingCallback(Answers& target, std::string callbackName, bool throwing = false)
      : answers_(target), name_(std::move(callbackName)), throws_(throwing) {}
  ~RecordingCallback() override { answers_.countDestroyed(); }

  void handleCallback(void* argument) override {
    const auto* response = static_cast<const HttpResponse*>(argument);
    answers_.add(name_ + ":" + (response != nullptr ? response->body() : "null"));
    if (throws_) throw std::runtime_error("callback %s failed");
  }
  void returnMessage(const std::string&) override {}

 private:
  Answers& answers_;
  const std::string name_;
  const bool throws_;
};

class RequestWorkerTest : public testing::Test {
 protected:
  RequestWorkerTest() { files_.writeUrl(server_.url() + "\nkey"); }

  void add(const std::string& path, bool throwing = false) {
    auto request = newVantrelRequest("POST", path, "{}", kFormatJson);
    ASSERT_TRUE(request);
    request->callback = std::make_unique<RecordingCallback>(answers_, path, throwing);
    worker_->addRequest(std::move(request));
  }

  void finish() {
    worker_->stop();
    worker_->join();
    worker_.reset();
  }

  const TestSupport::ServiceFiles files_;
  TestSupport::FakePlatform platform_;
  TestSupport::LogRecorder log_;
  ScriptedServer server_;
  Answers answers_;
  std::unique_ptr<RequestWorker> worker_ = std::make_unique<RequestWorker>();
};

TEST_F(RequestWorkerTest, AnswersInOrderOfArrival) {
  for (const char* path : {"/1", "/2", "/3"}) server_.always(path, Script::reply(path));
  add("/1");
  add("/2");
  worker_->start();
  add("/3");
  ASSERT_TRUE(answers_.waitForDestroyed(3));
  finish();
  EXPECT_EQ(answers_.all(), (std::vector<std::string>{"/1:/1", "/2:/2", "/3:/3"}));
  EXPECT_EQ(server_.requests("/v5/vantrel/info/ping").size(), 3U);
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
}

TEST_F(RequestWorkerTest, ErrorStatusReachesTheCallbackAsAReply) {
  server_.always("/1", Script().send(TestSupport::httpReply("{\"e\":1}", "500 Error")));
  worker_->start();
  add("/1");
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(answers_.all(), std::vector<std::string>{"/1:{\"e\":1}"});
}

TEST_F(RequestWorkerTest, NoReplyIsNullAndReported) {
  server_.always("/1", Script());
  worker_->start();
  add("/1");
  add("/2");
  ASSERT_TRUE(answers_.waitForDestroyed(2));
  finish();
  EXPECT_EQ(answers_.all(), (std::vector<std::string>{"/1:null", "/2:{}"}));
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{kErrorContacting});
}

TEST_F(RequestWorkerTest, GarbageReplyIsNull) {
  server_.always("/1", Script().send("garbage"));
  worker_->start();
  add("/1");
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(answers_.all(), std::vector<std::string>{"/1:null"});
}

TEST_F(RequestWorkerTest, ClientThatCannotBeStartedIsNullAndReported) {
  add("/1");
  files_.removeUrl();
  TestSupport::resetServiceCaches(files_.appDataDirectory());
  worker_->start();
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(answers_.all(), std::vector<std::string>{"/1:null"});
  EXPECT_EQ(
      log_.count("DBG RequestWorker::processOneRequest - Vantrel couldn't be launched, error"), 1U);
  EXPECT_EQ(log_.count(std::string("ERR ") + kErrorContacting), 1U);
}

TEST_F(RequestWorkerTest, ClientThatMovedIsReachedAtItsNewPort) {
  add("/1");
  ScriptedServer moved;
  moved.otherwise(Script::reply("moved"));
  server_.otherwise(Script());
  files_.writeUrl(moved.url() + "\nkey");
  worker_->start();
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(answers_.all(), std::vector<std::string>{"/1:moved"});
}

TEST_F(RequestWorkerTest, ClientIsStartedForAQueuedRequest) {
  add("/1");
  files_.removeUrl();
  TestSupport::resetServiceCaches(files_.appDataDirectory(), "orvanevantrel.exe");
  platform_.onStart = [this](const std::string&) {
    files_.writeUrl(server_.url() + "\nkey");
    return 0;
  };
  worker_->start();
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(answers_.all(), std::vector<std::string>{"/1:{}"});
  EXPECT_EQ(platform_.starts().size(), 1U);
}

TEST_F(RequestWorkerTest, RequestWithoutACallbackIsPerformed) {
  worker_->start();
  worker_->addRequest(newVantrelRequest("GET", "/quiet", "", kFormatJson));
  add("/2");
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(server_.requests("/quiet").size(), 1U);
}

TEST_F(RequestWorkerTest, CallbackThatThrowsCostsOnlyItsOwnAnswer) {
  worker_->start();
  add("/1", true);
  add("/2");
  ASSERT_TRUE(answers_.waitForDestroyed(2));
  finish();
  EXPECT_EQ(answers_.all(), (std::vector<std::string>{"/1:{}", "/2:{}"}));
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{"callback %s failed"});
}

TEST_F(RequestWorkerTest, StopDuringAnExchangeDropsItsReplyAndTheRest) {
  server_.always("/1", Script().hold().send(TestSupport::httpReply("late")));
  worker_->start();
  add("/1");
  add("/2");
  add("/3");
  ASSERT_TRUE(server_.waitForRequests("/1", 1));
  worker_->stop();
  server_.release();
  worker_->join();
  EXPECT_EQ(answers_.destroyed(), 1);
  worker_.reset();
  EXPECT_TRUE(answers_.all().empty());
  EXPECT_EQ(answers_.destroyed(), 3);
  EXPECT_TRUE(server_.requests("/2").empty());
  EXPECT_EQ(log_.countContaining("~RequestWorker() ["), 1U);
  EXPECT_EQ(log_.countContaining("] - size=2"), 1U);
}

TEST_F(RequestWorkerTest, StopEndsAnExchangeWithASilentClient) {
  server_.always("/1", Script().hold());
  worker_->start();
  add("/1");
  ASSERT_TRUE(server_.waitForRequests("/1", 1));
  worker_->stop();
  worker_->join();
  EXPECT_TRUE(answers_.all().empty());
  EXPECT_EQ(answers_.destroyed(), 1);
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
}

TEST_F(RequestWorkerTest, StopEndsAQuestionToASilentClientAndStartsNoOther) {
  add("/1");
  TestSupport::resetServiceCaches(files_.appDataDirectory(), "orvanevantrel.exe");
  server_.always("/v5/vantrel/info/ping", Script().hold());
  worker_->start();
  ASSERT_TRUE(server_.waitForRequests("/v5/vantrel/info/ping", 1));
  worker_->stop();
  worker_->join();
  EXPECT_TRUE(platform_.starts().empty());
  EXPECT_TRUE(answers_.all().empty());
}

TEST_F(RequestWorkerTest, StopEndsASendToAClientThatReadsNothing) {
  auto request = newVantrelRequest("POST", "/1", std::string(64U << 20, 'x'), kFormatJson);
  request->callback = std::make_unique<RecordingCallback>(answers_, "/1", false);
  worker_->addRequest(std::move(request));
  server_.nextConnection(Script::reply("{}"));
  server_.nextConnection(Script().hold());
  worker_->start();
  while (server_.connections() < 2) std::this_thread::yield();
  worker_->stop();
  worker_->join();
  EXPECT_TRUE(answers_.all().empty());
  EXPECT_EQ(answers_.destroyed(), 1);
}

TEST_F(RequestWorkerTest, StopDuringALaunchStillTellsTheFailure) {
  add("/1");
  files_.removeUrl();
  TestSupport::resetServiceCaches(files_.appDataDirectory(), "orvanevantrel.exe");
  platform_.onStart = [this](const std::string&) {
    worker_->stop();
    return 2;
  };
  worker_->start();
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(answers_.all(), std::vector<std::string>{"/1:null"});
}

TEST_F(RequestWorkerTest, StopDuringALaunchsWaitLetsItRunToItsEndAndTellsTheFailure) {
  add("/1");
  add("/2");
  files_.removeUrl();
  TestSupport::resetServiceCaches(files_.appDataDirectory(), "orvanevantrel.exe");
  setLaunchTimeout(500);
  platform_.onSleep = [this](uint32_t) {
    worker_->stop();
    return 0;
  };
  worker_->start();
  ASSERT_TRUE(answers_.waitForDestroyed(1));
  finish();
  EXPECT_EQ(platform_.sleeps(), std::vector<uint32_t>(5, 100));
  EXPECT_EQ(log_.count("LOG Warning: Timed out waiting for Orvane Vantrel to launch"), 1U);
  EXPECT_EQ(answers_.all(), std::vector<std::string>{"/1:null"});
  EXPECT_EQ(answers_.destroyed(), 2);
}

TEST_F(RequestWorkerTest, StopDuringALaunchsWaitEndsItWhereTheNewClientIsSilent) {
  add("/1");
  files_.removeUrl();
  TestSupport::resetServiceCaches(files_.appDataDirectory(), "orvanevantrel.exe");
  platform_.onStart = [this](const std::string&) {
    files_.writeUrl(server_.url() + "\nkey");
    return 0;
  };
  server_.always("/v5/vantrel/info/ping", Script().hold());
  worker_->start();
  ASSERT_TRUE(server_.waitForRequests("/v5/vantrel/info/ping", 1));
  worker_->stop();
  worker_->join();
  EXPECT_EQ(log_.countContaining("Timed out waiting"), 0U);
  EXPECT_TRUE(answers_.all().empty());
  EXPECT_EQ(answers_.destroyed(), 1);
}

TEST_F(RequestWorkerTest, StopBeforeTheStartServesNothing) {
  add("/1");
  worker_->stop();
  worker_->start();
  worker_->join();
  EXPECT_TRUE(worker_->done());
  worker_.reset();
  EXPECT_TRUE(answers_.all().empty());
  EXPECT_EQ(answers_.destroyed(), 1);
}

TEST_F(RequestWorkerTest, NeverStartedWorkerDestroysItsQueueUnheard) {
  add("/1");
  finish();
  EXPECT_TRUE(answers_.all().empty());
  EXPECT_EQ(answers_.destroyed(), 1);
}

TEST_F(RequestWorkerTest, LogTellsEachStepOfItsLife) {
  worker_->start();
  worker_->stop();
  worker_->join();
  EXPECT_TRUE(worker_->done());
  EXPECT_FALSE(worker_->hasThread());
  worker_->stop();
  worker_.reset();
  EXPECT_EQ(log_.countContaining("DBG RequestWorker() ["), 1U);
  EXPECT_EQ(log_.count("DBG RequestWorker::run()"), 1U);
  EXPECT_EQ(log_.count("DBG RequestWorker::run() - done"), 1U);
  EXPECT_EQ(log_.countContaining("DBG RequestWorker::stop() - done?="), 2U);
  EXPECT_EQ(log_.count("DBG RequestWorker::stop() - done?=1"), 1U);
  EXPECT_EQ(log_.countContaining("] - size=0"), 1U);
}

TEST_F(RequestWorkerTest, RequestsFromManyThreadsAreAllAnswered) {
  worker_->start();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int round = 0; round < 10; ++round) add("/many");
    });
  }
  for (std::thread& thread : threads) thread.join();
  ASSERT_TRUE(answers_.waitForDestroyed(40));
  finish();
  EXPECT_EQ(answers_.all(), std::vector<std::string>(40, "/many:{}"));
}

TEST_F(RequestWorkerTest, ManyShortLivesEndCleanly) {
  for (int round = 0; round < 50; ++round) {
    RequestWorker shortLived;
    shortLived.start();
    shortLived.stop();
    shortLived.join();
    EXPECT_TRUE(shortLived.done());
  }
  finish();
}

}  // namespace
}  // namespace Vantrel::Web
