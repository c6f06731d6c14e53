#include "runtime/errors/platform.h"

#include <cstdio>

#include "runtime/ov_errors.h"

namespace ov {
namespace {
thread_local uint32_t thread_last_error = 0;

// Codes with messages of their own, in the forms that a platform may deliver them.
struct Message {
  int32_t code;
  const char* text;
};
constexpr Message kMessages[] = {{2, "File not found.\r\n"},
                                 {3, "line feed only\n"},
                                 {4, "none"},
                                 {5, "a\n"},
                                 {6, "\r\n"},
                                 {9, "ab\n"}};
constexpr ov_rc kNoMessage = 317;
}  // namespace

uint32_t last_error() {
  return thread_last_error;
}

void set_last_error(uint32_t error) {
  thread_last_error = error;
}

ov_rc system_message(int32_t code, char* buffer, size_t size) {
  for (const Message& message : kMessages) {
    if (message.code != code) continue;
    const int length = std::snprintf(buffer, size, "%s", message.text);
    return static_cast<size_t>(length) < size ? 0 : OV_ERANGE;
  }
  return kNoMessage;
}

}  // namespace ov
