// What the stub plug-in that the engine loads needs of the process it lives in. The table's address
// travels in an environment variable, as the stub is linked to nothing.
#pragma once

#include <cstdint>

namespace engine {

inline constexpr char kStubLinkVariable[] = "ORVANE_BROWSER_STUB_LINK";

struct StubLink {
  const char* mimeDescription;  // type:extensions:name
  const char* name;
  int16_t (*start)(const void* browserFunctions, void* pluginFunctions);
};

}  // namespace engine
