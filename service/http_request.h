// One exchange with the desktop client: filled by its creator, invoked once, destroyed by its
// owner. A request belongs to one thread at a time; the RequestWorker's queue passes it on.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "service/http_response.h"
#include "service/tcp_socket.h"
#include "threads/callback.h"

namespace Vantrel::Web {

class HttpRequest {
 public:
  HttpRequest(std::string hostName, uint16_t portNumber);
  ~HttpRequest();
  HttpRequest(const HttpRequest&) = delete;
  HttpRequest& operator=(const HttpRequest&) = delete;

  // A further line of the head; an earlier one of the same name stays.
  void addHeader(const std::string& name, const std::string& value);
  void setBody(std::string text);

  // Performs the exchange on the calling thread and blocks until it is over, without a time limit.
  // Null for every failure, the reason of which is in the log. At most once per object.
  std::unique_ptr<HttpResponse> invoke(const ConnectionPurpose& purpose = {});

  std::string host;
  uint16_t port;
  std::unique_ptr<Callback> callback;  // the asynchronous receiver, may be null
  std::string body;
  std::multimap<std::string, std::string> headers;
  std::string method = "GET";
  std::string path;

 private:
  std::string headText() const;
};

// Whether a method or a path can stand in the first line of a request: control characters would end
// it, and add header lines of the page's own beside the client's key.
bool fitsRequestLine(std::string_view text);

}  // namespace Vantrel::Web
