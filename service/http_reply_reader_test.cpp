#include "service/http_response.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/slow_reply_reader.h"

namespace Vantrel::Web {
namespace {

constexpr char kHead[] = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\nA: b\r\n\r\n";

struct Outcome {
  bool complete = false;
  std::string text;
};

// Feeds the pieces until the reply is complete or nothing is left.
Outcome readPieces(const std::vector<std::string>& pieces) {
  HttpReplyReader reader;
  Outcome outcome;
  for (const std::string& piece : pieces) {
    outcome.complete = reader.feed(piece);
    if (outcome.complete) break;
  }
  outcome.text = reader.text();
  return outcome;
}

std::vector<std::string> cut(const std::string& text, size_t size) {
  std::vector<std::string> pieces;
  for (size_t at = 0; at < text.size(); at += size) pieces.push_back(text.substr(at, size));
  return pieces;
}

TEST(HttpReplyReaderTest, IsCompleteWithThePromisedLength) {
  const Outcome outcome = readPieces({std::string(kHead) + "body"});
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.text, std::string(kHead) + "body");
}

TEST(HttpReplyReaderTest, BytesBehindThePromisedLengthAreCutOff) {
  const Outcome outcome = readPieces({std::string(kHead) + "body and more"});
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.text, std::string(kHead) + "body");
}

TEST(HttpReplyReaderTest, SplitAtEveryBytePositionReadsTheSame) {
  const std::string reply = std::string(kHead) + "body and more";
  for (size_t at = 0; at <= reply.size(); ++at) {
    const Outcome outcome = readPieces({reply.substr(0, at), reply.substr(at)});
    EXPECT_TRUE(outcome.complete) << at;
    EXPECT_EQ(outcome.text, std::string(kHead) + "body") << at;
  }
}

TEST(HttpReplyReaderTest, SplitIntoPiecesOfEverySizeReadsTheSame) {
  const std::string reply = std::string(kHead) + "body and more";
  for (size_t size = 1; size <= reply.size(); ++size) {
    const Outcome outcome = readPieces(cut(reply, size));
    EXPECT_TRUE(outcome.complete) << size;
    EXPECT_EQ(outcome.text, std::string(kHead) + "body") << size;
  }
}

TEST(HttpReplyReaderTest, ShortBodyIsNotComplete) {
  const Outcome outcome = readPieces({std::string(kHead) + "bod"});
  EXPECT_FALSE(outcome.complete);
  EXPECT_EQ(outcome.text, std::string(kHead) + "bod");
}

TEST(HttpReplyReaderTest, LengthZeroEndsTheReplyAtItsLine) {
  const std::string line = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n";
  const Outcome outcome = readPieces({line, "\r\n"});
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.text, line);
}

TEST(HttpReplyReaderTest, LengthZeroWaitsForItsLineEnd) {
  HttpReplyReader reader;
  EXPECT_FALSE(reader.feed("HTTP/1.1 200 OK\r\nContent-Length: 0"));
  EXPECT_FALSE(reader.feed("\r"));
  EXPECT_TRUE(reader.feed("\n"));
}

TEST(HttpReplyReaderTest, LengthZeroKeepsAllThatHasArrived) {
  const std::string all = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\nbody";
  const Outcome outcome = readPieces({all});
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.text, all);
}

TEST(HttpReplyReaderTest, LengthThatIsNoNumberEndsTheReplyToo) {
  for (const char* value : {" abc", "", " ", " -", " +", " -0", " x4", "\t"}) {
    HttpReplyReader reader;
    EXPECT_TRUE(reader.feed("HTTP/1.1 200 OK\r\nContent-Length:" + std::string(value) + "\r\n"))
        << value;
  }
}

TEST(HttpReplyReaderTest, BlankLengthIsNotReadFromTheNextLine) {
  HttpReplyReader reader;
  EXPECT_TRUE(reader.feed("HTTP/1.1 200 OK\r\nContent-Length: \r\n4: x\r\n\r\nbody"));
  EXPECT_EQ(reader.text(), "HTTP/1.1 200 OK\r\nContent-Length: \r\n4: x\r\n\r\nbody");
}

TEST(HttpReplyReaderTest, LengthIsReadBehindBlanksAndEndsAtTheFirstNonDigit) {
  for (const char* value : {"4", " 4", "   \t4", " 4 9", " 4x", " +4", " 004"}) {
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Length:" + std::string(value) + "\r\n\r\n";
    const Outcome outcome = readPieces({head + "body and more"});
    EXPECT_TRUE(outcome.complete) << value;
    EXPECT_EQ(outcome.text, head + "body") << value;
  }
}

TEST(HttpReplyReaderTest, NegativeLengthCountsAsAbsent) {
  HttpReplyReader reader;
  EXPECT_FALSE(reader.feed("HTTP/1.1 200 OK\r\nContent-Length: -4\r\n\r\nbody"));
  EXPECT_FALSE(reader.feed(" Content-Length: 2\r\n"));
  EXPECT_EQ(reader.text(),
            "HTTP/1.1 200 OK\r\nContent-Length: -4\r\n\r\nbody Content-Length: 2\r\n");
}

