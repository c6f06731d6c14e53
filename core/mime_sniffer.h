// The platform's guess at what a content is. Browser's thread.
#pragma once

#include <string>
#include <string_view>

namespace Vantrel::Web {

// The type, such as "image/x-png" (the platform's name for it); empty if the platform has none.
// Throws std::runtime_error for a type that is no text.
std::string sniffMimeType(std::string_view content);

}  // namespace Vantrel::Web
