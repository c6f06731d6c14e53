// The plug-in that the engine finds in its plug-in folder: a native library that hands everything
// to the bridge in the same process.
#include <cstdlib>

#include "stub_link.h"

namespace {

const engine::StubLink* link() {
  const char* address = std::getenv(engine::kStubLinkVariable);
  if (address == nullptr) return nullptr;
  return reinterpret_cast<const engine::StubLink*>(std::strtoull(address, nullptr, 16));
}

// Variables of NP_GetValue.
constexpr int kNameVariable = 1;
constexpr int kDescriptionVariable = 2;
constexpr int16_t kGenericError = 1;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) const char* NP_GetMIMEDescription() {
  return link() != nullptr ? link()->mimeDescription : "";
}

__attribute__((visibility("default"))) int16_t NP_GetValue(void*, int variable, void* value) {
  if (link() == nullptr || (variable != kNameVariable && variable != kDescriptionVariable))
    return kGenericError;
  *static_cast<const char**>(value) = link()->name;
  return 0;
}

__attribute__((visibility("default"))) int16_t NP_Initialize(void* browserFunctions,
                                                             void* pluginFunctions) {
  return link() != nullptr ? link()->start(browserFunctions, pluginFunctions) : kGenericError;
}

// The engine never calls it; main() shuts the library down after the last instance.
__attribute__((visibility("default"))) int16_t NP_Shutdown() {
  return 0;
}
}
