#include "runtime/sockets/buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

constexpr int32_t kFailed = -1;

// Answers from a script; what is not in it is "not ready" and "all moved".
class ScriptedTransport : public ov::Transport {
 public:
  const char* name() const override { return "read"; }
  int32_t wait() override {
    ++waits;
    return next(&ready, 0);
  }
  int32_t move(uint32_t offset, uint32_t length) override {
    asked.push_back(std::to_string(offset) + "+" + std::to_string(length));
    return next(&moved, static_cast<int32_t>(length));
  }
  ov_rc code() override { return next(&codes, 99); }

  std::deque<int32_t> ready, moved, codes;
  int64_t waits = 0;
  std::vector<std::string> asked;

 private:
  static int32_t next(std::deque<int32_t>* script, int32_t otherwise) {
    if (script->empty()) return otherwise;
    const int32_t answer = script->front();
    script->pop_front();
    return answer;
  }
};

class SocketBufferTest : public ::testing::Test {
 protected:
  ov_rc transfer(uint32_t length, int32_t seconds) {
    return ov::transfer(transport_, length, &count_, seconds);
  }
  ov::CapturedLog log_;
  ScriptedTransport transport_;
  uint32_t count_ = 77;
};

TEST_F(SocketBufferTest, NegativeSecondsComeBeforeTheZeroLength) {
  EXPECT_EQ(22, transfer(0, -1));
  EXPECT_EQ(77U, count_);
  EXPECT_EQ(22, transfer(5, INT32_MIN));
  EXPECT_EQ(22, ov::transfer(transport_, 5, nullptr, 0));
  EXPECT_TRUE(transport_.asked.empty());
}

TEST_F(SocketBufferTest, ZeroLengthNeverTouchesTheSocket) {
  EXPECT_EQ(0, transfer(0, 0));
  EXPECT_EQ(0U, count_);
  EXPECT_EQ(0, transfer(0, 5));
  EXPECT_EQ(0, transport_.waits);
  EXPECT_TRUE(transport_.asked.empty());
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketBufferTest, WithoutTimeItNeverWaits) {
  transport_.moved = {3, 1};
  EXPECT_EQ(0, transfer(10, 0));
  EXPECT_EQ(10U, count_);
  EXPECT_EQ(0, transport_.waits);
  EXPECT_EQ((std::vector<std::string>{"0+10", "3+7", "4+6"}), transport_.asked);
  EXPECT_EQ(Messages{"DBG ov_buf_io: successful completion bytes 10"}, log_.take());
}

TEST_F(SocketBufferTest, SilentPeerTakesAllSlicesAndIsNoError) {
  EXPECT_EQ(0, transfer(10, 1));
  EXPECT_EQ(0U, count_);
  EXPECT_EQ(100, transport_.waits);
  EXPECT_TRUE(transport_.asked.empty());
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketBufferTest, TimeRunsOutWithAPart) {
  transport_.ready = {0, 1};
  transport_.moved = {4};
  EXPECT_EQ(0, transfer(10, 1));
  EXPECT_EQ(4U, count_);
  EXPECT_EQ(100, transport_.waits);  // a success has taken its slice too
}

TEST_F(SocketBufferTest, LastSliceThatSucceedsLeavesNoWait) {
  transport_.ready.assign(99, 0);
  transport_.ready.push_back(1);
  transport_.moved = {4, 6};
  EXPECT_EQ(0, transfer(10, 1));
  EXPECT_EQ(10U, count_);
  EXPECT_EQ(100, transport_.waits);  // the second move goes without one
  EXPECT_EQ(2U, transport_.asked.size());
}

TEST_F(SocketBufferTest, SlicesOfLongTimesDoNotOverflow) {
  for (const int32_t seconds : {INT32_MAX, 42949673, 21474837}) {
    transport_.waits = 0;
    transport_.ready.assign(500, 0);
    transport_.ready.push_back(1);
    EXPECT_EQ(0, transfer(1, seconds));
    EXPECT_EQ(1U, count_);
    EXPECT_EQ(501, transport_.waits);
  }
}

TEST_F(SocketBufferTest, FailingWaitGivesItsCode) {
  transport_.ready = {1, kFailed};
  transport_.moved = {2};
  transport_.codes = {10038};
  EXPECT_EQ(10038, transfer(10, 1));
  EXPECT_EQ(2U, count_);
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketBufferTest, PeerThatCloses) {
  transport_.moved = {7, 0};
  EXPECT_EQ(0, transfer(10, 0));
  EXPECT_EQ(7U, count_);
  EXPECT_EQ(Messages{"DBG ov_buf_io: IO closed, pending read buf 3"}, log_.take());
}

TEST_F(SocketBufferTest, InterruptedCallIsRepeatedFromTheWait) {
  transport_.ready = {1, 1};
  transport_.moved = {kFailed};
  transport_.codes = {4};
  EXPECT_EQ(0, transfer(10, 1));
  EXPECT_EQ(10U, count_);
  EXPECT_EQ(2, transport_.waits);
  EXPECT_EQ(Messages{"DBG ov_buf_io: successful completion bytes 10"}, log_.take());
}

TEST_F(SocketBufferTest, WouldBlockIsSuccessOnceSomethingMoved) {
  transport_.moved = {kFailed};
  transport_.codes = {10035};
  EXPECT_EQ(10035, transfer(10, 0));
  EXPECT_EQ(0U, count_);
  transport_.moved = {1, kFailed};
  transport_.codes = {10035};
  EXPECT_EQ(0, transfer(10, 0));
  EXPECT_EQ(1U, count_);
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketBufferTest, OtherFailuresAreReported) {
  for (const int32_t code : {10054, 10004}) {
    transport_.moved = {1, kFailed};
    transport_.codes = {code};
    EXPECT_EQ(code, transfer(10, 0));
    EXPECT_EQ(1U, count_);
    EXPECT_EQ(Messages{"ERR ov_buf_io: IO error (errno=" + std::to_string(code) + ")"},
              log_.take());
  }
}

TEST_F(SocketBufferTest, DebugLinesNeedTheirLevel) {
  ov_dbg_set_all(1);
  EXPECT_EQ(0, transfer(10, 0));
  transport_.moved = {0};
  EXPECT_EQ(0, transfer(10, 0));
  EXPECT_EQ(Messages{}, log_.take());
}

}  // namespace
