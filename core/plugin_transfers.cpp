// Transfers that a page starts directly, by naming sources and a destination.

#include "core/plugin.h"
#include "core/transfer.h"
#include "runtime/ov_log.h"
#include "service/launch.h"
#include "text/error_texts.h"
#include "text/text.h"

namespace Vantrel::Web {

bool Plugin::download(const std::vector<std::string>& sources, const std::string& destination) {
  OV_DEBUG("Plugin::download() to %s", destination.c_str());
  if (!destination.empty()) {
    if (!isDestinationAllowed(destination)) {
      ov_err("%s: %s", kErrorUnauthorizedDirectory, destination.c_str());
      return false;
    }
    ov_log("Accepted download to %s (user selected %s)", destination.c_str(),
           consent_.lastSelectedPath().c_str());
  }
  // One choice of the user allows one direct download.
  consent_.clear();
  allowVantrelForeground();
  Transfer transfer;
  transfer.setFiles(sources);
  transfer.setDestination(destination.empty() ? std::string() : fileUrl(destination));
  return transfer.post();
}

bool Plugin::upload(const std::vector<std::string>& sources, const std::string& destinationUrl) {
  OV_DEBUG("Plugin::upload()");
  consent_.clear();
  allowVantrelForeground();
  std::vector<std::string> urls;
  urls.reserve(sources.size());
  for (const std::string& source : sources) urls.push_back(fileUrl(source));
  Transfer transfer;
  transfer.setFiles(urls);
  transfer.setDestination(destinationUrl);
  return transfer.post();
}

bool Plugin::startDownload(const std::string& url) {
  ov_log("PlugIn::startDownload()");
  ov_log("  %s", url.c_str());
  return download({url}, "");
}

bool Plugin::startDownloadToPath(const std::string& url, const std::string& destination) {
  return download({url}, destination);
}

bool Plugin::startUploadToURL(const std::string& path, const std::string& url) {
  return upload({path}, url);
}

bool Plugin::startListDownloadToPath(const std::string& destination) {
  return download(downloadList_, destination);
}

bool Plugin::startListUploadToURL(const std::string& url) {
  return upload(uploadList_, url);
}

bool Plugin::uploadDropped(const std::vector<std::string>& sources) {
  return upload(sources, dropUploadUrl_);
}

void Plugin::addToDownloadList(const std::string& url) {
  downloadList_.push_back(url);
}
void Plugin::addToUploadList(const std::string& path) {
  uploadList_.push_back(path);
}
void Plugin::clearDownloadList() {
  downloadList_.clear();
}
void Plugin::clearUploadList() {
  uploadList_.clear();
}

}  // namespace Vantrel::Web
