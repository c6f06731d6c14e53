#include "service/locations_platform.h"

#include <windows.h>
#include <shlobj.h>

#include "text/wide_text.h"

namespace Vantrel::Web {

int32_t localAppDataDirectory(std::string* directory) {
  wchar_t wide[MAX_PATH] = L"";
  const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, wide);
  if (result >= 0) *directory = toUtf8(wide);
  return result;
}

}  // namespace Vantrel::Web
