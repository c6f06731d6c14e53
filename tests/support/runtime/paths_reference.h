// For tests: the rules of canonical and joined paths once more, slow and obvious.
#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace ov::reference {

// Calls `use` with every text over the alphabet, up to a length.
inline void forEachText(const std::string& alphabet, size_t longest,
                        const std::function<void(const std::string&)>& use, std::string text = "") {
  use(text);
  if (text.size() == longest) return;
  for (const char c : alphabet) forEachText(alphabet, longest, use, text + c);
}

// A text of up to 20 pieces that paths are made of.
inline std::string randomPath(std::mt19937& random) {
  constexpr const char* kPieces[] = {"a",  "bc", ".", "..", "...", "/",  "//",  "\\",
                                     "C:", "é",  " ", "x.", ".y",  "z/", "/../"};
  std::string text;
  for (size_t count = random() % 20; count > 0; --count) text += kPieces[random() % 15];
  return text;
}

inline bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

inline std::string trimLeft(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\n\v\f\r");
  return first == std::string::npos ? "" : text.substr(first);
}

inline bool isUri(const std::string& text) {
  const size_t colon = text.find("://");
  if (colon == std::string::npos || colon < 2 || text.find('/') != colon + 1) return false;
  if (text.size() < colon + 4 || !isLetter(text[0])) return false;
  return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon), [](char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '.' || c == '-';
  });
}

inline bool isNetworkPath(const std::string& path) {
  return path.size() >= 4 && path.substr(0, 2) == "//" && path.find('/', 3) != std::string::npos;
}

// The parts of a text between slashes, empty ones left out.
inline std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> parts;
  std::string part;
  for (const char c : text + "/") {
    if (c != '/') {
      part += c;
    } else if (!part.empty()) {
      parts.push_back(part);
      part.clear();
    }
  }
  return parts;
}

struct Root {
  std::string prefix, rest;
};

// None for a network path without a share.
inline std::optional<Root> splitRoot(const std::string& path) {
  if (isNetworkPath(path)) {
    const std::vector<std::string> parts = split(path);
    if (parts.size() < 2) return std::nullopt;
    std::string rest;
    for (size_t i = 2; i < parts.size(); ++i) rest += parts[i] + "/";
    if (path.back() != '/' && !rest.empty()) rest.pop_back();
    return Root{"//" + parts[0] + "/" + parts[1] + "/", rest};
  }
  const std::string trimmed = trimLeft(path);
  if (trimmed.size() >= 2 && isLetter(trimmed[0]) && trimmed[1] == ':') {
    return Root{trimmed.substr(0, 2) + "/", trimmed.substr(2)};
  }
  if (!path.empty() && path[0] == '/') return Root{"/", path.substr(1)};
  return Root{"", path};
}

// With a buffer that is large enough; none where there is no canonical form.
inline std::optional<std::string> canonical(std::string path) {
  if (path.empty()) return "";
  if (path.find('\n') != std::string::npos) return std::nullopt;
  if (path.substr(0, 7) == "zept://" || isUri(path)) return path;
  std::replace(path.begin(), path.end(), '\\', '/');
  const std::optional<Root> root = splitRoot(path);
  if (!root) return std::nullopt;
  std::vector<std::string> kept, real;  // each segment with the slash behind it
  const std::vector<std::string> parts = split(root->rest);
  for (size_t i = 0; i < parts.size(); ++i) {
    const bool slash = i + 1 < parts.size() || root->rest.back() == '/';
    const std::string piece = parts[i] + (slash ? "/" : "");
    if (parts[i] == ".") continue;
    if (parts[i] != "..") {
      real.push_back(piece);
    } else if (!real.empty()) {
      real.pop_back();
    } else if (root->prefix.empty()) {
      kept.push_back(piece);
    }
  }
  std::string result = root->prefix;
  for (const std::string& piece : kept) result += piece;
  for (const std::string& piece : real) result += piece;
  if (!real.empty() && result.back() == '/') result.pop_back();
  return result.empty() ? "." : result;
}

