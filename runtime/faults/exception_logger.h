// The exception logger: a handler, last in the platform's chain, that tells a hard fault in the log
// and lets the search for a handler go on. Any thread may call it; both calls may be repeated.
#pragma once

#include "runtime/ov_types.h"

namespace ov {

// Registers the handler and makes ready for looking up names.
void exception_logger_install();
// Undoes it; also happens by itself at the end of the process and at the unload of the library.
void exception_logger_remove();

// Why addresses have no names; 0 and an empty text when they have, or before the installation.
struct SymbolFailure {
  ov_rc error = 0;
  char text[256] = {};
};
const SymbolFailure& symbol_failure();

}  // namespace ov
