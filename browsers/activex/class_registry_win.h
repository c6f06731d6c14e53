// Writing to and removing from the part of the registry that holds classes, of all users or of this
// one. Each is addressed by itself: through the merged view a key goes where one of that name is.
// Any thread.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "browsers/activex/registry_entries_win.h"

namespace Vantrel::Web::ActiveX {

enum class Place { kAllUsers, kThisUser };

// Stops at the first that fails; what was written before stays. E_ACCESSDENIED without the right.
HRESULT writeEntries(Place place, const std::vector<RegistryEntry>& entries);

// Removes each with all that is below, and what is left empty above. A key that is not there is
// removed already. Goes on behind a failure and tells the first one.
HRESULT removeKeys(Place place, const std::vector<std::wstring>& keys);

bool keyExists(Place place, const std::wstring& key);

}  // namespace Vantrel::Web::ActiveX
