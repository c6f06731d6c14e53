// One direct start of a transfer: an xferreq document that is posted to the desktop client. Built
// on the stack for one call, on the browser's thread.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace Vantrel::Web {

// The namespace of the document's elements. It names the vocabulary; nothing is fetched from it.
inline constexpr char kXferreqNamespace[] = "https://orvane.example/xml/xferreq/";

class Transfer {
 public:
  Transfer() = default;
  virtual ~Transfer() = default;
  Transfer(const Transfer&) = default;
  Transfer& operator=(const Transfer&) = default;

  // Sources: URLs, or texts made by fileUrl. Empty entries are left out of the document.
  void setFiles(const std::vector<std::string>& newFiles) { files_ = newFiles; }
  void setDestination(const std::string& text) { destination_ = text; }

  // The document, in one line.
  std::string document() const;

  // Sends the document to the client, started if need be; true when the client answered anything.
  // Blocks for the launch wait and the exchange.
  bool post() const;

 protected:
  std::vector<std::string> files_;
  std::string destination_;
  std::map<std::string, std::string> parameters_;
};

}  // namespace Vantrel::Web
