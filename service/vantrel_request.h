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

// A request to the service's present address, or null when none is known. Null too for a method or
// a path that does not fit the first line of a request.
std::unique_ptr<HttpRequest> newVantrelRequest(int format);
std::unique_ptr<HttpRequest> newVantrelRequest(const std::string& method, const std::string& path,
                                               std::string body, int format);

// How far a request to the client came.
enum class Contact { kAnswered, kNoClient, kNoRequest, kNoAnswer };

// The text that tells of a failed contact; it is not logged yet.
const char* contactError(Contact contact);

// Starts the client if none answers, sends it one request and waits for the reply, which is there
// exactly when the client answered. Blocks for the launch wait and the exchange.
Contact askVantrel(const std::string& method, const std::string& path, std::string body, int format,
                   std::unique_ptr<HttpResponse>& response);

}  // namespace Vantrel::Web
