// Requests that a page forwards to the desktop client, and the client's windows.
#include "core/plugin.h"

#include "tests/support/core_fixture.h"

namespace Vantrel::Web {
namespace {

using TestSupport::httpReply;
using TestSupport::messageBody;
using TestSupport::Script;

class PluginForwardingTest : public PluginTest {
 protected:
  // What the page gets of a synchronous request.
  std::string request(const std::string& path, const std::string& body) {
    std::string error;
    std::unique_ptr<HttpResponse> response;
    plugin().vantrelHttpRequest(error, "POST", path, body, response);
    EXPECT_NE(error.empty(), response == nullptr);
    return response ? response->body() : error;
  }
  bool sent(const std::string& path) const { return !server_.requests(path).empty(); }

  static constexpr char kRefusedSend[] =
      R"({"transfer_specs":[{"transfer_spec":{"direction":"send","paths":[{"source":"C:/no"}]}}]})";
  static inline const std::string kRefusal =
      jsonErrorReply("The website attempted to upload an unauthorized file or folder: C:/no");
};

TEST_F(PluginForwardingTest, ABodyGoesOutByteForByte) {
  const std::string body = "{ \"a\" :\t[1, 2.50]\r\n, \"b\": \"\xC3\xA4\" }";
  server_.always("/p", Script::reply("{\"ok\":1}"));
  EXPECT_EQ(request("/p", body), "{\"ok\":1}");
  ASSERT_EQ(server_.requests("/p").size(), 1u);
  const std::string sent = server_.requests("/p").front();
  EXPECT_EQ(messageBody(sent), body);
  EXPECT_EQ(sent.find("POST /p HTTP/1.1\r\nAuthorization-key: key\r\n"), 0u) << sent;
  EXPECT_NE(sent.find("Content-Type: application/vnd.orvane.xferreq+json\r\n"), std::string::npos);
}

TEST_F(PluginForwardingTest, AnEmptyBodyGoesOutAsAnEmptyObject) {
  request("/p", "");
  EXPECT_EQ(messageBody(server_.requests("/p").front()), "{}");
}

TEST_F(PluginForwardingTest, AnErrorStatusReachesThePageLikeASuccess) {
  server_.always("/p", Script().send(httpReply("{\"error\":1}", "500 Internal Server Error")));
  EXPECT_EQ(request("/p", "{}"), "{\"error\":1}");
}

TEST_F(PluginForwardingTest, ARefusedBodyIsNotSentAndNoClientIsLookedFor) {
  plugin();
  const size_t pings = server_.requests(kPing).size();
  EXPECT_EQ(request("/p", kRefusedSend), kRefusal);
  EXPECT_NE(request("/p", "no json").find("Error parsing JSON: "), std::string::npos);
  EXPECT_FALSE(sent("/p"));
  EXPECT_EQ(server_.requests(kPing).size(), pings);
}

TEST_F(PluginForwardingTest, WithoutAClientThePageGetsTheContactError) {
  plugin();
  server_.always(kPing, Script());
  EXPECT_EQ(request("/p", "{}"), kContactReply);
  EXPECT_GE(log_.countContaining("ERR Error contacting Orvane Vantrel. "), 1u) << log_.text();
  EXPECT_FALSE(sent("/p"));
}

TEST_F(PluginForwardingTest, AClientThatHangsUpIsAContactError) {
  server_.always("/p", Script());
  EXPECT_EQ(request("/p", "{}"), kContactReply);
  EXPECT_EQ(log_.countContaining("ERR Error contacting Orvane Vantrel. "), 1u) << log_.text();
}

TEST_F(PluginForwardingTest, AnAsynchronousRequestAnswersThroughItsCallback) {
  server_.always("/p", Script::reply("{\"late\":1}"));
  EXPECT_EQ(plugin().vantrelHttpRequestAsync("POST", "/p", "", callback()), "");
  ASSERT_TRUE(answers_.wait(1));
  EXPECT_EQ(answers_.get(), std::vector<std::string>{"{\"late\":1}"});
  EXPECT_EQ(messageBody(server_.requests("/p").front()), "{}");
}

TEST_F(PluginForwardingTest, ThreeAsynchronousRequestsAreAnsweredInOrder) {
  for (const char* const path : {"/1", "/2", "/3"}) {
    server_.always(path, Script::reply(path));
    EXPECT_EQ(plugin().vantrelHttpRequestAsync("GET", path, "", callback()), "");
  }
  ASSERT_TRUE(answers_.wait(3));
  EXPECT_EQ(answers_.get(), (std::vector<std::string>{"/1", "/2", "/3"}));
}

TEST_F(PluginForwardingTest, ARefusedAsynchronousRequestAnswersAtOnceAndOnlyOnce) {
  EXPECT_EQ(plugin().vantrelHttpRequestAsync("POST", "/p", kRefusedSend, callback()), kRefusal);
  core_.reset();
  EXPECT_TRUE(answers_.get().empty());
  EXPECT_FALSE(sent("/p"));
}

TEST_F(PluginForwardingTest, AnAsynchronousRequestNeedsAKnownUrl) {
  files_.removeUrl();
  EXPECT_EQ(plugin().vantrelHttpRequestAsync("POST", "/p", "{}", callback()),
            jsonErrorReply("Error creating HTTP request"));
  EXPECT_TRUE(answers_.get().empty());
}

TEST_F(PluginForwardingTest, TheUncheckedRoadHasNoKeyAndNoCheck) {
  server_.always("/p", Script::reply("{\"sent\":1}"));
  plugin().httpRequestImplementation("PUT", "/p", kRefusedSend, callback());
  ASSERT_TRUE(answers_.wait(1));
  EXPECT_EQ(answers_.get(), std::vector<std::string>{"{\"sent\":1}"});
  EXPECT_EQ(server_.requests("/p"),
            std::vector<std::string>{"PUT /p HTTP/1.1\r\nConnection: close\r\nContent-Length: " +
                                     std::to_string(sizeof kRefusedSend - 1) +
                                     "\r\nContent-Type: application/json\r\n"
                                     "User-Agent: Orvane Vantrel\r\n\r\n" +
                                     kRefusedSend});
}

TEST_F(PluginForwardingTest, TheUncheckedRoadSendsAnEmptyBodyAsAnEmptyObject) {
  plugin().httpRequestImplementation("POST", "/p", "", callback());
  ASSERT_TRUE(answers_.wait(1));
  EXPECT_EQ(messageBody(server_.requests("/p").front()), "{}");
}

TEST_F(PluginForwardingTest, TheUncheckedRoadTellsAMissingUrlInsideTheCall) {
  files_.removeUrl();
  plugin().httpRequestImplementation("POST", "/p", "{}", callback());
  EXPECT_EQ(answers_.get(),
            std::vector<std::string>{"message: " + jsonErrorReply("Failed to get Vantrel URL")});
}

TEST_F(PluginForwardingTest, AMethodOrPathWithAControlCharacterMakesNoRequest) {
  const std::string creating = jsonErrorReply("Error creating HTTP request");
  const std::string bad = "POST /x HTTP/1.1\r\nContent-Length: 100000\r\nX: ";
  plugin();
  const size_t before = server_.requests(kPing).size();
  for (const auto& [method, path] : {std::pair<std::string, std::string>{bad, "/p"},
                                     {"POST", "/p\x7F"},
                                     {"POST", std::string("/p\0", 3)},
                                     {"PO\tST", "/p"}}) {
    std::string error;
    std::unique_ptr<HttpResponse> response;
    plugin().vantrelHttpRequest(error, method, path, "{}", response);
    EXPECT_EQ(error, creating);
    EXPECT_FALSE(response);
    EXPECT_EQ(plugin().vantrelHttpRequestAsync(method, path, "{}", callback()), creating);
    plugin().httpRequestImplementation(method, path, "{}", callback());
    EXPECT_EQ(answers_.get().back(), "message: " + creating);
  }
  EXPECT_EQ(answers_.get().size(), 4U);
  // Only the synchronous road asks whether a client is there before it makes its request.
  EXPECT_EQ(server_.connections(), before + 4);
}

TEST_F(PluginForwardingTest, TheClientsVersionIsHandedOnUnread) {
  server_.always("/v4/vantrel/version", Script::reply("{\"version\":\"3.7\"}"));
  EXPECT_EQ(plugin().queryVantrelVersion(), "{\"version\":\"3.7\"}");
  const std::string sent = server_.requests("/v4/vantrel/version").front();
  EXPECT_EQ(sent.find("GET /v4/vantrel/version HTTP/1.1\r\n"), 0u);
  EXPECT_EQ(messageBody(sent), R"({"orvane_vantrel_settings":{"app_id":"version request"}})");
}

TEST_F(PluginForwardingTest, AnEmptyVersionIsAnErrorReply) {
  server_.always("/v4/vantrel/version", Script().send("HTTP/1.1 200 OK\r\nX: y\r\n\r\n"));
  EXPECT_EQ(plugin().queryVantrelVersion(),
            jsonErrorReply("Error retrieving the Orvane Vantrel version"));
}

TEST_F(PluginForwardingTest, AVersionThatCannotBeAskedForIsTheContactError) {
  server_.always("/v4/vantrel/version", Script());
  EXPECT_EQ(plugin().queryVantrelVersion(), kContactReply);
}

TEST_F(PluginForwardingTest, WindowCommandsAskForTheirWindow) {
  files_.writeProcessId("4711");
  std::vector<int32_t> foreground;
  platform_.onForeground = [&foreground](int32_t id) {
    foreground.push_back(id);
    return 0;
  };
  EXPECT_TRUE(plugin().displayAboutWindow());
  EXPECT_TRUE(plugin().displayPreferencesWindow());
  EXPECT_TRUE(plugin().displayTransferManager());
  for (const char* const path :
       {"/windows/about/", "/windows/preferences/", "/windows/transfer-manager/"}) {
    ASSERT_EQ(server_.requests(path).size(), 1u) << path;
    EXPECT_EQ(server_.requests(path).front(),
              std::string("GET ") + path +
                  " HTTP/1.1\r\nAuthorization-key: key\r\nConnection: close\r\n"
                  "Content-Length: 0\r\n"
                  "Content-Type: application/vnd.orvane.xferreq+xml\r\n"
                  "User-Agent: Orvane Vantrel\r\n\r\n");
  }
  EXPECT_EQ(foreground, (std::vector<int32_t>{4711, 4711, 4711}));
}

}  // namespace
}  // namespace Vantrel::Web
