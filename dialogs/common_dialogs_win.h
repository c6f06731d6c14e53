// The common dialogs of old systems, by the library's own names. It is loaded when one is first
// asked for and then stays: systems with better dialogs never load it, and under Wine each load of
// it costs the process a handle. Throws SystemException where it is missing.
#pragma once

#include <windows.h>
#include <commdlg.h>

namespace Vantrel::Web::CommonDialogs {

bool openFileName(OPENFILENAMEW* dialog);
bool saveFileName(OPENFILENAMEW* dialog);
// Why the last of them was false; 0 for a cancel.
DWORD extendedError();

}  // namespace Vantrel::Web::CommonDialogs
