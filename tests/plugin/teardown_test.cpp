// The end of an instance and of the module at every bad moment: requests waiting and under way, an
// exchange that hangs, events on their way, the page ending the instance from inside a call.
#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "tests/host/process_state.h"
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using Host::AsyncCalls;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kPath[] = "/some/path";

class TeardownTest : public ServedTest {
 protected:
  void sendAsync(Instance& instance, const Host::PageReference& function,
                 const std::string& body = "{}") {
    instance.call("vantrelHttpRequestAsync",
                  {text("POST"), text(kPath), text(body), function.value()});
  }
  void openSession(Instance& instance) { instance.call("initSession", {text("my app"), text("")}); }
  // Lets the server go on a little after this thread has begun to wait.
  std::thread releaseSoon() {
    return std::thread([this] {
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      server_.release();
    });
  }
};

TEST_F(TeardownTest, AnIdleInstanceEndsAtOnceWithoutASession) {
  Instance instance(host());
  instance.end();
  EXPECT_TRUE(logHas("RequestWorker::run() - done\r\n"));
  EXPECT_FALSE(logHas("TransferPoller::run()"));
}

TEST_F(TeardownTest, ASleepingPollerSendsNothingMore) {
  Instance instance(host());
  openSession(instance);
  instance.end();
  EXPECT_THAT(server_.requests(kActivityPath), IsEmpty());
  EXPECT_TRUE(logHas("TransferPoller::run() - done\r\n"));
}

TEST_F(TeardownTest, RequestsInTheQueueAreNeitherServedNorAnswered) {
  server_.next(kPath, Script().hold().send(httpReply("{}")));
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  for (int i = 0; i < 3; ++i) sendAsync(instance, function);
  ASSERT_TRUE(server_.waitForRequests(kPath, 1));
  std::thread releasing = releaseSoon();
  instance.destroy();
  releasing.join();
  host().pumpFor(50);
  EXPECT_THAT(server_.requests(kPath), SizeIs(1));
  EXPECT_THAT(function->calls, IsEmpty());
  EXPECT_EQ(host().async.received(), 0);
  // Requests that are dropped without an answer keep their references on the function.
  instance.settle({.objects = {{function.get(), 3}}});
}

TEST_F(TeardownTest, AnActivityReplyThatComesDuringTheEndReachesNobody) {
  server_.next(kActivityPath, Script().hold().send(httpReply("{}")));
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  openSession(instance);
  ASSERT_TRUE(server_.waitForRequests(kActivityPath, 1));
  std::thread releasing = releaseSoon();
  instance.destroy();
  releasing.join();
  EXPECT_EQ(host().async.received(), 0);
  instance.settle({.objects = {{handler.get(), 1}}});
}

TEST_F(TeardownTest, BothThreadsMayBeBusyAtTheEnd) {
  server_.always(kPath, Script().hold().send(httpReply("{}")));
  server_.always(kActivityPath, Script().hold().send(httpReply("{}")));
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.set("eventHandler", function.value());
  openSession(instance);
  sendAsync(instance, function);
  ASSERT_TRUE(server_.waitForRequests(kPath, 1));
  ASSERT_TRUE(server_.waitForRequests(kActivityPath, 1));
  std::thread releasing = releaseSoon();
  instance.destroy();
  releasing.join();
  EXPECT_THAT(function->calls, IsEmpty());
  instance.settle({.objects = {{function.get(), 2}}});
}

TEST_F(TeardownTest, AnAnswerThatTheBrowserDropsKeepsItsReference) {
  Host::PageReference function = host().page.makeFunction("callback");
  host().async.setMode(AsyncCalls::Mode::kDrop);
  Instance instance(host());
  sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.dropped() == 1; }));
  instance.end({.objects = {{function.get(), 1}}});
  EXPECT_THAT(function->calls, IsEmpty());
}

TEST_F(TeardownTest, AnAnswerThatWaitsIsDroppedWithTheInstance) {
  Host::PageReference function = host().page.makeFunction("callback");
  host().async.setMode(AsyncCalls::Mode::kHold);
  Instance instance(host());
  sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.waiting() == 1; }));
  instance.end({.objects = {{function.get(), 1}}});
  EXPECT_EQ(host().async.dropped(), 1);
}

TEST_F(TeardownTest, AnAnswerDeliveredAfterTheEndReachesNobody) {
  Host::PageReference function = host().page.makeFunction("callback");
  host().async.setMode(AsyncCalls::Mode::kHold);
  Instance instance(host());
  sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.waiting() == 1; }));
  instance.deliverLateCalls = true;
  instance.destroy();
  instance.settle({.objects = {{function.get(), 1}}});
  host().async.setMode(AsyncCalls::Mode::kQueue);
  host().pumpOnce();
  EXPECT_THAT(function->calls, IsEmpty());
  EXPECT_EQ(host().async.waiting(), 0);
}

