// Requests that carry what the desktop client expects: its key and a content type of its protocol.
#pragma once

#include <memory>
#include <string>

#include "service/http_request.h"

namespace Vantrel::Web {

// Values of `format`: kFormatXml selects XML, anything else JSON.
inline constexpr int kFormatJson = 0;
inline constexpr int kFormatXml = 1;

inline constexpr char kHeaderContentType[] = "Content-Type";
inline constexpr char kMediaTypeXml[] = "application/vnd.orvane.xferreq+xml";
inline constexpr char kMediaTypeJson[] = "application/vnd.orvane.xferreq+json";
inline constexpr char kMediaTypeForwarded[] = "application/json";

// The start of the paths of the protocol's fifth version.
inline constexpr char kServicePath[] = "/v5/vantrel";

// A request to the service's present address, or null when none is known.
std::unique_ptr<HttpRequest> newVantrelRequest(int format);
std::unique_ptr<HttpRequest> newVantrelRequest(const std::string& method, const std::string& path,
                                               const std::string& body, int format);

}  // namespace Vantrel::Web
