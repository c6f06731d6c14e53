#include "tools/client/http_message.h"

#include <gtest/gtest.h>

namespace Vantrel::StandIn {
namespace {

using State = RequestReader::State;

constexpr const char* kPost =
    "POST /v5/vantrel/transfers/activity HTTP/1.1\r\n"
    "Authorization-key: abc\n\r\n"
    "Connection: close\r\n"
    "Content-Length: 5\r\n"
    "Content-Type: application/json\r\n\r\n"
    "hello";

State readAll(RequestReader& reader, const std::string& bytes, size_t pieceBytes) {
  State state = State::kReading;
  for (size_t at = 0; at < bytes.size(); at += pieceBytes)
    state = reader.add(std::string_view(bytes).substr(at, pieceBytes));
  return state;
}

std::string problemOf(const std::string& bytes) {
  RequestReader reader;
  EXPECT_EQ(reader.add(bytes), State::kMalformed);
  return reader.problem();
}

TEST(RequestReaderTest, PiecesOfAnySizeGiveTheSameRequest) {
  std::string bytes = kPost;
  for (size_t size = 1; size <= bytes.size(); ++size) {
    RequestReader reader;
    ASSERT_EQ(readAll(reader, bytes, size), State::kComplete) << size;
    EXPECT_EQ(reader.request().method, "POST");
    EXPECT_EQ(reader.request().path, "/v5/vantrel/transfers/activity");
    EXPECT_EQ(reader.request().body, "hello");
    EXPECT_EQ(reader.request().headers.size(), 4U);
  }
}

TEST(RequestReaderTest, ALineFeedAtTheEndOfTheKeyBelongsToIt) {
  RequestReader reader;
  ASSERT_EQ(reader.add(kPost), State::kComplete);
  ASSERT_NE(reader.request().header("authorization-KEY"), nullptr);
  EXPECT_EQ(*reader.request().header("Authorization-key"), "abc\n");
}

TEST(RequestReaderTest, ARequestWithoutALengthHasNoBody) {
  RequestReader reader;
  EXPECT_EQ(reader.add("GET /x HTTP/1.1\r\n\r\n"), State::kComplete);
  EXPECT_EQ(reader.request().body, "");
  EXPECT_TRUE(reader.request().headers.empty());
  EXPECT_EQ(reader.request().header("Content-Length"), nullptr);
}

TEST(RequestReaderTest, BytesBehindTheBodyAreDropped) {
  RequestReader reader;
  EXPECT_EQ(reader.add(std::string(kPost) + "more"), State::kComplete);
  EXPECT_EQ(reader.request().body, "hello");
  EXPECT_EQ(reader.add("more"), State::kComplete);
}

TEST(RequestReaderTest, APathMayHoldBlanks) {
  RequestReader reader;
  EXPECT_EQ(reader.add("GET /a b HTTP/1.1\r\n\r\n"), State::kComplete);
  EXPECT_EQ(reader.request().path, "/a b");
}

TEST(RequestReaderTest, AValueWithoutABlankBeforeItIsTaken) {
  RequestReader reader;
  EXPECT_EQ(reader.add("GET / HTTP/1.1\r\nA:b\r\nC:\r\n\r\n"), State::kComplete);
  EXPECT_EQ(*reader.request().header("A"), "b");
  EXPECT_EQ(*reader.request().header("C"), "");
}

TEST(RequestReaderTest, MalformedRequestsTellWhy) {
  EXPECT_EQ(problemOf("GET\r\n\r\n"), "the request line is malformed");
  EXPECT_EQ(problemOf("GET /\r\n\r\n"), "the request line is malformed");
  EXPECT_EQ(problemOf("GET / FTP/1.1\r\n\r\n"), "the request line is malformed");
  EXPECT_EQ(problemOf("GET / HTTP/1.1\r\nno colon\r\n\r\n"), "a header line is malformed");
  EXPECT_EQ(problemOf("GET / HTTP/1.1\r\n: x\r\n\r\n"), "a header line is malformed");
  for (const char* length : {"x", "-1", "5x", "", "67108865", "99999999999999999999"})
    EXPECT_EQ(problemOf("GET / HTTP/1.1\r\nContent-Length: " + std::string(length) + "\r\n\r\n"),
              "the content length is malformed or too large");
}

TEST(RequestReaderTest, AHeaderWithoutAnEndIsRefused) {
  RequestReader reader;
  EXPECT_EQ(reader.add(std::string(RequestReader::kMostHeadBytes, 'x')), State::kReading);
  EXPECT_EQ(reader.add("x"), State::kMalformed);
  EXPECT_EQ(reader.problem(), "the header is too long");
}

TEST(ErrorReplyTest, WordsFromOutsideAreEscaped) {
  ServiceReply reply = errorReply(404, "Not found", "Unknown path: /\"\n\xFF");
  EXPECT_EQ(reply.status, 404);
  EXPECT_EQ(reply.body,
            "{\"error\":{\"code\":404,\"internal_message\":\"Not found\",\"user_message\":"
            "\"Unknown path: /\\\"\\u000a\xEF\xBF\xBD\"}}");
}

}  // namespace
}  // namespace Vantrel::StandIn
