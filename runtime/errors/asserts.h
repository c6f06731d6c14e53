// Counting of failed assertions, which are arguments that should not be null and calls that this
// platform cannot make; see g_ov_asserts_active. Any thread may count.
#pragma once

#include <atomic>
#include <cstdint>

#include "runtime/ov_strings.h"

namespace ov {

// Counts a failure while the assertions are switched off; what fails is told to the caller anyway.
inline void count_failed_assert() {
  if (std::atomic_ref<int32_t>(g_ov_asserts_active).load(std::memory_order_relaxed) != 0) return;
  std::atomic_ref<int32_t>(g_ov_asserts_skipped).fetch_add(1, std::memory_order_relaxed);
}

// True for a pointer that is not null; a null one is a failure.
inline bool assert_not_null(const void* pointer) {
  if (pointer == nullptr) count_failed_assert();
  return pointer != nullptr;
}

}  // namespace ov
