#include "browsers/activex/dispatch_table_win.h"

#include <algorithm>
#include <initializer_list>

#include "browsers/activex/orvane_web_ctrl_win.h"
#include "text/error_texts.h"

namespace Vantrel::Web::ActiveX {

namespace {

using Control = COrvaneWebCtrl;
using Wanted = std::initializer_list<Parameter>;

constexpr Parameter text(const wchar_t* name) {
  return {name, ParameterKind::kText};
}

constexpr Parameter flag(const wchar_t* name) {
  return {name, ParameterKind::kFlag};
}

constexpr Parameter kCallback{L"cbk", ParameterKind::kObject};
constexpr Parameter kExtendedInfo{L"extendedInfo", ParameterKind::kOptional};

constexpr DispatchMethod entry(DISPID id, const wchar_t* name, MethodResult result,
                               MethodFunction function, Wanted wanted,
                               OnException onException = OnException::kReply,
                               const char* failure = nullptr) {
  DispatchMethod method = {name, id, result, function, {}, wanted.size(), onException, failure};
  std::copy(wanted.begin(), wanted.end(), method.parameters.begin());
  return method;
}

constexpr DispatchMethod silent(DISPID id, const wchar_t* name, MethodFunction function,
                                Wanted wanted = {}) {
  return entry(id, name, MethodResult::kNothing, function, wanted);
}

constexpr DispatchMethod transfer(DISPID id, const wchar_t* name, MethodFunction function,
                                  Wanted wanted, const char* failure) {
  return entry(id, name, MethodResult::kNothing, function, wanted, OnException::kScriptError,
               failure);
}

constexpr DispatchMethod answer(DISPID id, const wchar_t* name, MethodFunction function,
                                Wanted wanted = {}, const char* failure = nullptr) {
  return entry(id, name, MethodResult::kText, function, wanted, OnException::kReply, failure);
}

constexpr DispatchMethod dialog(DISPID id, const wchar_t* name, MethodFunction function,
                                Wanted wanted, const char* failure) {
  return entry(id, name, MethodResult::kText, function, wanted, OnException::kNullText, failure);
}

constexpr DispatchMethod reading(DISPID id, const wchar_t* name, MethodFunction function,
                                 Wanted wanted) {
  return entry(id, name, MethodResult::kBytes, function, wanted);
}

constexpr DispatchMethod kMethods[] = {
    transfer(2, L"startDownload", &Control::startDownload, {text(L"sourceURL")},
             "Failed to start download"),
    transfer(3, L"startDownloadToPath", &Control::startDownloadToPath,
             {text(L"sourceURL"), text(L"destinationPath")}, "Failed to start download to path"),
    transfer(4, L"startUploadToURL", &Control::startUploadToURL,
             {text(L"sourcePath"), text(L"destinationURL")}, "Failed to start upload to URL"),
    dialog(5, L"runOpenFileDialog", &Control::runOpenFileDialog,
           {flag(L"allowDirectories"), flag(L"multiSelect")}, kErrorOpenFileDialog),
    dialog(6, L"runSaveFileDialog", &Control::runSaveFileDialog, {text(L"suggestedName")},
           kErrorSaveFileDialog),
    transfer(7, L"addToDownloadList", &Control::addToDownloadList, {text(L"url")},
             "Failed to add to download list"),
    transfer(8, L"addToUploadList", &Control::addToUploadList, {text(L"path")},
             "Failed to add to upload list"),
    silent(9, L"clearDownloadList", &Control::clearDownloadList),
    silent(10, L"clearUploadList", &Control::clearUploadList),
    transfer(11, L"startListDownloadToPath", &Control::startListDownloadToPath,
             {text(L"destinationPath")}, "Failed to start list download to path"),
    transfer(12, L"startListUploadToURL", &Control::startListUploadToURL, {text(L"destinationURL")},
             "Failed to list upload to URL"),
    silent(13, L"displayTransferManager", &Control::displayTransferManager),
    silent(14, L"displayAboutWindow", &Control::displayAboutWindow),
    silent(15, L"displayPreferencesWindow", &Control::displayPreferencesWindow),
    answer(16, L"queryVersion", &Control::queryVersion),
    answer(17, L"queryBrowserEngine", &Control::queryBrowserEngine),
    answer(18, L"queryBuildVersion", &Control::queryBuildVersion),
    dialog(19, L"runOpenFolderDialog", &Control::runOpenFolderDialog, {flag(L"multiSelect")},
           kErrorOpenFolderDialog),
    answer(21, L"vantrelHttpRequest", &Control::vantrelHttpRequest,
           {text(L"method"), text(L"path"), text(L"data")}, kErrorContacting),
    answer(22, L"vantrelHttpRequestAsync", &Control::vantrelHttpRequestAsync,
           {text(L"method"), text(L"path"), text(L"data"), kCallback}, kErrorContacting),
    answer(23, L"runOpenFileDialogAsync", &Control::runOpenFileDialogAsync,
           {text(L"title"), flag(L"multiSelect"), text(L"fileTypes"), kCallback, kExtendedInfo},
           kErrorOpenFileDialog),
    answer(24, L"runSaveFileDialogAsync", &Control::runSaveFileDialogAsync,
           {text(L"title"), text(L"suggestedName"), text(L"fileTypes"), kCallback},
           kErrorSaveFileDialog),
    answer(25, L"runOpenFolderDialogAsync", &Control::runOpenFolderDialogAsync,
           {text(L"title"), flag(L"multiSelect"), kCallback, kExtendedInfo},
           kErrorOpenFolderDialog),
    answer(26, L"initSession", &Control::initSession, {text(L"appId"), text(L"domain")},
           kErrorInitializingSession),
    answer(27, L"queryPluginVersion", &Control::queryPluginVersion),
    silent(29, L"handleDrop", &Control::handleDrop,
           {Parameter{L"dataVariant", ParameterKind::kOptional}}),
    answer(30, L"queryVantrelVersion", &Control::queryVantrelVersion),
    reading(31, L"readAsArrayBuffer", &Control::readAsArrayBuffer, {text(L"path")}),
    reading(32, L"readChunkAsArrayBuffer", &Control::readChunkAsArrayBuffer,
            {text(L"path"), Parameter{L"offset"}, Parameter{L"chunkSize"}}),
    entry(33, L"httpRequestImplementation", MethodResult::kNothing,
          &Control::httpRequestImplementation,
          {text(L"method"), text(L"path"), text(L"data"), kCallback}, OnException::kSilence),
};

}  // namespace

std::span<const DispatchMethod> dispatchMethods() {
  return kMethods;
}

const DispatchMethod* findDispatchMethod(DISPID id) {
  const auto* const found = std::find_if(std::begin(kMethods), std::end(kMethods),
                                         [id](const DispatchMethod& m) { return m.id == id; });
  return found == std::end(kMethods) ? nullptr : found;
}

const DispatchMethod* findDispatchMethod(const wchar_t* name) {
  const auto* const found =
      std::find_if(std::begin(kMethods), std::end(kMethods),
                   [name](const DispatchMethod& m) { return isSameName(m.name, name); });
  return found == std::end(kMethods) ? nullptr : found;
}

bool isSameName(const wchar_t* left, const wchar_t* right) {
  return CompareStringOrdinal(left, -1, right, -1, TRUE) == CSTR_EQUAL;
}

}  // namespace Vantrel::Web::ActiveX
