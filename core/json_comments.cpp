#include "core/json_comments.h"

#include <algorithm>

namespace Vantrel::Web {

namespace {

// Where what ends with `end` is over, from `start` on.
size_t behind(std::string_view text, std::string_view end, size_t start) {
  const size_t at = text.find(end, start);
  return at == std::string_view::npos ? text.size() : at + end.size();
}

// `start` is behind the opening quote.
size_t behindString(std::string_view text, size_t start) {
  size_t at = start;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2U : 1U;
  return std::min(at + 1, text.size());
}

// The parser knows a line feed only. A carriage return in front of it is no other end.
bool hasOtherEnd(std::string_view line) {
  constexpr std::string_view kNextLine = "\xC2\x85";
  constexpr std::string_view kLineSeparator = "\xE2\x80\xA8";
  constexpr std::string_view kParagraphSeparator = "\xE2\x80\xA9";
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  const auto holds = [line](std::string_view end) {
    return line.find(end) != std::string_view::npos;
  };
  return holds("\r") || holds(kNextLine) || holds(kLineSeparator) || holds(kParagraphSeparator);
}

}  // namespace

bool hasCommentOfTwoEnds(std::string_view text) {
  constexpr std::string_view kLineComment = "//";
  if (text.find(kLineComment) == std::string_view::npos) return false;
  for (size_t at = 0; at < text.size();) {
    const std::string_view rest = text.substr(at);
    if (rest.front() == '"') {
      at = behindString(text, at + 1);
    } else if (rest.starts_with("/*")) {
      at = behind(text, "*/", at + 2);
    } else if (rest.starts_with(kLineComment)) {
      const size_t end = std::min(text.find('\n', at), text.size());
      if (hasOtherEnd(text.substr(at, end - at))) return true;
      at = end;
    } else {
      ++at;
    }
  }
  return false;
}

}  // namespace Vantrel::Web
