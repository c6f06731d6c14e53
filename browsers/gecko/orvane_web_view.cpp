#include "browsers/gecko/orvane_web_view.h"

#include <utility>

namespace Vantrel::Web::Gecko {

ovOrvaneWebView::ovOrvaneWebView(std::unique_ptr<ovIOrvaneWebViewImpl> implementation)
    : impl_(std::move(implementation)) {}

ovOrvaneWebView::~ovOrvaneWebView() {
  if (impl_) impl_->destroy();
}

bool ovOrvaneWebView::init(NPWindow* window, NPP instance, bool dropEnabled, bool allowDirectories,
                           bool allowMultiple) {
  return impl_ && impl_->init(window, instance, dropEnabled, allowDirectories, allowMultiple);
}

void ovOrvaneWebView::setImage(const unsigned char* data, uint32_t length) {
  if (impl_) impl_->setImage(data, length);
}

void ovOrvaneWebView::setDelegate(ovIOrvaneWebViewDelegate* delegate) {
  if (impl_) impl_->setDelegate(delegate);
}

void ovOrvaneWebView::handleDrop(const NPVariant* arguments) {
  if (impl_) impl_->handleDrop(arguments);
}

int16_t ovOrvaneWebView::handleEvent(void* event) {
  return impl_ ? impl_->handleEvent(event) : int16_t{-1};
}

void ovOrvaneWebView::markSession(bool value) {
  if (impl_) impl_->markSession(value);
}

void ovOrvaneWebView::updateWindow(NPWindow* window) {
  if (impl_) impl_->updateWindow(window);
}

void ovOrvaneWebView::setBrowserHost(const std::string& text) {
  if (impl_) impl_->setBrowserHost(text);
}

void ovOrvaneWebView::setTransparent(bool flag) {
  if (impl_) impl_->setTransparent(flag);
}

}  // namespace Vantrel::Web::Gecko
