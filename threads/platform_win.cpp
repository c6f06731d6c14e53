#include "threads/platform.h"

#include <windows.h>
#include <objbase.h>

// The linker places this symbol at the module's first byte, whose address is the module's handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace Vantrel::Web {

int32_t initializeThreadCom() {
  return CoInitialize(nullptr);
}

void uninitializeThreadCom() {
  CoUninitialize();
}

void* moduleHandle() {
  return &__ImageBase;
}

}  // namespace Vantrel::Web
