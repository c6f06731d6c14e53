// What an instance does when its view tells of a drop or a drag over the element.

#include <memory>
#include <utility>

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/page_calls.h"
#include "core/approved_files.h"
#include "runtime/ov_log.h"
#include "text/text.h"

namespace Vantrel::Web::Gecko {

void ovOrvaneWebPlugin::doDrop(std::vector<std::string>& files) {
  OV_DEBUG("ovOrvaneWebPlugin::doDrop()");
  addToApprovedFileList(files);
  if (dropMode_ == DropMode::kUpload) core->uploadDropped(files);
  if (dropMode_ == DropMode::kCallback) {
    const std::weak_ptr<bool> alive = lifeToken_;
    callMethod(npp_, alive, dropObserver_, "onDrop", escapedPathList(files));
    // The observer's script may have ended the instance, and its view and files with it.
    if (alive.expired()) return;
    sendEvent(npp_, eventHandler_, PageEvent::kDrop, jsonPathArray(files));
    if (alive.expired()) return;
  }
  files.clear();
}

void ovOrvaneWebPlugin::doDropex(std::string& json) {
  OV_DEBUG("ovOrvaneWebPlugin::doDropex()");
  // Emptied first: the page may end the instance, and the view that owns the text.
  const std::string payload = std::move(json);
  json.clear();
  tellPage(PageEvent::kDropEx, payload);
}

void ovOrvaneWebPlugin::doDragOver() {
  OV_DEBUG("ovOrvaneWebPlugin::doDragOver()");
  tellPage(PageEvent::kDragOver, "");
}

void ovOrvaneWebPlugin::doDragLeave() {
  OV_DEBUG("ovOrvaneWebPlugin::doDragLeave()");
  tellPage(PageEvent::kDragLeave, "");
}

void ovOrvaneWebPlugin::tellPage(PageEvent event, const std::string& payload) {
  if (dropMode_ == DropMode::kCallback) sendEvent(npp_, eventHandler_, event, payload);
}

}  // namespace Vantrel::Web::Gecko
