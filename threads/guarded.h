// Where exceptions end: what the platform, the browser or another thread calls runs inside one of
// these. Any thread.
#pragma once

#include <exception>
#include <utility>

#include "runtime/ov_log.h"

namespace Vantrel::Web {

// The function's result, or `otherwise` if it throws; what it throws is logged.
template <class Result, class Function>
Result guarded(Result otherwise, Function&& function) noexcept {
  try {
    return std::forward<Function>(function)();
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  } catch (...) {
    ov_err("%s", "an exception of an unknown kind");
  }
  return otherwise;
}

// The same for a function without a result.
template <class Function>
void guarded(Function&& function) noexcept {
  guarded(true, [&function] {
    std::forward<Function>(function)();
    return true;
  });
}

}  // namespace Vantrel::Web
