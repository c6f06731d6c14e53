#include "core/transfer.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "service/locations.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"
#include "text/error_texts.h"

namespace Vantrel::Web {
namespace {

using TestSupport::Script;
using TestSupport::ScriptedServer;

constexpr char kOpen[] = "<xferreq xmlns=\"https://orvane.example/xml/xferreq/\">";

std::string documentOf(const std::vector<std::string>& files, const std::string& destination) {
  Transfer transfer;
  transfer.setFiles(files);
  transfer.setDestination(destination);
  return transfer.document();
}

TEST(TransferTest, SourcesThenDestinationWithNothingInBetween) {
  EXPECT_EQ(documentOf({"a", "b"}, "c"),
            std::string(kOpen) + "<src>a</src><src>b</src><dest>c</dest></xferreq>");
}

TEST(TransferTest, EmptyPartsLeaveNoTrace) {
  EXPECT_EQ(documentOf({}, "c"), std::string(kOpen) + "<dest>c</dest></xferreq>");
  EXPECT_EQ(documentOf({"a"}, ""), std::string(kOpen) + "<src>a</src></xferreq>");
  EXPECT_EQ(documentOf({"", "a", ""}, ""), std::string(kOpen) + "<src>a</src></xferreq>");
  EXPECT_EQ(documentOf({}, ""), std::string(kOpen) + "</xferreq>");
}

TEST(TransferTest, MarkupIsEscapedAndQuotesAreNot) {
  EXPECT_EQ(documentOf({"h://x?a=1&b=2", "<\"'>"}, "&"),
            std::string(kOpen) +
                "<src>h://x?a=1&amp;b=2</src><src>&lt;\"'&gt;</src><dest>&amp;</dest></xferreq>");
}

TEST(TransferTest, ParametersStandInTheClientsForm) {
  class WithParameters : public Transfer {
   public:
    WithParameters() { parameters_ = {{"b", "<2>"}, {"a", "1"}}; }
  };
  EXPECT_EQ(WithParameters().document(),
            std::string(kOpen) +
                "<param name=\"a value=\"1\"><param name=\"b value=\"<2>\">"
                "</xferreq>");
}

class TransferPostTest : public testing::Test {
 protected:
  TransferPostTest() {
    files_.writeUrl(server_.url() + "\nkey");
    transfer_.setFiles({"a?1&2"});
    transfer_.setDestination("d");
  }

  const TestSupport::ServiceFiles files_;
  TestSupport::FakePlatform platform_;
  TestSupport::LogRecorder log_;
  ScriptedServer server_;
  Transfer transfer_;
};

TEST_F(TransferPostTest, BytesOnTheWire) {
  EXPECT_TRUE(transfer_.post());
  const std::string document = std::string(kOpen) + "<src>a?1&amp;2</src><dest>d</dest></xferreq>";
  EXPECT_EQ(server_.requests("/transfers/"),
            std::vector<std::string>{"POST /transfers/ HTTP/1.1\r\n"
                                     "Authorization-key: key\r\n"
                                     "Connection: close\r\n"
                                     "Content-Length: " +
                                     std::to_string(document.size()) +
                                     "\r\n"
                                     "Content-Type: application/vnd.orvane.xferreq+xml\r\n"
                                     "User-Agent: Orvane Vantrel\r\n"
                                     "\r\n" +
                                     document});
}

TEST_F(TransferPostTest, ErrorStatusIsSuccess) {
  server_.always("/transfers/", Script().send(TestSupport::httpReply("no", "500 Error")));
  EXPECT_TRUE(transfer_.post());
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
}

TEST_F(TransferPostTest, ClientThatCannotBeStartedIsLoggedOnceAndNotConnectedTo) {
  files_.removeUrl();
  EXPECT_FALSE(transfer_.post());
  EXPECT_EQ(log_.count(std::string("ERR ") + kErrorContacting), 1U);
  EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(TransferPostTest, CloseWithoutAReplyIsFalseAndLoggedOnce) {
  server_.always("/transfers/", Script());
  EXPECT_FALSE(transfer_.post());
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{kErrorContacting});
}

TEST_F(TransferPostTest, AddressThatGoesAwayAfterTheLaunchIsFalseAndReported) {
  constexpr char kPing[] = "/v5/vantrel/info/ping";
  server_.always(kPing, Script().hold().send(TestSupport::httpReply("{}")));
  std::thread remover([&] {
    server_.waitForRequests(kPing, 1);
    files_.removeUrl();
    clearVantrelUrl();
    server_.release();
  });
  EXPECT_FALSE(transfer_.post());
  remover.join();
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{kErrorCreatingRequest});
}

}  // namespace
}  // namespace Vantrel::Web
