// What a user's hand does with a dialog that asks for a file: for the program of this folder and
// for tests. The dialog may be another thread's or another process's.
#pragma once

#include <windows.h>

#include <string>

namespace Vantrel::StandIn {

// Whether it is a dialog that can be seen.
bool isShownDialog(HWND window);

// Where the name of a file is typed; null if the dialog has no such place.
HWND nameEditOf(HWND dialog);
void typeName(HWND dialog, const std::wstring& name);

// The OK button and the Cancel button. They return at once.
void pressOk(HWND dialog);
void pressCancel(HWND dialog);

}  // namespace Vantrel::StandIn
