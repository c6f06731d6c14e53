// Script methods: the session, versions, and requests that the page forwards to the desktop client.

#include "browsers/activex/callbacks_win.h"
#include "browsers/activex/orvane_web_ctrl_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

// The number of the browser engine of this front end.
constexpr int32_t kEngineActiveX = 1;

}  // namespace

MethodText COrvaneWebCtrl::initSession(const DispatchArguments& args) {
  return core_->initSession(args.text(0), args.text(1));
}

MethodText COrvaneWebCtrl::queryBrowserEngine(const DispatchArguments&) {
  return Plugin::queryBrowserEngine(kEngineActiveX);
}

MethodText COrvaneWebCtrl::queryBuildVersion(const DispatchArguments&) {
  return Plugin::queryBuildVersion();
}

MethodText COrvaneWebCtrl::queryPluginVersion(const DispatchArguments&) {
  return Plugin::queryPluginVersion();
}

MethodText COrvaneWebCtrl::queryVersion(const DispatchArguments&) {
  return Plugin::queryVersion();
}

MethodText COrvaneWebCtrl::queryVantrelVersion(const DispatchArguments&) {
  return core_->queryVantrelVersion();
}

MethodText COrvaneWebCtrl::vantrelHttpRequest(const DispatchArguments& args) {
  std::string error;
  std::unique_ptr<HttpResponse> response;
  core_->vantrelHttpRequest(error, args.text(0), args.text(1), args.text(2), response);
  return response && error.empty() ? response->body() : error;
}

MethodText COrvaneWebCtrl::vantrelHttpRequestAsync(const DispatchArguments& args) {
  return core_->vantrelHttpRequestAsync(
      args.text(0), args.text(1), args.text(2),
      std::make_unique<RequestCallback>(deliveries_, args.object(3)));
}

MethodText COrvaneWebCtrl::httpRequestImplementation(const DispatchArguments& args) {
  core_->httpRequestImplementation(args.text(0), args.text(1), args.text(2),
                                   std::make_unique<RequestCallback>(deliveries_, args.object(3)));
  return {};
}

}  // namespace Vantrel::Web::ActiveX
