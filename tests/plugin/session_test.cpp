// The session as a page opens it, and the version of the desktop client.
#include <gmock/gmock.h>

#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::HasSubstr;

class SessionTest : public ServedTest {
 protected:
  // The reply to a session with this id, on an instance of its own.
  std::string replyTo(const std::string& id) {
    Instance instance(host());
    return instance.call("initSession", {text(id), text("some domain")}).value.text;
  }
};

TEST_F(SessionTest, AnIdWithThePagesHostIsAccepted) {
  EXPECT_EQ(replyTo("^some.host"), "{\"app_id\":\"^some.host\"}");
  EXPECT_TRUE(logHas("initSession\n  appId: ^some.host\n  domain: some domain\r\n"));
}

TEST_F(SessionTest, AnIdWithoutTheCaretIsAcceptedEverywhere) {
  EXPECT_EQ(replyTo("my application"), "{\"app_id\":\"my application\"}");
  EXPECT_EQ(replyTo(""), "{\"app_id\":\"\"}");
  EXPECT_EQ(replyTo(" ^other.host"), "{\"app_id\":\" ^other.host\"}");
}

TEST_F(SessionTest, AnotherHostIsRefusedWithTheExpectedOne) {
  const std::string refusal = errorReply("Invalid application ID hostname: some.host");
  for (const char* id : {"^other.host", "^Some.Host", "^some.hos", "^some.host.", "^*", "^",
                         "^ some.host", "^^some.host", "^sub.some.host"}) {
    EXPECT_EQ(replyTo(id), refusal) << id;
  }
  EXPECT_TRUE(logHas("ERR Hostname validation failed:\n  Expected: some.host\n  Got: Some.Host"));
}

TEST_F(SessionTest, ASecondSessionIsRefused) {
  Instance instance(host());
  const auto init = [&](const char* id) {
    return instance.call("initSession", {text(id), text("")}).value.text;
  };
  EXPECT_EQ(init("first"), "{\"app_id\":\"first\"}");
  EXPECT_EQ(init("first"), errorReply("Session was already initialized"));
  EXPECT_EQ(init("^other.host"), errorReply("Session was already initialized"));
  ASSERT_TRUE(server_.waitForRequests(kActivityPath, 1));
  EXPECT_THAT(server_.requests(kActivityPath)[0], HasSubstr("\"app_id\": \"first\""));
}

TEST_F(SessionTest, ARefusedSessionCanBeTriedAgain) {
  Instance instance(host());
  EXPECT_THAT(instance.call("initSession", {text("^wrong"), text("")}).value.text,
              HasSubstr("\"error\""));
  EXPECT_FALSE(logHas("TransferPoller::run()"));
  EXPECT_EQ(instance.call("initSession", {text("^some.host"), text("")}).value,
            text("{\"app_id\":\"^some.host\"}"));
}

TEST_F(SessionTest, TheIdIsAnsweredRaw) {
  EXPECT_EQ(replyTo("a\"b\\c"), "{\"app_id\":\"a\"b\\c\"}");
  EXPECT_EQ(replyTo("%s%n"), "{\"app_id\":\"%s%n\"}");
}

TEST_F(SessionTest, TheIdEndsAtItsFirstNul) {
  EXPECT_EQ(replyTo(std::string("id\0more", 7)), "{\"app_id\":\"id\"}");
  EXPECT_EQ(replyTo(std::string("^some.host\0.evil", 16)), "{\"app_id\":\"^some.host\"}");
}

TEST_F(SessionTest, WithoutASessionThereIsNoPoll) {
  Instance instance(host());
  host().pumpFor(1500);
  EXPECT_TRUE(server_.requests(kActivityPath).empty());
}

TEST_F(SessionTest, SessionsOfInstancesAreTheirOwn) {
  Instance first(host());
  Instance second(host());
  EXPECT_EQ(first.call("initSession", {text("one"), text("")}).value, text("{\"app_id\":\"one\"}"));
  EXPECT_EQ(second.call("initSession", {text("two"), text("")}).value,
            text("{\"app_id\":\"two\"}"));
  ASSERT_TRUE(server_.waitForRequests(kActivityPath, 2));
}

TEST_F(SessionTest, TheClientsVersionIsHandedOnUnread) {
  server_.always(kVersionPath, Script::reply("any text, \"quoted\""));
  Instance instance(host());
  EXPECT_EQ(instance.call("queryVantrelVersion").value, text("any text, \"quoted\""));
  const std::string request = server_.requests(kVersionPath).at(0);
  EXPECT_THAT(request, testing::StartsWith("GET /v4/vantrel/version HTTP/1.1\r\n"));
  EXPECT_EQ(headerOf(request, "Authorization-key"), key_);
  EXPECT_EQ(messageBody(request), "{\"orvane_vantrel_settings\":{\"app_id\":\"version request\"}}");
}

TEST_F(SessionTest, AnEmptyVersionIsAnError) {
  server_.always(kVersionPath, Script().send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
  Instance instance(host());
  EXPECT_EQ(instance.call("queryVantrelVersion").value,
            text(errorReply("Error retrieving the Orvane Vantrel version")));
}

TEST_F(SessionTest, NoVersionIsAContactError) {
  server_.always(kVersionPath, Script());
  Instance instance(host());
  EXPECT_EQ(instance.call("queryVantrelVersion").value, text(errorReply(kContactError)));
}

}  // namespace
}  // namespace Vantrel::Web
