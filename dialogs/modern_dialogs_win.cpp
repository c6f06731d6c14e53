// What the two modern dialogs have in common, and the open dialog.
#include "dialogs/modern_dialogs_win.h"

#include <shlobj.h>

#include <utility>

#include "dialogs/modern_steps_win.h"
#include "dialogs/popup_manager_win.h"
#include "runtime/ov_log.h"
#include "text/wide_text.h"

namespace Vantrel::Web {

HRESULT WinDialogUtils::getKnownFolderSI(int csidl, IShellItem** shellItem) {
  OV_DEBUG("WinDialogUtils::getKnownFolderSI()");
  PIDLIST_ABSOLUTE found = nullptr;
  HRESULT result = SHGetFolderLocation(nullptr, csidl, nullptr, 0, &found);
  if (FAILED(result)) {
    ov_err("SHGetFolderLocation failed: %x", static_cast<unsigned>(result));
    return result;
  }
  const TaskMemory<ITEMIDLIST> idList(found);
  result = SHCreateShellItem(nullptr, nullptr, idList.get(), shellItem);
  if (FAILED(result)) ov_err("SHCreateShellItem failed: %x", static_cast<unsigned>(result));
  return result;
}

namespace ModernSteps {

void setDefaultFolder(IFileDialog& dialog, ComPointer<IShellItem>& folder) {
  if (FAILED(WinDialogUtils::getKnownFolderSI(CSIDL_PERSONAL, folder.put()))) return;
  logFailure("SetDefaultFolder", dialog.SetDefaultFolder(folder.get()));
}

void setTitle(IFileDialog& dialog, const std::string& title) {
  if (!title.empty()) require(dialog.SetTitle(toWide(title).c_str()), "SetTitle failed: 0x");
}

void setFileTypes(IFileDialog& dialog, const std::vector<FileTypeFilter>& filters) {
  std::vector<std::pair<std::wstring, std::wstring>> texts;
  texts.reserve(filters.size());
  std::vector<COMDLG_FILTERSPEC> specs;
  specs.reserve(filters.size());
  for (const FileTypeFilter& filter : filters) {
    const auto& [name, spec] = texts.emplace_back(toWide(filter.name), toWide(filterSpec(filter)));
    specs.push_back({name.c_str(), spec.c_str()});
  }
  require(dialog.SetFileTypes(static_cast<UINT>(specs.size()), specs.data()),
          "SetFileTypes failed: 0x");
}

bool isAccepted(HRESULT shown) {
  // HRESULT_FROM_WIN32(ERROR_CANCELLED)
  constexpr auto kCancelled = static_cast<HRESULT>(0x800704C7);
  if (shown == kCancelled) return false;
  require(shown, "Show failed: 0x");
  return true;
}

std::string pathOf(IShellItem& item) {
  wchar_t* name = nullptr;
  const HRESULT result = item.GetDisplayName(SIGDN_FILESYSPATH, &name);
  const TaskMemory<wchar_t> owned(name);
  require(result, "GetDisplayName failed: 0x");
  return toUtf8(owned.get());
}

void logFailure(const char* call, HRESULT result) {
  if (FAILED(result)) ov_err("%s failed: %x", call, static_cast<unsigned>(result));
}

}  // namespace ModernSteps

namespace {

std::vector<std::string> pathsOf(IFileOpenDialog& dialog) {
  ComPointer<IShellItemArray> items;
  require(dialog.GetResults(items.put()), "GetResults failed: 0x");
  DWORD count = 0;
  require(items->GetCount(&count), "GetCount failed: 0x");
  std::vector<std::string> paths;
  for (DWORD i = 0; i < count; ++i) {
    ComPointer<IShellItem> item;
    require(items->GetItemAt(i, item.put()), "GetItemAt failed: 0x");
    paths.push_back(ModernSteps::pathOf(*item.get()));
  }
  return paths;
}

}  // namespace

WinVistaOpenFileDialogImpl::WinVistaOpenFileDialogImpl(std::string title, bool allowMultiple,
                                                       std::string fileTypes, bool pickFolders)
    : apartment_("CoInitialize() failed"),
      title_(std::move(title)),
      allowMultiple_(allowMultiple),
      fileTypes_(std::move(fileTypes)),
      pickFolders_(pickFolders) {
  OV_DEBUG("WinVistaOpenFileDialogImpl()");
}

// Without the options a folder dialog shows as one for files; that is said in the log alone.
void WinVistaOpenFileDialogImpl::setOptions(IFileDialog& dialog) const {
  FILEOPENDIALOGOPTIONS options = 0;
  if (const HRESULT result = dialog.GetOptions(&options); FAILED(result)) {
    return ModernSteps::logFailure("GetOptions", result);
  }
  if (pickFolders_) options |= FOS_PICKFOLDERS;
  if (allowMultiple_) options |= FOS_ALLOWMULTISELECT;
  ModernSteps::logFailure("SetOptions", dialog.SetOptions(options));
}

std::vector<std::string> WinVistaOpenFileDialogImpl::doShow() {
  OV_DEBUG("WinVistaOpenFileDialogImpl::doShow()");
  ComPointer<IFileOpenDialog> dialog;
  require(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_ALL, IID_IFileOpenDialog,
                           dialog.putVoid()),
          "Failed to create FileOpenDialog: 0x");
  ComPointer<IShellItem> folder;
  ModernSteps::setDefaultFolder(*dialog.get(), folder);
  ModernSteps::setTitle(*dialog.get(), title_);
  setOptions(*dialog.get());
  if (const auto filters = parseFileTypes(fileTypes_); !filters.empty()) {
    ModernSteps::setFileTypes(*dialog.get(), filters);
  }
  const WinPopupMgrImpl popup(nullptr);
  if (!ModernSteps::isAccepted(dialog->Show(popup.owner()))) return {};
  return pathsOf(*dialog.get());
}

}  // namespace Vantrel::Web
