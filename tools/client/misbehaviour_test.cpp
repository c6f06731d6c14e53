#include "tools/client/misbehaviour.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/client/json_tree.h"

namespace Vantrel::StandIn {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const ServiceReply kReply = {200, R"({"a":1})"};
constexpr const char* kHonest =
    "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 7\r\n"
    "Content-Type: application/json\r\n\r\n{\"a\":1}";

std::string whole(const ReplyPlan& plan) {
  std::string bytes;
  for (const std::string& piece : plan.pieces) bytes += piece;
  return bytes;
}

// The reply with one knob turned.
std::string turned(const char* name, const std::string& value) {
  Knobs knobs;
  EXPECT_EQ(setKnob(knobs, name, value, ""), "");
  return whole(misbehavedPlan(kReply, knobs));
}

std::string bodyOf(const std::string& bytes) {
  return bytes.substr(bytes.find("\r\n\r\n") + 4);
}

TEST(ReplyTest, AnHonestReplyIsOnePieceAtOnce) {
  ReplyPlan plan = honestPlan(kReply);
  EXPECT_THAT(plan.pieces, ElementsAre(kHonest));
  EXPECT_EQ(plan.delayMs, 0);
  EXPECT_FALSE(plan.silent);
  EXPECT_THAT(whole(honestPlan({401, ""})), StartsWith("HTTP/1.1 401 Unauthorized\r\n"));
}

TEST(ReplyTest, WithNoKnobTurnedAMisbehavedReplyIsHonest) {
  EXPECT_EQ(whole(misbehavedPlan(kReply, Knobs())), kHonest);
}

TEST(ReplyTest, SilenceAndClosingSendNothing) {
  Knobs knobs;
  knobs.silent = true;
  EXPECT_TRUE(misbehavedPlan(kReply, knobs).silent);
  EXPECT_TRUE(misbehavedPlan(kReply, knobs).pieces.empty());
  knobs.silent = false;
  knobs.closeWithoutReply = true;
  EXPECT_FALSE(misbehavedPlan(kReply, knobs).silent);
  EXPECT_TRUE(misbehavedPlan(kReply, knobs).pieces.empty());
}

TEST(ReplyTest, TheDelayIsTold) {
  Knobs knobs;
  knobs.delayMs = 70;
  EXPECT_EQ(misbehavedPlan(kReply, knobs).delayMs, 70);
}

TEST(ReplyTest, LengthKnobs) {
  EXPECT_THAT(turned("no_length", "1"), Not(HasSubstr("ength")));
  EXPECT_THAT(turned("length_delta", "+3"), HasSubstr("Content-Length: 10\r\n"));
  EXPECT_THAT(turned("length_delta", "-3"), HasSubstr("Content-Length: 4\r\n"));
  EXPECT_THAT(turned("length_text", "0"), HasSubstr("Content-Length: 0\r\n"));
  EXPECT_THAT(turned("length_text", "many"), HasSubstr("Content-Length: many\r\n"));
  EXPECT_THAT(turned("length_label", "content-length"), HasSubstr("\r\ncontent-length: 7\r\n"));
  for (const char* value : {"+3", "-3"})
    EXPECT_THAT(turned("length_delta", value), EndsWith("\r\n\r\n{\"a\":1}"));
}

TEST(ReplyTest, HeadKnobs) {
  EXPECT_THAT(turned("status_line", "HTTP/1.1 200"), StartsWith("HTTP/1.1 200\r\nConnection"));
  EXPECT_THAT(turned("header_line", "X-Bad:value"), HasSubstr("200 OK\r\nX-Bad:value\r\n"));
  EXPECT_THAT(turned("status", "500"), StartsWith("HTTP/1.1 500 Internal Server Error\r\n"));
  EXPECT_THAT(turned("status", "599"), StartsWith("HTTP/1.1 599 Status\r\n"));
}

TEST(ReplyTest, BodyKnobs) {
  EXPECT_THAT(turned("body", "no JSON"), EndsWith("\r\n\r\nno JSON"));
  EXPECT_THAT(turned("body", "no JSON"), HasSubstr("Content-Length: 7\r\n"));
  EXPECT_EQ(bodyOf(turned("error_reply", "go away")), errorReply(200, "Stand-in", "go away").body);
  EXPECT_EQ(bodyOf(turned("nul_at", "2")), std::string("{\"\0a\":1}", 8));
  EXPECT_EQ(bodyOf(turned("nul_at", "999")), std::string("{\"a\":1}\0", 8));
  EXPECT_THAT(turned("nul_at", "2"), HasSubstr("Content-Length: 8\r\n"));
}

TEST(ReplyTest, AHugeBodyHasItsSizeAndStaysJson) {
  std::string body = bodyOf(turned("huge_body", "1000000"));
  EXPECT_EQ(body.size(), 1000000U);
  std::string problem;
  JsonTree tree = parseJson(body, problem);
  ASSERT_TRUE(tree) << problem;
  EXPECT_EQ(jsonTextAt(tree.get(), {"a"}), "1");
  EXPECT_EQ(bodyOf(turned("huge_body", "5")), kReply.body);
  Knobs knobs;
  knobs.hugeBody = 100;
  EXPECT_EQ(bodyOf(whole(misbehavedPlan({200, "{}"}, knobs))).size(), 100U);
  EXPECT_EQ(bodyOf(whole(misbehavedPlan({200, "text"}, knobs))), "text");
}

TEST(ReplyTest, AReplyIsSplitAtThePositionsTold) {
  Knobs knobs;
  knobs.splitAt = {20, 5, 20, 0, 100000};
  auto pieces = misbehavedPlan(kReply, knobs).pieces;
  ASSERT_EQ(pieces.size(), 3U);
  EXPECT_EQ(pieces[0].size(), 5U);
  EXPECT_EQ(pieces[1].size(), 15U);
  EXPECT_EQ(pieces[0] + pieces[1] + pieces[2], kHonest);
}

TEST(ReplyTest, AReplyIsSplitAtEveryByte) {
  Knobs knobs;
  knobs.splitEvery = 1;
  ReplyPlan plan = misbehavedPlan(kReply, knobs);
  EXPECT_EQ(plan.pieces.size(), std::string(kHonest).size());
  EXPECT_EQ(whole(plan), kHonest);
  EXPECT_EQ(plan.pauseMs, knobs.splitPauseMs);
}

std::vector<bool> misbehaves(MisbehaviourGate& gate, std::initializer_list<const char*> paths) {
  std::vector<bool> verdicts;
  for (const char* path : paths) verdicts.push_back(gate.judge(path).misbehave);
  return verdicts;
}

TEST(MisbehaviourGateTest, EveryRequestIsAimedAtUnlessALimitIsSet) {
  Knobs knobs;
  MisbehaviourGate gate(knobs);
  EXPECT_THAT(misbehaves(gate, {"/a", "/b", "/a"}), ElementsAre(true, true, true));
}

TEST(MisbehaviourGateTest, OthersThanTheNamedPathAreNeitherAimedAtNorCounted) {
  Knobs knobs;
  knobs.misbehavePath = "/a";
  knobs.misbehaveSkip = 1;
  knobs.misbehaveCount = 2;
  MisbehaviourGate gate(knobs);
  EXPECT_THAT(misbehaves(gate, {"/b", "/a", "/a", "/b", "/a", "/a", "/a/"}),
              ElementsAre(false, false, true, false, true, false, false));
}

TEST(MisbehaviourGateTest, RestartAndExitComeOnceAtTheirRequest) {
  Knobs knobs;
  knobs.restartAfter = 2;
  knobs.exitAfterRequests = 3;
  MisbehaviourGate gate(knobs);
  std::vector<bool> restarts;
  std::vector<bool> exits;
  for (int i = 0; i < 4; ++i) {
    auto verdict = gate.judge("/a");
    restarts.push_back(verdict.restart);
    exits.push_back(verdict.exit);
  }
  EXPECT_THAT(restarts, ElementsAre(false, true, false, false));
  EXPECT_THAT(exits, ElementsAre(false, false, true, false));
}

}  // namespace
}  // namespace Vantrel::StandIn
