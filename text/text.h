// Path and text conversions through which every path passes on its way to a document, a reply or
// a URL. Plain functions, any thread. Text is UTF-8; the escaping covers what each
// function names and no more.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Vantrel::Web {

// Every occurrence of `from` replaced by `to`; replaced text is not searched again. Returns `text`
// when either `from` or `text` is empty.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

// The path with forward slashes only.
std::string forwardSlashes(std::string_view path);

// `root` and `relative` with forward slashes and one slash between them; segments are not
// resolved. An empty part leaves the other one as it is.
std::string joinPaths(std::string_view root, std::string_view relative);

// Joins many relative paths to one root, as joinPaths does, at the cost of the relative ones.
class PathJoiner {
 public:
  explicit PathJoiner(std::string_view root);

  // What every joined path begins with, until the next call of join.
  std::string_view root() const { return std::string_view(path_).substr(0, rootLength_); }
  // The joined path, until the next call.
  const std::string& join(std::string_view relative);

 private:
  std::string path_;
  size_t rootLength_;
};

// The path with its backslashes doubled, in double quotes if `withQuotes`. Nothing else is escaped.
std::string quotePath(std::string_view path, bool withQuotes);

// JSON array of the paths, each as from quotePath.
std::string jsonPathArray(const std::vector<std::string>& paths);

// The paths joined by ":", a backslash in front of each backslash and colon inside a path.
std::string escapedPathList(const std::vector<std::string>& paths);

// "file://" and the path with forward slashes; nothing is percent-encoded.
std::string fileUrl(std::string_view path);

// A copy with "&", "<" and ">" as XML entities; quotes stay.
std::string xmlEscape(std::string_view text);

}  // namespace Vantrel::Web
