// This computer's name, remembered once it is known.
#include <atomic>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

using namespace ov;

namespace {

enum State { kUnknown, kBeingWritten, kKnown };

// Whoever moves it from kUnknown writes the name; others use what they read themselves.
std::atomic<State> state{kUnknown};
char known[kHostNameSize];

}  // namespace

ov_rc ov_platform_hostname(char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  if (state.load(std::memory_order_acquire) == kKnown) return ov_str_ncpy(out, known, size);
  char name[kHostNameSize];
  if (computer_name(name, sizeof name) != 0) return OV_EINVAL;
  State expected = kUnknown;
  if (state.compare_exchange_strong(expected, kBeingWritten)) {
    memcpy(known, name, sizeof known);
    state.store(kKnown, std::memory_order_release);
  }
  return ov_str_ncpy(out, name, size);
}
