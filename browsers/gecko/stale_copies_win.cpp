#include "browsers/gecko/stale_copies.h"

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

#include <string>

namespace Vantrel::Web::Gecko {

namespace {

constexpr const wchar_t* kRelativePaths[] = {L"Mozilla\\Plugins\\nporvaneweb.dll"};
constexpr int kRoots[] = {CSIDL_APPDATA, CSIDL_LOCAL_APPDATA};

// The folder, or an empty path if the system does not tell it.
std::wstring folder(int id) {
  wchar_t path[MAX_PATH];
  return SHGetFolderPathW(nullptr, id, nullptr, SHGFP_TYPE_CURRENT, path) == S_OK ? path : L"";
}

void deleteFile(std::wstring path) {
  path += L'\0';  // the shell takes a list of names, which a second terminator ends
  SHFILEOPSTRUCTW operation = {};
  operation.wFunc = FO_DELETE;
  operation.pFrom = path.c_str();
  operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
  SHFileOperationW(&operation);
}

}  // namespace

void removeStalePluginCopies() {
  for (const int root : kRoots) {
    const std::wstring directory = folder(root);
    for (const wchar_t* const relativePath : kRelativePaths) {
      const std::wstring path = directory + L'\\' + relativePath;
      if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) deleteFile(path);
    }
  }
}

}  // namespace Vantrel::Web::Gecko
