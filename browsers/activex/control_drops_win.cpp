// Drags over the control: what may be dropped, and what comes of a drop. The
// drop itself only notes the paths; the work is posted, so that it runs when
// the system's drag is over.

#include <ole2.h>
#include <sys/stat.h>

#include <stdexcept>

#include "browsers/activex/orvane_web_ctrl_win.h"
#include "browsers/activex/page_calls_win.h"
#include "browsers/shared/dropped_files_win.h"
#include "core/approved_files.h"
#include "core/data_transfer.h"
#include "runtime/ov_log.h"
#include "text/error_texts.h"
#include "text/text.h"
#include "text/wide_text.h"

namespace Vantrel::Web::ActiveX {

namespace {

constexpr DISPID kOnDrop = 100;
constexpr DISPID kOnDropEx = 101;

// A longer path is not taken; one that is longer than the other is not
// examined.
constexpr size_t kLongestTaken = 259;
constexpr size_t kLongestExamined = 4095;

// One that cannot be examined is none. The library on Windows refuses what is
// longer than its own limit of a path.
bool isDirectory(const std::wstring& path) {
  struct _stat64 status = {};
  return path.size() <= kLongestExamined && _wstat64(path.c_str(), &status) == 0 &&
         (status.st_mode & _S_IFDIR) != 0;
}

// False for a path that is no text, which is logged.
bool convert(const std::vector<std::wstring>& files, std::vector<std::string>& paths) {
  try {
    for (const std::wstring& file : files) paths.push_back(toUtf8(file));
    return true;
  } catch (const std::runtime_error&) {
    ov_err("ERROR: Failure converting file from drop list to UTF-8");
    return false;
  }
}

bool hasWideForm(const std::string& text) {
  try {
    toWide(text);
    return true;
  } catch (const std::runtime_error&) {
    ov_err("ERROR: Failure converting escaped path set to Unicode");
    return false;
  }
}

}  // namespace

HRESULT COrvaneWebCtrl::dragEnter(IDataObject* data) {
  if (dropMode_ == DropMode::kNone || data == nullptr) return E_INVALIDARG;
  const ComPointer<IUnknown> hold(&outer());
  const DroppedData dragged(*data);
  return SUCCEEDED(dragged.result()) && validateDrop(dragged.files()) ? S_OK : E_INVALIDARG;
}

bool COrvaneWebCtrl::validateDrop(HDROP files) const {
  OV_DEBUG("COrvaneWebCtrl::ValidateDrop()");
  const UINT count = countOf(files);
  if (count > 1 && !dropAllowMultiple_) return false;
  for (UINT index = 0; index < count && !dropAllowDirectories_; ++index) {
    if (isDirectory(pathAt(files, index))) return false;
  }
  return true;
}

HRESULT COrvaneWebCtrl::drop(IDataObject* data, const DWORD* effect) {
  if (data == nullptr || effect == nullptr) return E_INVALIDARG;
  if (dropMode_ == DropMode::kNone) return S_OK;
  const ComPointer<IUnknown> hold(&outer());
  const DroppedData dropped(*data);
  if (FAILED(dropped.result())) return E_INVALIDARG;
  for (UINT index = 0; index < countOf(dropped.files()); ++index) {
    std::wstring path = pathAt(dropped.files(), index);
    if (!path.empty() && path.size() <= kLongestTaken) droppedFiles_.push_back(std::move(path));
  }
  dropPending_ = true;
  if (!oneShotManager_) {
    ov_err("A drop cannot be processed: the control has not started");
    return S_OK;
  }
  // What is posted goes with the manager, and the manager with the control.
  oneShotManager_->scheduleAsyncCallback(
      [](void* control) { static_cast<COrvaneWebCtrl*>(control)->processDrop(); }, this);
  return S_OK;
}

// What was dropped stays for the next drop if it cannot be told.
void COrvaneWebCtrl::processDrop() {
  if (!dropPending_) return;
  const ComPointer<IUnknown> hold(&outer());
  std::vector<std::string> paths;
  if (!convert(droppedFiles_, paths)) return;
  const std::string json = dataTransferJson(paths);
  addToApprovedFileList(paths);
  // There is no call of the page that could fail here.
  if (dropMode_ == DropMode::kUpload && !core_->uploadDropped(paths))
    ov_err("%s", kErrorContacting);
  if (dropMode_ == DropMode::kCallback && !tellDrop(paths, json)) return;
  droppedFiles_.clear();
  dropPending_ = false;
}

bool COrvaneWebCtrl::tellDrop(const std::vector<std::string>& paths, const std::string& json) {
  const std::string list = escapedPathList(paths);
  if (!hasWideForm(list)) return false;
  OV_DEBUG("COrvaneWebCtrl::TriggerOnDrop()");
  events().fire(kOnDrop, list);
  OV_DEBUG("COrvaneWebCtrl::TriggerOnDrop()");
  events().fire(kOnDropEx, json);
  sendDispatchEvent(eventHandler_.get(), PageEvent::kDrop, jsonPathArray(paths));
  sendDispatchEvent(eventHandler_.get(), PageEvent::kDropEx, json);
  return true;
}

}  // namespace Vantrel::Web::ActiveX
