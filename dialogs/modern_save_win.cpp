// The modern save dialog.
#include <utility>

#include "dialogs/modern_dialogs_win.h"
#include "dialogs/modern_steps_win.h"
#include "dialogs/popup_manager_win.h"
#include "runtime/ov_log.h"
#include "text/wide_text.h"

namespace Vantrel::Web {

WinVistaSaveFileDialogImpl::WinVistaSaveFileDialogImpl(std::string title, std::string suggestedName,
                                                       std::string fileTypes)
    : apartment_("CoInitialize() failed"),
      title_(std::move(title)),
      suggestedName_(std::move(suggestedName)),
      fileTypes_(std::move(fileTypes)) {
  OV_DEBUG("WinVistaSaveFileDialogImpl()");
}

void WinVistaSaveFileDialogImpl::setFilters(IFileDialog& dialog) const {
  const std::string extension = suggestedExtension(suggestedName_);
  std::vector<FileTypeFilter> filters = parseFileTypes(fileTypes_);
  const uint32_t index = initialFilter(filters, extension);
  if (filters.empty()) filters = defaultFilters(extension);
  ModernSteps::setFileTypes(dialog, filters);
  require(dialog.SetFileTypeIndex(index), "SetFileTypeIndex failed: 0x");
}

std::vector<std::string> WinVistaSaveFileDialogImpl::doShow() {
  OV_DEBUG("WinVistaSaveFileDialogImpl::doShow()");
  ComPointer<IFileSaveDialog> dialog;
  require(CoCreateInstance(CLSID_FileSaveDialog, nullptr, CLSCTX_ALL, IID_IFileSaveDialog,
                           dialog.putVoid()),
          "Failed to create FileSaveDialog: 0x");
  ComPointer<IShellItem> folder;
  ModernSteps::setDefaultFolder(*dialog.get(), folder);
  ModernSteps::setTitle(*dialog.get(), title_);
  if (!suggestedName_.empty()) {
    require(dialog->SetFileName(toWide(suggestedName_).c_str()), "SetFileName failed: 0x");
  }
  setFilters(*dialog.get());
  ModernSteps::logFailure("SetDefaultExtension", dialog->SetDefaultExtension(L""));
  const WinPopupMgrImpl popup(nullptr);
  if (!ModernSteps::isAccepted(dialog->Show(GetLastActivePopup(popup.owner())))) return {};
  ComPointer<IShellItem> item;
  require(dialog->GetResult(item.put()), "GetResult failed: 0x");
  return {ModernSteps::pathOf(*item.get())};
}

}  // namespace Vantrel::Web
