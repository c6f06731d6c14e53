// The module's own entry. Work waits for the exported entries: under the loader's lock none of what
// a start needs is allowed, and at the unload no thread may be joined and no COM called.
//
// Notifications of threads stay on: the C++ runtime that is linked into the library gives back at
// the end of a thread what it has made for it, two handles for each worker otherwise.

#include <windows.h>

namespace __gnu_cxx {
void __freeres();  // gives back the memory that the C++ runtime keeps for exceptions
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) __gnu_cxx::__freeres();
  return TRUE;
}
