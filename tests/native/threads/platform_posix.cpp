#include "threads/platform.h"

namespace Vantrel::Web {

int32_t initializeThreadCom() {
  return 0;
}

void uninitializeThreadCom() {}

}  // namespace Vantrel::Web
