// Exchanges over real sockets.
#include "service/http_request.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"

namespace Vantrel::Web {
namespace {

using TestSupport::httpReply;
using TestSupport::LogRecorder;
using TestSupport::Script;
using TestSupport::ScriptedServer;

constexpr char kShutdownLine[] =
    "DBG HttpRequest::invoke() - The peer has performed an orderly shutdown";

TEST(RequestLineTest, ControlCharactersDoNotFit) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text = std::string("/a") + static_cast<char>(byte) + "b";
    EXPECT_EQ(fitsRequestLine(text), byte >= 0x20 && byte != 0x7F) << byte;
  }
  EXPECT_TRUE(fitsRequestLine(""));
  EXPECT_TRUE(fitsRequestLine("POST /x HTTP/9.9 \"%s\" \xC3\xA4"));
}

class HttpRequestTest : public testing::Test {
 protected:
  // Performs an exchange that the server answers with `script`.
  std::unique_ptr<HttpResponse> exchange(const Script& script) {
    server_.otherwise(script);
    HttpRequest request("127.0.0.1", server_.port());
    request.path = "/p";
    return request.invoke();
  }

  ScriptedServer server_;
  LogRecorder log_;
};

TEST_F(HttpRequestTest, FreshRequestIsAnEmptyGet) {
  const HttpRequest request("host", 80);
  EXPECT_EQ(request.host, "host");
  EXPECT_EQ(request.port, 80);
  EXPECT_EQ(request.method, "GET");
  EXPECT_EQ(request.path + request.body, "");
  EXPECT_TRUE(request.headers.empty());
  EXPECT_FALSE(request.callback);
}

TEST_F(HttpRequestTest, BytesOnTheWireWithABody) {
  HttpRequest request("127.0.0.1", server_.port());
  request.method = "POST";
  request.path = "/transfers/";
  request.setBody("<x>\r\n</x>");
  request.addHeader("Content-Type", "text/xml");
  request.addHeader("Authorization-key", "key");
  ASSERT_TRUE(request.invoke());
  EXPECT_EQ(server_.requests(), std::vector<std::string>{"POST /transfers/ HTTP/1.1\r\n"
                                                         "Authorization-key: key\r\n"
                                                         "Connection: close\r\n"
                                                         "Content-Length: 9\r\n"
                                                         "Content-Type: text/xml\r\n"
                                                         "User-Agent: Orvane Vantrel\r\n"
                                                         "\r\n"
                                                         "<x>\r\n</x>"});
}

TEST_F(HttpRequestTest, EmptyBodyStillCarriesItsLength) {
  ASSERT_TRUE(exchange(Script::reply("{}")));
  EXPECT_EQ(server_.requests(), std::vector<std::string>{"GET /p HTTP/1.1\r\n"
                                                         "Connection: close\r\n"
                                                         "Content-Length: 0\r\n"
                                                         "User-Agent: Orvane Vantrel\r\n"
                                                         "\r\n"});
}

TEST_F(HttpRequestTest, HeadersOfOneNameGoOutAsTwoLinesInOrderOfAdding) {
  HttpRequest request("127.0.0.1", server_.port());
  request.addHeader("b", "1");
  request.addHeader("Z", "2");
  request.addHeader("b", "0");
  ASSERT_TRUE(request.invoke());
  EXPECT_EQ(server_.requests(), std::vector<std::string>{"GET  HTTP/1.1\r\n"
                                                         "Connection: close\r\n"
                                                         "Content-Length: 0\r\n"
                                                         "User-Agent: Orvane Vantrel\r\n"
                                                         "Z: 2\r\n"
                                                         "b: 1\r\n"
                                                         "b: 0\r\n"
                                                         "\r\n"});
}

TEST_F(HttpRequestTest, LineEndInAHeaderValueGoesOutAsItIs) {
  HttpRequest request("127.0.0.1", server_.port());
  request.addHeader("Authorization-key", "key\n");
  ASSERT_TRUE(request.invoke());
  ASSERT_EQ(server_.requests().size(), 1U);
  EXPECT_NE(server_.requests()[0].find("Authorization-key: key\n\r\nConnection"),
            std::string::npos);
}

TEST_F(HttpRequestTest, KeyThatEndsInCrLfPutsAnEmptyLineIntoTheHead) {
  HttpRequest request("127.0.0.1", server_.port());
  request.addHeader("Authorization-key", "key\r\n");
  ASSERT_TRUE(request.invoke());
  ASSERT_EQ(server_.requests().size(), 1U);
  EXPECT_EQ(server_.requests()[0].rfind("GET  HTTP/1.1\r\nAuthorization-key: key\r\n\r\n", 0), 0U);
}

TEST_F(HttpRequestTest, ReplyIsTakenApart) {
  const auto response = exchange(Script().send(httpReply("{\"a\":1}", "500 Internal Error")));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->status, 500);
  EXPECT_EQ(response->body(), "{\"a\":1}");
  EXPECT_EQ(response->headers.find("Content-Type")->second, "application/json");
}

TEST_F(HttpRequestTest, ReplySplitAtEveryBytePositionIsTheSame) {
  const std::string reply = httpReply("body");
  for (size_t at = 0; at <= reply.size(); ++at) {
    const auto response = exchange(Script::split(reply, at));
    ASSERT_TRUE(response) << at;
    EXPECT_EQ(response->body(), "body") << at;
  }
}

TEST_F(HttpRequestTest, CompleteReplyIsNotWaitedForAnyLonger) {
  // The server never closes by itself.
  const auto response = exchange(Script().send(httpReply("body")).hold());
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "body");
  EXPECT_EQ(log_.text(), "");
}

TEST_F(HttpRequestTest, BytesBehindTheLengthAreNeverSeen) {
  const auto response = exchange(Script().send(httpReply("body") + "and more"));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "body");
}

