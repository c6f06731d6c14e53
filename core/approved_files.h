// The files and folders that the user chose in a dialog or dropped: what a page may read or upload.
//
// One set for the whole process, shared by all instances of all pages, which only grows; the
// browser's thread alone touches it. A path is compared byte for byte after its backslashes have
// become slashes and one trailing slash has gone: no case folding, no "..", no prefix rule.
#pragma once

#include <string>
#include <vector>

namespace Vantrel::Web {

// Adds the paths in order. Both throw std::out_of_range("invalid string position") for an empty
// path; the entries before it stay.
void addToApprovedFileList(const std::vector<std::string>& paths);
bool isFileAllowed(const std::string& path);

}  // namespace Vantrel::Web
