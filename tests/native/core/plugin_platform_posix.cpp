// What the core asks of the platform, for native test builds: nothing of it matters there.

#include "core/plugin_platform.h"

namespace Vantrel::Web {

void changeToHomeDirectory() {}

void* findSetLayeredWindowAttributes() {
  return nullptr;
}

}  // namespace Vantrel::Web
