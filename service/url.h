// The parsed address of the local service. A plain value; no locking of its own.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web {

class Url {
 public:
  Url() = default;
  explicit Url(const std::string& text) { parse(text); }

  // Makes all texts empty and the port 0.
  void clear();

  // Takes a URL apart; anything may follow behind the digits of a port. A text without "://" is
  // reported and leaves everything cleared.
  void parse(const std::string& text);

  // The port, or `defaultPort` if the URL names none.
  uint16_t port(uint16_t defaultPort) const { return port_ == 0 ? defaultPort : port_; }

  std::string host;
  std::string password;
  std::string path;  // without its leading slash
  std::string query;
  std::string scheme;
  std::string url;  // the whole text; not empty is what makes a Url known
  std::string user;

 private:
  void parseBehindScheme(const std::string& rest);

  uint16_t port_ = 0;
};

}  // namespace Vantrel::Web
