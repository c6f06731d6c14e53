#include "text/text.h"

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
  return replaceAll(path, "\\", "/");
}

std::string joinPaths(std::string_view root, std::string_view relative) {
  std::string joined = forwardSlashes(root);
  std::string tail = forwardSlashes(relative);
  if (joined.empty()) return tail;
  if (tail.empty()) return joined;
  if (joined.back() != '/') joined += '/';
  return joined.append(tail, tail.front() == '/' ? 1 : 0);
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
