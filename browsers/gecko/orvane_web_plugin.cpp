// Life of an instance, and the properties that hold page objects.

#include "browsers/gecko/orvane_web_plugin.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/page_hostname.h"
#include "browsers/gecko/script_object.h"
#include "runtime/ov_log.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::Gecko {

namespace {

std::string userAgent(NPP npp) {
  const char* const text = browserFuncs.uagent(npp);
  return text != nullptr ? text : "";
}

}  // namespace

ovOrvaneWebPlugin::ovOrvaneWebPlugin(NPP instance, const ElementParameters& parameters)
    : npp_(instance) {
  OV_DEBUG("ovOrvaneWebPlugin() [%p]", static_cast<void*>(this));
  try {
    initialize(parameters);
  } catch (const std::exception& exception) {
    ov_err("Failed to initialize plugin: %s", exception.what());
    teardown();
    throw;
  }
}

void ovOrvaneWebPlugin::initialize(const ElementParameters& parameters) {
  const int32_t wait = launchWaitOf(parameters);
  transparent_ = parameterIs(parameters, "transparent", "yes");
  core = std::make_unique<Plugin>();
  core->setUserAgent(userAgent(npp_));
  core->hostname = pageHostname(npp_);
  core->init(wait);
  core->setParameters(parameters);
  oneShotManager_ = std::make_unique<OneShotManager>();
  imageUrl_ = parameterOf(parameters, "image");
  dropMode_ = dropModeOf(parameters);
  dropAllowDirectories_ = parameterIs(parameters, "drop-allow-directories", "true");
  dropAllowMultiple_ = parameterIs(parameters, "drop-allow-multiple", "true");
  createScriptObject();
  transferEventHandler_ = std::make_unique<TransferEventHandler>(npp_, nullptr);
  core->getTransfersPoller()->addListener(transferEventHandler_.get());
}

void ovOrvaneWebPlugin::createScriptObject() {
  scriptObject_ = reinterpret_cast<ovOrvaneWebScriptObject*>(
      browserFuncs.createobject(npp_, createScriptClass()));
  if (scriptObject_ == nullptr) throw std::runtime_error("Failed to create the script object");
  scriptObject_->plugin = this;
}

ovOrvaneWebPlugin::~ovOrvaneWebPlugin() {
  OV_DEBUG("~ovOrvaneWebPlugin() [%p]", static_cast<void*>(this));
  teardown();
  OV_DEBUG("~ovOrvaneWebPlugin() - done");
}

void ovOrvaneWebPlugin::teardown() noexcept {
  try {
    // The page may keep the script object; from now on it answers false.
    if (scriptObject_ != nullptr) scriptObject_->plugin = nullptr;
    // No transfer event starts once the listener has left.
    if (transferEventHandler_ && core) {
      core->getTransfersPoller()->removeListener(transferEventHandler_.get());
    }
    transferEventHandler_.reset();
    imageData_.clear();
    view_.reset();
    core.reset();
    if (oneShotManager_) RunnableScheduler::stopRunnables(oneShotManager_.get());
    oneShotManager_.reset();
    // Nothing is posted any more; the browser may never run what waits.
    freeUndeliveredCalls(npp_);
  } catch (const std::exception& exception) {
    ov_err("Plugin cleanup error: %s", exception.what());
  }
}

NPObject* ovOrvaneWebPlugin::getScriptableObject() {
  return browserFuncs.retainobject(scriptObject_);
}

int16_t ovOrvaneWebPlugin::handleEvent(void* event) {
  return view_ && eventsEnabled_ ? view_->handleEvent(event) : int16_t{0};
}

namespace {

NPObject* objectOf(const NPVariant& value) {
  return value.type == NPVariantType_Object ? value.value.objectValue : nullptr;
}

}  // namespace

void ovOrvaneWebPlugin::setDropObserver(const NPVariant& value) {
  // Retained first: the old and the new one may be the same object.
  NPObject* const observer = objectOf(value);
  if (observer != nullptr) browserFuncs.retainobject(observer);
  if (NPObject* const former = std::exchange(dropObserver_, nullptr); former != nullptr) {
    browserFuncs.releaseobject(former);
    ov_log("Drop observer removed");
  }
  if (observer != nullptr) {
    dropObserver_ = observer;
    ov_log("Drop observer set");
  }
}

void ovOrvaneWebPlugin::setEventHandler(const NPVariant& value) {
  NPObject* const handler = objectOf(value);
  if (handler != nullptr) browserFuncs.retainobject(handler);
  if (NPObject* const former = std::exchange(eventHandler_, nullptr); former != nullptr) {
    // Events go on to the former function until there is another.
    transferEventHandler_->keepTarget(former);
    browserFuncs.releaseobject(former);
    ov_log("Event handler removed");
  }
  if (handler != nullptr) {
    eventHandler_ = handler;
    transferEventHandler_->setTarget(handler);
    ov_log("Event handler set");
  }
}

}  // namespace Vantrel::Web::Gecko
