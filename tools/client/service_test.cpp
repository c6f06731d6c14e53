#include "tools/client/service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/support/scratch_folder.h"
#include "tools/client/json_tree.h"
#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

using testing::HasSubstr;

class ServiceTest : public testing::Test {
 protected:
  ServiceTest() {
    knobs_.chunkBytes = 100;
    knobs_.chunkPauseMs = 0;
    service_.setKey("secret");
  }

  ServiceReply ask(const std::string& method, const std::string& path,
                   const std::string& body = "") {
    return service_.answer({method, path, {{"Authorization-key", "secret"}}, body});
  }

  ServiceReply poll(const std::string& token, const std::string& appId = "^some.host") {
    return ask("POST", "/v5/vantrel/transfers/activity",
               "{\n    \"iteration_token\": \"" + token +
                   "\",\n    \"orvane_vantrel_settings\" : {\n        \"app_id\": \"" + appId +
                   "\"\n    }\n}\n");
  }

  std::string receiveBody(const std::string& source) {
    return R"({"orvane_vantrel_settings":{"app_id":"^some.host"},"transfer_specs":[{)"
           R"("transfer_spec":{"direction":"receive","paths":[{"source":")" +
           source + R"("}]}}]})";
  }

  JsonTree parsed(const ServiceReply& reply) {
    std::string problem;
    JsonTree tree = parseJson(reply.body, problem);
    EXPECT_TRUE(tree) << problem << ": " << reply.body;
    return tree;
  }

  Knobs knobs_;
  ScratchFolder scratch_;
  Service service_{knobs_, {scratch_.path() / "remote", scratch_.path() / "downloads"}};
};

TEST_F(ServiceTest, APingNeedsNoKey) {
  ServiceReply reply = service_.answer({"GET", "/v5/vantrel/info/ping", {}, ""});
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, R"({"status":"ready"})");
}

TEST_F(ServiceTest, AllElseNeedsTheKey) {
  for (const char* path :
       {"/v4/vantrel/version", "/windows/about/", "/transfers/", "/v5/vantrel/transfers/start",
        "/v5/vantrel/transfers/activity", "/v5/vantrel/shutdown", "/unknown"})
    for (const char* key : {"", "Secret", "secret\n", "secre"}) {
      ServiceReply reply = service_.answer({"GET", path, {{"Authorization-key", key}}, ""});
      EXPECT_EQ(reply.status, 401) << path;
      EXPECT_THAT(reply.body, HasSubstr(R"({"error":{"code":401)"));
    }
  EXPECT_EQ(service_.answer({"GET", "/v4/vantrel/version", {}, ""}).status, 401);
  EXPECT_FALSE(service_.shutdownAsked());
}

TEST_F(ServiceTest, TheVersionIsTold) {
  EXPECT_EQ(ask("GET", "/v4/vantrel/version", "{}").body,
            R"({"product":"Orvane Vantrel","version":"3.7.4","stand_in":true})");
}

TEST_F(ServiceTest, EveryWindowAnswersWithItsName) {
  for (const char* name : {"transfer-manager", "about", "preferences"})
    EXPECT_EQ(ask("GET", "/windows/" + std::string(name) + "/").body,
              "{\"window\":\"" + std::string(name) + "\"}");
  EXPECT_EQ(ask("GET", "/windows/other/").status, 404);
}

TEST_F(ServiceTest, AQueryIsNoPartOfThePath) {
  EXPECT_EQ(ask("GET", "/v4/vantrel/version?x=1").status, 200);
}

TEST_F(ServiceTest, UnknownPathsAndWrongMethodsAreErrors) {
  EXPECT_EQ(ask("GET", "/unknown").body, R"({"error":{"code":404,"internal_message":"Not found",)"
                                         R"("user_message":"Unknown path: /unknown"}})");
  EXPECT_EQ(ask("GET", "/transfers/").status, 405);
  EXPECT_EQ(ask("POST", "/v4/vantrel/version").status, 405);
}

