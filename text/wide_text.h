// Between UTF-8 and the platform's wide text, which exists only at the platform edge. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace Vantrel::Web {

// Both throw std::runtime_error for ill-formed text. The text ends at its first NUL.
std::string toUtf8(const std::wstring& wide);
std::wstring toWide(const std::string& text);

}  // namespace Vantrel::Web
