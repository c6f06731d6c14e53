// Requests that a page forwards to the desktop client, by all three roads, against a client whose
// every word the test chooses.
#include <gmock/gmock.h>

#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr char kPath[] = "/some/path";

class RequestsTest : public ServedTest {
 protected:
  std::string send(Instance& instance, const std::string& body = "{}") {
    return instance.call("vantrelHttpRequest", {text("POST"), text(kPath), text(body)}).value.text;
  }
  // The answer to one request when the client's bytes are these.
  std::string answerTo(const Script& script) {
    server_.always(kPath, script);
    Instance instance(host());
    return send(instance);
  }
  Host::CallResult sendAsync(Instance& instance, const Host::PageReference& function,
                             const std::string& body = "{}") {
    return instance.call("vantrelHttpRequestAsync",
                         {text("POST"), text(kPath), text(body), function.value()});
  }
};

std::vector<Value> textArguments(const Host::PageReference& function) {
  std::vector<Value> arguments;
  for (const Host::PageCall& call : function->calls) arguments.push_back(call.arguments.at(0));
  return arguments;
}

TEST_F(RequestsTest, ARequestGoesOutAsToldAndItsReplyComesBack) {
  server_.always(kPath, Script::reply("{\"answer\":1}"));
  Instance instance(host());
  EXPECT_EQ(send(instance, "{\"a\": [1, 2]}"), "{\"answer\":1}");
  EXPECT_EQ(server_.requests(kPath).at(0),
            "POST /some/path HTTP/1.1\r\n"
            "Authorization-key: the-key\r\n"
            "Connection: close\r\n"
            "Content-Length: 13\r\n"
            "Content-Type: application/vnd.orvane.xferreq+json\r\n"
            "User-Agent: Orvane Vantrel\r\n"
            "\r\n"
            "{\"a\": [1, 2]}");
}

TEST_F(RequestsTest, AnEmptyBodyIsAnEmptyObject) {
  Instance instance(host());
  send(instance, "");
  EXPECT_EQ(messageBody(server_.requests(kPath).at(0)), "{}");
}

TEST_F(RequestsTest, FurtherArgumentsAreNotLookedAt) {
  Instance instance(host());
  EXPECT_TRUE(
      instance.call("vantrelHttpRequest", {text("GET"), text(kPath), text("{}"), text("not this")})
          .accepted);
  EXPECT_EQ(messageBody(server_.requests(kPath).at(0)), "{}");
}

TEST_F(RequestsTest, MethodAndPathGoOutUnfiltered) {
  Instance instance(host());
  instance.call("vantrelHttpRequest", {text("X-ANY"), text("/a?b=c%20d"), text("{}")});
  EXPECT_THAT(server_.requests("/a?b=c%20d"), ElementsAre(StartsWith("X-ANY /a?b=c%20d HTTP/1.1")));
}

TEST_F(RequestsTest, TheBytesOfTheBodyAreThePages) {
  Instance instance(host());
  const std::string body = "{\"t\":\"\xC3\xA4 %s%n \\u0041 /* */\"}  ";
  send(instance, body);
  EXPECT_EQ(messageBody(server_.requests(kPath).at(0)), body);
}

TEST_F(RequestsTest, ABodyThatIsNoJsonIsRefusedBeforeAnythingIsSent) {
  Instance instance(host());
  const size_t before = server_.connections();
  for (const char* body : {"no JSON", "{", "{\"a\":}", "[1,", "\"", "{} {}"}) {
    EXPECT_THAT(send(instance, body),
                StartsWith("{\"error\":{\"code\":-1,\"internal_message\":\"Invalid request\","
                           "\"user_message\":\"Error parsing JSON: "))
        << body;
  }
  EXPECT_EQ(server_.connections(), before);
}

TEST_F(RequestsTest, ADeepBodyIsRefusedAndNothingBreaks) {
  Instance instance(host());
  const std::string deep(200000, '[');
  EXPECT_THAT(send(instance, deep), HasSubstr("Error parsing JSON"));
  EXPECT_THAT(send(instance, deep + std::string(200000, ']')), HasSubstr("Error parsing JSON"));
  EXPECT_TRUE(server_.requests(kPath).empty());
}

