#include "tools/client/activity.h"

#include <gtest/gtest.h>

#include "tools/client/json_tree.h"

namespace Vantrel::StandIn {
namespace {

std::string percentageOf(const TransferRecord& record) {
  std::string problem;
  JsonTree tree = parseJson(transferDocument(record), problem);
  return jsonTextAt(tree.get(), {"percentage"});
}

TEST(TokenTest, OnlyTokensOfThisRunCount) {
  EXPECT_EQ(readToken("0123abcd-17", "0123abcd"), 17U);
  EXPECT_EQ(readToken("17", "0123abcd"), 17U);
  EXPECT_EQ(readToken("0123abce-17", "0123abcd"), 0U);
  EXPECT_EQ(readToken("", "0123abcd"), 0U);
  EXPECT_EQ(readToken("0123abcd-", "0123abcd"), 0U);
  EXPECT_EQ(readToken("0123abcd-1x", "0123abcd"), 0U);
  EXPECT_EQ(readToken("-17", "0123abcd"), 0U);
  EXPECT_EQ(readToken("99999999999999999999", "0123abcd"), 0U);
}

TEST(ActivityTest, ADocumentWithoutChangesStillCarriesItsToken) {
  TransferBook::Changes changes{{}, 5};
  EXPECT_EQ(activityDocument(changes, "run", "string"),
            R"({"iteration_token":"run-5","result_count":0,"transfers":[]})");
  EXPECT_EQ(activityDocument(changes, "run", "number"),
            R"({"iteration_token":5,"result_count":0,"transfers":[]})");
  EXPECT_EQ(activityDocument(changes, "run", "none"), R"({"result_count":0,"transfers":[]})");
}

TEST(ActivityTest, ATransferIsToldWhole) {
  TransferRecord record;
  record.uuid = "u";
  record.requestId = "r";
  record.appId = "^h";
  record.direction = Direction::kSend;
  record.title = "a\"b";
  record.destination = "C:/in";
  record.status = TransferStatus::kRunning;
  record.statusText = "Copying";
  record.currentFile = "C:\\x";
  record.bytesExpected = 200;
  record.bytesWritten = 51;
  record.filesExpected = 3;
  record.filesCompleted = 1;
  EXPECT_EQ(transferDocument(record),
            R"({"uuid":"u","request_id":"r","app_id":"^h","direction":"send","title":"a\"b",)"
            R"("destination":"C:/in","status":"running","status_text":"Copying",)"
            R"("current_file":"C:\\x","bytes_expected":200,"bytes_written":51,"percentage":25,)"
            R"("files_expected":3,"files_completed":1})");
}

TEST(ActivityTest, SeveralTransfersStandInOneList) {
  TransferBook::Changes changes{{TransferRecord(), TransferRecord()}, 2};
  std::string problem;
  JsonTree tree = parseJson(activityDocument(changes, "run", "string"), problem);
  ASSERT_TRUE(tree) << problem;
  EXPECT_EQ(jsonArrayAt(tree.get(), {"transfers"}).size(), 2U);
  EXPECT_EQ(jsonTextAt(tree.get(), {"result_count"}), "2");
}

TEST(ActivityTest, AHundredPercentMeansCompleted) {
  TransferRecord record;
  EXPECT_EQ(percentageOf(record), "0");
  record.status = TransferStatus::kRunning;
  record.bytesExpected = record.bytesWritten = std::int64_t{1} << 40;
  EXPECT_EQ(percentageOf(record), "99");
  record.status = TransferStatus::kCompleted;
  EXPECT_EQ(percentageOf(record), "100");
  record.bytesExpected = record.bytesWritten = 0;
  EXPECT_EQ(percentageOf(record), "100");
}

TEST(ActivityTest, EveryStatusHasAName) {
  TransferRecord record;
  std::vector<std::string> names;
  for (auto status : {TransferStatus::kQueued, TransferStatus::kRunning, TransferStatus::kCompleted,
                      TransferStatus::kFailed}) {
    record.status = status;
    std::string problem;
    JsonTree tree = parseJson(transferDocument(record), problem);
    names.push_back(jsonTextAt(tree.get(), {"status"}));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"queued", "running", "completed", "failed"}));
}

TransferOrder orderFor(const std::string& appId) {
  TransferOrder order;
  order.appId = appId;
  return order;
}

TEST(TransferBookTest, OnlyWhatChangedSinceIsTold) {
  TransferBook book;
  std::string first = book.add(orderFor("a"), "r");
  std::string second = book.add(orderFor("a"), "r");
  auto all = book.changedSince(0, "a");
  ASSERT_EQ(all.transfers.size(), 2U);
  EXPECT_TRUE(book.changedSince(all.latest, "a").transfers.empty());
  book.change(first, [](TransferRecord& record) { record.bytesWritten = 5; });
  auto later = book.changedSince(all.latest, "a");
  ASSERT_EQ(later.transfers.size(), 1U);
  EXPECT_EQ(later.transfers[0].uuid, first);
  EXPECT_EQ(later.transfers[0].bytesWritten, 5);
  EXPECT_GT(later.latest, all.latest);
}

TEST(TransferBookTest, ANumberNotReachedYetCountsAsNone) {
  TransferBook book;
  book.add(orderFor("a"), "r");
  EXPECT_EQ(book.changedSince(100, "a").transfers.size(), 1U);
}

TEST(TransferBookTest, ATransferIsForItsAppIdAndOneWithoutIsForAll) {
  TransferBook book;
  book.add(orderFor("a"), "r");
  book.add(orderFor("b"), "r");
  book.add(orderFor(""), "r");
  EXPECT_EQ(book.changedSince(0, "a").transfers.size(), 2U);
  EXPECT_EQ(book.changedSince(0, "c").transfers.size(), 1U);
}

TEST(TransferBookTest, AnEmptyAppIdSeesOnlyTransfersWithoutOne) {
  TransferBook book;
  book.add(orderFor("a"), "r");
  std::string direct = book.add(orderFor(""), "r");
  auto seen = book.changedSince(0, "").transfers;
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0].uuid, direct);
}

TEST(TransferBookTest, AFullBookLosesItsOldestFinishedTransfer) {
  TransferBook book;
  std::string first;
  for (size_t i = 0; i < TransferBook::kMostTransfers; ++i) {
    std::string uuid = book.add(orderFor("a"), "r");
    if (i == 3) first = uuid;
  }
  EXPECT_EQ(book.add(orderFor("a"), "r"), "");
  book.change(first, [](TransferRecord& record) { record.status = TransferStatus::kFailed; });
  EXPECT_NE(book.add(orderFor("a"), "r"), "");
  auto all = book.changedSince(0, "a").transfers;
  EXPECT_EQ(all.size(), TransferBook::kMostTransfers);
  for (const TransferRecord& record : all) EXPECT_NE(record.uuid, first);
}

TEST(TransferBookTest, AChangeOfAnUnknownTransferIsIgnored) {
  TransferBook book;
  book.change("nobody", [](TransferRecord&) { FAIL(); });
  EXPECT_EQ(book.changedSince(0, "").latest, 0U);
}

}  // namespace
}  // namespace Vantrel::StandIn
