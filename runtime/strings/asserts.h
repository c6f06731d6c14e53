// Counting of arguments that should not be null; see g_ov_asserts_active.
#pragma once

namespace ov {

// True for a pointer that is not null. A null one is counted when the assertions are switched off.
bool assert_not_null(const void* pointer);

}  // namespace ov
