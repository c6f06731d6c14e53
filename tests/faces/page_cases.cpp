#include "tests/faces/page_cases.h"

#include <algorithm>
#include <stdexcept>

namespace Vantrel::Web::Faces {

namespace {

constexpr char kContacting[] =
    "error: Error contacting Orvane Vantrel. Ensure that it is running, and not blocked by your "
    "firewall or security policies.";
constexpr char kContactReply[] =
    R"("{"error":{"code":-1,"internal_message":"Invalid request","user_message":"Error contacting )"
    R"(Orvane Vantrel. Ensure that it is running, and not blocked by your firewall or security )"
    R"(policies."}}")";
constexpr char kUnchosen[] =
    "return plugin.readAsArrayBuffer('C:\\\\no\\\\file.txt') === errorReply('Unable to read file "
    "context. Only files selected via standard file dialog or drag and drop accepted: "
    "C:\\\\no\\\\file.txt');";

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

const PageFamily kDialogs = {
    "Dialogs",
    true,
    {
        {"OpenFile",
         "choose(paths.file);"
         "return plugin.runOpenFileDialog(false, true) === escaped(paths.file);",
         "true", nullptr, kNone, "LOG OpenFileDialog() - title="},
        {"OpenFileByTexts",
         "choose(paths.file);"
         "return plugin.runOpenFileDialog('false', 'true') === escaped(paths.file);",
         "true"},
        {"OpenFileByNumbers", "choose(''); return plugin.runOpenFileDialog(0, 1);", "refused",
         "\"\"", kWrongArguments},
        {"OpenFileCancelled", "choose(''); return plugin.runOpenFileDialog(true, true);", "\"\""},
        {"OpenFolder",
         "choose(paths.folder);"
         "return plugin.runOpenFolderDialog(false) === escaped(paths.folder);",
         "true"},
        {"SaveFile",
         "choose(paths.file); return plugin.runSaveFileDialog('a name') === paths.file;", "true"},
        {"SaveFileCancelled", "choose(''); return plugin.runSaveFileDialog('a name');", "\"\""},
        {"OpenFileLaterAtOnce",
         "choose('');"
         "return plugin.runOpenFileDialogAsync('Title', true, '', function () {});",
         "null", "\"\"", kNothingToSay},
        {"OpenFileLater",
         "choose(paths.file);"
         "plugin.runOpenFileDialogAsync('Title', true, '', function (reply) {"
         "  done(reply === '[' + quoted(paths.file) + ']'); }); return wait;",
         "true"},
        {"OpenFileLaterWithDetails",
         "choose(paths.file);"
         "plugin.runOpenFileDialogAsync('Title', true, '', function (reply) {"
         "  done(JSON.parse(reply).dataTransfer.files[0].size); }, true); return wait;",
         "5"},
        {"OpenFileLaterCancelled",
         "choose(''); plugin.runOpenFileDialogAsync('Title', true, '', done); return wait;",
         "\"[]\""},
        {"OpenFileLaterWithWrongTypes",
         "choose(paths.file); plugin.runOpenFileDialogAsync('Title', true, '{}', function (reply) {"
         "  done(reply === errorReply('Error displaying open file dialog: "
         "Error parsing fileTypes JSON')); }); return wait;",
         "true"},
        {"OpenFolderLater",
         "choose(paths.folder);"
         "plugin.runOpenFolderDialogAsync('Title', false, function (reply) {"
         "  done(reply === '[' + quoted(paths.folder) + ']'); }); return wait;",
         "true"},
        {"SaveFileLater",
         "choose(paths.file);"
         "plugin.runSaveFileDialogAsync('Title', 'name', '', function (reply) {"
         "  done(reply === quoted(paths.file)); }); return wait;",
         "true"},
        {"SaveFileLaterCancelled",
         "choose(''); plugin.runSaveFileDialogAsync('Title', 'name', '', done); return wait;",
         "\"null\""},
        {"LaterWithoutAFunction",
         "return plugin.runOpenFileDialogAsync('Title', true, '', 'text');", "refused"},
        {"TooFewArguments", "return plugin.runOpenFileDialogAsync('Title', true);", "refused"},
        {"SaveFileLaterWithDetails",
         "return plugin.runSaveFileDialogAsync('Title', 'name', '', function () {}, true);",
         "refused"},
    }};

const PageFamily kReading = {
    "Reading",
    true,
    {
        {"Unchosen", kUnchosen, "true"},
        {"Chosen",
         "choose(paths.file); plugin.runOpenFileDialog(false, false);"
         "return plugin.readAsArrayBuffer(paths.file);",
         "\"data:text/plain;base64,SGVsbG8=\""},
        {"Chunk", "return plugin.readChunkAsArrayBuffer(paths.file, 1, 2);",
         "\"data:text/plain;base64,ZWw=\""},
        {"ChunkBehindTheEnd", "return plugin.readChunkAsArrayBuffer(paths.file, 4, 2);",
         "\"Offset and chunk size cannot be negative, and the sum can't be greater than the file "
         "size\""},
        {"ChunkAtAFraction", "return plugin.readChunkAsArrayBuffer(paths.file, 1.9, 2);",
         "\"data:text/plain;base64,ZWw=\"", "\"\"", kNumbersOfChunks, nullptr},
        {"ChunkAtAText", "return plugin.readChunkAsArrayBuffer(paths.file, '1', 2);", "refused",
         "\"\"", kWrongArguments, "ERR readChunkAsArrayBuffer() - offset value invalid"},
        {"ChunkOfATextsSize", "return plugin.readChunkAsArrayBuffer(paths.file, 1, '2');",
         "refused", "\"\"", kWrongArguments, "ERR readChunkAsArrayBuffer() - chunk size invalid"},
        {"EmptyPath", "return plugin.readAsArrayBuffer('').indexOf('{\"error\":') === 0;",
         "refused", "true", kUnreadablePath},
        {"NoPath", "return plugin.readAsArrayBuffer();", "refused"},
    }};

const PageFamily kEvents = {
    "Events",
    true,
    {
        {"Transfers",
         "plugin.eventHandler = function (name, payload) {"
         "  done(name + ' ' + JSON.parse(payload).transfers.length); };"
         "plugin.initSession('a', ''); return wait;",
         "\"transfer 1\""},
        {"AHandlerThatThrows",
         "var calls = 0; plugin.eventHandler = function () {"
         "  if (++calls === 2) { plugin.eventHandler = null; done('twice'); }"
         "  throw new Error('mine'); }; return wait;",
         "\"twice\""},
        {"AfterTheHandlerWasTakenAway",
         "plugin.eventHandler = function () { done('never'); }; plugin.eventHandler = null;"
         "setTimeout(function () { done('nothing'); }, 1500); return wait;",
         "\"never\"", "\"nothing\"", kClearedHandler},
    }};

const PageFamily kDrops = {
    "Drops",
    true,
    {
        {"Files",
         "plugin.eventHandler = function (name, payload) {"
         "  if (name === 'dragover' || name === 'dragleave') return;"
         "  seen.push(name);"
         "  if (name === 'drop') seen.push(payload === '[' + quoted(paths.file) + ']');"
         "  if (name === 'dropex') {"
         "    seen.push(JSON.parse(payload).dataTransfer.files[0].size); done(seen.join()); } };"
         "dropFiles(paths.file); return wait;",
         "\"drop,true,dropex,5\""},
        {"MayBeRead", "return plugin.readAsArrayBuffer(paths.file);",
         "\"data:text/plain;base64,SGVsbG8=\""},
        {"DragsOver",
         "plugin.eventHandler = function (name) {"
         "  seen.push(name); if (name === 'dropex') done(seen.join()); };"
         "dropFiles(paths.file); return wait;",
         "\"dragover,drop,dropex\"", "\"drop,dropex\"", kDragEvents},
        {"AFolderIsNotTaken",
         "plugin.eventHandler = function (name) { seen.push(name); };"
         "dropFiles(paths.folder);"
         "setTimeout(function () { done(seen.join().replace(/dragover,?/g, '')); }, 200);"
         "return wait;",
         "\"\""},
    }};

}  // namespace

const std::vector<PageFamily>& pageFamilies() {
  static const std::vector<PageFamily> families = {
      kQueries, kProperties, kSession, kSessionArguments, kSessionFurther, kRequests,
      kStarts,  kNoClient,   kDialogs, kReading,          kEvents,         kDrops};
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
