// The xferreq document, with which a transfer is started directly.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Vantrel::StandIn {

struct XferRequest {
  std::vector<std::string> sources;
  std::string destination;  // empty when the document names none
};

// Reads the src and dest elements, entities resolved; other elements are skipped, however ill
// formed. Returns the empty text, or what is wrong.
std::string readXferRequest(std::string_view document, XferRequest& request);

}  // namespace Vantrel::StandIn
