#include "tools/client/paths.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace Vantrel::StandIn {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFileScheme = "file://";

bool beginsWithDrive(std::string_view text) {
  return text.size() >= 2 && text[1] == ':' &&
         std::isalpha(static_cast<unsigned char>(text[0])) != 0;
}

std::string resolveEscapes(std::string_view text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    const char* digits = text.data() + i + 1;
    bool escape = text[i] == '%' && i + 2 < text.size() &&
                  std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
    plain += escape ? static_cast<char>(value) : text[i];
    if (escape) i += 2;
  }
  return plain;
}

}  // namespace

fs::path pathOf(std::string_view utf8) {
  return {std::u8string(utf8.begin(), utf8.end())};
}

std::string textOf(const fs::path& path) {
  std::u8string text = path.generic_u8string();
  return {text.begin(), text.end()};
}

std::string pathBelowFolder(std::string_view folder, std::string_view text) {
  if (folder.empty() || text.empty() || pathOf(text).is_absolute()) return std::string(text);
  return textOf(pathOf(folder) / pathOf(text));
}

std::optional<fs::path> pathWithin(const fs::path& root, std::string_view text) {
  std::string relative(text);
  std::replace(relative.begin(), relative.end(), '\\', '/');
  relative.erase(0, std::min(relative.find_first_not_of('/'), relative.size()));
  // A colon names a drive or a stream of a file; a NUL byte would end the name early.
  if (relative.find_first_of(std::string_view(":\0", 2)) != std::string::npos) return {};
  fs::path below = pathOf(relative).lexically_normal();
  if (!below.empty() && *below.begin() == "..") return {};
  return below == "." ? root : root / below;
}

std::string pathOfFileUrl(std::string_view url) {
  if (!url.starts_with(kFileScheme)) return std::string(url);
  url.remove_prefix(kFileScheme.size());
  if (url.starts_with('/') && beginsWithDrive(url.substr(1))) url.remove_prefix(1);
  return std::string(url);
}

std::string pathOfRemoteUrl(std::string_view url) {
  size_t scheme = url.find("://");
  if (scheme == std::string_view::npos) return std::string(url);
  url.remove_prefix(scheme + 3);
  url.remove_prefix(std::min(url.find('/'), url.size()));
  return resolveEscapes(url.substr(0, url.find_first_of("?#")));
}

}  // namespace Vantrel::StandIn
