#include "tools/client/transfer_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/scratch_folder.h"
#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

using testing::ElementsAre;

class TransferOrderTest : public testing::Test {
 protected:
  // The orders of a body with one specification, whose settings and spec are given.
  std::vector<TransferOrder> orders(const std::string& settings, const std::string& spec) {
    return ordersOfSpecs(R"({"orvane_vantrel_settings":{"app_id":"^some.host"},"transfer_specs":[)"
                         R"({"orvane_vantrel_settings":)" +
                             settings + R"(,"transfer_spec":)" + spec + "}]}",
                         folders_, problem_);
  }

  std::string scratchText() const { return textOf(scratch_.path()); }

  ScratchFolder scratch_;
  TransferFolders folders_ = {scratch_.path() / "remote", scratch_.path() / "downloads"};
  std::string problem_;
};

TEST_F(TransferOrderTest, AReceiveWithAnAbsoluteDestinationGoesThere) {
  auto found = orders(R"({"use_absolute_destination_path":true})",
                      R"({"direction":"receive","destination_root":")" + scratchText() +
                          R"(/in","paths":[{"source":"/a/b.bin"},{"source":"c.bin"}]})");
  ASSERT_EQ(found.size(), 1U) << problem_;
  EXPECT_EQ(found[0].appId, "^some.host");
  EXPECT_EQ(found[0].direction, Direction::kReceive);
  EXPECT_EQ(found[0].title, "/a/b.bin");
  EXPECT_THAT(found[0].sources,
              ElementsAre(folders_.remoteRoot / "a/b.bin", folders_.remoteRoot / "c.bin"));
  EXPECT_EQ(found[0].destination, scratch_.path() / "in");
  EXPECT_EQ(found[0].problem, "");
}

TEST_F(TransferOrderTest, WithoutTheFlagADestinationIsBelowTheDownloadFolder) {
  const char* spec =
      R"({"direction":"receive","destination_root":"/sub","paths":[{"source":"a"}]})";
  for (const char* settings : {"{}", R"({"use_absolute_destination_path":false})",
                               R"({"use_absolute_destination_path":"true"})", "7"}) {
    auto found = orders(settings, spec);
    ASSERT_EQ(found.size(), 1U) << problem_;
    EXPECT_EQ(found[0].destination, folders_.downloadRoot / "sub") << settings;
  }
}

TEST_F(TransferOrderTest, WithoutTheFlagNoDestinationLeadsOutOfTheDownloadFolder) {
  for (const char* root : {"../x", "C:/x", "..\\\\x"}) {
    auto found = orders("{}", R"({"direction":"receive","destination_root":")" + std::string(root) +
                                  R"(","paths":[{"source":"a"}]})");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_THAT(found[0].problem, testing::StartsWith("Not a folder below the download folder: "));
  }
}

TEST_F(TransferOrderTest, AnAbsoluteDestinationMustBeAbsolute) {
  auto found =
      orders(R"({"use_absolute_destination_path":true})",
             R"({"direction":"receive","destination_root":"in","paths":[{"source":"a"}]})");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].problem, "Not an absolute destination: in");
}

TEST_F(TransferOrderTest, ASourceThatLeadsOutOfTheRemoteSideFailsTheTransfer) {
  auto found = orders("{}", R"({"direction":"receive","paths":[{"source":"../secret"}]})");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].problem, "The remote side has no such path: ../secret");
}

TEST_F(TransferOrderTest, ASendTakesLocalFilesBelowTheSourceRoot) {
  auto found = orders("{}", R"({"direction":"send","source_root":")" + scratchText() +
                                R"(","destination_root":"/inbox","paths":[{"source":"a.bin"}]})");
  ASSERT_EQ(found.size(), 1U) << problem_;
  EXPECT_EQ(found[0].direction, Direction::kSend);
  EXPECT_THAT(found[0].sources, ElementsAre(scratch_.path() / "a.bin"));
  EXPECT_EQ(found[0].destination, folders_.remoteRoot / "inbox");
}

TEST_F(TransferOrderTest, EverySpecificationGivesAnOrder) {
  std::string spec = R"({"transfer_spec":{"direction":"receive","paths":[{"source":"a"}]}})";
  auto found =
      ordersOfSpecs(R"({"transfer_specs":[)" + spec + "," + spec + "]}", folders_, problem_);
  EXPECT_EQ(found.size(), 2U);
}

TEST_F(TransferOrderTest, BodiesThatAskForNothingTellWhy) {
  auto problemOf = [&](const std::string& body) {
    EXPECT_TRUE(ordersOfSpecs(body, folders_, problem_).empty()) << body;
    return problem_;
  };
  EXPECT_THAT(problemOf("{"), testing::StartsWith("Error parsing JSON: "));
  EXPECT_EQ(problemOf("{}"), "Invalid argument: transfer_specs");
  EXPECT_EQ(problemOf(R"({"transfer_specs":{}})"), "Invalid argument: transfer_specs");
  EXPECT_EQ(problemOf(R"({"transfer_specs":[7]})"), "Invalid argument: direction");
  EXPECT_EQ(problemOf(R"({"transfer_specs":[{"transfer_spec":{"direction":"Send"}}]})"),
            "Invalid argument: direction");
  for (const char* paths : {R"("x")", "[]", "[7]", R"([{"source":""}])", R"([{"target":"a"}])"})
    EXPECT_EQ(problemOf(R"({"transfer_specs":[{"transfer_spec":{"direction":"send","paths":)" +
                        std::string(paths) + "}}]}"),
              "Invalid argument: paths")
        << paths;
}

TEST_F(TransferOrderTest, ADirectDownloadTakesThePathsOfItsUrls) {
  TransferOrder order = orderOfXferRequest(
      {{"http://host/a%20b.bin?x=1", "/c.bin"}, "file://" + scratchText() + "/in"}, folders_);
  EXPECT_EQ(order.direction, Direction::kReceive);
  EXPECT_THAT(order.sources,
              ElementsAre(folders_.remoteRoot / "a b.bin", folders_.remoteRoot / "c.bin"));
  EXPECT_EQ(order.destination, scratch_.path() / "in");
  EXPECT_EQ(order.appId, "");
  EXPECT_EQ(order.problem, "");
}

TEST_F(TransferOrderTest, ADirectDownloadWithoutADestinationGoesToTheDownloadFolder) {
  TransferOrder order = orderOfXferRequest({{"http://host/a.bin"}, ""}, folders_);
  EXPECT_EQ(order.direction, Direction::kReceive);
  EXPECT_EQ(order.destination.lexically_normal(), (folders_.downloadRoot / "").lexically_normal());
}

TEST_F(TransferOrderTest, ADirectUploadGoesToThePathOfItsUrl) {
  TransferOrder order =
      orderOfXferRequest({{"file://" + scratchText() + "/a.bin"}, "https://host/inbox"}, folders_);
  EXPECT_EQ(order.direction, Direction::kSend);
  EXPECT_THAT(order.sources, ElementsAre(scratch_.path() / "a.bin"));
  EXPECT_EQ(order.destination, folders_.remoteRoot / "inbox");
}

TEST_F(TransferOrderTest, ADocumentWithoutSourcesFails) {
  EXPECT_EQ(orderOfXferRequest({{}, ""}, folders_).problem, "Nothing to transfer");
}

}  // namespace
}  // namespace Vantrel::StandIn
