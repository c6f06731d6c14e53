#include "service/http_response.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Vantrel::Web {
namespace {

TEST(HttpResponseTest, SplitsStatusHeadersAndBody) {
  const auto response =
      parseHttpResponse("HTTP/1.1 200 OK\r\nA: 1\r\nContent-Length: 4\r\n\r\nbody");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->status, 200);
  EXPECT_EQ(response->headers.size(), 2U);
  EXPECT_EQ(response->headers.find("A")->second, "1");
  EXPECT_EQ(response->body(), "body");
}

TEST(HttpResponseTest, BodyMayBeEmpty) {
  const auto response = parseHttpResponse("HTTP/1.1 204 No Content\r\n\r\n");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->status, 204);
  EXPECT_TRUE(response->headers.empty());
  EXPECT_EQ(response->body(), "");
}

TEST(HttpResponseTest, ReasonOfSeveralWordsParses) {
  const auto response = parseHttpResponse("HTTP/1.1 500 Internal Server Error\r\n\r\nx");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->status, 500);
}

TEST(HttpResponseTest, EmptyReasonBehindASecondBlankParses) {
  const auto response = parseHttpResponse("HTTP/1.1 200 \r\n\r\n");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->status, 200);
}

TEST(HttpResponseTest, StatusLineWithoutReasonIsRejected) {
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1 200\r\n\r\n"));
}

TEST(HttpResponseTest, StatusLineWithoutBlankIsRejected) {
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1\r\n\r\n"));
}

TEST(HttpResponseTest, BlanksAreNotSoughtBeyondTheStatusLine) {
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1 200\r\nA: b c\r\n\r\n"));
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1\r\nA: b c\r\n\r\n"));
}

TEST(HttpResponseTest, TextWithoutALineEndIsRejected) {
  EXPECT_FALSE(parseHttpResponse(""));
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1 200 OK"));
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1 200 OK\n\n"));
}

TEST(HttpResponseTest, StatusThatIsNoNumberIsZero) {
  const auto response = parseHttpResponse("HTTP/1.1 abc OK\r\n\r\n");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->status, 0);
}

TEST(HttpResponseTest, StatusKeepsItsLower16Bits) {
  const auto response = parseHttpResponse("HTTP/1.1 65736 OK\r\n\r\n");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->status, 200);
}

TEST(HttpResponseTest, HeaderLineWithoutBlankFailsTheReply) {
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1 200 OK\r\nA:1\r\n\r\nbody"));
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1 200 OK\r\nA: 1\r\nB\r\n\r\nbody"));
}

TEST(HttpResponseTest, HeaderSeparatorInTheNextLineDoesNotCount) {
  EXPECT_FALSE(parseHttpResponse("HTTP/1.1 200 OK\r\nA\r\nB: 1\r\n\r\n"));
}

TEST(HttpResponseTest, HeaderValueKeepsFurtherSeparators) {
  const auto response = parseHttpResponse("HTTP/1.1 200 OK\r\nA: b: c\r\n: d\r\nE: \r\n\r\n");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->headers.find("A")->second, "b: c");
  EXPECT_EQ(response->headers.find("")->second, "d");
  EXPECT_EQ(response->headers.find("E")->second, "");
}

TEST(HttpResponseTest, HeadersOfOneNameStandSideBySideInOrder) {
  const auto response = parseHttpResponse("HTTP/1.1 200 OK\r\nB: 2\r\nA: 1\r\nB: 1\r\n\r\n");
  ASSERT_TRUE(response);
  std::string all;
  for (const auto& [name, value] : response->headers) all += name + value;
  EXPECT_EQ(all, "A1B2B1");
}

TEST(HttpResponseTest, EveryCutInsideTheHeadIsRejectedAndEveryLaterOneParses) {
  const std::string head = "HTTP/1.1 200 OK\r\nA: 1\r\nB: 2\r\n\r\n";
  const std::string reply = head + "body";
  for (size_t length = 0; length <= reply.size(); ++length) {
    const auto response = parseHttpResponse(reply.substr(0, length));
    ASSERT_EQ(response != nullptr, length >= head.size()) << length;
    if (response) {
      EXPECT_EQ(response->body(), reply.substr(head.size(), length - head.size()));
    }
  }
}

TEST(HttpResponseTest, EmptyFirstLineIsRejected) {
  EXPECT_FALSE(parseHttpResponse("\r\nHTTP/1.1 200 OK\r\n\r\n"));
}

TEST(HttpResponseTest, BodyHoldsLineEndsAndEmptyLines) {
  const auto response = parseHttpResponse("HTTP/1.1 200 OK\r\n\r\n\r\na\r\n\r\nb");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "\r\na\r\n\r\nb");
}

TEST(HttpResponseTest, HeadOfAHundredThousandLinesIsWalkedOnce) {
  std::string text = "HTTP/1.1 200 OK\r\n";
  for (int i = 0; i < 100000; ++i) text += "Some-Header: with a value\r\n";
  const auto response = parseHttpResponse(text + "\r\nbody");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->headers.size(), 100000U);
  EXPECT_EQ(response->body(), "body");
}

}  // namespace
}  // namespace Vantrel::Web
