#include "browsers/gecko/orvane_web_view.h"

#include <utility>

namespace Vantrel::Web::Gecko {

ovOrvaneWebView::ovOrvaneWebView(std::unique_ptr<ovIOrvaneWebViewImpl> implementation)
    : impl(std::move(implementation)) {}

ovOrvaneWebView::~ovOrvaneWebView() {
  if (impl) impl->destroy();
}

bool ovOrvaneWebView::init(NPWindow* window, NPP instance, bool dropEnabled, bool allowDirectories,
                           bool allowMultiple) {
  return impl && impl->init(window, instance, dropEnabled, allowDirectories, allowMultiple);
}

void ovOrvaneWebView::setImage(const unsigned char* data, uint32_t length) {
  if (impl) impl->setImage(data, length);
}

void ovOrvaneWebView::handleDrop(const NPVariant* arguments) {
  if (impl) impl->handleDrop(arguments);
}

int16_t ovOrvaneWebView::handleEvent(void* event) {
  return impl ? impl->handleEvent(event) : int16_t{-1};
}

void ovOrvaneWebView::markSession(bool value) {
  if (impl) impl->markSession(value);
}

void ovOrvaneWebView::updateWindow(NPWindow* window) {
  if (impl) impl->updateWindow(window);
}

void ovOrvaneWebView::setBrowserHost(const std::string& text) {
  if (impl) impl->setBrowserHost(text);
}

void ovOrvaneWebView::setTransparent(bool flag) {
  if (impl) impl->setTransparent(flag);
}

}  // namespace Vantrel::Web::Gecko
