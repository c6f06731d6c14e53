#include "text/text.h"

#include <algorithm>
#include <cstddef>

namespace Vantrel::Web {

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
  if (from.empty() || text.empty()) return std::string(text);
  std::string result;
  result.reserve(text.size());
  size_t position = 0;
  for (size_t hit = text.find(from); hit != std::string_view::npos;
       hit = text.find(from, position)) {
    result.append(text, position, hit - position).append(to);
    position = hit + from.size();
  }
  return result.append(text, position);
}

std::string forwardSlashes(std::string_view path) {
  std::string text(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

std::string joinPaths(std::string_view root, std::string_view relative) {
  return PathJoiner(root).join(relative);
}

PathJoiner::PathJoiner(std::string_view root)
    : path_(forwardSlashes(root)), rootLength_(path_.size()) {}

const std::string& PathJoiner::join(std::string_view relative) {
  path_.resize(rootLength_);
  if (rootLength_ != 0 && !relative.empty()) {
    if (path_.back() != '/') path_ += '/';
    if (relative.front() == '/' || relative.front() == '\\') relative.remove_prefix(1);
  }
  const size_t start = path_.size();
  path_.append(relative);
  std::replace(path_.begin() + static_cast<ptrdiff_t>(start), path_.end(), '\\', '/');
  return path_;
}

std::string quotePath(std::string_view path, bool withQuotes) {
  const char* const quote = withQuotes ? "\"" : "";
  return quote + replaceAll(path, "\\", "\\\\") + quote;
}

std::string jsonPathArray(const std::vector<std::string>& paths) {
  std::string array = "[";
  for (const std::string& path : paths) {
    if (array.size() > 1) array += ',';
    array += quotePath(path, true);
  }
  return array += ']';
}

std::string escapedPathList(const std::vector<std::string>& paths) {
  std::string list;
  bool first = true;
  for (const std::string& path : paths) {
    if (!first) list += ':';
    first = false;
    for (const char byte : path) {
      if (byte == '\\' || byte == ':') list += '\\';
      list += byte;
    }
  }
  return list;
}

std::string fileUrl(std::string_view path) {
  return "file://" + forwardSlashes(path);
}

std::string xmlEscape(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char byte : text) {
    switch (byte) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += byte;
    }
  }
  return escaped;
}

}  // namespace Vantrel::Web
