#include "tools/client/knobs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/scratch_folder.h"

namespace Vantrel::StandIn {
namespace {

using testing::ElementsAre;

TEST(KnobsTest, LinesSetTheirKnobs) {
  Knobs knobs;
  EXPECT_EQ(readKnobs(knobs,
                      "# a remark\n\nchunk_bytes=12\r\nsilent=1\nsplit_at=1,20,3\n"
                      "misbehave_path=/v5/vantrel/info/ping\nuri_file=key_lf",
                      ""),
            "");
  EXPECT_EQ(knobs.chunkBytes, 12);
  EXPECT_TRUE(knobs.silent);
  EXPECT_THAT(knobs.splitAt, ElementsAre(1, 20, 3));
  EXPECT_EQ(knobs.misbehavePath, "/v5/vantrel/info/ping");
  EXPECT_EQ(knobs.uriFile, "key_lf");
}

TEST(KnobsTest, AnUnknownNameIsTheFaultOfItsLine) {
  Knobs knobs;
  EXPECT_EQ(readKnobs(knobs, "silent=1\nsilence=1\n", ""), "line 2: unknown knob: silence");
}

TEST(KnobsTest, ALineWithoutAnEqualsSignIsAFault) {
  Knobs knobs;
  EXPECT_EQ(readKnobs(knobs, "silent\n", ""), "line 1: no equals sign");
}

TEST(KnobsTest, ValuesOutsideTheirFormAreRefused) {
  Knobs knobs;
  EXPECT_EQ(setKnob(knobs, "silent", "yes", ""), "bad value of silent: yes");
  EXPECT_EQ(setKnob(knobs, "port", "65536", ""), "bad value of port: 65536");
  EXPECT_EQ(setKnob(knobs, "port", "", ""), "bad value of port: ");
  EXPECT_EQ(setKnob(knobs, "port", "80x", ""), "bad value of port: 80x");
  EXPECT_EQ(setKnob(knobs, "chunk_bytes", "0", ""), "bad value of chunk_bytes: 0");
  EXPECT_EQ(setKnob(knobs, "split_at", "3,,4", ""), "bad value of split_at: 3,,4");
  EXPECT_EQ(setKnob(knobs, "split_at", "-1", ""), "bad value of split_at: -1");
  EXPECT_EQ(setKnob(knobs, "uri_file", "key|key_lf", ""), "bad value of uri_file: key|key_lf");
}

TEST(KnobsTest, NumbersMayCarryASign) {
  Knobs knobs;
  EXPECT_EQ(setKnob(knobs, "length_delta", "+5", ""), "");
  EXPECT_EQ(knobs.lengthDelta, 5);
  EXPECT_EQ(setKnob(knobs, "length_delta", "-3", ""), "");
  EXPECT_EQ(knobs.lengthDelta, -3);
}

TEST(KnobsTest, TextsKnowEscapes) {
  Knobs knobs;
  EXPECT_EQ(setKnob(knobs, "body", R"(a\r\n\t\\b\0c=d\)", ""), "");
  EXPECT_EQ(knobs.body, std::string("a\r\n\t\\b\0c=d\\", 11));
}

TEST(KnobsTest, AnEmptyTextIsSetAndNotLeftOut) {
  Knobs knobs;
  EXPECT_FALSE(knobs.body.has_value());
  EXPECT_EQ(setKnob(knobs, "body", "", ""), "");
  EXPECT_EQ(knobs.body, "");
}

TEST(KnobsTest, ARelativePathCountsFromTheFolderOfItsFile) {
  ScratchFolder scratch;
  std::string folder = textOf(scratch.path());
  Knobs knobs;
  EXPECT_EQ(readKnobs(knobs, "record=rec\nremote_root=" + folder + "/far\n", folder), "");
  EXPECT_EQ(knobs.record, folder + "/rec");
  EXPECT_EQ(knobs.remoteRoot, folder + "/far");
}

TEST(KnobsTest, ArgumentsSetTheirKnobs) {
  Knobs knobs;
  EXPECT_EQ(readArgument(knobs, "--status=500"), "");
  EXPECT_EQ(knobs.status, 500);
  EXPECT_EQ(readArgument(knobs, "--record=rec"), "");
  EXPECT_EQ(knobs.record, "rec");
  EXPECT_EQ(readArgument(knobs, "status=500"), "not of the form --name=value: status=500");
  EXPECT_EQ(readArgument(knobs, "--status"), "not of the form --name=value: --status");
}

// A value that suits the knob and differs from its default.
std::string otherValue(const KnobEntry& entry) {
  switch (entry.form) {
    case KnobForm::kFlag:
      return "1";
    case KnobForm::kNumber:
      return std::to_string(entry.low + 1);
    case KnobForm::kPositions:
      return "7";
    case KnobForm::kChoice:
      return "none";
    default:
      return "other";
  }
}

TEST(KnobsTest, EveryKnobOfTheTableSetsOneFieldOfItsOwn) {
  for (const KnobEntry& entry : knobTable()) {
    Knobs knobs;
    EXPECT_EQ(setKnob(knobs, entry.name, otherValue(entry), ""), "") << entry.name;
    for (const KnobEntry& other : knobTable()) {
      if (&other == &entry) continue;
      EXPECT_FALSE(other.field == entry.field) << entry.name << " and " << other.name;
      EXPECT_NE(other.name, entry.name);
    }
  }
}

TEST(KnobsTest, TheManualTellsEveryKnob) {
  std::string manual = bytesOf(pathOf(OV_CLIENT_MANUAL));
  ASSERT_FALSE(manual.empty());
  for (const KnobEntry& entry : knobTable())
    EXPECT_NE(manual.find("| `" + std::string(entry.name) + "` |"), std::string::npos)
        << entry.name;
}

}  // namespace
}  // namespace Vantrel::StandIn
