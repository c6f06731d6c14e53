// Names of addresses, from the debugging library where the system has it.
#pragma once

#include "runtime/faults/exception_logger.h"

namespace ov {

// Finds and opens the library and closes it again; between the two, addresses have names. One at a
// time: the caller serialises them.
void open_symbols();
void close_symbols();

}  // namespace ov
