#include "core/approved_files.h"

#include <set>
#include <stdexcept>

#include "runtime/ov_log.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

std::set<std::string> approvedFileList;

std::string normalForm(const std::string& path) {
  if (path.empty()) throw std::out_of_range("invalid string position");
  std::string normal = forwardSlashes(path);
  if (normal.back() == '/') normal.pop_back();
  return normal;
}

}  // namespace

void addToApprovedFileList(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    std::string normal = normalForm(path);
    OV_DEBUG("PlugIn::addToApprovedFileList() - added path to allowed list %s", normal.c_str());
    approvedFileList.insert(std::move(normal));
  }
}

bool isFileAllowed(const std::string& path) {
  const bool found = approvedFileList.contains(normalForm(path));
  if (!found) OV_DEBUG("PlugIn::isFileAllowed() - path is not allowed %s", path.c_str());
  return found;
}

}  // namespace Vantrel::Web
