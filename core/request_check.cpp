#include "core/request_check.h"

#include <string_view>

#include "core/approved_files.h"
#include "text/error_reply.h"
#include "text/error_texts.h"
#include "text/json_document.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

// The members that the check reads.
constexpr char kSettings[] = "orvane_vantrel_settings";
constexpr char kAppId[] = "app_id";
constexpr char kAbsoluteDestination[] = "use_absolute_destination_path";
constexpr char kSpecs[] = "transfer_specs";
constexpr char kSpec[] = "transfer_spec";
constexpr char kDirection[] = "direction";
constexpr char kDestinationRoot[] = "destination_root";
constexpr char kSourceRoot[] = "source_root";
constexpr char kPaths[] = "paths";
constexpr std::string_view kSource = "source";

using Path = const char* const[];
constexpr Path kSettingsPath = {kSettings, nullptr};
constexpr Path kAppIdPath = {kSettings, kAppId, nullptr};
constexpr Path kSpecsPath = {kSpecs, nullptr};
constexpr Path kSpecPath = {kSpec, nullptr};
constexpr Path kAbsoluteDestinationPath = {kSettings, kAbsoluteDestination, nullptr};
constexpr Path kDirectionPath = {kSpec, kDirection, nullptr};
constexpr Path kDestinationRootPath = {kSpec, kDestinationRoot, nullptr};
constexpr Path kSourceRootPath = {kSpec, kSourceRoot, nullptr};
constexpr Path kPathsPath = {kSpec, kPaths, nullptr};

std::string parseFailure(const std::string& reason) {
  return jsonErrorReply(std::string(kErrorParsingJson) + ": " + reason);
}

std::string refusal(const char* text, const std::string& path) {
  return jsonErrorReply(std::string(text) + ": " + quotePath(path, false));
}

// The specification that the check looks at, or null: the first one.
yajl_val firstSpecification(const JsonDocument& document) {
  const yajl_val specs = document.get(kSpecsPath);
  const bool filled = YAJL_IS_ARRAY(specs) && specs->u.array.len != 0;
  return filled ? specs->u.array.values[0] : nullptr;
}

// A member that the check reads and that stands twice in its object, or null. Of such members the
// check sees the first one, and a client may obey the last one. "source" is not among them: each is
// judged.
const char* ambiguousMember(const JsonDocument& document, yajl_val spec) {
  const char* name = repeatedMember(document.root(), {kSettings, kSpecs});
  if (name == nullptr) name = repeatedMember(document.get(kSettingsPath), {kAppId});
  if (name != nullptr || spec == nullptr) return name;
  name = repeatedMember(spec, {kSettings, kSpec});
  if (name == nullptr) {
    name = repeatedMember(document.get(kSettingsPath, spec), {kAbsoluteDestination});
  }
  if (name != nullptr) return name;
  return repeatedMember(document.get(kSpecPath, spec),
                        {kDirection, kDestinationRoot, kSourceRoot, kPaths});
}

// The reply that refuses one file of an upload, or an empty text. What is neither text nor number
// names no file that the user could have chosen, so it is refused like a file he did not choose.
std::string checkSource(PathJoiner& root, yajl_val source) {
  const bool readable = YAJL_IS_STRING(source) || YAJL_IS_NUMBER(source);
  const std::string& joined = root.join(jsonText(source));
  if (readable && isFileAllowed(joined)) return {};
  return refusal(kErrorUnauthorizedFile, joined);
}

std::string checkUpload(const JsonDocument& document, yajl_val spec) {
  std::string invalidPaths = jsonErrorReply(std::string(kErrorInvalidArgument) + ": paths");
  PathJoiner root(document.getString(kSourceRootPath, spec));
  const yajl_val paths = document.get(kPathsPath, spec);
  if (!YAJL_IS_ARRAY(paths)) return invalidPaths;
  for (size_t i = 0; i < paths->u.array.len; ++i) {
    const yajl_val entry = paths->u.array.values[i];
    if (!YAJL_IS_OBJECT(entry)) return invalidPaths;
    for (size_t key = 0; key < entry->u.object.len; ++key) {
      if (entry->u.object.keys[key] != kSource) continue;
      std::string error = checkSource(root, entry->u.object.values[key]);
      if (!error.empty()) return error;
    }
  }
  return {};
}

std::string checkSpecification(const JsonDocument& document, yajl_val spec,
                               const DestinationConsent& consent) {
  const std::string direction = document.getString(kDirectionPath, spec);
  if (direction == "receive" && document.isTrue(kAbsoluteDestinationPath, spec)) {
    const std::string destination = document.getString(kDestinationRootPath, spec);
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
  if (!document.parseForForwarding(body)) {
    error = parseFailure(document.errorText());
    return false;
  }
  const yajl_val spec = firstSpecification(document);
  if (const char* const name = ambiguousMember(document, spec); name != nullptr) {
    error = parseFailure(std::string("the member ") + name + " stands twice in one object");
    return false;
  }
  error.clear();
  if (const std::string appId = document.getString(kAppIdPath); !appId.empty()) {
    error = validateHostname(appId);
    if (!error.empty()) return false;
  }
  if (spec != nullptr) error = checkSpecification(document, spec, consent);
  return error.empty();
}

}  // namespace Vantrel::Web