TEST(HttpReplyReaderTest, LengthBeyondAllMemoryIsReadUntilThePeerCloses) {
  for (const char* value : {"4294967296", "9223372036854775807", "18446744073709551615",
                            "18446744073709551616", "99999999999999999999999999"}) {
    HttpReplyReader reader;
    const std::string reply =
        "HTTP/1.1 200 OK\r\nContent-Length: " + std::string(value) + "\r\n\r\nbody";
    EXPECT_FALSE(reader.feed(reply)) << value;
    EXPECT_EQ(reader.text(), reply) << value;
  }
}

TEST(HttpReplyReaderTest, LowerCaseLabelIsNotRecognised) {
  HttpReplyReader reader;
  EXPECT_FALSE(reader.feed("HTTP/1.1 200 OK\r\ncontent-length: 4\r\n\r\nbody and more"));
  EXPECT_EQ(reader.text(), "HTTP/1.1 200 OK\r\ncontent-length: 4\r\n\r\nbody and more");
}

TEST(HttpReplyReaderTest, NoLengthReadsOnForEver) {
  HttpReplyReader reader;
  EXPECT_FALSE(reader.feed("HTTP/1.1 200 OK\r\n\r\nbody"));
  EXPECT_FALSE(reader.feed(" and more"));
  EXPECT_EQ(reader.text(), "HTTP/1.1 200 OK\r\n\r\nbody and more");
}

TEST(HttpReplyReaderTest, LabelAnywhereInTheReplyIsTaken) {
  // The search knows no head: a label in a body whose head has none ends the reply there.
  HttpReplyReader reader;
  EXPECT_TRUE(reader.feed("HTTP/1.1 200 OK\r\n\r\nContent-Length: 2\r\nrest"));
  EXPECT_EQ(reader.text(), "HTTP/1.1 200 OK\r\n\r\nCo");
}

TEST(HttpReplyReaderTest, FirstOfTwoLengthsHolds) {
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nContent-Length: 4\r\n\r\n";
  const Outcome outcome = readPieces(cut(head + "body", 3));
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.text, head + "bo");
}

TEST(HttpReplyReaderTest, NulEndsTheContributionOfItsPieceOnly) {
  const std::string nul(1, '\0');
  const Outcome outcome = readPieces({kHead, "bo" + nul + "lost", nul + "lost", "dy"});
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.text, std::string(kHead) + "body");
}

TEST(HttpReplyReaderTest, NulInTheHeadIsNoDifferent) {
  const std::string nul(1, '\0');
  const Outcome outcome =
      readPieces({"HTTP/1.1 200 OK\r\nContent-" + nul + "x", "Length: 1\r\n\r\nb"});
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.text, "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nb");
}

TEST(HttpReplyReaderTest, EmptyPieceChangesNothing) {
  HttpReplyReader reader;
  EXPECT_FALSE(reader.feed(""));
  EXPECT_FALSE(reader.feed(std::string_view("\0x", 2)));
  EXPECT_EQ(reader.text(), "");
}

TEST(HttpReplyReaderTest, AgreesWithASearchFromTheFrontOnRandomReplies) {
  const std::vector<std::string> parts = {
      "Content-Length:", "Content-", "Length:", " ", "\t", "\r", "\n",  "\r\n",
      "\r\n\r\n",        "1",        "7",       "0", "-",  "x",  "abc", std::string(1, '\0')};
  uint32_t seed = 1;
  const auto next = [&seed](size_t bound) {
    seed = seed * 1664525U + 1013904223U;
    return static_cast<size_t>(seed >> 8) % bound;
  };
  for (int round = 0; round < 200000; ++round) {
    HttpReplyReader reader;
    TestSupport::SlowReplyReader slow;
    for (size_t pieces = 1 + next(6); pieces > 0; --pieces) {
      std::string piece;
      for (size_t count = next(5); count > 0; --count) piece += parts[next(parts.size())];
      const bool complete = reader.feed(piece);
      ASSERT_EQ(complete, slow.feed(piece)) << slow.text;
      ASSERT_EQ(reader.text(), slow.text);
      if (complete) break;
    }
  }
}

TEST(HttpReplyReaderTest, HugeRepliesInSmallPiecesAreReadCompletely) {
  constexpr size_t kSize = 64U << 20;
  const std::string piece(1024, 'x');
  for (const std::string& head :
       {"HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(kSize) + "\r\n\r\n",
        std::string("HTTP/1.1 200 OK\r\n\r\n"), std::string("HTTP/1.1 200 OK\r\nContent-Length: "),
        std::string("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n")}) {
    HttpReplyReader reader;
    bool complete = reader.feed(head);
    for (size_t sent = 0; sent < kSize; sent += piece.size()) complete = reader.feed(piece);
    EXPECT_EQ(reader.text().size(), head.size() + kSize);
    EXPECT_EQ(complete, head.find("\r\n\r\n") != std::string::npos &&
                            head.find("Length") != std::string::npos);
  }
}

}  // namespace
}  // namespace Vantrel::Web
