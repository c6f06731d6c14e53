// The page's list of file types against the same rules over a slow reader's tree, and the texts
// that dialogs are given of it.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "dialogs/file_types.h"
#include "tests/support/slow_json.h"
#include "text/json_document.h"

namespace {

using namespace Vantrel::Web;
using TestSupport::SlowJson;
using TestSupport::SlowJsonReader;
using TestSupport::SlowMember;

using Filters = std::vector<FileTypeFilter>;

void check(bool holds) {
  if (!holds) std::abort();
}

// The parser puts a question mark and loses a byte where half a surrogate pair stands, and pairs
// what is no pair.
bool isComparable(const std::string& text) {
  return text.find("\\ud") == std::string::npos && text.find("\\uD") == std::string::npos;
}

// A member's value; of several the first.
const SlowJson* memberOf(const SlowJson& object, const std::string& name) {
  for (const SlowMember& member : object.members) {
    if (member.key.c_str() == name) return &member.value;
  }
  return nullptr;
}

bool isText(const SlowJson* value) {
  return value != nullptr && value->kind == SlowJson::Kind::kString;
}

std::optional<FileTypeFilter> slowFilter(const SlowJson& element) {
  if (element.kind != SlowJson::Kind::kObject) return std::nullopt;
  const SlowJson* const name = memberOf(element, "filter_name");
  const SlowJson* const extensions = memberOf(element, "extensions");
  if (!isText(name) || extensions == nullptr || extensions->kind != SlowJson::Kind::kArray ||
      extensions->items.empty()) {
    return std::nullopt;
  }
  FileTypeFilter filter = {name->text.c_str(), {}};
  for (const SlowJson& extension : extensions->items) {
    if (!isText(&extension)) return std::nullopt;
    filter.extensions.emplace_back(extension.text.c_str());
  }
  return filter;
}

std::optional<Filters> slowFilters(const SlowJson& root) {
  if (root.kind != SlowJson::Kind::kArray) return std::nullopt;
  Filters filters;
  for (const SlowJson& element : root.items) {
    auto filter = slowFilter(element);
    if (!filter) return std::nullopt;
    filters.push_back(std::move(*filter));
  }
  return filters;
}

std::optional<Filters> parsed(const std::string& text) {
  try {
    return parseFileTypes(text);
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
}

bool same(const Filters& left, const Filters& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const FileTypeFilter& a, const FileTypeFilter& b) {
                      return a.name == b.name && a.extensions == b.extensions;
                    });
}

std::string onOneLine(std::string text) {
  for (char& byte : text) {
    if (byte == '\n' || byte == '\0') byte = ' ';
  }
  return text;
}

void checkTexts(const Filters& filters, const std::string& extension) {
  std::string lines;
  int found = -1;
  for (size_t i = 0; i < filters.size(); ++i) {
    std::string spec;
    for (const std::string& each : filters[i].extensions) {
      spec += (spec.empty() ? "*." : ";*.") + each;
      if (found < 0 && each == extension) found = static_cast<int>(i);
    }
    check(filterSpec(filters[i]) == spec);
    lines += onOneLine(filters[i].name) + '\n' + onOneLine(spec) + '\n';
  }
  const std::string given = filterLines(filters);
  check(given == lines);
  // Of each filter two texts for the old dialogs, and none that a NUL of the page ends.
  check(static_cast<size_t>(std::count(given.begin(), given.end(), '\n')) == 2 * filters.size());
  check(given.find('\0') == std::string::npos);
  check(findFilterIndex(filters, extension) == found);
  const int first = found < 0 || extension.empty() ? 0 : found;
  check(initialFilter(filters, extension) == static_cast<uint32_t>(first) + 1);
}

}  // namespace

// A line with an extension, and the list.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const size_t line = std::min(input.find('\n'), input.size());
  const std::string extension = input.substr(0, line);
  const std::string text = input.substr(std::min(line + 1, input.size()));
  checkTexts(defaultFilters(extension), extension);
  const std::optional<Filters> filters = parsed(text);
  if (filters) checkTexts(*filters, extension);
  if (text.empty()) {
    check(filters && filters->empty());
    return 0;
  }
  const std::string cut = text.c_str();
  JsonDocument document;
  if (!document.parse(text)) {
    check(!filters);
    return 0;
  }
  if (!isComparable(cut)) return 0;
  const auto slow = SlowJsonReader(cut).read();
  check(slow.has_value());
  const std::optional<Filters> expected = slowFilters(*slow);
  check(expected.has_value() == filters.has_value());
  check(!expected || same(*expected, *filters));
  return 0;
}
