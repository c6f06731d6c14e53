// Script methods: transfers that the page starts directly. A page does not learn whether the
// desktop client took them; the log does.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"

namespace Vantrel::Web::Gecko {

bool ovOrvaneWebPlugin::addToDownloadList(const NPVariant* args, uint32_t argCount,
                                          NPVariant* result) {
  if (!argumentsAre({Argument::kNonEmptyText}, args, argCount)) return false;
  core->addToDownloadList(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::addToUploadList(const NPVariant* args, uint32_t argCount,
                                        NPVariant* result) {
  if (!argumentsAre({Argument::kNonEmptyText}, args, argCount)) return false;
  core->addToUploadList(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::clearDownloadList(const NPVariant*, uint32_t argCount, NPVariant* result) {
  if (argCount != 0) return false;
  core->clearDownloadList();
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::clearUploadList(const NPVariant*, uint32_t argCount, NPVariant* result) {
  if (argCount != 0) return false;
  core->clearUploadList();
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startDownload(const NPVariant* args, uint32_t argCount, NPVariant* result) {
  if (!argumentsAre({Argument::kNonEmptyText}, args, argCount)) return false;
  core->startDownload(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startDownloadToPath(const NPVariant* args, uint32_t argCount,
                                            NPVariant* result) {
  if (!argumentsAre({Argument::kNonEmptyText, Argument::kText}, args, argCount)) return false;
  core->startDownloadToPath(textOf(args[0]), textOf(args[1]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startListDownloadToPath(const NPVariant* args, uint32_t argCount,
                                                NPVariant* result) {
  if (!argumentsAre({Argument::kText}, args, argCount)) return false;
  core->startListDownloadToPath(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startListUploadToURL(const NPVariant* args, uint32_t argCount,
                                             NPVariant* result) {
  if (!argumentsAre({Argument::kNonEmptyText}, args, argCount)) return false;
  core->startListUploadToURL(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startUploadToURL(const NPVariant* args, uint32_t argCount,
                                         NPVariant* result) {
  if (!argumentsAre({Argument::kNonEmptyText, Argument::kNonEmptyText}, args, argCount)) {
    return false;
  }
  core->startUploadToURL(textOf(args[0]), textOf(args[1]));
  setVoid(result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
