// What the library writes into the registry, as data: paths below the part that holds classes, and
// what is removed again. No call here touches the registry. Any thread.
#pragma once

#include <guiddef.h>

#include <string>
#include <vector>

namespace Vantrel::Web::ActiveX {

// The categories of what may be handed to scripts, and to the parameters of a page.
constexpr GUID kSafeForScripting = {
    0x7DD95801, 0x9882, 0x11CF, {0x9F, 0xA9, 0x00, 0xAA, 0x00, 0x6C, 0x42, 0xC4}};
constexpr GUID kSafeForInitializing = {
    0x7DD95802, 0x9882, 0x11CF, {0x9F, 0xA9, 0x00, 0xAA, 0x00, 0x6C, 0x42, 0xC4}};

// One text. An empty `name` is the key's own value; a key may be there for its name alone.
struct RegistryEntry {
  std::wstring key;
  std::wstring name;
  std::wstring text;
};

// The control and its property page, served by the library at `path`.
std::vector<RegistryEntry> classEntries(const std::wstring& path);

// The type library inside the library at `path`, as the system writes it for all users.
std::vector<RegistryEntry> typeLibraryEntries(const std::wstring& path);

// The control's categories. The keys say it by being there.
std::vector<RegistryEntry> categoryEntries();

// The keys that these hang from: with them goes all that is below.
std::vector<std::wstring> classKeys();
std::vector<std::wstring> typeLibraryKeys();

// The directory of a file, without a closing separator.
std::wstring directoryOf(const std::wstring& path);

// A class or library in braces.
std::wstring textOf(const GUID& id);

}  // namespace Vantrel::Web::ActiveX
