// Cases of the table that are about the user's files: dialogs, reading, drops; and those of events.
#include "tests/faces/page_cases.h"

namespace Vantrel::Web::Faces {

namespace {

constexpr char kUnchosen[] =
    "return plugin.readAsArrayBuffer('C:\\\\no\\\\file.txt') === errorReply('Unable to read file "
    "context. Only files selected via standard file dialog or drag and drop accepted: "
    "C:\\\\no\\\\file.txt');";

using enum Difference;

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

std::vector<PageFamily> fileFamilies() {
  return {kDialogs, kReading, kEvents, kDrops};
}

}  // namespace Vantrel::Web::Faces
