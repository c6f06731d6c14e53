// The window that the browser gives an instance, and the stream that brings its picture.

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include "browsers/gecko/orvane_web_plugin.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

namespace {

// Whether a browser would run the address as a script of the page. Browsers skip blanks and control
// characters before the scheme, and tabs and line ends within it.
bool isScript(std::string_view url) {
  constexpr std::string_view kScheme = "javascript:";
  const auto begin = static_cast<size_t>(
      std::find_if(url.begin(), url.end(), [](unsigned char c) { return c > ' '; }) - url.begin());
  size_t matched = 0;
  for (const char c : url.substr(begin)) {
    if (c == '\t' || c == '\r' || c == '\n') continue;
    const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (lower != kScheme[matched]) return false;
    if (++matched == kScheme.size()) return true;
  }
  return false;
}

}  // namespace

bool ovOrvaneWebPlugin::setWindow(NPWindow* window, NPP instance) {
  if (window == nullptr) return true;
  if (view_) {
    view_->updateWindow(window);
    return true;
  }
  view_ = std::make_unique<ovOrvaneWebView>(newOrvaneWebViewImpl());
  view_->init(window, instance, dropMode_ != DropMode::kNone, dropAllowDirectories_,
              dropAllowMultiple_);
  view_->setDelegate(this);
  view_->setBrowserHost(core->getBrowserHost());
  view_->setTransparent(transparent_);
  if (!imageUrl_.empty() && !requestImage()) {
    ov_log("WARNING: Unable to load image from URL: %s", imageUrl_.c_str());
  }
  return true;
}

bool ovOrvaneWebPlugin::requestImage() {
  return !isScript(imageUrl_) &&
         browserFuncs.geturlnotify(npp_, imageUrl_.c_str(), nullptr, nullptr) == NPERR_NO_ERROR;
}

// A stream without an address is none of ours.
bool ovOrvaneWebPlugin::isImage(const NPStream& stream) const {
  return stream.url != nullptr && imageUrl_ == stream.url;
}

bool ovOrvaneWebPlugin::createStream(NPMIMEType, NPStream* stream, NPBool, uint16_t*) {
  OV_DEBUG("ovOrvaneWebPlugin::createStream()");
  OV_DEBUG("  URL: %s", stream->url != nullptr ? stream->url : "");
  return true;
}

int32_t ovOrvaneWebPlugin::write(NPStream* stream, int32_t offset, int32_t length, void* buffer) {
  if (!isImage(*stream) || offset < 0 || length < 0) return -1;
  // A browser counts a stream in 31 bits; it sends what it has downloaded, so the data grows no
  // faster than that.
  if (length > std::numeric_limits<int32_t>::max() - offset) return -1;
  const auto begin = static_cast<size_t>(offset);
  const auto bytes = static_cast<size_t>(length);
  if (begin + bytes == 0) return 0;
  try {
    imageData_.resize(begin + bytes);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  if (bytes != 0) std::memcpy(imageData_.data() + begin, buffer, bytes);
  return length;
}

bool ovOrvaneWebPlugin::destroyStream(NPStream* stream, NPReason) {
  OV_DEBUG("ovOrvaneWebPlugin::destroyStream()");
  if (!isImage(*stream)) return false;
  if (view_) view_->setImage(imageData_.data(), static_cast<uint32_t>(imageData_.size()));
  imageData_ = {};
  return true;
}

}  // namespace Vantrel::Web::Gecko
