#include "browsers/activex/orvane_web_ctrl_win.h"

#include <exception>

#include "runtime/ov_log.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::ActiveX {

COrvaneWebCtrl::COrvaneWebCtrl(IUnknown* outer) : OleControl(outer) {
  OV_DEBUG("COrvaneWebCtrl()");
  core_ = std::make_unique<Plugin>();
}

COrvaneWebCtrl::~COrvaneWebCtrl() {
  teardown();
}

void COrvaneWebCtrl::teardown() noexcept {
  try {
    dropPending_ = false;
    needParameters_ = false;
    OV_DEBUG("~COrvaneWebCtrl()");
    // No transfer event starts once the listener has left.
    if (core_ && core_->getTransfersPoller() != nullptr) {
      core_->getTransfersPoller()->removeListener(this);
    }
    downloader_.reset();
    image_.reset();
    core_.reset();
    if (oneShotManager_) RunnableScheduler::stopRunnables(oneShotManager_.get());
    oneShotManager_.reset();
    eventHandler_.reset();
  } catch (const std::exception& exception) {
    ov_err("Cleanup error: %s", exception.what());
  }
}

void COrvaneWebCtrl::doPropExchange(PropertyExchange&) {
  OV_DEBUG("COrvaneWebCtrl::DoPropExchange()");
  needParameters_ = false;
}

void COrvaneWebCtrl::onResetState() {
  OV_DEBUG("COrvaneWebCtrl::OnResetState()");
  OleControl::onResetState();
}

void COrvaneWebCtrl::onSetClientSite() {
  OV_DEBUG("COrvaneWebCtrl::OnSetClientSite()");
  OleControl::onSetClientSite();
}

void* COrvaneWebCtrl::findInterface(REFIID) {
  return nullptr;
}

void COrvaneWebCtrl::transferEventOccurred(const std::string&) {
  OV_DEBUG("COrvaneWebCtrl::transferEventOccurred()");
}

}  // namespace Vantrel::Web::ActiveX
