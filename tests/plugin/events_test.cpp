// Transfer activity: how the client is polled and how its replies reach the page.
#include <gmock/gmock.h>

#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using Host::AsyncCalls;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EventsTest : public ServedTest {
 protected:
  void openSession(Instance& instance, const char* id = "my app") {
    ASSERT_EQ(instance.call("initSession", {text(id), text("")}).value.text,
              "{\"app_id\":\"" + std::string(id) + "\"}");
  }
  void replyNext(const std::string& body) { server_.next(kActivityPath, Script::reply(body)); }
  std::string poll(size_t index) { return server_.requests(kActivityPath).at(index); }
  static std::string pollBody(const std::string& token, const std::string& id = "my app") {
    return "{\n    \"iteration_token\": \"" + token +
           "\",\n    \"orvane_vantrel_settings\" : {\n        \"app_id\": \"" + id +
           "\"\n    }\n}\n";
  }
};

TEST_F(EventsTest, APollCarriesKeyTokenAndId) {
  Instance instance(host());
  openSession(instance);
  ASSERT_TRUE(server_.waitForRequests(kActivityPath, 1));
  EXPECT_EQ(poll(0),
            "POST /v5/vantrel/transfers/activity HTTP/1.1\r\n"
            "Authorization-key: the-key\r\n"
            "Connection: close\r\n"
            "Content-Length: " +
                std::to_string(pollBody("").size()) +
                "\r\n"
                "Content-Type: application/vnd.orvane.xferreq+json\r\n"
                "User-Agent: Orvane Vantrel\r\n"
                "\r\n" +
                pollBody(""));
}

TEST_F(EventsTest, TheTokenGoesFromReplyToPoll) {
  replyNext("{\"iteration_token\":\"t1\"}");
  replyNext("{\"iteration_token\":25}");
  replyNext("{\"iteration_token\":\"lost\",\"error\":{}}");
  replyNext("no JSON");
  replyNext("{\"result\":1}");
  Instance instance(host());
  openSession(instance);
  ASSERT_TRUE(server_.waitForRequests(kActivityPath, 6));
  const std::vector<std::string> expected = {"", "t1", "25", "25", "25", ""};
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(messageBody(poll(i)), pollBody(expected[i])) << i;
  }
  EXPECT_TRUE(
      logHas("ERR Transfer poller response contained an error: "
             "{\"iteration_token\":\"lost\",\"error\":{}}\r\n"));
  EXPECT_TRUE(logHas("ERR Error parsing JSON: "));
}

TEST_F(EventsTest, GoodRepliesReachThePageAsTransferEvents) {
  replyNext("{\"error\":null}");
  replyNext("no JSON");
  replyNext("{\"iteration_token\":\"t\",\"transfers\":[{\"a\":\"\xC3\xA4\"}]}");
  replyNext("{}");
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  openSession(instance);
  ASSERT_TRUE(waitForCalls(handler, 2));
  EXPECT_THAT(
      handler->calls[0].arguments,
      ElementsAre(text("transfer"),
                  text("{\"iteration_token\":\"t\",\"transfers\":[{\"a\":\"\xC3\xA4\"}]}")));
  EXPECT_THAT(handler->calls[1].arguments, ElementsAre(text("transfer"), text("{}")));
  EXPECT_GE(host().calls.countOffThread("NPN_PluginThreadAsyncCall"), 2);
  instance.end({.objects = {{handler.get(), 1}}});
}

TEST_F(EventsTest, WithoutAHandlerNothingIsPosted) {
  Instance instance(host());
  openSession(instance);
  ASSERT_TRUE(server_.waitForRequests(kActivityPath, 2));
  EXPECT_EQ(host().async.received(), 0);
}

TEST_F(EventsTest, AClearedHandlerGoesOnReceiving) {
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  instance.set("eventHandler", Value::null());
  int calls = 0;
  handler->onCall = [&calls](const Host::PageCall&) { ++calls; };
  // The page's own reference goes as well: only the instance keeps the function alive.
  handler.drop();
  openSession(instance);
  EXPECT_TRUE(host().pumpUntil([&calls] { return calls >= 1; }));
  EXPECT_EQ(instance.get("eventHandler").value, Value::null());
}

TEST_F(EventsTest, AnotherHandlerTakesOver) {
  Host::PageReference first = host().page.makeFunction("first");
  Host::PageReference second = host().page.makeFunction("second");
  Instance instance(host());
  instance.set("eventHandler", first.value());
  openSession(instance);
  ASSERT_TRUE(waitForCalls(first, 1));
  instance.set("eventHandler", second.value());
  const size_t before = first->calls.size();
  ASSERT_TRUE(waitForCalls(second, 1));
  EXPECT_EQ(first->calls.size(), before);
  instance.end({.objects = {{second.get(), 1}}});
}