TEST_F(HttpRequestTest, LengthZeroWithTheWholeHeadIsAnEmptyReply) {
  const auto response = exchange(Script().send(httpReply("")).hold());
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "");
}

TEST_F(HttpRequestTest, LengthZeroWithoutTheEmptyLineIsNull) {
  EXPECT_FALSE(exchange(Script().send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n").hold()));
}

TEST_F(HttpRequestTest, RepliesWithoutAUsableLengthAreReadToTheClose) {
  for (const char* line : {"", "content-length: 2\r\n", "Content-Length: -2\r\n"}) {
    log_.clear();
    const auto response = exchange(
        Script().send("HTTP/1.1 200 OK\r\n" + std::string(line) + "\r\nbo").pause().send("dy"));
    ASSERT_TRUE(response) << line;
    EXPECT_EQ(response->body(), "body") << line;
    EXPECT_EQ(log_.count(kShutdownLine), 1U) << line;
  }
}

TEST_F(HttpRequestTest, ShortBodyCountsAsSuccess) {
  const auto response =
      exchange(Script().send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nshort"));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "short");
  EXPECT_EQ(log_.count(kShutdownLine), 1U);
}

TEST_F(HttpRequestTest, LengthBeyondAllMemoryIsReadToTheClose) {
  const auto response = exchange(
      Script().send("HTTP/1.1 200 OK\r\nContent-Length: 18446744073709551616\r\n\r\nshort"));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "short");
}

TEST_F(HttpRequestTest, MalformedRepliesAreNull) {
  for (const char* reply : {"", "HTTP/1.1 200 OK", "HTTP/1.1 200\r\n\r\n", "garbage\r\n\r\n",
                            "HTTP/1.1 200 OK\r\nA:1\r\n\r\nx", "HTTP/1.1 200 OK\r\nA: 1\r\n"}) {
    log_.clear();
    EXPECT_FALSE(exchange(Script().send(reply))) << reply;
    EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
  }
}

TEST_F(HttpRequestTest, NulInTheBodyDropsTheRestOfItsPiece) {
  const std::string reply = "HTTP/1.1 200 OK\r\n\r\nab";
  const auto response = exchange(Script().send(reply + std::string("\0cd", 3)));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "ab");
}

TEST_F(HttpRequestTest, CloseWithoutAReplyIsNull) {
  EXPECT_FALSE(exchange(Script()));
  EXPECT_EQ(log_.text(), std::string(kShutdownLine) + "\n");
}

TEST_F(HttpRequestTest, ResetWhileWaitingIsReportedAndNull) {
  EXPECT_FALSE(exchange(Script().pause(500).reset()));
  EXPECT_EQ(log_.countContaining("] - recv failed ("), 1U) << log_.text();
  EXPECT_EQ(log_.count("ERR HttpRequest::invoke() - socket.recv() returned -1"), 1U);
}

TEST_F(HttpRequestTest, ResetBehindAUsableReplyKeepsIt) {
  const auto response = exchange(Script().send("HTTP/1.1 200 OK\r\n\r\nbody").pause(500).reset());
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "body");
}

// Under Wine a send that waits now and then sleeps through the reset of its connection; there the
// failing send is seen over a platform whose send a case lets fail.
#if !defined(_WIN32)
TEST_F(HttpRequestTest, ResetWhileSendingIsReportedAndNull) {
  server_.nextConnection(Script().reset());
  HttpRequest request("127.0.0.1", server_.port());
  request.setBody(std::string(10U << 20, 'x'));
  EXPECT_FALSE(request.invoke());
  EXPECT_EQ(log_.countContaining("Socket::send() ["), 1U) << log_.text();
  EXPECT_EQ(log_.countContaining("] - send failed ("), 1U);
  EXPECT_EQ(log_.countContaining("recv"), 0U);
}
#endif

TEST_F(HttpRequestTest, RefusedConnectionIsNull) {
  HttpRequest request("127.0.0.1", TestSupport::unusedPort());
  EXPECT_FALSE(request.invoke());
  EXPECT_EQ(log_.countContaining("TcpSocket::connect() Connection failed for socket"), 1U);
  EXPECT_TRUE(request.headers.empty());
}

TEST_F(HttpRequestTest, UnresolvableHostIsNull) {
  HttpRequest request("127.0.0.1:33001\nkey", 0);
  EXPECT_FALSE(request.invoke());
  EXPECT_EQ(
      log_.count("ERR TcpSocket::connect() Couldn't resolve address for: 127.0.0.1:33001\nkey"),
      3U);
}

TEST_F(HttpRequestTest, BodyOfTenMegabytesArrivesWhole) {
  HttpRequest request("127.0.0.1", server_.port());
  request.setBody(std::string(10U << 20, 'x'));
  ASSERT_TRUE(request.invoke());
  ASSERT_EQ(server_.requests().size(), 1U);
  EXPECT_EQ(TestSupport::messageBody(server_.requests()[0]).size(), 10U << 20);
}

TEST_F(HttpRequestTest, HugeReplyArrivesWhole) {
  const std::string body(64U << 20, 'x');
  const auto response = exchange(Script::reply(body));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body().size(), body.size());
}

TEST_F(HttpRequestTest, RequestDestroysItsCallback) {
  class Counting : public Callback {
   public:
    explicit Counting(int* counter) : destroyed(counter) {}
    ~Counting() override { ++*destroyed; }
    void handleCallback(void*) override {}
    void returnMessage(const std::string&) override {}
    int* destroyed;
  };
  int destroyed = 0;
  {
    HttpRequest request("h", 1);
    request.callback = std::make_unique<Counting>(&destroyed);
  }
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
}  // namespace Vantrel::Web
