#include "browsers/gecko/script_methods.h"

#include <algorithm>
#include <initializer_list>

#include "browsers/gecko/orvane_web_plugin.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

namespace {

using Wanted = std::initializer_list<WantedArgument>;
using Web = ovOrvaneWebPlugin;

constexpr char kInvalidArguments[] = "invalid arguments";

constexpr ScriptMethod between(uint32_t least, uint32_t most, const char* name,
                               ScriptFunction function, Wanted wanted,
                               const char* refusal = nullptr) {
  ScriptMethod method = {name, function, {}, least, most, refusal};
  std::copy(wanted.begin(), wanted.end(), method.wanted.begin());
  return method;
}

// As many arguments as are wanted, no more and no less.
constexpr ScriptMethod exactly(const char* name, ScriptFunction function, Wanted wanted,
                               const char* refusal = nullptr) {
  const auto count = static_cast<uint32_t>(wanted.size());
  return between(count, count, name, function, wanted, refusal);
}

// All that are wanted; further ones are ignored.
constexpr ScriptMethod atLeast(const char* name, ScriptFunction function, Wanted wanted) {
  return between(static_cast<uint32_t>(wanted.size()), ScriptMethod::kAnyNumber, name, function,
                 wanted);
}

// The last one may be missing.
constexpr ScriptMethod lastMayLack(const char* name, ScriptFunction function, Wanted wanted,
                                   const char* refusal = nullptr) {
  const auto count = static_cast<uint32_t>(wanted.size());
  return between(count - 1, count, name, function, wanted, refusal);
}

constexpr WantedArgument kText{Argument::kText};
constexpr WantedArgument kFullText{Argument::kNonEmptyText};
constexpr WantedArgument kBoolean{Argument::kBoolean};
constexpr WantedArgument kObject{Argument::kObject};

constexpr ScriptMethod kMethods[] = {
    exactly("addToDownloadList", &Web::addToDownloadList, {kFullText}),
    exactly("addToUploadList", &Web::addToUploadList, {kFullText}),
    exactly("clearDownloadList", &Web::clearDownloadList, {}),
    exactly("clearUploadList", &Web::clearUploadList, {}),
    atLeast("vantrelHttpRequest", &Web::vantrelHttpRequest, {kText, kText, kText}),
    atLeast("vantrelHttpRequestAsync", &Web::vantrelHttpRequestAsync,
            {kText, kText, kText, kObject}),
    exactly("displayAboutWindow", &Web::displayAboutWindow, {}),
    exactly("displayPreferencesWindow", &Web::displayPreferencesWindow, {}),
    exactly("displayTransferManager", &Web::displayTransferManager, {}),
    lastMayLack("handleDrop", &Web::handleDrop, {kObject}),
    atLeast("initSession", &Web::initSession, {kText, kText}),
    exactly("queryBrowserEngine", &Web::queryBrowserEngine, {}),
    exactly("queryBuildVersion", &Web::queryBuildVersion, {}),
    exactly("queryPluginVersion", &Web::queryPluginVersion, {}),
    exactly("queryVersion", &Web::queryVersion, {}),
    exactly("queryVantrelVersion", &Web::queryVantrelVersion, {}),
    exactly("runOpenFileDialog", &Web::runOpenFileDialog, {kBoolean, kBoolean}),
    lastMayLack("runOpenFileDialogAsync", &Web::runOpenFileDialogAsync,
                {kText, kBoolean, kText, kObject, kBoolean}, kInvalidArguments),
    lastMayLack("runOpenFolderDialogAsync", &Web::runOpenFolderDialogAsync,
                {kText, kBoolean, kObject, kBoolean}, kInvalidArguments),
    exactly("runOpenFolderDialog", &Web::runOpenFolderDialog, {kBoolean}),
    exactly("runSaveFileDialog", &Web::runSaveFileDialog, {kText}),
    exactly("runSaveFileDialogAsync", &Web::runSaveFileDialogAsync, {kText, kText, kText, kObject},
            kInvalidArguments),
    exactly("startDownload", &Web::startDownload, {kFullText}),
    exactly("startDownloadToPath", &Web::startDownloadToPath, {kFullText, kText}),
    exactly("startListDownloadToPath", &Web::startListDownloadToPath, {kText}),
    exactly("startListUploadToURL", &Web::startListUploadToURL, {kFullText}),
    exactly("readAsArrayBuffer", &Web::readAsArrayBuffer, {kText}, kInvalidArguments),
    exactly("readChunkAsArrayBuffer", &Web::readChunkAsArrayBuffer,
            {kText,
             {Argument::kNumber, "offset value invalid"},
             {Argument::kNumber, "chunk size invalid"}},
            kInvalidArguments),
    exactly("startUploadToURL", &Web::startUploadToURL, {kFullText, kFullText}),
    atLeast("httpRequestImplementation", &Web::httpRequestImplementation,
            {kText, kText, kText, kObject}),
};

bool refuse(const ScriptMethod& method, const char* words) {
  if (words != nullptr) ov_err("%s() - %s", method.name, words);
  return false;
}

}  // namespace

std::span<const ScriptMethod> scriptMethods() {
  return kMethods;
}

const ScriptMethod* findScriptMethod(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kMethods), std::end(kMethods),
                                         [name](const ScriptMethod& m) { return m.name == name; });
  return found == std::end(kMethods) ? nullptr : found;
}

bool acceptsArguments(const ScriptMethod& method, Arguments args) {
  if (args.size() < method.least || args.size() > method.most) {
    return refuse(method, method.refusal);
  }
  const size_t checked = std::min(args.size(), method.wanted.size());
  for (size_t i = 0; i < checked; ++i) {
    const WantedArgument& wanted = method.wanted[i];
    if (matches(wanted.kind, args[i])) continue;
    return refuse(method, wanted.refusal != nullptr ? wanted.refusal : method.refusal);
  }
  return true;
}

}  // namespace Vantrel::Web::Gecko
