// The legacy folder dialog and the legacy save dialog.
#include "dialogs/legacy_dialogs_win.h"

#include <windows.h>
#include <commdlg.h>
#include <shlobj.h>

#include <algorithm>
#include <utility>

#include "dialogs/common_dialogs_win.h"
#include "dialogs/popup_manager_win.h"
#include "runtime/ov_log.h"
#include "text/wide_text.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

namespace {

constexpr size_t kPathLength = 260;  // characters, the terminator among them

std::string inSystemCodePage(const wchar_t* wide) {
  const int size = WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string text(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, wide, -1, text.data(), size, nullptr, nullptr);
  text.pop_back();
  return text;
}

}  // namespace

std::wstring commonDialogFilter(const std::vector<FileTypeFilter>& filters) {
  std::wstring text = toWide(filterLines(filters));
  std::replace(text.begin(), text.end(), L'\n', L'\0');
  return text;
}

WinBrowseFolderDialogImpl::WinBrowseFolderDialogImpl()
    : apartment_("WinBrowseFolderDialogImpl() - CoInitialize failed") {}

std::vector<std::string> WinBrowseFolderDialogImpl::doShow() {
  const WinPopupMgrImpl popup(nullptr);
  BROWSEINFOW info = {};
  info.hwndOwner = popup.owner();
  info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_EDITBOX | BIF_NEWDIALOGSTYLE;
  const TaskMemory<ITEMIDLIST> chosen(SHBrowseForFolderW(&info));
  if (!chosen) return {};
  // A folder that is none of the file system has no path; then nothing was chosen.
  wchar_t wide[kPathLength] = L"";
  SHGetPathFromIDListW(chosen.get(), wide);
  std::string path = inSystemCodePage(wide);
  if (path.empty()) return {};
  return {std::move(path)};
}

WinSaveFileDialogImpl::WinSaveFileDialogImpl(HWND parentWindow, std::string title,
                                             std::string suggestedName, std::string fileTypes)
    : apartment_("CoInitialize() failed"),
      parentWindow_(parentWindow),
      title_(std::move(title)),
      suggestedName_(std::move(suggestedName)),
      fileTypes_(std::move(fileTypes)) {
  OV_DEBUG("WinSaveFileDialogImpl()");
}

std::vector<FileTypeFilter> WinSaveFileDialogImpl::filters(uint32_t* index) const {
  const std::string extension = suggestedExtension(suggestedName_);
  std::vector<FileTypeFilter> filters = parseFileTypes(fileTypes_);
  *index = initialFilter(filters, extension);
  return filters.empty() ? defaultFilters(extension) : filters;
}

std::vector<std::string> WinSaveFileDialogImpl::doShow() {
  OV_DEBUG("WinSaveFileDialogImpl::doShow()");
  const std::wstring title = toWide(title_);
  wchar_t path[kPathLength] = L"";
  // A name that does not fit is cut; the terminator is in place already.
  toWide(suggestedName_).copy(path, kPathLength - 1);
  uint32_t index = 1;
  const std::wstring filter = commonDialogFilter(filters(&index));
  OPENFILENAMEW dialog = {};
  static_assert(sizeof dialog == 152);
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = parentWindow_;
  dialog.lpstrFilter = filter.c_str();
  dialog.nFilterIndex = index;
  dialog.lpstrFile = path;
  dialog.nMaxFile = kPathLength;
  dialog.lpstrTitle = title.empty() ? nullptr : title.c_str();
  dialog.Flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_NOTESTFILECREATE |
                 OFN_EXPLORER;
  dialog.lpstrDefExt = L"";
  if (CommonDialogs::saveFileName(&dialog)) return {toUtf8(path)};
  const DWORD code = CommonDialogs::extendedError();
  if (code == 0) return {};
  const std::string text = "Save file dialog failed (" + std::to_string(code) + ")";
  ov_err("%s", text.c_str());
  throw SystemException(text);
}

}  // namespace Vantrel::Web
