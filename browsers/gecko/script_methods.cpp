#include "browsers/gecko/script_methods.h"

#include <algorithm>

#include "browsers/gecko/orvane_web_plugin.h"

namespace Vantrel::Web::Gecko {

std::span<const NamedScriptMethod> scriptMethods() {
  static constexpr NamedScriptMethod kMethods[] = {
      {"addToDownloadList", &ovOrvaneWebPlugin::addToDownloadList},
      {"addToUploadList", &ovOrvaneWebPlugin::addToUploadList},
      {"clearDownloadList", &ovOrvaneWebPlugin::clearDownloadList},
      {"clearUploadList", &ovOrvaneWebPlugin::clearUploadList},
      {"vantrelHttpRequest", &ovOrvaneWebPlugin::vantrelHttpRequest},
      {"vantrelHttpRequestAsync", &ovOrvaneWebPlugin::vantrelHttpRequestAsync},
      {"displayAboutWindow", &ovOrvaneWebPlugin::displayAboutWindow},
      {"displayPreferencesWindow", &ovOrvaneWebPlugin::displayPreferencesWindow},
      {"displayTransferManager", &ovOrvaneWebPlugin::displayTransferManager},
      {"handleDrop", &ovOrvaneWebPlugin::handleDrop},
      {"initSession", &ovOrvaneWebPlugin::initSession},
      {"queryBrowserEngine", &ovOrvaneWebPlugin::queryBrowserEngine},
      {"queryBuildVersion", &ovOrvaneWebPlugin::queryBuildVersion},
      {"queryPluginVersion", &ovOrvaneWebPlugin::queryPluginVersion},
      {"queryVersion", &ovOrvaneWebPlugin::queryVersion},
      {"queryVantrelVersion", &ovOrvaneWebPlugin::queryVantrelVersion},
      {"runOpenFileDialog", &ovOrvaneWebPlugin::runOpenFileDialog},
      {"runOpenFileDialogAsync", &ovOrvaneWebPlugin::runOpenFileDialogAsync},
      {"runOpenFolderDialogAsync", &ovOrvaneWebPlugin::runOpenFolderDialogAsync},
      {"runOpenFolderDialog", &ovOrvaneWebPlugin::runOpenFolderDialog},
      {"runSaveFileDialog", &ovOrvaneWebPlugin::runSaveFileDialog},
      {"runSaveFileDialogAsync", &ovOrvaneWebPlugin::runSaveFileDialogAsync},
      {"startDownload", &ovOrvaneWebPlugin::startDownload},
      {"startDownloadToPath", &ovOrvaneWebPlugin::startDownloadToPath},
      {"startListDownloadToPath", &ovOrvaneWebPlugin::startListDownloadToPath},
      {"startListUploadToURL", &ovOrvaneWebPlugin::startListUploadToURL},
      {"readAsArrayBuffer", &ovOrvaneWebPlugin::readAsArrayBuffer},
      {"readChunkAsArrayBuffer", &ovOrvaneWebPlugin::readChunkAsArrayBuffer},
      {"startUploadToURL", &ovOrvaneWebPlugin::startUploadToURL},
      {"httpRequestImplementation", &ovOrvaneWebPlugin::httpRequestImplementation},
  };
  return kMethods;
}

const NamedScriptMethod* findScriptMethod(std::string_view name) {
  const auto methods = scriptMethods();
  const auto found = std::find_if(methods.begin(), methods.end(),
                                  [name](const NamedScriptMethod& m) { return m.name == name; });
  return found == methods.end() ? nullptr : &*found;
}

}  // namespace Vantrel::Web::Gecko
