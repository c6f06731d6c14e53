// What the core asks of the platform, for native test builds: nothing of it matters there.

#include "core/plugin.h"

namespace Vantrel::Web {

void Plugin::changeToHomeDirectory() {}

void* Plugin::findSetLayeredWindowAttributes() {
  return nullptr;
}

}  // namespace Vantrel::Web
