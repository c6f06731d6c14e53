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

// Stores the text that `query` gives; for methods without arguments.
template <class Query>
bool answer(uint32_t argCount, NPVariant* result, Query query) {
  if (argCount != 0) return false;
  stringToVariant(query(), result);
  return true;
}

// Performs the command, whose outcome the page does not learn; for methods without arguments.
template <class Command>
bool perform(uint32_t argCount, NPVariant* result, Command command) {
  if (argCount != 0) return false;
  command();
  setVoid(result);
  return true;
}

}  // namespace

bool ovOrvaneWebPlugin::initSession(const NPVariant* args, uint32_t argCount, NPVariant* result) {
  if (!argumentsBegin({Argument::kText, Argument::kText}, args, argCount)) return false;
  std::string reply;
  try {
    reply = core->initSession(textOf(args[0]), textOf(args[1]));
    if (view_) view_->markSession(true);
  } catch (const std::exception& exception) {
    reply = exceptionJsonErrorReply(exception, kErrorInitializingSession);
  }
  stringToVariant(reply, result);
  return true;
}

bool ovOrvaneWebPlugin::queryBrowserEngine(const NPVariant*, uint32_t argCount, NPVariant* result) {
  return answer(argCount, result, [] { return Plugin::queryBrowserEngine(kEngineGecko); });
}

bool ovOrvaneWebPlugin::queryBuildVersion(const NPVariant*, uint32_t argCount, NPVariant* result) {
  return answer(argCount, result, Plugin::queryBuildVersion);
}

bool ovOrvaneWebPlugin::queryPluginVersion(const NPVariant*, uint32_t argCount, NPVariant* result) {
  return answer(argCount, result, Plugin::queryPluginVersion);
}

bool ovOrvaneWebPlugin::queryVersion(const NPVariant*, uint32_t argCount, NPVariant* result) {
  return answer(argCount, result, Plugin::queryVersion);
}

bool ovOrvaneWebPlugin::queryVantrelVersion(const NPVariant*, uint32_t argCount,
                                            NPVariant* result) {
  return answer(argCount, result, [this] { return core->queryVantrelVersion(); });
}

bool ovOrvaneWebPlugin::displayAboutWindow(const NPVariant*, uint32_t argCount, NPVariant* result) {
  return perform(argCount, result, [this] { core->displayAboutWindow(); });
}

bool ovOrvaneWebPlugin::displayPreferencesWindow(const NPVariant*, uint32_t argCount,
                                                 NPVariant* result) {
  return perform(argCount, result, [this] { core->displayPreferencesWindow(); });
}

bool ovOrvaneWebPlugin::displayTransferManager(const NPVariant*, uint32_t argCount,
                                               NPVariant* result) {
  return perform(argCount, result, [this] { core->displayTransferManager(); });
}

bool ovOrvaneWebPlugin::handleDrop(const NPVariant* args, uint32_t argCount, NPVariant* result) {
  if (!view_ || argCount > 1) return false;
  if (argCount == 1 && !argumentsAre({Argument::kObject}, args, argCount)) return false;
  if (argCount == 1) view_->handleDrop(args);
  setVoid(result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
