// What registration is to write, told by its keys and texts and not by the product's own table.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/activex/registry_export_win.h"

namespace Vantrel::Web::TestSupport {

// The keys that all of it hangs from, below the part for classes.
const std::vector<std::wstring>& registeredKeys();

// The shipped library's path.
std::wstring libraryPath();

// What there is of ours for all users. A walk through all of their classes would take a second.
RegistryExport oursForAll();

// The control and its page, with their categories.
RegistryExport expectedClasses();

// The rest of an export without the type library and its interfaces, which the system writes in its
// own way.
RegistryExport withoutTypeLibrary(const RegistryExport& all);

}  // namespace Vantrel::Web::TestSupport
