// The files of a drop, as the system hands them over.
#pragma once

#include <windows.h>
#include <objidl.h>
#include <shellapi.h>

#include <string>
#include <vector>

namespace Vantrel::Web {

// The list of files in a drag's data, given back at the end.
class DroppedData {
 public:
  // Asks the data for files; result() tells. An answer in another form than a block of memory is a
  // failure.
  explicit DroppedData(IDataObject& data);
  ~DroppedData();
  DroppedData(const DroppedData&) = delete;
  DroppedData& operator=(const DroppedData&) = delete;

  HRESULT result() const { return result_; }
  HDROP files() const { return static_cast<HDROP>(medium_.hGlobal); }

 private:
  STGMEDIUM medium_ = {};
  HRESULT result_;
};

// How many there are, and the whole path of one.
UINT countOf(HDROP files);
std::wstring pathAt(HDROP files, UINT index);

// The paths, in UTF-8, of those that may be taken: none of several without `allowMultiple`, no
// directory without `allowDirectories`, nothing that cannot be examined (which is logged). Throws
// std::runtime_error for a name that is no text.
std::vector<std::string> acceptedFiles(HDROP files, bool allowDirectories, bool allowMultiple);

}  // namespace Vantrel::Web
