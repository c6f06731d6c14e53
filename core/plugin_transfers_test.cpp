// Transfers that a page starts directly.
#include "core/plugin.h"

#include "tests/support/core_fixture.h"

namespace Vantrel::Web {
namespace {

using TestSupport::httpReply;
using TestSupport::messageBody;
using TestSupport::Script;

class PluginTransfersTest : public PluginTest {
 protected:
  // The documents posted so far.
  std::vector<std::string> documents() const {
    std::vector<std::string> bodies;
    for (const std::string& request : server_.requests("/transfers/")) {
      bodies.push_back(messageBody(request));
    }
    return bodies;
  }
  static std::string document(const std::string& inner) {
    return "<xferreq xmlns=\"https://orvane.example/xml/xferreq/\">" + inner + "</xferreq>";
  }
};

TEST_F(PluginTransfersTest, ADownloadWithoutADestinationIsPosted) {
  EXPECT_TRUE(plugin().startDownload("fasp://h/a?x=1&y=\"2\""));
  EXPECT_EQ(documents(),
            std::vector<std::string>{document("<src>fasp://h/a?x=1&amp;y=\"2\"</src>")});
  EXPECT_TRUE(log_.has("LOG PlugIn::startDownload()")) << log_.text();
  EXPECT_TRUE(log_.has("LOG   fasp://h/a?x=1&y=\"2\"")) << log_.text();
  EXPECT_TRUE(log_.has("DBG Plugin::download() to ")) << log_.text();
}

TEST_F(PluginTransfersTest, ADestinationMustHaveBeenSelected) {
  plugin().setLastSelectedPath("C:\\down load");
  EXPECT_FALSE(plugin().startDownloadToPath("u", "E:\\x %s"));
  EXPECT_TRUE(
      log_.has("ERR The website attempted to transfer to an unauthorized directory: "
               "E:\\x %s"))
      << log_.text();
  EXPECT_TRUE(documents().empty());
  EXPECT_TRUE(plugin().startDownloadToPath("u", "C:\\down load\\sub"));
  EXPECT_TRUE(log_.has("LOG Accepted download to C:\\down load\\sub (user selected C:/down load)"))
      << log_.text();
  EXPECT_EQ(documents(),
            std::vector<std::string>{document("<src>u</src><dest>file://C:/down load/sub</dest>")});
}

TEST_F(PluginTransfersTest, ARefusedDownloadKeepsTheSelectionAnAcceptedOneUsesItUp) {
  plugin().setLastSelectedPath("C:/d");
  EXPECT_FALSE(plugin().startDownloadToPath("u", "E:/x"));
  EXPECT_TRUE(plugin().isDestinationAllowed("C:/d"));
  EXPECT_TRUE(plugin().startDownloadToPath("u", "C:/d"));
  EXPECT_FALSE(plugin().startDownloadToPath("u", "C:/d"));
  EXPECT_EQ(documents().size(), 1u);
}

TEST_F(PluginTransfersTest, DownloadsWithoutADestinationAndUploadsUseTheSelectionUpToo) {
  plugin().setLastSelectedPath("C:/d");
  plugin().startDownload("u");
  EXPECT_FALSE(plugin().isDestinationAllowed("C:/d"));
  plugin().setLastSelectedPath("C:/d");
  plugin().startUploadToURL("C:/f", "u");
  EXPECT_FALSE(plugin().isDestinationAllowed("C:/d"));
}

TEST_F(PluginTransfersTest, AnUploadIsNotHeldToTheApprovedFiles) {
  EXPECT_TRUE(plugin().startUploadToURL("C:\\a b\\<f>", "fasp://h/?a=1&b=2"));
  EXPECT_EQ(documents(), std::vector<std::string>{document("<src>file://C:/a b/&lt;f&gt;</src>"
                                                           "<dest>fasp://h/?a=1&amp;b=2</dest>")});
  EXPECT_TRUE(log_.has("DBG Plugin::upload()")) << log_.text();
}

TEST_F(PluginTransfersTest, ListsKeepOrderAndDuplicatesAndAreNotEmptiedByAStart) {
  plugin().addToDownloadList("b");
  plugin().addToDownloadList("a");
  plugin().addToDownloadList("b");
  const std::string expected = document("<src>b</src><src>a</src><src>b</src>");
  EXPECT_TRUE(plugin().startListDownloadToPath(""));
  EXPECT_TRUE(plugin().startListDownloadToPath(""));
  plugin().clearDownloadList();
  EXPECT_TRUE(plugin().startListDownloadToPath(""));
  EXPECT_EQ(documents(), (std::vector<std::string>{expected, expected, document("")}));
}

TEST_F(PluginTransfersTest, TheUploadListIsAnother) {
  plugin().addToUploadList("C:\\f");
  plugin().addToDownloadList("d");
  EXPECT_TRUE(plugin().startListUploadToURL("u"));
  plugin().clearUploadList();
  EXPECT_TRUE(plugin().startListUploadToURL("u"));
  EXPECT_EQ(documents(), (std::vector<std::string>{document("<src>file://C:/f</src><dest>u</dest>"),
                                                   document("<dest>u</dest>")}));
}

TEST_F(PluginTransfersTest, DroppedFilesGoToTheUploadUrlOfTheElement) {
  plugin().setParameters({{"drop-upload-url", "fasp://drop"}});
  EXPECT_TRUE(plugin().uploadDropped({"C:\\x", "C:\\y"}));
  EXPECT_EQ(documents(),
            std::vector<std::string>{document("<src>file://C:/x</src><src>file://C:/y</src>"
                                              "<dest>fasp://drop</dest>")});
}

TEST_F(PluginTransfersTest, CapacityAndIconOfTheElementReachNoDocument) {
  const std::string expected = document("<src>u</src>");
  plugin().startDownload("u");
  for (const char* const capacity : {"1000", "0", "-1", "no number"}) {
    plugin().setParameters({{"link-capacity", capacity}, {"transfer-icon", "an icon"}});
    plugin().startDownload("u");
  }
  EXPECT_EQ(documents(), std::vector<std::string>(5, expected));
}

TEST_F(PluginTransfersTest, AnErrorStatusCountsAsStarted) {
  server_.always("/transfers/", Script().send(httpReply("no", "500 Internal Server Error")));
  EXPECT_TRUE(plugin().startDownload("u"));
}

TEST_F(PluginTransfersTest, WithoutAClientNothingIsPosted) {
  plugin();
  server_.always(kPing, Script());
  EXPECT_FALSE(plugin().startDownload("u"));
  EXPECT_EQ(log_.countContaining("ERR Error contacting Orvane Vantrel. "), 1u) << log_.text();
  EXPECT_TRUE(documents().empty());
}

TEST_F(PluginTransfersTest, AStartLetsTheClientComeToTheFront) {
  files_.writeProcessId("12");
  int calls = 0;
  platform_.onForeground = [&calls](int32_t id) {
    if (id == 12) ++calls;
    return 0;
  };
  plugin().startDownload("u");
  plugin().startUploadToURL("f", "u");
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace Vantrel::Web
