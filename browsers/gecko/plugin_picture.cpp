// The window that the browser gives an instance, and the stream that brings its picture.

#include <cstring>
#include <new>

#include "browsers/gecko/orvane_web_plugin.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

bool ovOrvaneWebPlugin::setWindow(NPWindow* window, NPP instance) {
  if (!window) return true;
  if (view) {
    view->updateWindow(window);
    return true;
  }
  view = std::make_unique<ovOrvaneWebView>(nullptr);
  view->init(window, instance, dropMode != DropMode::kNone, dropAllowDirectories,
             dropAllowMultiple);
  view->setBrowserHost(core->getBrowserHost());
  view->setTransparent(transparent);
  if (!imageUrl.empty() && browserFuncs.geturlnotify(npp, imageUrl.c_str(), nullptr, nullptr)) {
    ov_log("WARNING: Unable to load image from URL: %s", imageUrl.c_str());
  }
  return true;
}

bool ovOrvaneWebPlugin::createStream(NPMIMEType, NPStream* stream, NPBool, uint16_t*) {
  OV_DEBUG("ovOrvaneWebPlugin::createStream()");
  OV_DEBUG("  URL: %s", stream->url);
  return true;
}

int32_t ovOrvaneWebPlugin::write(NPStream* stream, int32_t offset, int32_t length, void* buffer) {
  if (imageUrl != stream->url || offset < 0 || length < 0) return -1;
  // Two 31-bit numbers; the browser sends what it has downloaded, so the data grows no faster than
  // that.
  const auto begin = static_cast<size_t>(offset);
  const auto bytes = static_cast<size_t>(length);
  try {
    imageData.resize(begin + bytes);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  if (bytes != 0) std::memcpy(imageData.data() + begin, buffer, bytes);
  return length;
}

bool ovOrvaneWebPlugin::destroyStream(NPStream* stream, NPReason) {
  OV_DEBUG("ovOrvaneWebPlugin::destroyStream()");
  if (imageUrl != stream->url) return false;
  if (view) view->setImage(imageData.data(), static_cast<uint32_t>(imageData.size()));
  imageData = {};
  return true;
}

}  // namespace Vantrel::Web::Gecko
