// The module's own entry. Work waits for the exported entries: under the loader's lock none of what
// a start needs is allowed, and at the unload no thread may be joined and no COM called.

#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
  return TRUE;
}
