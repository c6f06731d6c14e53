// What stands in a part of the registry, whole: every key, and every value with its bytes.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

namespace Vantrel::Web::TestSupport {

// By path, "KEY\\SUB" for a key and "KEY\\SUB:NAME" for a value; the texts are what a value holds.
// The path of the key that the export begins with is empty.
using RegistryExport = std::map<std::wstring, std::wstring>;

// What is below `key` of `root`, but for the keys of the names in `without`, relative to it.
RegistryExport exportRegistry(HKEY root, const std::wstring& key,
                              const std::vector<std::wstring>& without = {});

// What is in `after` alone or has changed, without what was before.
RegistryExport added(const RegistryExport& before, const RegistryExport& after);

}  // namespace Vantrel::Web::TestSupport