TEST_F(RequestsTest, TheIdInABodyIsHeldToThePagesHost) {
  Instance instance(host());
  const auto with = [](const std::string& id) {
    return "{\"orvane_vantrel_settings\":{\"app_id\":" + id + "}}";
  };
  EXPECT_EQ(send(instance, with("\"^other.host\"")),
            errorReply("Invalid application ID hostname: some.host"));
  EXPECT_TRUE(server_.requests(kPath).empty());
  for (const char* id : {"\"^some.host\"", "\"any\"", "\"\"", "5", "null", "true", "{}"}) {
    EXPECT_EQ(send(instance, with(id)), "{}") << id;
  }
}

TEST_F(RequestsTest, AnErrorStatusIsAReplyLikeAnyOther) {
  EXPECT_EQ(answerTo(Script().send(httpReply("{\"error\":5}", "500 Server Error"))),
            "{\"error\":5}");
}

TEST_F(RequestsTest, RepliesSplitAnywhereAreRead) {
  const std::string reply = httpReply("{\"answer\":1}");
  Instance instance(host());
  for (size_t at = 1; at < reply.size(); at += 3) {
    server_.next(kPath, Script::split(reply, at));
    EXPECT_EQ(send(instance), "{\"answer\":1}") << at;
  }
}

TEST_F(RequestsTest, ARepliesLengthRules) {
  EXPECT_EQ(answerTo(Script().send("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabcdef")), "abc");
  EXPECT_EQ(answerTo(Script().send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabcdef")),
            "abcdef");
}

TEST_F(RequestsTest, ARepliesWithoutALengthEndsWithTheConnection) {
  EXPECT_EQ(answerTo(Script().send("HTTP/1.1 200 OK\r\nA: b\r\n\r\nabcdef")), "abcdef");
  EXPECT_EQ(answerTo(Script().send("HTTP/1.1 200 OK\r\ncontent-length: 3\r\n\r\nabcdef")),
            "abcdef");
  EXPECT_EQ(answerTo(Script().send("HTTP/1.1 200 OK\r\nContent-Length: -3\r\n\r\nabcdef")),
            "abcdef");
}

TEST_F(RequestsTest, RepliesThatCannotBeReadAreContactErrors) {
  Instance instance(host());
  for (const char* reply :
       {"", "nonsense", "HTTP/1.1 200\r\n\r\nabc", "HTTP/1.1 200 OK\r\nBad:line\r\n\r\nabc",
        "HTTP/1.1 200 OK\r\nCut: off\r\n", "\r\n\r\n", "HTTP/1.1 200 OK"}) {
    server_.next(kPath, Script().send(reply));
    EXPECT_EQ(send(instance), errorReply(kContactError)) << reply;
  }
  EXPECT_TRUE(logHas("ERR " + std::string(kContactError)));
}

TEST_F(RequestsTest, AResetIsAContactError) {
  EXPECT_EQ(answerTo(Script().reset()), errorReply(kContactError));
}

TEST_F(RequestsTest, AReplyWithANulKeepsWhatStandsBeforeItInItsPiece) {
  const std::string head = "HTTP/1.1 200 OK\r\nA: b\r\n\r\n";
  EXPECT_EQ(answerTo(Script().send(head + std::string("ab\0cd", 5))), "ab");
}

TEST_F(RequestsTest, ABigReplyArrivesWhole) {
  const std::string body = "{\"x\":\"" + std::string(4 << 20, 'y') + "\"}";
  EXPECT_TRUE(answerTo(Script::reply(body)) == body);
}

TEST_F(RequestsTest, AnAsynchronousRequestIsAnsweredOnceAndLater) {
  server_.always(kPath, Script::reply("{\"answer\":1}"));
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  const Host::CallResult result = sendAsync(instance, function, "{\"a\":1}");
  EXPECT_TRUE(result.accepted);
  EXPECT_EQ(result.value, Value::null());
  EXPECT_THAT(function->calls, IsEmpty());
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 1);
  ASSERT_TRUE(waitForCalls(function, 1));
  ASSERT_THAT(function->calls[0].arguments, ElementsAre(text("{\"answer\":1}")));
  EXPECT_EQ(host().calls.countOffThread("NPN_PluginThreadAsyncCall"), 1);
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 0);
  const std::string request = server_.requests(kPath).at(0);
  EXPECT_EQ(headerOf(request, "Authorization-key"), key_);
  EXPECT_EQ(headerOf(request, "Content-Type"), "application/vnd.orvane.xferreq+json");
  EXPECT_EQ(messageBody(request), "{\"a\":1}");
}

