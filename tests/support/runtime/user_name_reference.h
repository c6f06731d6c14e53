// For tests: the rules of a user name's normal form once more, slow and obvious.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace ov::reference {

inline std::string mapped(std::string text, char from, char to, int shift) {
  for (char& c : text) {
    if (c >= from && c <= to) c = static_cast<char>(c + shift);
  }
  return text;
}
inline std::string lowered(const std::string& text) {
  return mapped(text, 'A', 'Z', 'a' - 'A');
}
inline std::string raised(const std::string& text) {
  return mapped(text, 'a', 'z', 'A' - 'a');
}

// None for a part that is too long. `shortName` gives none for a domain that it does not know.
inline std::optional<std::string> normalForm(
    const std::string& name, const std::string& computer,
    const std::function<std::optional<std::string>(const std::string&)>& shortName) {
  std::string user = name;
  std::string domain;
  for (const char separator : {'@', '\\', '/'}) {
    const size_t at = name.find(separator);
    if (at == std::string::npos) continue;
    const std::string before = name.substr(0, at);
    const std::string behind = name.substr(at + 1);
    user = separator == '@' ? before : behind;
    domain = separator == '@' ? behind : before;
    break;
  }
  if (user.size() > 511 || domain.size() > 511) return std::nullopt;
  user = lowered(user);
  if (domain.empty() || domain == "." || lowered(domain) == lowered(computer)) return user;
  return raised(shortName(domain).value_or(domain)) + "\\" + user;
}

}  // namespace ov::reference
