// Paths as they come from outside: texts in UTF-8, turned into file system paths.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Vantrel::StandIn {

// Throws the standard library's errors for a text that is not UTF-8.
std::filesystem::path pathOf(std::string_view utf8);

// With forward slashes.
std::string textOf(const std::filesystem::path& path);

// `text` itself when it is absolute or `folder` is empty, else below `folder`.
std::string pathBelowFolder(std::string_view folder, std::string_view text);

// `text` taken as relative to `root`, whatever slashes it begins with. Nothing when it names a
// drive or would climb out of `root`.
std::optional<std::filesystem::path> pathWithin(const std::filesystem::path& root,
                                                std::string_view text);

// The path in a "file://" text, which has two or three slashes and no escapes; a text without
// that beginning is a path already.
std::string pathOfFileUrl(std::string_view url);

// The path in the URL of something on the remote side: without scheme, host, query and fragment,
// percent escapes resolved. A text without "://" is a path already.
std::string pathOfRemoteUrl(std::string_view url);

}  // namespace Vantrel::StandIn
