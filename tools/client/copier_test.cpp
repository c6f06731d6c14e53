#include "tools/client/copier.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/support/scratch_folder.h"
#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

namespace fs = std::filesystem;

std::string someBytes(size_t count) {
  std::string bytes(count, '\0');
  for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>((i * 7 + i / 251) & 0xFFU);
  return bytes;
}

class CopierTest : public testing::Test {
 protected:
  CopierTest() {
    knobs_.chunkBytes = 1000;
    knobs_.chunkPauseMs = 0;
  }

  TransferOrder order(std::vector<fs::path> sources) {
    TransferOrder made;
    made.sources = std::move(sources);
    made.destination = in_;
    return made;
  }

  // The record of a transfer once it has finished.
  TransferRecord finished(const TransferOrder& made) {
    Copier copier(knobs_, book_);
    std::string uuid = book_.add(made, "r");
    copier.enqueue(uuid, made);
    while (!record(uuid).finished()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return record(uuid);
  }

  TransferRecord record(const std::string& uuid) {
    for (const TransferRecord& found : book_.changedSince(0, "").transfers)
      if (found.uuid == uuid) return found;
    return {};
  }

  Knobs knobs_;
  TransferBook book_;
  ScratchFolder scratch_;
  fs::path in_ = scratch_.path() / "in";
};

TEST_F(CopierTest, AFileArrivesByteForByte) {
  std::string bytes = someBytes(123456);
  TransferRecord record = finished(order({scratch_.write("far/a.bin", bytes)}));
  EXPECT_EQ(record.status, TransferStatus::kCompleted) << record.statusText;
  EXPECT_EQ(record.statusText, "Completed");
  EXPECT_EQ(record.bytesExpected, 123456);
  EXPECT_EQ(record.bytesWritten, 123456);
  EXPECT_EQ(record.filesExpected, 1);
  EXPECT_EQ(record.filesCompleted, 1);
  EXPECT_EQ(record.currentFile, "");
  EXPECT_TRUE(bytesOf(in_ / "a.bin") == bytes);
  EXPECT_FALSE(fs::exists(in_ / "a.bin.partial"));
}

TEST_F(CopierTest, AnEmptyFileArrivesToo) {
  TransferRecord record = finished(order({scratch_.write("far/a.bin", "")}));
  EXPECT_EQ(record.status, TransferStatus::kCompleted) << record.statusText;
  EXPECT_TRUE(fs::exists(in_ / "a.bin"));
}

TEST_F(CopierTest, AFileThatIsThereAlreadyIsReplaced) {
  scratch_.write("in/a.bin", "older and longer");
  finished(order({scratch_.write("far/a.bin", "new")}));
  EXPECT_EQ(bytesOf(in_ / "a.bin"), "new");
}

TEST_F(CopierTest, AFolderArrivesWithAllThatIsInIt) {
  scratch_.write("far/d/one.bin", "1");
  scratch_.write("far/d/sub/two.bin", "22");
  fs::create_directories(scratch_.path() / "far/d/empty");
  TransferRecord record = finished(order({scratch_.path() / "far/d/"}));
  EXPECT_EQ(record.status, TransferStatus::kCompleted) << record.statusText;
  EXPECT_EQ(record.filesExpected, 2);
  EXPECT_EQ(record.bytesWritten, 3);
  EXPECT_EQ(bytesOf(in_ / "d/one.bin"), "1");
  EXPECT_EQ(bytesOf(in_ / "d/sub/two.bin"), "22");
  EXPECT_TRUE(fs::is_directory(in_ / "d/empty"));
}

TEST_F(CopierTest, AFolderMayBeCopiedIntoItself) {
  scratch_.write("in/one.bin", "1");
  TransferRecord record = finished(order({in_}));
  EXPECT_EQ(record.status, TransferStatus::kCompleted) << record.statusText;
  EXPECT_EQ(bytesOf(in_ / "in/one.bin"), "1");
}

TEST_F(CopierTest, NonAsciiNamesArriveUnderTheirNames) {
  TransferRecord record = finished(order({scratch_.write("far/\xC3\xA9\xE2\x82\xAC.bin", "x")}));
  EXPECT_EQ(record.status, TransferStatus::kCompleted) << record.statusText;
  EXPECT_EQ(bytesOf(in_ / pathOf("\xC3\xA9\xE2\x82\xAC.bin")), "x");
}

TEST_F(CopierTest, AMissingSourceFailsWithItsName) {
  fs::path missing = scratch_.path() / "far/none.bin";
  TransferRecord record = finished(order({scratch_.write("far/a.bin", "x"), missing}));
  EXPECT_EQ(record.status, TransferStatus::kFailed);
  EXPECT_EQ(record.statusText, "No such file or folder: " + textOf(missing));
  EXPECT_FALSE(fs::exists(in_ / "a.bin"));
}

TEST_F(CopierTest, ADestinationThatIsAFileFails) {
  scratch_.write("in", "a file");
  TransferRecord record = finished(order({scratch_.write("far/a.bin", "x")}));
  EXPECT_EQ(record.status, TransferStatus::kFailed);
  EXPECT_EQ(record.statusText, "The file cannot be written: " + textOf(in_ / "a.bin"));
}

TEST_F(CopierTest, AnOrderWithAProblemFailsWithIt) {
  TransferOrder bad = order({});
  bad.problem = "no way";
  TransferRecord record = finished(bad);
  EXPECT_EQ(record.status, TransferStatus::kFailed);
  EXPECT_EQ(record.statusText, "no way");
}

TEST_F(CopierTest, AFailureOnTheWayLeavesNoHalfFile) {
  knobs_.transferFailAt = 2500;
  TransferRecord record = finished(order({scratch_.write("far/a.bin", someBytes(9000))}));
  EXPECT_EQ(record.status, TransferStatus::kFailed);
  EXPECT_EQ(record.statusText, "The connection to the remote side was lost");
  EXPECT_EQ(record.bytesWritten, 3000);
  EXPECT_TRUE(fs::is_empty(in_));
}

TEST_F(CopierTest, TheEndOfTheCopierEndsALongPause) {
  knobs_.chunkPauseMs = 3600000;
  TransferOrder made = order({scratch_.write("far/a.bin", someBytes(9000))});
  std::string uuid = book_.add(made, "r");
  {
    Copier copier(knobs_, book_);
    copier.enqueue(uuid, made);
    while (record(uuid).bytesWritten == 0)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_TRUE(copier.busy());
  }
  EXPECT_EQ(record(uuid).status, TransferStatus::kRunning);
  EXPECT_EQ(record(uuid).bytesWritten, 1000);
  EXPECT_TRUE(fs::is_empty(in_));
}

TEST_F(CopierTest, TransfersAreDoneInTheirOrder) {
  Copier copier(knobs_, book_);
  std::vector<std::string> uuids;
  for (int i = 0; i < 5; ++i) {
    TransferOrder made = order({scratch_.write("far/" + std::to_string(i), someBytes(3000))});
    uuids.push_back(book_.add(made, "r"));
    copier.enqueue(uuids.back(), made);
  }
  while (copier.busy()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  auto records = book_.changedSince(0, "").transfers;
  ASSERT_EQ(records.size(), 5U);
  for (size_t i = 0; i < records.size(); ++i) {
    EXPECT_EQ(records[i].status, TransferStatus::kCompleted);
    EXPECT_TRUE(i == 0 || records[i].changed > records[i - 1].changed);
  }
}

}  // namespace
}  // namespace Vantrel::StandIn
