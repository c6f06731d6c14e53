// The start of Qt on the engine's thread, beside Wine in one process.
#pragma once

namespace engine {

// Creates the application object. It lives until the process ends: the engine's own clean-up at
// exit expects to run on the process's first thread.
void startEngine();

}  // namespace engine