TEST_F(EventsTest, AnEventGoesToTheHandlerOfItsDelivery) {
  Host::PageReference first = host().page.makeFunction("first");
  Host::PageReference second = host().page.makeFunction("second");
  Instance instance(host());
  instance.set("eventHandler", first.value());
  host().async.setMode(AsyncCalls::Mode::kHold);
  openSession(instance);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.waiting() >= 1; }));
  instance.set("eventHandler", second.value());
  host().async.setMode(AsyncCalls::Mode::kQueue);
  ASSERT_TRUE(waitForCalls(second, 1));
  EXPECT_THAT(first->calls, IsEmpty());
  instance.end({.objects = {{second.get(), 1}}});
}

TEST_F(EventsTest, TheHandlerMayReplaceItselfInsideAnEvent) {
  Host::PageReference first = host().page.makeFunction("first");
  Host::PageReference second = host().page.makeFunction("second");
  Instance instance(host());
  first->onCall = [&](const Host::PageCall&) {
    instance.set("eventHandler", second.value());
    EXPECT_TRUE(host().objects.isLive(first.get()));
  };
  instance.set("eventHandler", first.value());
  openSession(instance);
  ASSERT_TRUE(waitForCalls(second, 1));
  EXPECT_THAT(first->calls, SizeIs(1));
  instance.end({.objects = {{second.get(), 1}}});
}

TEST_F(EventsTest, TheHandlerMayClearItselfInsideAnEventThoughNobodyElseHoldsIt) {
  Host::PageReference handler = host().page.makeFunction("handler");
  Host::PageReference next = host().page.makeFunction("next");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  int calls = 0;
  handler->onCall = [&](const Host::PageCall&) {
    ++calls;
    instance.set("eventHandler", Value::null());
    instance.set("eventHandler", next.value());
  };
  handler.drop();
  openSession(instance);
  ASSERT_TRUE(waitForCalls(next, 1));
  EXPECT_EQ(calls, 1);
  instance.end({.objects = {{next.get(), 1}}});
}

TEST_F(EventsTest, TextsThatAHandlerReturnsAreLeftAndTheRestIsReleased) {
  Host::PageReference other = host().page.makeFunction("other");
  Host::PageReference handler = host().page.makeFunction("handler");
  handler->answer = text("a text");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  openSession(instance);
  ASSERT_TRUE(waitForCalls(handler, 1));
  handler->answer = other.value();
  const int texts = static_cast<int>(handler->calls.size());
  ASSERT_TRUE(waitForCalls(handler, handler->calls.size() + 1));
  instance.end({.objects = {{handler.get(), 1}}, .pageResults = texts});
}

TEST_F(EventsTest, AHandlerThatThrowsGoesOnReceiving) {
  Host::PageReference handler = host().page.makeFunction("handler");
  handler->throws = true;
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  openSession(instance);
  ASSERT_TRUE(waitForCalls(handler, 2));
  instance.end({.objects = {{handler.get(), 1}}});
}

TEST_F(EventsTest, ABigActivityReplyArrivesWhole) {
  const std::string body = "{\"x\":\"" + std::string(1 << 20, 'y') + "\"}";
  replyNext(body);
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  openSession(instance);
  ASSERT_TRUE(waitForCalls(handler, 1));
  EXPECT_TRUE(handler->calls[0].arguments.at(1) == text(body));
  instance.end({.objects = {{handler.get(), 1}}});
}

TEST_F(EventsTest, InstancesPollWithIdsAndHandlersOfTheirOwn) {
  Host::PageReference firstHandler = host().page.makeFunction("first");
  Host::PageReference secondHandler = host().page.makeFunction("second");
  Instance first(host());
  Instance second(host());
  first.set("eventHandler", firstHandler.value());
  second.set("eventHandler", secondHandler.value());
  openSession(first, "one");
  openSession(second, "two");
  ASSERT_TRUE(waitForCalls(firstHandler, 1));
  ASSERT_TRUE(waitForCalls(secondHandler, 1));
  first.end({.objects = {{firstHandler.get(), 1}}});
  const size_t calls = secondHandler->calls.size();
  ASSERT_TRUE(waitForCalls(secondHandler, calls + 1));
  second.end({.objects = {{secondHandler.get(), 1}}});
}

}  // namespace
}  // namespace Vantrel::Web
