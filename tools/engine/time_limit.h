// The end of a run whose plug-in does not return: the page's own time limit cannot act while the
// engine waits for a call.
#pragma once

namespace engine {

// Ends the process with exitTimeLimit that many seconds from now; any thread.
void endProcessAfter(double seconds);

}  // namespace engine