TEST_F(RequestsTest, ThreeAreAnsweredInTheirOrder) {
  for (const char* answer : {"\"one\"", "\"two\"", "\"three\""}) {
    server_.next(kPath, Script::reply(answer));
  }
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  for (const char* body : {"[1]", "[2]", "[3]"}) sendAsync(instance, function, body);
  ASSERT_TRUE(waitForCalls(function, 3));
  EXPECT_THAT(textArguments(function),
              ElementsAre(text("\"one\""), text("\"two\""), text("\"three\"")));
  ASSERT_THAT(server_.requests(kPath), SizeIs(3));
  EXPECT_EQ(messageBody(server_.requests(kPath)[0]), "[1]");
  EXPECT_EQ(messageBody(server_.requests(kPath)[1]), "[2]");
  EXPECT_EQ(messageBody(server_.requests(kPath)[2]), "[3]");
}

TEST_F(RequestsTest, ARefusedBodyIsAnsweredAtOnceAndTheFunctionIsNeverCalled) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  EXPECT_THAT(sendAsync(instance, function, "no JSON").value.text, HasSubstr("Error parsing JSON"));
  host().pumpFor(200);
  EXPECT_THAT(function->calls, IsEmpty());
  EXPECT_TRUE(server_.requests(kPath).empty());
  // A request that is dropped without an answer keeps its reference on the function.
  instance.end({.objects = {{function.get(), 1}}});
}

TEST_F(RequestsTest, AFailedExchangeCallsTheFunctionWithTheError) {
  server_.always(kPath, Script());
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  sendAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(textArguments(function), ElementsAre(text(errorReply(kContactError))));
}

TEST_F(RequestsTest, TheUncheckedRoadCarriesNoKeyAndChecksNothing) {
  server_.always(kPath, Script::reply("\"yes\""));
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  const std::string body = "{\"orvane_vantrel_settings\":{\"app_id\":\"^other.host\"}, no JSON";
  const Host::CallResult result = instance.call(
      "httpRequestImplementation", {text("PUT"), text(kPath), text(body), function.value()});
  EXPECT_TRUE(result.accepted);
  EXPECT_EQ(result.value, Value::null());
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(textArguments(function), ElementsAre(text("\"yes\"")));
  const std::string request = server_.requests(kPath).at(0);
  EXPECT_EQ(request, "PUT /some/path HTTP/1.1\r\nConnection: close\r\nContent-Length: " +
                         std::to_string(body.size()) +
                         "\r\nContent-Type: application/json\r\nUser-Agent: Orvane Vantrel\r\n"
                         "\r\n" +
                         body);
}

TEST_F(RequestsTest, TheUncheckedRoadSendsAnEmptyBodyAsAnObjectToo) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.call("httpRequestImplementation",
                {text("PUT"), text(kPath), text(""), function.value()});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(messageBody(server_.requests(kPath).at(0)), "{}");
}

TEST_F(RequestsTest, ResultsOfPageFunctionsAreReleasedUnlessTheyAreTexts) {
  Host::PageReference other = host().page.makeFunction("other");
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  size_t calls = 0;
  for (const Value& answer : {Value::undefined(), Value::null(), Value::boolean(true),
                              Value::number(5), Value::number(5.5), other.value()}) {
    function->answer = answer;
    sendAsync(instance, function);
    ASSERT_TRUE(waitForCalls(function, ++calls));
    EXPECT_EQ(host().objects.pluginReferences(other.get()), 0) << answer;
  }
  function->answer = text("a text");
  sendAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, ++calls));
  EXPECT_EQ(host().memory.live(Host::kPageResultBlock), 1);
  instance.end({.pageResults = 1});
}

TEST_F(RequestsTest, AFunctionThatThrowsChangesNothing) {
  Host::PageReference function = host().page.makeFunction("callback");
  function->throws = true;
  Instance instance(host());
  sendAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 0);
}

TEST_F(RequestsTest, AFunctionThatThePageForgotIsStillCalled) {
  Host::PageReference function = host().page.makeFunction("callback");
  int calls = 0;
  function->onCall = [&calls](const Host::PageCall&) { ++calls; };
  Instance instance(host());
  sendAsync(instance, function);
  function.drop();
  EXPECT_TRUE(host().pumpUntil([&calls] { return calls == 1; }));
}

TEST_F(RequestsTest, WithoutBrowserMemoryTheAnswerIsNullText) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  host().async.setMode(Host::AsyncCalls::Mode::kHold);
  sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil([this] { return host().async.waiting() == 1; }));
  host().memory.failAllocationAfter(0);
  host().async.setMode(Host::AsyncCalls::Mode::kQueue);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(function->calls[0].arguments.at(0), Value::nullString());
}

