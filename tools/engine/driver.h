// Runs one page as the options say: prints its console, obeys its "@browser" lines, takes the
// picture, and decides when the run is over and with what status.
#pragma once

#include "options.h"

namespace engine {

// The life of the engine's thread: starts the engine, runs the page to its end, destroys it.
// Returns the exit status. The calling thread becomes the bridge's engine side.
int runEngine(const Options& options);

}  // namespace engine
