// The one form of an error to the page. Any thread.
#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace Vantrel::Web {

// {"error":{...,"user_message":"<text>"}}; the text goes in as it is, unescaped.
std::string jsonErrorReply(std::string_view text);

// Logs the text as an error and returns its error reply.
std::string logJsonErrorReply(const std::string& text);

// The same for the text of an exception, alone or behind `prefix` and ": ".
std::string exceptionJsonErrorReply(const std::exception& exception);
std::string exceptionJsonErrorReply(const std::exception& exception, std::string_view prefix);

}  // namespace Vantrel::Web
