// Life of a control, and the properties that hold what is the page's own.

#include "browsers/activex/orvane_web_ctrl_win.h"

#include <exception>
#include <utility>

#include "browsers/activex/hostname_win.h"
#include "browsers/activex/identifiers.h"
#include "browsers/activex/module_count_win.h"
#include "runtime/ov_log.h"
#include "threads/guarded.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::ActiveX {

namespace {

// A container or the system may hold it for longer than the control; the library stays as long.
class ControlDropTarget final : public OrvaneWebIDropTarget {
 public:
  using OrvaneWebIDropTarget::OrvaneWebIDropTarget;

 private:
  const ModuleReference moduleReference_;
};

}  // namespace

COrvaneWebCtrl::StartSite::StartSite(COrvaneWebCtrl& control) : control_(control) {
  if (!control_.needParameters_ || control_.startSite_) return;
  control_.startSite_ = ComPointer<IOleClientSite>(control_.object().site());
  owner_ = true;
}

COrvaneWebCtrl::StartSite::~StartSite() {
  if (owner_) control_.startSite_.reset();
}

COrvaneWebCtrl::COrvaneWebCtrl(IUnknown* outer) : OleControl(outer), dispatch_(*this) {
  OV_DEBUG("COrvaneWebCtrl()");
  core_ = std::make_unique<Plugin>();
  dropTarget_.reset(new ControlDropTarget(this));
}

COrvaneWebCtrl::~COrvaneWebCtrl() {
  teardown();
}

void COrvaneWebCtrl::teardown() noexcept {
  try {
    dropPending_ = false;
    needParameters_ = false;
    OV_DEBUG("~COrvaneWebCtrl()");
    // What outlives the control finds it gone from here on.
    lifeToken_.reset();
    // No transfer event starts once the listener has left.
    if (core_ && core_->getTransfersPoller() != nullptr) {
      core_->getTransfersPoller()->removeListener(this);
    }
    downloader_.reset();
    image_.reset();
    core_.reset();
    // Nothing is posted any more.
    deliveries_.setManager(nullptr);
    if (oneShotManager_) RunnableScheduler::stopRunnables(oneShotManager_.get());
    oneShotManager_.reset();
    dialogFunctions_.clear();
    eventHandler_.reset();
  } catch (const std::exception& exception) {
    ov_err("Cleanup error: %s", exception.what());
  }
}

void* COrvaneWebCtrl::findInterface(REFIID id) {
  const bool known = id == IID_IDispatch || id == kDispatchInterfaceId;
  return known ? static_cast<IDispatch*>(&dispatch_) : nullptr;
}

void COrvaneWebCtrl::onResetState() {
  ov_log("COrvaneWebCtrl::OnResetState()");
  OleControl::onResetState();
}

void COrvaneWebCtrl::onSetClientSite() {
  ov_log("COrvaneWebCtrl::OnSetClientSite()");
  OleControl::onSetClientSite();
}

void COrvaneWebCtrl::startIfNeeded() {
  if (needParameters_) onResetState();
  // A call that comes while the picture is fetched is judged as any other.
  if (startSite_) settleHost();
}

void COrvaneWebCtrl::doPropExchange(PropertyExchange& exchange) {
  OV_DEBUG("COrvaneWebCtrl::DoPropExchange()");
  const StartSite held(*this);
  OleControl::doPropExchange(exchange);
  if (!needParameters_) return;
  readParameters(exchange);
  // The container may have loaded the control once more meanwhile.
  if (!std::exchange(needParameters_, false)) return;
  // Before the core starts: the picture's request lets the page's messages through.
  if (!imageUrl_.empty()) loadPlugInImage();
  initPlugin();
}

void COrvaneWebCtrl::initPlugin() {
  OV_DEBUG("COrvaneWebCtrl::initPlugin()");
  for (const auto& [name, value] : parameters_) {
    OV_DEBUG("param %s=%s", name.c_str(), value.c_str());
  }
  // A control that cannot start answers all the same.
  try {
    startCore();
  } catch (const std::exception& exception) {
    ov_err("Failed to initialize plugin: %s", exception.what());
  }
  settleHost();
  core_->setParameters(parameters_);
}

// The page may have taken the site away while the picture came.
void COrvaneWebCtrl::settleHost() {
  if (!core_->hostname.empty()) return;
  const ComPointer<IOleClientSite> site(startSite_ ? startSite_.get() : object().site());
  core_->hostname = pageHostname(site.get());
}

void COrvaneWebCtrl::startCore() {
  core_->init(launchWaitOf(parameters_));
  core_->getTransfersPoller()->addListener(this);
  oneShotManager_ = std::make_unique<OneShotManager>();
  deliveries_.setManager(oneShotManager_.get());
}

void COrvaneWebCtrl::transferEventOccurred(const std::string& text) {
  guarded([this, &text] {
    OV_DEBUG("COrvaneWebCtrl::transferEventOccurred()");
    deliveries_.post(std::make_unique<TransferEvent>(*this, text));
  });
}

void COrvaneWebCtrl::setName(const wchar_t* name) {
  try {
    core_->name = textOf(name);
    persistence().setModified(true);
  } catch (const std::exception& exception) {
    ov_err("Failed to set plugin name: %s", exception.what());
  }
}

void COrvaneWebCtrl::setEventHandler(IDispatch* handler) {
  OV_DEBUG("COrvaneWebCtrl::SetEventHandler");
  // Held first: the old and the new one may be the same object.
  ComPointer<IDispatch> next(handler);
  if (const ComPointer<IDispatch> former = std::move(eventHandler_); former) {
    ov_log("Event handler removed");
  }
  eventHandler_ = std::move(next);
  if (eventHandler_) ov_log("Event handler set");
  persistence().setModified(true);
}

void COrvaneWebCtrl::holdForDialog(const Callback* callback, IDispatch* function) {
  dialogFunctions_[callback] = ComPointer<IDispatch>(function);
}

ComPointer<IDispatch> COrvaneWebCtrl::takeFromDialog(const Callback* callback) {
  const auto found = dialogFunctions_.find(callback);
  if (found == dialogFunctions_.end()) return {};
  ComPointer<IDispatch> function = std::move(found->second);
  dialogFunctions_.erase(found);
  return function;
}

}  // namespace Vantrel::Web::ActiveX
