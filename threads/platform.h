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

// Takes a reference on that module, so that it stays loaded; false if there is none to be had. Any
// thread.
bool holdModule();

// Gives such a reference back, which may be the last one, once the calling thread has left this
// module's code: when it next takes messages. The caller has to leave without doing so. Where this
// cannot be arranged the module stays for ever, which harms nobody. Browser's thread.
void releaseModuleLater();

}  // namespace Vantrel::Web
