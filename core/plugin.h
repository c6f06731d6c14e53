// The heart of a plug-in instance: it holds the session and decides everything that a page may do.
// The front ends only convert arguments and results.
//
// Owned by its front-end instance and used on the browser's thread alone, so it has no lock. It
// owns the two background threads, which work on copies of what they need. Calls that reach the
// desktop client block for the launch wait and the exchange.
//
// Operations for the page return text: a result, or an error reply, which begins {"error":.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/destination_consent.h"
#include "service/http_request.h"
#include "service/http_response.h"
#include "service/request_worker.h"
#include "service/transfers_poller.h"
#include "threads/callback.h"

namespace Vantrel::Web {

class Plugin {
 public:
  // Front ends call, in this order: the constructor, setUserAgent (Netscape only), the assignment
  // of `hostname`, init, setParameters.
  Plugin();
  // Stops and joins the two threads. Lets no exception out.
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  // Derives browserHost from the user agent text.
  void setUserAgent(const std::string& text);
  // Starts the desktop client if none answers, waiting for it up to `launchTimeoutMs` milliseconds,
  // and the request thread. Throws SystemException if that thread cannot be started.
  void init(int32_t launchTimeoutMs);
  // The element's parameters; a missing one reads as empty.
  void setParameters(const std::map<std::string, std::string>& parameters);

  // Ties the instance to an application id and starts the activity poll. Once per instance.
  std::string initSession(const std::string& applicationId, const std::string& domain);
  // An empty text if `id` may be used on this page, otherwise an error reply.
  std::string validateHostname(const std::string& id) const;

  static std::string queryBrowserEngine(int32_t code);
  static std::string queryBuildVersion();
  static std::string queryPluginVersion();
  static std::string queryVersion();
  // The client's JSON body, unread.
  std::string queryVantrelVersion();

  // The client's windows: true when the client replied.
  bool displayTransferManager();
  bool displayAboutWindow();
  bool displayPreferencesWindow();

  // Forwarding. The body is checked, then sent as it is; an empty one as {}. Exactly one of `error`
  // and `response` is filled.
  bool validateRequestBody(const std::string& body, std::string& error) const;
  void vantrelHttpRequest(std::string& error, const std::string& method, const std::string& path,
                          std::string body, std::unique_ptr<HttpResponse>& response);
  // Returns an error reply at once, leaving the callback unused, or an empty text; then the answer
  // comes through the callback.
  std::string vantrelHttpRequestAsync(const std::string& method, const std::string& path,
                                      std::string body, std::unique_ptr<Callback> callback);
  // Sends without any check and without the client's key; every outcome goes through the callback.
  void httpRequestImplementation(const std::string& method, const std::string& path,
                                 std::string body, std::unique_ptr<Callback> callback);

  // Direct start of transfers, by an xferreq document: true when the client replied.
  bool startDownload(const std::string& url);
  bool startDownloadToPath(const std::string& url, const std::string& destination);
  bool startUploadToURL(const std::string& path, const std::string& url);
  bool startListDownloadToPath(const std::string& destination);
  bool startListUploadToURL(const std::string& url);
  bool uploadDropped(const std::vector<std::string>& sources);
  // The lists keep order and duplicates; starting a list does not empty it.
  void addToDownloadList(const std::string& url);
  void addToUploadList(const std::string& path);
  void clearDownloadList();
  void clearUploadList();

  // What the user chose last as a folder or save path.
  void setLastSelectedPath(const std::string& path) { consent_.setLastSelectedPath(path); }
  bool isDestinationAllowed(const std::string& path) const {
    return consent_.isDestinationAllowed(path);
  }

  std::string hostname;  // of the page; assigned by the front end
  std::string name;      // the page's own; only the front end's property touches it

  const std::string& getBrowserHost() const { return browserHost_; }
  TransfersPoller* getTransfersPoller() const { return transfersPoller_.get(); }

 private:
  // What an instance asks of the platform. The first moves the process's working directory to the
  // user's home, and a failure of it is one log line; the second is USER32's function, or null.
  static void changeToHomeDirectory();
  static void* findSetLayeredWindowAttributes();

  struct SocketLayer;

  bool download(const std::vector<std::string>& sources, const std::string& destination);
  bool upload(const std::vector<std::string>& sources, const std::string& destinationUrl);

  std::string appId_;
  std::vector<std::string> downloadList_;
  std::string browserHost_;
  DestinationConsent consent_;
  std::unique_ptr<SocketLayer> socketLayer_;  // before the workers, which need it to their end
  std::unique_ptr<RequestWorker> requestWorker_;
  bool sessionInitialized_ = false;
  std::unique_ptr<TransfersPoller> transfersPoller_;
  std::vector<std::string> uploadList_;
  // Parameters that reach no document; kept because the element has them.
  std::string transferIcon_;
  int32_t linkCapacity_ = 0;
  std::string dropUploadUrl_;
  void* setLayeredWindowAttributes_ = nullptr;
};

}  // namespace Vantrel::Web
