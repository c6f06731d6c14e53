// Names of addresses, from the debugging library where the system has it.
#pragma once

#include "runtime/faults/exception_logger.h"

namespace ov {

// Finds and opens the library and closes it again; between the two, addresses have names. One at a
// time: the caller serialises them.
void open_symbols();
void close_symbols();

// Whether the process ends, and not only this library. The debugging library may have gone before
// us then, and no other thread is left that would release a lock. False before open_symbols().
bool process_ends();

}  // namespace ov
