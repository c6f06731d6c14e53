#include "dialogs/file_types.h"

#include <algorithm>
#include <span>
#include <stdexcept>

#include "text/error_texts.h"
#include "text/json_document.h"

namespace Vantrel::Web {

namespace {

constexpr const char* kRoot[] = {nullptr};
constexpr const char* kFilterName[] = {"filter_name", nullptr};
constexpr const char* kExtensions[] = {"extensions", nullptr};

void require(bool condition) {
  if (!condition) throw std::runtime_error(kErrorParsingFileTypes);
}

std::span<const yajl_val> elementsOf(yajl_val value) {
  require(YAJL_IS_ARRAY(value));
  return {value->u.array.values, value->u.array.len};
}

std::string textOf(yajl_val value) {
  require(YAJL_IS_STRING(value));
  return value->u.string;
}

FileTypeFilter readFilter(const JsonDocument& document, yajl_val element) {
  require(YAJL_IS_OBJECT(element));
  FileTypeFilter filter = {textOf(document.get(kFilterName, element)), {}};
  const std::span<const yajl_val> extensions = elementsOf(document.get(kExtensions, element));
  require(!extensions.empty());
  for (const yajl_val extension : extensions) filter.extensions.push_back(textOf(extension));
  return filter;
}

// What would end the text among others becomes a blank: the old dialogs take name and specification
// in turns, and read on behind the list's end where one is left over.
std::string asOneText(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char byte) { return byte == '\n' || byte == '\0'; }, ' ');
  return text;
}

}  // namespace

std::vector<FileTypeFilter> parseFileTypes(const std::string& text) {
  std::vector<FileTypeFilter> filters;
  if (text.empty()) return filters;
  JsonDocument document;
  require(document.parse(text));
  for (const yajl_val element : elementsOf(document.get(kRoot))) {
    filters.push_back(readFilter(document, element));
  }
  return filters;
}

std::string filterSpec(const FileTypeFilter& filter) {
  std::string spec;
  for (const std::string& extension : filter.extensions) {
    if (!spec.empty()) spec += ';';
    spec.append("*.").append(extension);
  }
  return spec;
}

std::vector<FileTypeFilter> defaultFilters(const std::string& extension) {
  constexpr size_t kLongestExtension = 4;
  std::vector<FileTypeFilter> filters;
  if (!extension.empty() && extension.size() <= kLongestExtension) {
    filters.push_back({extension + " files", {extension}});
  }
  filters.push_back({"All files", {"*"}});
  return filters;
}

int findFilterIndex(const std::vector<FileTypeFilter>& filters, const std::string& extension) {
  const auto hit = std::find_if(filters.begin(), filters.end(), [&](const FileTypeFilter& filter) {
    return std::find(filter.extensions.begin(), filter.extensions.end(), extension) !=
           filter.extensions.end();
  });
  return hit == filters.end() ? -1 : static_cast<int>(hit - filters.begin());
}

uint32_t initialFilter(const std::vector<FileTypeFilter>& filters, const std::string& extension) {
  if (extension.empty()) return 1;
  return static_cast<uint32_t>(std::max(1, findFilterIndex(filters, extension) + 1));
}

std::string filterLines(const std::vector<FileTypeFilter>& filters) {
  std::string lines;
  for (const FileTypeFilter& filter : filters) {
    lines.append(asOneText(filter.name)).append("\n");
    lines.append(asOneText(filterSpec(filter))).append("\n");
  }
  return lines;
}

}  // namespace Vantrel::Web
