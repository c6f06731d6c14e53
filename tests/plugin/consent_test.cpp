// What a page may hide in a body: nothing. A key or a text that some reader would cut, and a member
// of which the check and the client could take different ones, make no request at all.
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

constexpr char kPath[] = "/v5/vantrel/transfers/start";
constexpr char kSend[] =
    R"([{"transfer_spec":{"direction":"send","paths":[{"source":"C:/secret"}]}}])";

std::string parsingError(const std::string& reason) {
  return errorReply("Error parsing JSON: " + reason);
}

const std::string kHoldsNul = parsingError("a key or a text holds a NUL");

std::string standsTwice(const std::string& member) {
  return parsingError("the member " + member + " stands twice in one object");
}

std::string specOf(const std::string& members) {
  return "{\"transfer_specs\":[{\"transfer_spec\":{" + members + "}}]}";
}

class ConsentTest : public ServedTest {
 protected:
  void SetUp() override {
    ServedTest::SetUp();
    instance_.emplace(host());
  }
  void TearDown() override {
    instance_.reset();
    ServedTest::TearDown();
  }

  // Without a word to the client.
  void expectRefused(const std::string& body, const std::string& error) {
    const size_t before = server_.connections();
    EXPECT_EQ(instance_->call("vantrelHttpRequest", {text("POST"), text(kPath), text(body)}).value,
              text(error))
        << body;
    EXPECT_EQ(server_.connections(), before) << body;
  }
  void expectPasses(const std::string& body) {
    EXPECT_EQ(instance_->call("vantrelHttpRequest", {text("POST"), text(kPath), text(body)}).value,
              text("{}"));
    EXPECT_EQ(messageBody(server_.requests(kPath).back()), body);
  }

  // Ends the instance, whatever it holds on the function: that is the matter of other cases.
  void endBeside(const Host::PageReference& function) {
    const int held = host().objects.pluginReferences(function.get());
    instance_->end({.objects = {{function.get(), held}}});
  }

  std::optional<Instance> instance_;
};

TEST_F(ConsentTest, ANulInAKeyHidesNothing) {
  const std::string send = kSend;
  expectRefused(R"({"transfer_specs\u0000":[],"transfer_specs":)" + send + "}", kHoldsNul);
  expectRefused(specOf(R"("direction\u0000":"receive","direction":"send","paths":[])"), kHoldsNul);
  expectRefused(specOf(R"("source_root\u0000":"C:/ok","source_root":"C:/","direction":"send")"),
                kHoldsNul);
  expectRefused(R"({"orvane_vantrel_settings":{"app_id\u0000":"x","app_id":"^other"}})", kHoldsNul);
}

TEST_F(ConsentTest, ANulInATextCutsNothing) {
  expectRefused(specOf(R"("direction":"send","paths":[{"source":"C:/ok.txt\u0000/../secret"}])"),
                kHoldsNul);
  expectRefused(R"({"anything":["\u0000"]})", kHoldsNul);
}

TEST_F(ConsentTest, WhatStandsBehindABareNulIsNotSent) {
  const Value hiding = text(std::string_view("{}\0{\"transfer_specs\":[]}", 23));
  EXPECT_EQ(instance_->call("vantrelHttpRequest", {text("POST"), text(kPath), hiding}).value,
            text("{}"));
  EXPECT_EQ(messageBody(server_.requests(kPath).back()), "{}");
}

TEST_F(ConsentTest, AMemberThatTheCheckReadsStandsOnce) {
  const std::string send = kSend;
  expectRefused(R"({"transfer_specs":[],"transfer_specs":)" + send + "}",
                standsTwice("transfer_specs"));
  expectRefused(specOf(R"("direction":"receive","direction":"send")"), standsTwice("direction"));
  expectRefused(specOf(R"("direction":"send","paths":[],"paths":[{"source":"C:/secret"}])"),
                standsTwice("paths"));
  expectRefused(specOf(R"("direction":"send","source_root":"C:/a","source_root":"C:/b")"),
                standsTwice("source_root"));
  expectRefused(specOf(R"("direction":"receive","destination_root":"a","destination_root":"b")"),
                standsTwice("destination_root"));
  expectRefused(R"({"orvane_vantrel_settings":{"app_id":"x","app_id":"^other"}})",
                standsTwice("app_id"));
  expectRefused(R"({"orvane_vantrel_settings":{},"orvane_vantrel_settings":{"app_id":"^other"}})",
                standsTwice("orvane_vantrel_settings"));
}

TEST_F(ConsentTest, TheAsynchronousRoadIsNoWayAround) {
  Host::PageReference function = host().page.makeFunction("callback");
  const size_t before = server_.connections();
  const std::string hidden = R"({"transfer_specs\u0000":[],"transfer_specs":)" + std::string(kSend);
  const Value reply = instance_
                          ->call("vantrelHttpRequestAsync",
                                 {text("POST"), text(kPath), text(hidden + "}"), function.value()})
                          .value;
  EXPECT_EQ(reply, text(kHoldsNul));
  EXPECT_EQ(server_.connections(), before);
  endBeside(function);
}

TEST_F(ConsentTest, WhatOnlyLooksLikeANulOrARepetitionPasses) {
  expectPasses(R"({"a":"\\u0000","b":"\u0001 u0000"})");
  expectPasses(R"({"a":1,"a":2,"direction":1,"direction":2})");
}

TEST_F(ConsentTest, ALineOfThePagesOwnMakesNoRequest) {
  const std::string creating = errorReply("Error creating HTTP request");
  const std::string method = "POST /x HTTP/1.1\r\nContent-Length: 100000\r\nX: ";
  Host::PageReference function = host().page.makeFunction("callback");
  EXPECT_EQ(instance_->call("vantrelHttpRequest", {text(method), text(kPath), text("{}")}).value,
            text(creating));
  EXPECT_EQ(instance_->call("vantrelHttpRequest", {text("GET"), text("/p\x7F"), text("{}")}).value,
            text(creating));
  EXPECT_EQ(instance_
                ->call("vantrelHttpRequestAsync",
                       {text(method), text(kPath), text("{}"), function.value()})
                .value,
            text(creating));
  instance_->call("httpRequestImplementation",
                  {text("GET"), text("/p\nA: b"), text("{}"), function.value()});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_TRUE(server_.requests(kPath).empty());
  endBeside(function);
}

}  // namespace
}  // namespace Vantrel::Web