TEST_F(TeardownTest, WhatTheBrowserHasNotRunIsFreedWithTheInstance) {
  constexpr size_t kAnswerBytes = 1 << 20;
  constexpr int kAnswers = 8;
  server_.always(kPath, Script().send(httpReply(std::string(kAnswerBytes, 'a'))));
  Host::PageReference function = host().page.makeFunction("callback");
  host().async.setMode(AsyncCalls::Mode::kDrop);
  Instance instance(host());
  const size_t before = Host::heapUse().bytes;
  for (int i = 0; i < kAnswers; ++i) sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.dropped() == kAnswers; }));
  EXPECT_GE(Host::heapUse().bytes, before + kAnswers * kAnswerBytes);
  instance.end({.objects = {{function.get(), kAnswers}}});
  EXPECT_LT(Host::heapUse().bytes, before + kAnswerBytes);
}

TEST_F(TeardownTest, AnAnswerCostsOneRetainAndOneRelease) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.script();
  const int before = host().objects.references();
  sendAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(host().objects.references(), before + 1);
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 0);
}

TEST_F(TeardownTest, ABrowserWithoutCallsFromOtherThreadsGetsNoAnswer) {
  Host::TableShape shape;
  shape.edit = [](NPNetscapeFuncs& table) { table.pluginthreadasynccall = nullptr; };
  ASSERT_EQ(host().initialize(shape), NPERR_NO_ERROR);
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil(
      [this] { return logHas("ERR The browser takes no calls from other threads\r\n"); }));
  // The worker lives, and so does its lock.
  sendAsync(instance, function);
  ASSERT_TRUE(server_.waitForRequests(kPath, 2));
  instance.end({.objects = {{function.get(), 2}}});
}

TEST_F(TeardownTest, EventsDeliveredAfterTheEndReachNobody) {
  Host::PageReference handler = host().page.makeFunction("handler");
  host().async.setMode(AsyncCalls::Mode::kHold);
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  openSession(instance);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.waiting() >= 1; }));
  instance.deliverLateCalls = true;
  instance.destroy();
  // As browsers do, all objects of the instance go before anything else runs.
  instance.settle({.objects = {{handler.get(), 1}}});
  host().async.setMode(AsyncCalls::Mode::kQueue);
  host().pumpOnce();
  EXPECT_THAT(handler->calls, IsEmpty());
  EXPECT_EQ(host().async.waiting(), 0);
}

TEST_F(TeardownTest, APageMayEndTheInstanceInsideAnAnswer) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  function->onCall = [&](const Host::PageCall&) { instance.destroy(); };
  sendAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 0);
  EXPECT_EQ(instance.npp()->pdata, nullptr);
}

TEST_F(TeardownTest, APageMayEndTheInstanceInsideAnEvent) {
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  handler->onCall = [&](const Host::PageCall&) {
    if (handler->calls.size() == 1) instance.destroy();
  };
  openSession(instance);
  ASSERT_TRUE(waitForCalls(handler, 1));
  EXPECT_EQ(instance.npp()->pdata, nullptr);
  instance.settle({.objects = {{handler.get(), 1}}});
}

TEST_F(TeardownTest, APageMayEndTheInstanceAndUseItsObjectInsideAnAnswer) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  function->onCall = [&](const Host::PageCall&) {
    instance.destroy();
    EXPECT_FALSE(instance.call("queryVersion").accepted);
    EXPECT_FALSE(instance.get("name").accepted);
  };
  sendAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 1));
}

TEST_F(TeardownTest, APageMayEndAnotherInstanceInsideAnAnswer) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance first(host());
  Instance second(host());
  function->onCall = [&](const Host::PageCall&) { second.destroy(); };
  sendAsync(first, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(first.call("queryVersion").value, text("3.7"));
}

TEST_F(TeardownTest, AnInstanceOfTheSameAddressGetsNothingOfItsForerunner) {
  Host::PageReference function = host().page.makeFunction("callback");
  host().async.setMode(AsyncCalls::Mode::kHold);
  {
    Instance instance(host());
    sendAsync(instance, function);
    ASSERT_TRUE(host().pumpUntil([this] { return host().async.waiting() == 1; }));
    instance.end({.objects = {{function.get(), 1}}});
  }
  host().async.setMode(AsyncCalls::Mode::kQueue);
  Instance next(host());
  host().pumpFor(100);
  EXPECT_THAT(function->calls, IsEmpty());
}

TEST_F(TeardownTest, TheModuleEndsWithAnswersThatWereNeverRun) {
  Host::PageReference function = host().page.makeFunction("callback");
  host().async.setMode(AsyncCalls::Mode::kDrop);
  Instance instance(host());
  for (int i = 0; i < 20; ++i) sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.dropped() == 20; }));
  instance.end({.objects = {{function.get(), 20}}});
}

TEST_F(TeardownTest, ManyInstancesComeAndGoTogether) {
  Host::PageReference function = host().page.makeFunction("callback");
  std::vector<std::unique_ptr<Instance>> instances;
  for (int i = 0; i < 8; ++i) {
    instances.push_back(std::make_unique<Instance>(host()));
    openSession(*instances.back());
    sendAsync(*instances.back(), function);
  }
  ASSERT_TRUE(waitForCalls(function, 8));
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 0);
  // Not in the order of their coming.
  for (const size_t i : {3U, 0U, 7U, 1U, 6U, 2U, 5U, 4U}) instances[i]->end();
}

}  // namespace
}  // namespace Vantrel::Web
