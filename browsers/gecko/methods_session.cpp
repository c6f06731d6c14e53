// Script methods: the session, versions, the client's windows and drops given by the page.

#include <exception>

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web::Gecko {

namespace {

// The number of the browser engine of this front end.
constexpr int32_t kEngineGecko = 0;

}  // namespace

bool ovOrvaneWebPlugin::initSession(Arguments args, NPVariant* result) {
  std::string reply;
  try {
    reply = core->initSession(textOf(args[0]), textOf(args[1]));
  } catch (const std::exception& exception) {
    reply = exceptionJsonErrorReply(exception, kErrorInitializingSession);
  }
  if (view_) view_->markSession(true);
  stringToVariant(reply, result);
  return true;
}

bool ovOrvaneWebPlugin::queryBrowserEngine(Arguments, NPVariant* result) {
  stringToVariant(Plugin::queryBrowserEngine(kEngineGecko), result);
  return true;
}

bool ovOrvaneWebPlugin::queryBuildVersion(Arguments, NPVariant* result) {
  stringToVariant(Plugin::queryBuildVersion(), result);
  return true;
}

bool ovOrvaneWebPlugin::queryPluginVersion(Arguments, NPVariant* result) {
  stringToVariant(Plugin::queryPluginVersion(), result);
  return true;
}

bool ovOrvaneWebPlugin::queryVersion(Arguments, NPVariant* result) {
  stringToVariant(Plugin::queryVersion(), result);
  return true;
}

bool ovOrvaneWebPlugin::queryVantrelVersion(Arguments, NPVariant* result) {
  stringToVariant(core->queryVantrelVersion(), result);
  return true;
}

// What a window command came to, the page does not learn.

bool ovOrvaneWebPlugin::displayAboutWindow(Arguments, NPVariant* result) {
  core->displayAboutWindow();
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::displayPreferencesWindow(Arguments, NPVariant* result) {
  core->displayPreferencesWindow();
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::displayTransferManager(Arguments, NPVariant* result) {
  core->displayTransferManager();
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::handleDrop(Arguments args, NPVariant* result) {
  if (!view_) return false;
  if (!args.empty()) view_->handleDrop(args.data());
  setVoid(result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
