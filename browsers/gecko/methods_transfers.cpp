// Script methods: transfers that the page starts directly. A page does not learn whether the
// desktop client took them; the log does.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"

namespace Vantrel::Web::Gecko {

bool ovOrvaneWebPlugin::addToDownloadList(Arguments args, NPVariant* result) {
  core->addToDownloadList(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::addToUploadList(Arguments args, NPVariant* result) {
  core->addToUploadList(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::clearDownloadList(Arguments, NPVariant* result) {
  core->clearDownloadList();
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::clearUploadList(Arguments, NPVariant* result) {
  core->clearUploadList();
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startDownload(Arguments args, NPVariant* result) {
  core->startDownload(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startDownloadToPath(Arguments args, NPVariant* result) {
  core->startDownloadToPath(textOf(args[0]), textOf(args[1]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startListDownloadToPath(Arguments args, NPVariant* result) {
  core->startListDownloadToPath(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startListUploadToURL(Arguments args, NPVariant* result) {
  core->startListUploadToURL(textOf(args[0]));
  setVoid(result);
  return true;
}

bool ovOrvaneWebPlugin::startUploadToURL(Arguments args, NPVariant* result) {
  core->startUploadToURL(textOf(args[0]), textOf(args[1]));
  setVoid(result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
