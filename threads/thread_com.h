// The preparation of a new thread for COM, which the platform wants.
#pragma once

#include <cstdint>

namespace Vantrel::Web {

// Brings COM up on the calling thread; negative if that failed.
int32_t initializeThreadCom();

// The counterpart; called in every case, also after a failure.
void uninitializeThreadCom();

}  // namespace Vantrel::Web
