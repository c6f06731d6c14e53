// Script methods: transfers that the page starts directly, and the client's windows. A script hears
// of a client that did not reply by an error.

#include "browsers/activex/orvane_web_ctrl_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

// For what the core answers false.
void requireContact(bool contacted) {
  if (!contacted) throw ContactRefused();
}

}  // namespace

MethodText COrvaneWebCtrl::startDownload(const DispatchArguments& args) {
  requireContact(core_->startDownload(args.text(0)));
  return {};
}

MethodText COrvaneWebCtrl::startDownloadToPath(const DispatchArguments& args) {
  requireContact(core_->startDownloadToPath(args.text(0), args.text(1)));
  return {};
}

MethodText COrvaneWebCtrl::startUploadToURL(const DispatchArguments& args) {
  requireContact(core_->startUploadToURL(args.text(0), args.text(1)));
  return {};
}

MethodText COrvaneWebCtrl::startListDownloadToPath(const DispatchArguments& args) {
  requireContact(core_->startListDownloadToPath(args.text(0)));
  return {};
}

MethodText COrvaneWebCtrl::startListUploadToURL(const DispatchArguments& args) {
  requireContact(core_->startListUploadToURL(args.text(0)));
  return {};
}

MethodText COrvaneWebCtrl::addToDownloadList(const DispatchArguments& args) {
  core_->addToDownloadList(args.text(0));
  return {};
}

MethodText COrvaneWebCtrl::addToUploadList(const DispatchArguments& args) {
  core_->addToUploadList(args.text(0));
  return {};
}

MethodText COrvaneWebCtrl::clearDownloadList(const DispatchArguments&) {
  core_->clearDownloadList();
  return {};
}

MethodText COrvaneWebCtrl::clearUploadList(const DispatchArguments&) {
  core_->clearUploadList();
  return {};
}

MethodText COrvaneWebCtrl::displayTransferManager(const DispatchArguments&) {
  requireContact(core_->displayTransferManager());
  return {};
}

MethodText COrvaneWebCtrl::displayAboutWindow(const DispatchArguments&) {
  requireContact(core_->displayAboutWindow());
  return {};
}

MethodText COrvaneWebCtrl::displayPreferencesWindow(const DispatchArguments&) {
  requireContact(core_->displayPreferencesWindow());
  return {};
}

}  // namespace Vantrel::Web::ActiveX
