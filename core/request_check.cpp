#include "core/request_check.h"

#include <string_view>

#include "core/approved_files.h"
#include "text/error_reply.h"
#include "text/error_texts.h"
#include "text/json_document.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

constexpr const char* kAppId[] = {"orvane_vantrel_settings", "app_id", nullptr};
constexpr const char* kTransferSpecs[] = {"transfer_specs", nullptr};
constexpr const char* kUseAbsoluteDestination[] = {"orvane_vantrel_settings",
                                                   "use_absolute_destination_path", nullptr};
constexpr const char* kDirection[] = {"transfer_spec", "direction", nullptr};
constexpr const char* kDestinationRoot[] = {"transfer_spec", "destination_root", nullptr};
constexpr const char* kSourceRoot[] = {"transfer_spec", "source_root", nullptr};
constexpr const char* kPaths[] = {"transfer_spec", "paths", nullptr};
constexpr std::string_view kSource = "source";

std::string refusal(const char* text, const std::string& path) {
  return jsonErrorReply(std::string(text) + ": " + quotePath(path, false));
}

// The reply that refuses one file of an upload, or an empty text. What is neither text nor number
// names no file that the user could have chosen, so it is refused like a file he did not choose.
std::string checkSource(const std::string& sourceRoot, yajl_val source) {
  const bool readable = YAJL_IS_STRING(source) || YAJL_IS_NUMBER(source);
  const std::string joined = joinPaths(sourceRoot, readable ? jsonText(source) : std::string());
  if (readable && isFileAllowed(joined)) return {};
  return refusal(kErrorUnauthorizedFile, joined);
}

std::string checkUpload(const JsonDocument& document, yajl_val spec) {
  std::string invalidPaths = jsonErrorReply(std::string(kErrorInvalidArgument) + ": paths");
  const std::string sourceRoot = document.getString(kSourceRoot, spec);
  const yajl_val paths = document.get(kPaths, spec);
  if (!YAJL_IS_ARRAY(paths)) return invalidPaths;
  for (size_t i = 0; i < paths->u.array.len; ++i) {
    const yajl_val entry = paths->u.array.values[i];
    if (!YAJL_IS_OBJECT(entry)) return invalidPaths;
    for (size_t key = 0; key < entry->u.object.len; ++key) {
      if (entry->u.object.keys[key] != kSource) continue;
      std::string error = checkSource(sourceRoot, entry->u.object.values[key]);
      if (!error.empty()) return error;
    }
  }
  return {};
}

std::string checkSpecification(const JsonDocument& document, yajl_val spec,
                               const DestinationConsent& consent) {
  const std::string direction = document.getString(kDirection, spec);
  if (direction == "receive" && document.isTrue(kUseAbsoluteDestination, spec)) {
    const std::string destination = document.getString(kDestinationRoot, spec);
    if (!consent.isDestinationAllowed(destination)) {
      return refusal(kErrorUnauthorizedDirectory, destination);
    }
  }
  return direction == "send" ? checkUpload(document, spec) : std::string();
}

}  // namespace

bool checkRequestBody(const std::string& body, const HostnameCheck& validateHostname,
                      const DestinationConsent& consent, std::string& error) {
  JsonDocument document;
  if (!document.parse(body)) {
    error = jsonErrorReply(std::string(kErrorParsingJson) + ": " + document.errorText());
    return false;
  }
  error.clear();
  if (const std::string appId = document.getString(kAppId); !appId.empty()) {
    error = validateHostname(appId);
    if (!error.empty()) return false;
  }
  const yajl_val specs = document.get(kTransferSpecs);
  if (!YAJL_IS_ARRAY(specs) || specs->u.array.len == 0) return true;
  error = checkSpecification(document, specs->u.array.values[0], consent);
  return error.empty();
}

}  // namespace Vantrel::Web
