// The place where a fault or a C++ exception that the plug-in lets out ends the process. Behind it
// lie native frames, through which Wine cannot carry an exception: it would go on for ever.
#pragma once

#include <functional>

namespace engine {

// Runs the closure on the calling Wine thread. An exception that comes out of it is told on the
// standard error and ends the process with kExitFault.
void runGuarded(const std::function<void()>& closure);

}  // namespace engine
