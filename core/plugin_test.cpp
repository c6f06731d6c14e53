// Life, session and identification of an instance.
#include "core/plugin.h"

#include "tests/support/core_fixture.h"

namespace Vantrel::Web {
namespace {

using TestSupport::Script;

constexpr char kActivity[] = "/v5/vantrel/transfers/activity";

TEST_F(PluginTest, ConstructionAndDestructionAreLogged) {
  { const Plugin unused; }
  EXPECT_EQ(log_.countContaining("DBG Plugin() ["), 1u);
  EXPECT_EQ(log_.count("DBG Plugin() - done"), 1u);
  EXPECT_EQ(log_.countContaining("DBG ~Plugin() ["), 1u);
  EXPECT_EQ(log_.count("DBG ~Plugin() - done"), 1u);
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
}

TEST_F(PluginTest, InitLooksForTheClientAndStartsTheRequestThread) {
  plugin();
  EXPECT_TRUE(log_.has("DBG PlugIn::init() - launchTimeoutMs=0")) << log_.text();
  EXPECT_EQ(server_.requests(kPing).size(), 1u);
  plugin().httpRequestImplementation("GET", "/x", "", callback());
  EXPECT_TRUE(answers_.wait(1));
}

TEST_F(PluginTest, AClientThatCannotBeStartedDoesNotStopInit) {
  files_.removeUrl();
  plugin();
  EXPECT_TRUE(log_.has("ERR Failed to determine Orvane Vantrel executable path")) << log_.text();
  EXPECT_EQ(Plugin::queryVersion(), "3.7");
}

TEST_F(PluginTest, TheUserAgentNamesTheBrowser) {
  const struct {
    const char* userAgent;
    const char* browserHost;
  } kRows[] = {
      {"Mozilla/5.0 (Windows NT 6.1; rv:44.0) Gecko/20100101 Firefox/44.0", "firefox"},
      {"Mozilla/5.0 AppleWebKit/537.36 Chrome/44.0 Safari/537.36", "chrome"},
      {"Mozilla/5.0 AppleWebKit/534.57 Version/5.1.7 Safari/534.57", "safari"},
      {"FIREFOX chrome", "firefox"},
      {"Some OTHER Browser/1.0", "some other browser/1.0"},
      {"\xC4\xD6", "\xC4\xD6"},
      {"", ""},
      {"%s%n", "%s%n"},
  };
  for (const auto& row : kRows) {
    Plugin plugin;
    plugin.setUserAgent(row.userAgent);
    EXPECT_EQ(plugin.getBrowserHost(), row.browserHost);
    EXPECT_TRUE(log_.has(std::string("LOG Browser host: ") + row.browserHost)) << log_.text();
  }
}

TEST_F(PluginTest, VersionsAndEnginesAreConstant) {
  EXPECT_EQ(Plugin::queryVersion(), "3.7");
  EXPECT_EQ(Plugin::queryBuildVersion(), "3.7.4.146831");
  EXPECT_EQ(Plugin::queryPluginVersion(), "3.7.4.146831");
  EXPECT_EQ(Plugin::queryBrowserEngine(0), "Gecko");
  EXPECT_EQ(Plugin::queryBrowserEngine(1), "MSHTML");
  EXPECT_EQ(Plugin::queryBrowserEngine(2), "WebKit");
  EXPECT_EQ(Plugin::queryBrowserEngine(3), "Unknown");
  EXPECT_EQ(Plugin::queryBrowserEngine(-1), "Unknown");
}

TEST_F(PluginTest, AnIdWithoutACaretPassesOnAnyHost) {
  EXPECT_EQ(plugin().validateHostname("other.host"), "");
  EXPECT_EQ(plugin().validateHostname(""), "");
  EXPECT_EQ(plugin().validateHostname("x^some.host"), "");
}

TEST_F(PluginTest, ACaretTiesTheIdToTheExactHost) {
  const std::string refusal = jsonErrorReply("Invalid application ID hostname: some.host");
  EXPECT_EQ(plugin().validateHostname("^some.host"), "");
  for (const char* const id :
       {"^Some.Host", "^", "^some.hos", "^some.host.", "^sub.some.host", "^^some.host"}) {
    EXPECT_EQ(plugin().validateHostname(id), refusal) << id;
  }
  EXPECT_TRUE(log_.has("ERR Hostname validation failed:\n  Expected: some.host\n  Got: Some.Host"))
      << log_.text();
}

TEST_F(PluginTest, WithoutAHostEveryIdPasses) {
  plugin().hostname.clear();
  EXPECT_EQ(plugin().validateHostname("^anything"), "");
  EXPECT_EQ(plugin().validateHostname("^"), "");
}

TEST_F(PluginTest, ASessionAnswersWithItsIdRaw) {
  EXPECT_EQ(plugin().initSession("id\"\\", "domain"), "{\"app_id\":\"id\"\\\"}");
  EXPECT_TRUE(log_.has("DBG initSession\n  appId: id\"\\\n  domain: domain")) << log_.text();
}

TEST_F(PluginTest, ASecondSessionIsRefusedAndTheFirstIdStaysInForce) {
  EXPECT_EQ(plugin().initSession("first", ""), "{\"app_id\":\"first\"}");
  const std::string refusal = jsonErrorReply("Session was already initialized");
  EXPECT_EQ(plugin().initSession("second", ""), refusal);
  EXPECT_EQ(plugin().initSession("first", ""), refusal);
  ASSERT_TRUE(server_.waitForRequests(kActivity, 1));
  EXPECT_NE(server_.requests(kActivity).front().find("\"app_id\": \"first\""), std::string::npos);
}

TEST_F(PluginTest, AFailedSessionStartsNothingAndMayBeTriedAgain) {
  EXPECT_EQ(plugin().initSession("^other", ""),
            jsonErrorReply("Invalid application ID hostname: some.host"));
  EXPECT_EQ(log_.countContaining("TransferPoller::run()"), 0u);
  EXPECT_EQ(plugin().initSession("^some.host", ""), "{\"app_id\":\"^some.host\"}");
  EXPECT_TRUE(server_.waitForRequests(kActivity, 1));
}

TEST_F(PluginTest, AnEmptyIdMakesASession) {
  EXPECT_EQ(plugin().initSession("", ""), "{\"app_id\":\"\"}");
  EXPECT_EQ(plugin().initSession("", ""), jsonErrorReply("Session was already initialized"));
}

TEST_F(PluginTest, ParametersMayBeMissing) {
  plugin().setParameters({});
  plugin().setParameters(
      {{"link-capacity", "1000"}, {"transfer-icon", "i"}, {"LINK-capacity", "x"}});
  plugin().setParameters({{"link-capacity", "no number"}});
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
}

TEST_F(PluginTest, DestructionStopsTheRequestThreadThenThePoller) {
  plugin().initSession("id", "");
  core_.reset();
  std::vector<std::string> order;
  for (const std::string& line : log_.lines("DBG")) {
    for (const char* const part : {"~RequestWorker()", "~TransfersPoller()", "~Plugin() - done"}) {
      if (line.find(part) != std::string::npos) order.push_back(part);
    }
  }
  EXPECT_EQ(order, (std::vector<std::string>{"~RequestWorker()", "~TransfersPoller()",
                                             "~Plugin() - done"}))
      << log_.text();
}

}  // namespace
}  // namespace Vantrel::Web
