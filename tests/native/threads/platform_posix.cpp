#include "threads/platform.h"

namespace Vantrel::Web {

int32_t initializeThreadCom() {
  return 0;
}

void uninitializeThreadCom() {}

// A test program is never unloaded.
bool holdModule() {
  return false;
}

void releaseModuleLater() {}

}  // namespace Vantrel::Web
