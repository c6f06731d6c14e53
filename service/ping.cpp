#include "service/ping.h"

#include <memory>
#include <string>

#include "service/http_request.h"
#include "service/service_url.h"
#include "service/vantrel_request.h"

namespace Vantrel::Web {

bool pingVantrel() {
  for (;;) {
    const Url url = vantrelUrl();
    if (url.url.empty()) return false;
    HttpRequest request(url.host, url.port(0));
    request.path = std::string(kServicePath) + "/info/ping";
    request.method = "GET";
    if (request.invoke()) return true;
    clearVantrelUrl();
    const Url reread = vantrelUrl();
    // On another port the client has restarted; on the same one nobody answers.
    if (reread.url.empty() || reread.port(0) == url.port(0)) return false;
  }
}

}  // namespace Vantrel::Web
