// What threads and windows want of the platform before they can work.
#pragma once

#include <cstdint>

namespace Vantrel::Web {

// Brings COM up on the calling thread, a new one; negative if that failed.
int32_t initializeThreadCom();

// The counterpart; called in every case, also after a failure.
void uninitializeThreadCom();

// The handle of the module that this code is linked into: the library, or a test program. Any
// thread.
void* moduleHandle();

}  // namespace Vantrel::Web
