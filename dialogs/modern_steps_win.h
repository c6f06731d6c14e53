// Steps that the modern open and save dialogs take alike. Those that throw do so by `require`.
#pragma once

#include "dialogs/modern_dialogs_win.h"

namespace Vantrel::Web::ModernSteps {

// Begins in the user's documents. `folder` holds the item for as long as the dialog lives; a
// failure is logged.
void setDefaultFolder(IFileDialog& dialog, ComPointer<IShellItem>& folder);

void setTitle(IFileDialog& dialog, const std::string& title);

void setFileTypes(IFileDialog& dialog, const std::vector<FileTypeFilter>& filters);

// Whether the user has chosen; false for a cancel, throws for any other failure.
bool isAccepted(HRESULT shown);

// The item's path in UTF-8.
std::string pathOf(IShellItem& item);

// Logs a failure that costs only comfort.
void logFailure(const char* call, HRESULT result);

}  // namespace Vantrel::Web::ModernSteps
