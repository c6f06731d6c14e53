// The files and folders that the user chose in a dialog or dropped: what a page may read or upload.
//
// One set for the whole process, shared by all instances of all pages, which only grows; the
// functions are for any thread. A path is compared byte for byte after its backslashes have
// become slashes and one trailing slash has gone: no case folding, no "..", no prefix rule.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Vantrel::Web {

// Adds the paths in order. Both throw std::out_of_range("invalid string position") for an empty
// path; the entries before it stay.
void addToApprovedFileList(const std::vector<std::string>& paths);
bool isFileAllowed(const std::string& path);

// What is worth remembering of the beginning of many paths: how far it was looked at, and what came
// of it. With it a look-up costs the rest of a path.
struct ApprovedPrefix {
  size_t bytes = 0;
  uint64_t state = 0;
};
ApprovedPrefix prefixOf(std::string_view root);
// isFileAllowed for a path without backslashes that begins with the root.
bool isJoinedFileAllowed(const std::string& path, const ApprovedPrefix& root);

}  // namespace Vantrel::Web