inline bool isRelative(const std::string& path) {
  if (isUri(path)) return false;
  const std::string text = trimLeft(path);
  const auto isSlash = [&text](size_t at) {
    return at < text.size() && (text[at] == '/' || text[at] == '\\');
  };
  if (isSlash(0)) return false;
  return text.size() < 3 || !isLetter(text[0]) || text[1] != ':' || !isSlash(2);
}

inline std::optional<std::string> parent(const std::string& path) {
  if (path.empty()) return std::nullopt;
  return canonical(path + (path.back() == '/' ? ".." : "/.."));
}

inline bool leavesHome(const std::string& path) {
  for (const std::string root : {"/a", "/b"}) {
    const std::optional<std::string> joined = canonical(root + "/" + path);
    if (!joined || joined->substr(0, 2) != root) return true;
  }
  return false;
}

inline bool containsDotdot(const std::string& path) {
  const std::vector<std::string> parts = split(path);
  return std::find(parts.begin(), parts.end(), "..") != parts.end();
}

// The text that is converted to wide characters; none when it is too long.
inline std::optional<std::string> widened(const std::string& path) {
  if (path.size() < 11) return path;
  std::string text;
  if (isNetworkPath(path)) {
    text = "\\\\?\\UNC\\" + path.substr(2);
  } else if (isRelative(path)) {
    return path;
  } else {
    text = "\\\\?\\" + path;
  }
  if (text.size() > 529) return std::nullopt;
  std::string result, name;
  for (const char c : text + "/") {
    if (c != '/' && c != '\\') {
      name += c;
      continue;
    }
    name.erase(name.find_last_not_of('.') + 1);
    result += name + "\\";
    name.clear();
  }
  result.pop_back();
  return result;
}

// What is left of a walk along `text` from `prefix`, written out.
inline std::string walked(const std::string& prefix, const std::string& text) {
  std::vector<std::string> stack;
  for (const std::string& part : split(text)) {
    if (part == ".") continue;
    const bool up = std::any_of(stack.begin(), stack.end(),
                                [](const std::string& name) { return name.substr(0, 2) != ".."; });
    if (part != "..") {
      stack.push_back(part);
    } else if (stack.empty() && !prefix.empty()) {
      continue;
    } else if (up) {
      stack.pop_back();
    } else {
      stack.push_back(part);
    }
    if (stack.size() > 260) stack.pop_back();
  }
  std::string result = prefix;
  for (size_t i = 0; i < stack.size(); ++i) result += (i > 0 ? "/" : "") + stack[i];
  return result.empty() ? "." : result;
}

// Offset of the separator behind the first name, or npos.
inline size_t nextSeparator(const std::string& path) {
  size_t at = 0;
  const auto skip = [&path, &at](bool slashes) {
    while (at < path.size() && (path[at] == '/') == slashes) ++at;
  };
  if (path.size() > 1 && path[0] != '/' && path[1] == ':') {
    at = 2;
    skip(true);
  } else {
    skip(true);
    if (isNetworkPath(path)) {
      skip(false);
      skip(true);
    }
  }
  return path.find('/', at);
}

inline std::string withoutRedundantSlashes(const std::string& path) {
  std::string result;
  for (size_t i = 0; i < path.size(); ++i) {
    const bool doubled = path[i] == '/' && !result.empty() && result.back() == '/';
    if (!doubled || i == 1) result += path[i];
  }
  return result;
}

// The rooted path, or none for a drive without a slash behind it.
inline std::optional<std::string> rooted(const std::string& path) {
  std::string text = trimLeft(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  if (text.size() > 1 && isLetter(text[0]) && text[1] == ':') {
    if (text.size() < 3 || text[2] != '/') return std::nullopt;
    return text;
  }
  return text.substr(0, 1) == "/" ? text : "/" + text;
}

// What ov_path_append writes into a buffer that is large enough.
inline std::optional<std::string> append(const std::string& dir, std::string rel, bool relative) {
  if (dir.empty() || (dir == "." && relative) || (dir == "/" && !relative)) return canonical(rel);
  rel.erase(0, std::min(rel.find_first_not_of('/'), rel.size()));
  return canonical(dir + (dir.back() == '/' ? "" : "/") + rel);
}

}  // namespace ov::reference
