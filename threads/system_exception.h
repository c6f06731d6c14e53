// The exception for failures of the system that an operation cannot go on from, and the one form in
// which such a failure is put into words. Any thread.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Vantrel::Web {

// Carries the composed message as its what() text.
class SystemException : public std::runtime_error {
 public:
  explicit SystemException(const std::string& message) : std::runtime_error(message) {}
  SystemException(const SystemException&) = default;
  SystemException& operator=(const SystemException&) = default;
};

// `what`, the platform's text for `code`, and the code in decimal:
// "Failed to spawn thread: Access denied. (5)".
std::string describeSystemError(std::string_view what, int32_t code);

}  // namespace Vantrel::Web
