// The ends of the process that are not the page's own.
#pragma once

namespace engine {

// Ends the process with kExitTimeLimit that many seconds from now; any thread. The page's own time
// limit cannot act while the engine waits for a plug-in that does not return.
void endProcessAfter(double seconds);

// Makes an end by exit(), such as that after a fault or abort() of the plug-in, one with
// kExitFault. The engine's clean-up of static objects would hang there, on another thread than its
// own. To be called again after a step that may have registered such clean-up: the last one is the
// first to run.
void catchExit();

}  // namespace engine
