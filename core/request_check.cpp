#include "core/request_check.h"

#include <string_view>

#include "core/approved_files.h"
#include "core/request_body.h"
#include "text/error_reply.h"
#include "text/error_texts.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

std::string parseFailure(const std::string& reason) {
  return jsonErrorReply(std::string(kErrorParsingJson) + ": " + reason);
}

std::string refusal(const char* text, const std::string& path) {
  return jsonErrorReply(std::string(text) + ": " + quotePath(path, false));
}

// The reply that refuses one file of an upload, or an empty text. What is neither text nor number
// names no file that the user could have chosen, so it is refused like a file he did not choose.
std::string checkSource(PathJoiner& root, const ApprovedPrefix& prefix, std::string_view text,
                        bool readable) {
  const std::string& joined = root.join(text);
  if (readable && isJoinedFileAllowed(joined, prefix)) return {};
  return refusal(kErrorUnauthorizedFile, joined);
}

std::string checkUpload(const RequestBody& body) {
  std::string invalidPaths = jsonErrorReply(std::string(kErrorInvalidArgument) + ": paths");
  if (!body.hasPaths) return invalidPaths;
  PathJoiner root(body.sourceRoot);
  const ApprovedPrefix prefix = prefixOf(root.root());
  for (const RequestBody::Source& source : body.sources) {
    if (source.kind == RequestBody::Source::Kind::kNoObject) return invalidPaths;
    const bool readable = source.kind == RequestBody::Source::Kind::kText;
    std::string error = checkSource(root, prefix, body.sourceText(source), readable);
    if (!error.empty()) return error;
  }
  return {};
}

std::string checkSpecification(const RequestBody& body, const DestinationConsent& consent) {
  if (body.direction == "receive" && body.absoluteDestination &&
      !consent.isDestinationAllowed(body.destinationRoot)) {
    return refusal(kErrorUnauthorizedDirectory, body.destinationRoot);
  }
  return body.direction == "send" ? checkUpload(body) : std::string();
}

}  // namespace

bool checkRequestBody(const std::string& body, const HostnameCheck& validateHostname,
                      const DestinationConsent& consent, std::string& error) {
  RequestBody members;
  std::string reason;
  if (!members.read(body, reason)) {
    error = parseFailure(reason);
    return false;
  }
  error.clear();
  if (!members.appId.empty()) error = validateHostname(members.appId);
  if (error.empty() && members.hasSpecification) error = checkSpecification(members, consent);
  return error.empty();
}

}  // namespace Vantrel::Web
