#include "dialogs/native_dialogs.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "core/data_transfer.h"
#include "dialogs/shown_dialog.h"
#include "runtime/ov_log.h"
#include "text/error_reply.h"
#include "text/error_texts.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

std::string openedText(const std::vector<std::string>& paths, bool extendedInfo) {
  return extendedInfo ? dataTransferJson(paths) : jsonPathArray(paths);
}

}  // namespace

const std::vector<std::string>& NativeDialog::show() {
  resultText_.clear();
  selectedPaths_.clear();
  if (!impl_) return selectedPaths_;
  if (ShownDialog::mostAreShown()) throw std::runtime_error(kErrorDialogOpen);
  const ShownDialog shown;
  std::vector<std::string> paths = impl_->doShow();
  resultText_ = textOf(paths);
  selectedPaths_ = std::move(paths);
  return selectedPaths_;
}

void NativeDialog::run() {
  if (stopped_) return;
  if (ShownDialog::mostAreShown()) {
    resultText_ = logJsonErrorReply(kErrorDialogOpen);
    return;
  }
  try {
    show();
  } catch (const std::exception& exception) {
    resultText_ = exceptionJsonErrorReply(exception, failure_);
  }
}

void NativeDialog::stop() {
  stopped_ = true;
  if (impl_) impl_->cancel();
}

OpenFileDialog::OpenFileDialog(void* parentWindow, std::string title, bool allowDirectories,
                               bool allowMultiple, std::string fileTypes, bool extendedInfo)
    : NativeDialog(kErrorOpenFileDialog),
      parentWindow_(parentWindow),
      title_(std::move(title)),
      allowDirectories_(allowDirectories),
      allowMultiple_(allowMultiple),
      fileTypes_(std::move(fileTypes)),
      extendedInfo_(extendedInfo) {
  ov_log("OpenFileDialog() - title=%s, allowDirectories=%u, allowMultiple=%u, fileTypes=%s",
         title_.c_str(), allowDirectories ? 1U : 0U, allowMultiple ? 1U : 0U, fileTypes_.c_str());
}

void OpenFileDialog::createDialogImpl() {
  impl_ =
      newOpenFileDialogImpl(parentWindow_, title_, allowDirectories_, allowMultiple_, fileTypes_);
}

std::string OpenFileDialog::textOf(const std::vector<std::string>& paths) const {
  return openedText(paths, extendedInfo_);
}

OpenFolderDialog::OpenFolderDialog(void* parentWindow, std::string title, bool allowMultiple,
                                   bool extendedInfo)
    : NativeDialog(kErrorOpenFolderDialog),
      parentWindow_(parentWindow),
      title_(std::move(title)),
      allowMultiple_(allowMultiple),
      extendedInfo_(extendedInfo) {}

void OpenFolderDialog::createDialogImpl() {
  impl_ = newOpenFolderDialogImpl(parentWindow_, title_, allowMultiple_);
}

std::string OpenFolderDialog::textOf(const std::vector<std::string>& paths) const {
  return openedText(paths, extendedInfo_);
}

SaveFileDialog::SaveFileDialog(void* parentWindow, std::string title, std::string suggestedName,
                               std::string fileTypes)
    : NativeDialog(kErrorSaveFileDialog),
      parentWindow_(parentWindow),
      title_(std::move(title)),
      suggestedName_(std::move(suggestedName)),
      fileTypes_(std::move(fileTypes)) {
  OV_DEBUG("SaveFileDialog::SaveFileDialog() - suggestedName=%s", suggestedName_.c_str());
}

void SaveFileDialog::createDialogImpl() {
  impl_ = newSaveFileDialogImpl(parentWindow_, title_, suggestedName_, fileTypes_);
}

std::string SaveFileDialog::textOf(const std::vector<std::string>& paths) const {
  return paths.empty() ? "null" : quotePath(paths.front(), true);
}

}  // namespace Vantrel::Web
