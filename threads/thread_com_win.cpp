#include "threads/thread_com.h"

#include <windows.h>
#include <objbase.h>

namespace Vantrel::Web {

int32_t initializeThreadCom() {
  return CoInitialize(nullptr);
}

void uninitializeThreadCom() {
  CoUninitialize();
}

}  // namespace Vantrel::Web
