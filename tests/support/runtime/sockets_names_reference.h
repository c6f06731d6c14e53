// For tests: how a text is taken apart into host and port, told by a regular form.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace ov {

// Host and port, or nothing when the text is looked up whole.
inline std::optional<std::pair<std::string, std::string>> split_port_reference(
    const std::string& text) {
  constexpr size_t kLongest = 254;
  std::optional<std::pair<std::string, std::string>> parts;
  const size_t open = text.find('[');
  const size_t close = open == std::string::npos ? open : text.find("]:", open);
  if (close != std::string::npos) {
    parts.emplace(text.substr(open + 1, close - open - 1), text.substr(close + 2));
  } else if (std::count(text.begin(), text.end(), ':') == 1) {
    parts.emplace(text.substr(0, text.find(':')), text.substr(text.find(':') + 1));
  }
  if (parts && parts->first.size() > kLongest) parts.reset();
  return parts;
}

}  // namespace ov
