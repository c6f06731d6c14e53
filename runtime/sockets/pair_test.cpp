#include "runtime/sockets/pair.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

constexpr ov_sock kClosed = ~ov_sock{0};

// Fails as its script tells, then succeeds.
class ScriptedMaker : public ov::PairMaker {
 public:
  ov::PairStep attempt(ov_sock sockets[2]) override {
    ++attempts;
    EXPECT_EQ(kClosed, sockets[0]);
    EXPECT_EQ(kClosed, sockets[1]);
    if (failures.empty()) {
      sockets[0] = 1;
      sockets[1] = 2;
      return {nullptr, 0};
    }
    const ov::PairStep failed = failures.front();
    failures.pop_front();
    return failed;
  }
  void pause(uint32_t milliseconds) override { pauses.push_back(milliseconds); }

  std::deque<ov::PairStep> failures;
  std::vector<uint32_t> pauses;
  int attempts = 0;
};

class SocketPairTest : public ::testing::Test {
 protected:
  ov::CapturedLog log_;
  ScriptedMaker maker_;
  ov_sock sockets_[2] = {8, 9};
};

TEST_F(SocketPairTest, FirstAttemptSaysNothing) {
  EXPECT_EQ(0, make_pair(maker_, sockets_, 10));
  EXPECT_EQ(1U, sockets_[0]);
  EXPECT_EQ(2U, sockets_[1]);
  EXPECT_EQ(Messages{}, log_.take());
  EXPECT_TRUE(maker_.pauses.empty());
}

TEST_F(SocketPairTest, CollisionsAreSurvivedUpToTheLastRetry) {
  maker_.failures.assign(10, {"bind", 10048});
  EXPECT_EQ(0, make_pair(maker_, sockets_, 10));
  EXPECT_EQ(1U, sockets_[0]);
  EXPECT_EQ(11, maker_.attempts);
  EXPECT_EQ((std::vector<uint32_t>{0, 20, 40, 60, 80, 100, 120, 140, 160, 180}), maker_.pauses);
  const Messages lines = log_.take();
  ASSERT_EQ(11U, lines.size());
  EXPECT_EQ("LOG ov_sock_pair: port collision in bind().  Retrying (1 of 10)", lines[0]);
  EXPECT_EQ("LOG ov_sock_pair: port collision in bind().  Retrying (10 of 10)", lines[9]);
  EXPECT_EQ("LOG ov_sock_pair: success on reattempt 10", lines[10]);
}

TEST_F(SocketPairTest, OneCollisionMoreIsTheEnd) {
  maker_.failures.assign(11, {"listen", 10048});
  EXPECT_EQ(10048, make_pair(maker_, sockets_, 10));
  EXPECT_EQ(11, maker_.attempts);
  EXPECT_EQ(kClosed, sockets_[0]);
  EXPECT_EQ(kClosed, sockets_[1]);
  const Messages lines = log_.take();
  ASSERT_EQ(11U, lines.size());
  EXPECT_EQ("ERR ov_sock_pair: listen() error 10048", lines[10]);
}

TEST_F(SocketPairTest, OtherCodesAreNotTriedAgain) {
  maker_.failures = {{"connect", 10048}, {"select", 10060}};
  EXPECT_EQ(10060, make_pair(maker_, sockets_, 10));
  EXPECT_EQ(2, maker_.attempts);
  EXPECT_EQ((Messages{"LOG ov_sock_pair: port collision in connect().  Retrying (1 of 10)",
                      "ERR ov_sock_pair: select() error 10060"}),
            log_.take());
}

TEST_F(SocketPairTest, WithoutRetriesTheFirstCollisionIsTheEnd) {
  maker_.failures = {{"bind", 10048}};
  EXPECT_EQ(10048, make_pair(maker_, sockets_, 0));
  EXPECT_EQ(Messages{"ERR ov_sock_pair: bind() error 10048"}, log_.take());
}

}  // namespace
