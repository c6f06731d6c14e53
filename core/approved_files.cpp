#include "core/approved_files.h"

#include <functional>
#include <stdexcept>
#include <string_view>
#include <unordered_set>

#include "runtime/ov_log.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

// Texts are looked up as they lie, without a copy.
struct PathHash {
  using is_transparent = void;
  size_t operator()(std::string_view path) const { return std::hash<std::string_view>()(path); }
};

std::unordered_set<std::string, PathHash, std::equal_to<>> approvedFileList;

// `path` must have forward slashes only.
std::string_view withoutTrailingSlash(std::string_view path) {
  if (path.empty()) throw std::out_of_range("invalid string position");
  if (path.back() == '/') path.remove_suffix(1);
  return path;
}

}  // namespace

void addToApprovedFileList(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    std::string normal(withoutTrailingSlash(forwardSlashes(path)));
    OV_DEBUG("PlugIn::addToApprovedFileList() - added path to allowed list %s", normal.c_str());
    approvedFileList.insert(std::move(normal));
  }
}

bool isFileAllowed(const std::string& path) {
  // Most paths come with forward slashes already.
  const bool found = path.find('\\') == std::string::npos
                         ? approvedFileList.contains(withoutTrailingSlash(path))
                         : approvedFileList.contains(withoutTrailingSlash(forwardSlashes(path)));
  if (!found) OV_DEBUG("PlugIn::isFileAllowed() - path is not allowed %s", path.c_str());
  return found;
}

}  // namespace Vantrel::Web
