// The one folder or save path that the user chose last: where a page may aim a download. One per
// plug-in instance, which owns it; browser's thread only.
#pragma once

#include <string>

namespace Vantrel::Web {

class DestinationConsent {
 public:
  // Remembers the path with forward slashes, in place of the former one.
  void setLastSelectedPath(const std::string& path);
  const std::string& lastSelectedPath() const { return lastSelectedPath_; }
  void clear() { lastSelectedPath_.clear(); }

  // Loose by design: `path` is at least as long as the selected one, its first character occurs
  // somewhere in the selected one, and it ends or has a slash at the selected one's length.
  bool isDestinationAllowed(const std::string& path) const;

 private:
  std::string lastSelectedPath_;
};

}  // namespace Vantrel::Web
