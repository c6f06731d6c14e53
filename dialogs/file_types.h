// The file types that a page offers in a dialog: its JSON, and the forms in which dialogs take
// them. Any thread.
#pragma once

#include <cstdint>
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

// What a save dialog offers when the page names no types: files of the suggested name's extension,
// if that has 1 to 4 bytes, and all files.
std::vector<FileTypeFilter> defaultFilters(const std::string& extension);

// The extension of a suggested name without its dot; empty for none, and for a name that holds
// "et al", which stands for several files.
std::string suggestedExtension(const std::string& suggestedName);

// The index of the first filter with exactly this extension, or -1.
int findFilterIndex(const std::vector<FileTypeFilter>& filters, const std::string& extension);

// The filter that a save dialog begins with, counted from 1: the one with the extension, if there
// is an extension and a filter has it, or the first.
uint32_t initialFilter(const std::vector<FileTypeFilter>& filters, const std::string& extension);

// The filters as dialogs of old systems take them once each line feed is a NUL: name, line feed,
// specification, line feed. A line feed or a NUL inside a text is a blank.
std::string filterLines(const std::vector<FileTypeFilter>& filters);

}  // namespace Vantrel::Web
