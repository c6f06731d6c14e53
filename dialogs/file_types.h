// The file types that a page offers in a dialog: its JSON, and the forms in which dialogs take
// them. Any thread.
#pragma once

#include <string>
#include <vector>

namespace Vantrel::Web {

struct FileTypeFilter {
  std::string name;
  std::vector<std::string> extensions;  // without dot and asterisk
};

// Reads [{"filter_name":"...","extensions":["...",...]},...]; an empty text is an empty list.
// Throws std::runtime_error with kErrorParsingFileTypes for anything else.
std::vector<FileTypeFilter> parseFileTypes(const std::string& text);

// "*.jpg;*.png"
std::string filterSpec(const FileTypeFilter& filter);

// The index of the first filter with exactly this extension, or -1.
int findFilterIndex(const std::vector<FileTypeFilter>& filters, const std::string& extension);

}  // namespace Vantrel::Web
