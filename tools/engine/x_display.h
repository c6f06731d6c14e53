// The X display, before Wine and Qt open it each for itself.
#pragma once

#include <string>

namespace engine {

// To be called before any other use of X in the process. False if there is no display.
bool prepareDisplay(std::string& problem);

}  // namespace engine