TEST_F(ServiceTest, AStartedReceiveIsSeenInTheActivityUntilItIsComplete) {
  std::string bytes(2500, 'x');
  scratch_.write("remote/a.bin", bytes);
  JsonTree started = parsed(ask("POST", "/v5/vantrel/transfers/start", receiveBody("/a.bin")));
  auto transfers = jsonArrayAt(started.get(), {"transfers"});
  ASSERT_EQ(transfers.size(), 1U);
  std::string uuid = jsonTextAt(transfers[0], {"uuid"});
  EXPECT_EQ(uuid.size(), 36U);
  std::string token;
  std::string status;
  while (status != "completed" && status != "failed") {
    JsonTree activity = parsed(poll(token));
    token = jsonTextAt(activity.get(), {"iteration_token"});
    for (yajl_val transfer : jsonArrayAt(activity.get(), {"transfers"})) {
      EXPECT_EQ(jsonTextAt(transfer, {"uuid"}), uuid);
      EXPECT_EQ(jsonTextAt(transfer, {"request_id"}), jsonTextAt(started.get(), {"request_id"}));
      status = jsonTextAt(transfer, {"status"});
    }
  }
  EXPECT_EQ(status, "completed");
  EXPECT_EQ(bytesOf(scratch_.path() / "downloads/a.bin"), bytes);
  JsonTree quiet = parsed(poll(token));
  EXPECT_TRUE(jsonArrayAt(quiet.get(), {"transfers"}).empty());
  EXPECT_EQ(jsonTextAt(quiet.get(), {"iteration_token"}), token);
  EXPECT_EQ(jsonArrayAt(parsed(poll("")).get(), {"transfers"}).size(), 1U);
  EXPECT_TRUE(jsonArrayAt(parsed(poll("", "^other")).get(), {"transfers"}).empty());
}

TEST_F(ServiceTest, AnXferRequestStartsATransferThatEverybodySees) {
  scratch_.write("remote/a.bin", "x");
  ServiceReply reply =
      ask("POST", "/transfers/",
          "<xferreq xmlns=\"http://h/xml/xferreq/\"><src>http://h/a.bin</src></xferreq>");
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(jsonArrayAt(parsed(poll("", "^other")).get(), {"transfers"}).size(), 1U);
}

TEST_F(ServiceTest, BodiesThatCannotBeReadAreErrors) {
  EXPECT_THAT(ask("POST", "/v5/vantrel/transfers/start", "{").body,
              HasSubstr("\"user_message\":\"Error parsing JSON: "));
  EXPECT_THAT(ask("POST", "/v5/vantrel/transfers/start", "{}").body,
              HasSubstr("\"user_message\":\"Invalid argument: transfer_specs\""));
  EXPECT_THAT(ask("POST", "/v5/vantrel/transfers/activity", "nonsense").body,
              HasSubstr("\"user_message\":\"Error parsing JSON: "));
  EXPECT_THAT(ask("POST", "/transfers/", "{}").body,
              HasSubstr("\"user_message\":\"Error parsing XML: no xferreq element\""));
}

TEST_F(ServiceTest, AShutdownIsRemembered) {
  EXPECT_FALSE(service_.shutdownAsked());
  EXPECT_EQ(ask("POST", "/v5/vantrel/shutdown").status, 200);
  EXPECT_TRUE(service_.shutdownAsked());
}

TEST_F(ServiceTest, SeveralConnectionsMayAskAtOnce) {
  scratch_.write("remote/a.bin", std::string(20000, 'x'));
  std::atomic<int> good = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int j = 0; j < 20; ++j) {
        if (ask("POST", "/v5/vantrel/transfers/start", receiveBody("a.bin")).status == 200) ++good;
        if (poll("").status == 200) ++good;
        service_.setKey("secret");
        service_.idleTime();
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 160);
  EXPECT_EQ(jsonArrayAt(parsed(poll("")).get(), {"transfers"}).size(), 80U);
}

}  // namespace
}  // namespace Vantrel::StandIn
