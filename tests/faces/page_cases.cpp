#include "tests/faces/page_cases.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Vantrel::Web::Faces {

namespace {

constexpr char kContacting[] =
    "error: Error contacting Orvane Vantrel. Ensure that it is running, and not blocked by your "
    "firewall or security policies.";
constexpr char kContactReply[] =
    R"("{"error":{"code":-1,"internal_message":"Invalid request","user_message":"Error contacting )"
    R"(Orvane Vantrel. Ensure that it is running, and not blocked by your firewall or security )"
    R"(policies."}}")";
using enum Difference;

const PageFamily kQueries = {
    "Queries",
    true,
    {
        {"Version", "return plugin.queryVersion();", "\"3.7\""},
        {"BuildVersion", "return plugin.queryBuildVersion();", "\"3.7.4.146831\""},
        {"PluginVersion", "return plugin.queryPluginVersion();", "\"3.7.4.146831\""},
        {"Engine", "return plugin.queryBrowserEngine();", "\"Gecko\"", "\"MSHTML\"", kEngineName},
        {"ClientVersion", "return plugin.queryVantrelVersion();", "\"the client's version\""},
        {"AnArgumentTooMany", "return plugin.queryVersion(1);", "refused"},
        {"AnUnknownMember", "return plugin.noSuchMember;", "undefined"},
    }};

const PageFamily kProperties = {
    "Properties",
    true,
    {
        {"NameIsThePages", "plugin.name = 'a name'; return plugin.name;", "\"a name\""},
        {"NameStays", "return plugin.name;", "\"a name\""},
        {"HandlerReadBack", "plugin.eventHandler = function () {}; return plugin.eventHandler;",
         "an object", "null", kReadingTheHandler},
        {"HandlerTakenAway", "plugin.eventHandler = null; return plugin.eventHandler;", "null"},
        {"Observer", "plugin.dropObserver = {}; return plugin.dropObserver;", "an object",
         "refused", kDropObserver},
        {"HandleDropWithoutData", "return plugin.handleDrop();", "undefined"},
        {"HandleDropWithData", "return plugin.handleDrop({});", "undefined"},
        {"HandleDropWithText", "return plugin.handleDrop('text');", "refused", "undefined",
         kHandleDrop},
    }};

const PageFamily kSession = {
    "Session",
    true,
    {
        {"OneArgument", "return plugin.initSession('my app');", "refused"},
        {"NoArgument", "return plugin.initSession();", "refused"},
        {"WrongHost",
         "return plugin.initSession('^other.host', '') === "
         "errorReply('Invalid application ID hostname: some.host');",
         "true", nullptr, kNone,
         "ERR Hostname validation failed:\n  Expected: some.host\n  Got: other.host"},
        {"ThePagesHost", "return plugin.initSession('^some.host', 'a domain');",
         R"("{"app_id":"^some.host"}")", nullptr, kNone,
         "initSession\n  appId: ^some.host\n  domain: a domain\r\n"},
        {"Again",
         "return plugin.initSession('x', '') === "
         "errorReply('Session was already initialized');",
         "true"},
    }};

const PageFamily kSessionArguments = {"SessionArguments",
                                      true,
                                      {
                                          {"Numbers", "return plugin.initSession(5, 6);", "refused",
                                           R"("{"app_id":"5"}")", kWrongArguments},
                                      }};

const PageFamily kSessionFurther = {"SessionFurther",
                                    true,
                                    {
                                        {"Three", "return plugin.initSession('a', 'b', 'c');",
                                         R"("{"app_id":"a"}")", "refused", kFurtherArguments},
                                    }};

const PageFamily kRequests = {
    "Requests",
    true,
    {
        {"Reply", "return plugin.vantrelHttpRequest('POST', '/path', '{}');", R"("{"a":1}")"},
        {"EmptyBody", "return plugin.vantrelHttpRequest('POST', '/path', '');", R"("{"a":1}")"},
        {"TextOfEveryScript",
         "return plugin.vantrelHttpRequest('POST', '/echo', '[\"\\u00e4\\u4e2d\"]');",
         "\"\xC3\xA4\xE4\xB8\xAD\""},
        {"NoJson",
         "return plugin.vantrelHttpRequest('POST', '/path', 'no JSON').indexOf("
         "'{\"error\":{\"code\":-1,\"internal_message\":\"Invalid request\",\"user_message\":"
         "\"Error parsing JSON: ') === 0;",
         "true"},
        {"OtherHost",
         "return plugin.vantrelHttpRequest('POST', '/path', JSON.stringify({"
         "orvane_vantrel_settings: {app_id: '^other.host'}})) === "
         "errorReply('Invalid application ID hostname: some.host');",
         "true"},
        {"TwoArguments", "return plugin.vantrelHttpRequest('POST', '/path');", "refused"},
        {"FourArguments", "return plugin.vantrelHttpRequest('POST', '/path', '{}', 1);",
         R"("{"a":1}")", "refused", kFurtherArguments},
        {"NumbersForTexts", "return plugin.vantrelHttpRequest('POST', '/path', 5);", "refused",
         R"("{"a":1}")", kWrongArguments},
        {"AsyncAtOnce",
         "return plugin.vantrelHttpRequestAsync('POST', '/path', '{}', function () {});", "null",
         "\"\"", kNothingToSay},
        {"AsyncReply", "plugin.vantrelHttpRequestAsync('POST', '/path', '{}', done); return wait;",
         R"("{"a":1}")"},
        {"AsyncRefusal",
         "return plugin.vantrelHttpRequestAsync('POST', '/path', 'no JSON', done).indexOf("
         "'{\"error\":') === 0;",
         "true"},
        {"AsyncWithoutAFunction",
         "return plugin.vantrelHttpRequestAsync('POST', '/path', '{}', 'text');", "refused"},
        {"AsyncFailure",
         "plugin.vantrelHttpRequestAsync('POST', '/broken', '{}', done); return wait;",
         kContactReply},
        {"UncheckedAtOnce",
         "return plugin.httpRequestImplementation('PUT', '/path', '', function () {});", "null",
         "undefined", kNothingToSay},
        {"UncheckedReply",
         "plugin.httpRequestImplementation('PUT', '/path', 'no JSON', done); return wait;",
         R"("{"a":1}")"},
    }};

const PageFamily kStarts = {
    "Starts",
    true,
    {
        {"Download", "return plugin.startDownload('http://x/y');", "undefined"},
        {"DownloadWithoutText", "return plugin.startDownload();", "refused"},
        {"Lists",
         "plugin.addToDownloadList('http://x/y'); plugin.clearDownloadList();"
         "plugin.addToUploadList('C:\\\\a'); plugin.clearUploadList();",
         "undefined"},
        {"Windows",
         "plugin.displayAboutWindow(); plugin.displayPreferencesWindow();"
         "return plugin.displayTransferManager();",
         "undefined"},
        {"ObjectForText", "return plugin.startDownload({});", "refused", "undefined",
         kWrongArguments},
        {"EmptyText", "return plugin.addToDownloadList('');", "refused", "undefined",
         kWrongArguments},
    }};

const PageFamily kNoClient = {
    "NoClient",
    false,
    {
        {"Version", "return plugin.queryVantrelVersion();", kContactReply},
        {"Request", "return plugin.vantrelHttpRequest('GET', '/', '{}');", kContactReply},
        {"AsyncRequest",
         "return plugin.vantrelHttpRequestAsync('GET', '/', '{}', done) === "
         "errorReply('Error creating HTTP request');",
         "true"},
        {"UncheckedRequest",
         "plugin.httpRequestImplementation('GET', '/', '{}', function (reply) {"
         "  done(reply === errorReply('Failed to get Vantrel URL')); }); return wait;",
         "true"},
        {"Download", "return plugin.startDownload('http://x/y');", "undefined", kContacting,
         kFailedStart},
        {"DownloadToPath", "return plugin.startDownloadToPath('http://x/y', '');", "undefined",
         kContacting, kFailedStart},
        {"Upload", "return plugin.startUploadToURL('C:\\\\a', 'http://x/y');", "undefined",
         kContacting, kFailedStart},
        {"ListDownload",
         "plugin.addToDownloadList('http://x/y');"
         "return plugin.startListDownloadToPath('');",
         "undefined", kContacting, kFailedStart},
        {"ListUpload",
         "plugin.addToUploadList('C:\\\\a'); return plugin.startListUploadToURL('http://x/y');",
         "undefined", kContacting, kFailedStart},
        {"About", "return plugin.displayAboutWindow();", "undefined", kContacting, kFailedStart},
        {"Preferences", "return plugin.displayPreferencesWindow();", "undefined", kContacting,
         kFailedStart},
        {"TransferManager", "return plugin.displayTransferManager();", "undefined", kContacting,
         kFailedStart},
        {"Session", "return plugin.initSession('a', '');", R"("{"app_id":"a"}")"},
    }};

}  // namespace

const std::vector<PageFamily>& pageFamilies() {
  static const std::vector<PageFamily> families = [] {
    std::vector<PageFamily> all = {kQueries,        kProperties, kSession, kSessionArguments,
                                   kSessionFurther, kRequests,   kStarts,  kNoClient};
    for (PageFamily& family : fileFamilies()) all.push_back(std::move(family));
    return all;
  }();
  return families;
}

const PageFamily& pageFamily(const std::string& name) {
  const auto& families = pageFamilies();
  const auto found =
      std::find_if(families.begin(), families.end(),
                   [&name](const PageFamily& family) { return family.name == name; });
  if (found == families.end()) throw std::logic_error("no family of cases " + name);
  return *found;
}

}  // namespace Vantrel::Web::Faces
