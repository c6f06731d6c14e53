// Direct starts of transfers, as the desktop client receives them, and its windows.
#include <gmock/gmock.h>

#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;
using testing::StartsWith;

class TransfersTest : public ServedTest {
 protected:
  void SetUp() override {
    ServedTest::SetUp();
    instance_.emplace(host());
  }
  void TearDown() override {
    instance_.reset();
    ServedTest::TearDown();
  }

  // What stands between the document's opening and closing tag, for each document so far.
  std::vector<std::string> documents() {
    std::vector<std::string> contents;
    for (const std::string& request : server_.requests(kTransfersPath)) {
      const std::string document = messageBody(request);
      const std::string opening = "<xferreq xmlns=\"https://";
      const std::string closing = "</xferreq>";
      EXPECT_THAT(document, StartsWith(opening));
      EXPECT_THAT(document, HasSubstr("/xml/xferreq/\">"));
      EXPECT_THAT(document, EndsWith(closing));
      const size_t start = document.find("\">") + 2;
      contents.push_back(document.substr(start, document.size() - closing.size() - start));
    }
    return contents;
  }
  // The reply to no page: a start answers nothing whatever became of it.
  void startWith(const char* method, const std::vector<std::string>& texts) {
    std::vector<Value> arguments;
    for (const std::string& argument : texts) arguments.push_back(text(argument));
    const Host::CallResult result = instance_->call(method, arguments);
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.value, Value::undefined());
  }

  std::optional<Instance> instance_;
};

TEST_F(TransfersTest, ADownloadIsPostedAsADocument) {
  startWith("startDownload", {"http://files.host/a"});
  const std::string document = messageBody(server_.requests(kTransfersPath).at(0));
  EXPECT_EQ(server_.requests(kTransfersPath).at(0),
            "POST /transfers/ HTTP/1.1\r\n"
            "Authorization-key: the-key\r\n"
            "Connection: close\r\n"
            "Content-Length: " +
                std::to_string(document.size()) +
                "\r\n"
                "Content-Type: application/vnd.orvane.xferreq+xml\r\n"
                "User-Agent: Orvane Vantrel\r\n"
                "\r\n" +
                document);
  EXPECT_THAT(documents(), ElementsAre("<src>http://files.host/a</src>"));
  EXPECT_TRUE(logHas("LOG PlugIn::startDownload()\r\n"));
  EXPECT_TRUE(logHas("LOG   http://files.host/a\r\n"));
}

TEST_F(TransfersTest, SourcesAreEscapedForTheDocumentOnly) {
  startWith("startDownload", {"http://h/?a=1&b=<2>\"'%s"});
  EXPECT_THAT(documents(), ElementsAre("<src>http://h/?a=1&amp;b=&lt;2&gt;\"'%s</src>"));
}

TEST_F(TransfersTest, ASourceThatIsEmptyBehindItsNulIsLeftOut) {
  startWith("startDownload", {std::string("\0x", 2)});
  EXPECT_THAT(documents(), ElementsAre(""));
}

TEST_F(TransfersTest, ADestinationThatNobodyChoseIsRefused) {
  startWith("startDownloadToPath", {"http://h/a", "C:\\Users\\me"});
  EXPECT_THAT(documents(), IsEmpty());
  EXPECT_TRUE(
      logHas("ERR The website attempted to transfer to an unauthorized directory: "
             "C:\\Users\\me\r\n"));
}

TEST_F(TransfersTest, AnEmptyDestinationIsNone) {
  startWith("startDownloadToPath", {"http://h/a", ""});
  EXPECT_THAT(documents(), ElementsAre("<src>http://h/a</src>"));
}

TEST_F(TransfersTest, AnUploadNamesItsFileAsAUrlAndIsNotChecked) {
  startWith("startUploadToURL", {"C:\\a b\\c.txt", "http://h/up?x=1&y=2"});
  EXPECT_THAT(documents(), ElementsAre("<src>file://C:/a b/c.txt</src>"
                                       "<dest>http://h/up?x=1&amp;y=2</dest>"));
}

TEST_F(TransfersTest, ListsKeepOrderAndDuplicatesUntilCleared) {
  for (const char* url : {"u1", "u2", "u1"}) startWith("addToDownloadList", {url});
  startWith("startListDownloadToPath", {""});
  startWith("startListDownloadToPath", {""});
  instance_->call("clearDownloadList");
  startWith("startListDownloadToPath", {""});
  EXPECT_THAT(documents(), ElementsAre("<src>u1</src><src>u2</src><src>u1</src>",
                                       "<src>u1</src><src>u2</src><src>u1</src>", ""));
}

TEST_F(TransfersTest, TheUploadListIsAnotherList) {
  startWith("addToDownloadList", {"u1"});
  startWith("addToUploadList", {"C:\\f1"});
  startWith("addToUploadList", {"f2"});
  startWith("startListUploadToURL", {"http://h/"});
  instance_->call("clearUploadList");
  startWith("startListUploadToURL", {"http://h/"});
  EXPECT_THAT(documents(), ElementsAre("<src>file://C:/f1</src><src>file://f2</src>"
                                       "<dest>http://h/</dest>",
                                       "<dest>http://h/</dest>"));
}

TEST_F(TransfersTest, ListsOfInstancesAreTheirOwn) {
  startWith("addToDownloadList", {"u1"});
  Instance other(host());
  other.call("startListDownloadToPath", {text("")});
  EXPECT_THAT(documents(), ElementsAre(""));
}

TEST_F(TransfersTest, ClientsThatRefuseOrSaySomethingElseChangeNothing) {
  for (const char* reply : {"HTTP/1.1 500 No\r\nContent-Length: 2\r\n\r\nno", "nonsense", ""}) {
    server_.next(kTransfersPath, Script().send(reply));
    startWith("startDownload", {"u"});
  }
  EXPECT_THAT(documents(), SizeIs(3));
  EXPECT_EQ(logCount("ERR " + std::string(kContactError)), 2U);
}

TEST_F(TransfersTest, WindowsAreAskedForByName) {
  const std::pair<const char*, const char*> windows[] = {
      {"displayTransferManager", "/windows/transfer-manager/"},
      {"displayAboutWindow", "/windows/about/"},
      {"displayPreferencesWindow", "/windows/preferences/"}};
  profile_.writeProcessId("4");
  for (const auto& [method, path] : windows) {
    startWith(method, {});
    EXPECT_THAT(server_.requests(path),
                ElementsAre("GET " + std::string(path) +
                            " HTTP/1.1\r\n"
                            "Authorization-key: the-key\r\n"
                            "Connection: close\r\n"
                            "Content-Length: 0\r\n"
                            "Content-Type: application/vnd.orvane.xferreq+xml\r\n"
                            "User-Agent: Orvane Vantrel\r\n"
                            "\r\n"));
  }
}

TEST_F(TransfersTest, AWindowThatDoesNotComeIsOnlyLogged) {
  const std::string line = "ERR Error displaying window: " + std::string(kContactError);
  server_.always("/windows/about/", Script().send(httpReply("no", "404 Not Found")));
  startWith("displayAboutWindow", {});
  EXPECT_FALSE(logHas(line));
  server_.always("/windows/about/", Script());
  startWith("displayAboutWindow", {});
  EXPECT_TRUE(logHas(line));
}

}  // namespace
}  // namespace Vantrel::Web
