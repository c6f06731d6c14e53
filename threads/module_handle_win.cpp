#include "threads/module_handle.h"

#include <windows.h>

// The linker places this symbol at the module's first byte, whose address is the module's handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace Vantrel::Web {

void* moduleHandle() {
  return &__ImageBase;
}

}  // namespace Vantrel::Web