TEST_F(RequestsTest, ThePageMaySendAgainInsideAnAnswer) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  function->onCall = [&](const Host::PageCall&) {
    if (function->calls.size() < 5) sendAsync(instance, function);
  };
  sendAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 5));
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 0);
}

class UnservedRequestsTest : public PluginTest {};

TEST_F(UnservedRequestsTest, WithoutAClientThereIsAnErrorForEachRoad) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  EXPECT_EQ(instance.call("vantrelHttpRequest", {text("GET"), text("/"), text("{}")}).value,
            text(errorReply(kContactError)));
  EXPECT_EQ(instance.call("queryVantrelVersion").value, text(errorReply(kContactError)));
  EXPECT_EQ(
      instance
          .call("vantrelHttpRequestAsync", {text("GET"), text("/"), text("{}"), function.value()})
          .value,
      text(errorReply("Error creating HTTP request")));
  EXPECT_EQ(
      instance
          .call("httpRequestImplementation", {text("GET"), text("/"), text("{}"), function.value()})
          .value,
      Value::null());
  EXPECT_EQ(host().async.waiting(), 1);
  EXPECT_EQ(host().calls.countOffThread("NPN_PluginThreadAsyncCall"), 0);
  EXPECT_THAT(function->calls, IsEmpty());
  host().pumpOnce();
  ASSERT_THAT(function->calls, SizeIs(1));
  EXPECT_EQ(function->calls[0].arguments.at(0), text(errorReply("Failed to get Vantrel URL")));
  instance.end({.objects = {{function.get(), 1}}});
}

TEST_F(UnservedRequestsTest, AnAddressWithNobodyBehindItIsAContactError) {
  profile_.writeServiceUrl("http://127.0.0.1:" + std::to_string(unusedPort()) + "\nkey");
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  EXPECT_EQ(instance.call("vantrelHttpRequest", {text("GET"), text("/"), text("{}")}).value,
            text(errorReply(kContactError)));
  instance.call("vantrelHttpRequestAsync", {text("GET"), text("/"), text("{}"), function.value()});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(function->calls[0].arguments.at(0), text(errorReply(kContactError)));
}

TEST_F(UnservedRequestsTest, AnAddressFileWithoutAnAddressIsNone) {
  for (const char* file : {"", "nonsense", "127.0.0.1:80\nkey"}) {
    profile_.writeServiceUrl(file);
    Instance instance(host());
    EXPECT_EQ(instance.call("vantrelHttpRequest", {text("GET"), text("/"), text("{}")}).value,
              text(errorReply(kContactError)))
        << file;
  }
  EXPECT_TRUE(logHas("ERR Invalid URL: nonsense"));
}

class KeyTest : public PluginTest {
 protected:
  // The key as it goes out when the address file has this text behind the address.
  std::string keySent(const std::string& behind) {
    profile_.writeServiceUrl(server_.url() + behind);
    Instance instance(host());
    instance.call("vantrelHttpRequest", {text("GET"), text("/"), text("{}")});
    const std::string request = server_.requests("/").back();
    const size_t start = request.find("Authorization-key: ") + 19;
    return request.substr(start, request.find("\r\nConnection") - start);
  }
  ScriptedServer server_;
};

TEST_F(KeyTest, TheKeyIsAllBehindTheFirstLineFeed) {
  EXPECT_EQ(keySent("\nthe key"), "the key");
  EXPECT_EQ(keySent("\nthe key\n"), "the key\n");
  EXPECT_EQ(keySent("\na\nb"), "a\nb");
  EXPECT_EQ(keySent("\na/b"), "a/b");
  EXPECT_EQ(keySent("\n"), "");
}

TEST_F(KeyTest, WithoutALineFeedTheAddressIsTheKey) {
  EXPECT_EQ(keySent(""), server_.url());
}

TEST_F(KeyTest, AKeyWithAnAtSignSpoilsTheAddress) {
  profile_.writeServiceUrl(server_.url() + "\nab@cd");
  Instance instance(host());
  EXPECT_EQ(instance.call("vantrelHttpRequest", {text("GET"), text("/"), text("{}")}).value,
            text(errorReply(kContactError)));
  EXPECT_EQ(server_.connections(), 0U);
}

}  // namespace
}  // namespace Vantrel::Web
