#include "browsers/shared/dropped_files_win.h"

#include <ole2.h>
#include <sys/stat.h>

#include "runtime/ov_log.h"
#include "text/wide_text.h"

namespace Vantrel::Web {

DroppedData::DroppedData(IDataObject& data) {
  FORMATETC format = {CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
  result_ = data.GetData(&format, &medium_);
  if (FAILED(result_) || (medium_.tymed == TYMED_HGLOBAL && medium_.hGlobal != nullptr)) return;
  // What it answers with need not be what it was asked for.
  ReleaseStgMedium(&medium_);
  result_ = DV_E_TYMED;
}

DroppedData::~DroppedData() {
  if (SUCCEEDED(result_)) ReleaseStgMedium(&medium_);
}

UINT countOf(HDROP files) {
  constexpr UINT kCount = 0xFFFFFFFF;
  return DragQueryFileW(files, kCount, nullptr, 0);
}

// Asked for its length first, so that no name is cut.
std::wstring pathAt(HDROP files, UINT index) {
  std::wstring path(DragQueryFileW(files, index, nullptr, 0), L'\0');
  // The count leaves out the terminator, the room does not.
  DragQueryFileW(files, index, path.data(), static_cast<UINT>(path.size() + 1));
  return path;
}

std::vector<std::string> acceptedFiles(HDROP files, bool allowDirectories, bool allowMultiple) {
  std::vector<std::string> accepted;
  const UINT count = countOf(files);
  if (count > 1 && !allowMultiple) return accepted;
  for (UINT index = 0; index < count; ++index) {
    const std::wstring path = pathAt(files, index);
    std::string text = toUtf8(path);
    struct _stat64 status = {};
    // The library on Windows refuses what is longer than its own limit of a path.
    if (_wstat64(path.c_str(), &status) != 0) {
      ov_err("stat failed for file %s", text.c_str());
      continue;
    }
    const bool directory = (status.st_mode & _S_IFDIR) != 0;
    if (!directory || allowDirectories) accepted.push_back(std::move(text));
  }
  return accepted;
}

}  // namespace Vantrel::Web
