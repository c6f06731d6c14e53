// The judge of bodies against slow readers of the same body: one obeys the first of equal members,
// another the last, and for each of them there is one that ends comments elsewhere. What the judge
// lets pass must be approved as any of them reads it.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "core/approved_files.h"
#include "core/destination_consent.h"
#include "core/request_check.h"
#include "tests/support/slow_json.h"
#include "text/text.h"

namespace {

using Vantrel::Web::addToApprovedFileList;
using Vantrel::Web::checkRequestBody;
using Vantrel::Web::DestinationConsent;
using Vantrel::Web::joinPaths;
using Vantrel::Web::TestSupport::LineEnds;
using Vantrel::Web::TestSupport::SlowJson;
using Vantrel::Web::TestSupport::SlowJsonReader;

constexpr char kApproved[] = "C:/ok";
constexpr char kSelected[] = "D:/out";
constexpr char kBadId[] = "^bad";

void check(bool holds) {
  if (!holds) std::abort();
}

std::string hostnameReply(const std::string& id) {
  return id.front() == '^' ? "refused" : "";
}

// One way of reading a body.
class Reading {
 public:
  Reading(const SlowJson& body, bool lastCounts) : body_(body), lastCounts_(lastCounts) {}

  bool isApproved() const {
    const std::string id = text(member(member(&body_, "orvane_vantrel_settings"), "app_id"));
    if (!id.empty() && id.front() == kBadId[0]) return false;
    const SlowJson* const specs = member(&body_, "transfer_specs");
    if (specs == nullptr || specs->items.empty()) return true;
    const SlowJson& first = specs->items.front();
    const SlowJson* const spec = member(&first, "transfer_spec");
    const std::string direction = text(member(spec, "direction"));
    if (direction == "send") return isSendApproved(spec);
    return direction != "receive" || !isAbsolute(&first) || isDestinationApproved(spec);
  }

 private:
  const SlowJson* member(const SlowJson* object, const std::string& name) const {
    const SlowJson* found = nullptr;
    if (object == nullptr) return found;
    for (const auto& [key, value] : object->members) {
      if (key == name && (lastCounts_ || found == nullptr)) found = &value;
    }
    return found;
  }
  static std::string text(const SlowJson* value) { return value == nullptr ? "" : value->text; }

  bool isAbsolute(const SlowJson* specification) const {
    const SlowJson* const settings = member(specification, "orvane_vantrel_settings");
    const SlowJson* const flag = member(settings, "use_absolute_destination_path");
    return flag != nullptr && flag->kind == SlowJson::Kind::kTrue;
  }
  // By the loose rule of destinations.
  bool isDestinationApproved(const SlowJson* spec) const {
    std::string destination = text(member(spec, "destination_root"));
    std::replace(destination.begin(), destination.end(), '\\', '/');
    const std::string selected = kSelected;
    return destination.size() >= selected.size() && destination.find_first_of(selected) == 0 &&
           (destination.size() == selected.size() || destination[selected.size()] == '/');
  }
  bool isSendApproved(const SlowJson* spec) const {
    const std::string root = text(member(spec, "source_root"));
    const SlowJson* const paths = member(spec, "paths");
    if (paths == nullptr) return false;
    for (const SlowJson& entry : paths->items) {
      for (const auto& [key, value] : entry.members) {
        if (key != "source") continue;
        std::string path = joinPaths(root, value.text);
        if (!path.empty() && path.back() == '/') path.pop_back();
        if (path != kApproved) return false;
      }
    }
    return true;
  }

  const SlowJson& body_;
  bool lastCounts_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const DestinationConsent kConsent = [] {
    addToApprovedFileList({kApproved});
    DestinationConsent consent;
    consent.setLastSelectedPath(kSelected);
    return consent;
  }();
  const std::string body(reinterpret_cast<const char*>(data), size);
  std::string error;
  try {
    if (!checkRequestBody(body, hostnameReply, kConsent, error)) return 0;
  } catch (const std::out_of_range&) {
    return 0;  // an empty path, which is refused
  }
  check(error.empty() && body.find('\0') == std::string::npos);
  for (const LineEnds ends : {LineEnds::kLineFeed, LineEnds::kAny}) {
    const auto read = SlowJsonReader(body, ends).read();
    check(read.has_value());
    check(Reading(*read, false).isApproved() && Reading(*read, true).isApproved());
  }
  return 0;
}
