// The parser of the service's address.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "service/url.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using Vantrel::Web::Url;
  const std::string text(reinterpret_cast<const char*>(data), size);
  const Url url(text);
  if (!holds(text, "://")) {
    check(
        (url.url + url.scheme + url.user + url.password + url.host + url.path + url.query).empty());
    check(url.port(0) == 0);
    return 0;
  }
  check(url.url == text);
  for (const std::string& part :
       {url.scheme, url.user, url.password, url.host, url.path, url.query}) {
    check(holds(text, part));
  }
  Url again("http://u:p@h:1/p?q");
  again.parse(text);
  check(again.host == url.host && again.port(0) == url.port(0) && again.path == url.path);
  check(again.user == url.user && again.password == url.password && again.query == url.query);
  return 0;
}
