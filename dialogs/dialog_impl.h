// What a platform does for one file dialog. Owned by its NativeDialog; browser's thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Vantrel::Web {

class IDialogImpl {
 public:
  virtual ~IDialogImpl() = default;
  IDialogImpl(const IDialogImpl&) = delete;
  IDialogImpl& operator=(const IDialogImpl&) = delete;

  // The instance goes while the dialog is shown. The dialogs of this platform cannot be ended from
  // outside without running its message loop in the middle of a teardown, so they stay until the
  // user closes them.
  virtual void cancel() = 0;
  // Shows the dialog modally, in a message loop of its own: the page and the instance may be gone
  // when this returns. The chosen paths in UTF-8, none for a cancel; throws SystemException when
  // there is no dialog, std::runtime_error for file types that do not parse.
  virtual std::vector<std::string> doShow() = 0;

  // What a DialogCallback asks before it delivers; no dialog of this platform is ever 0.
  static constexpr int32_t kResult = 4;

 protected:
  IDialogImpl() = default;
};

// The platform's dialogs. `parentWindow` is a window handle; only the forms for old systems use it.
std::unique_ptr<IDialogImpl> newOpenFileDialogImpl(void* parentWindow, const std::string& title,
                                                   bool allowDirectories, bool allowMultiple,
                                                   const std::string& fileTypes);
std::unique_ptr<IDialogImpl> newOpenFolderDialogImpl(void* parentWindow, const std::string& title,
                                                     bool allowMultiple);
std::unique_ptr<IDialogImpl> newSaveFileDialogImpl(void* parentWindow, const std::string& title,
                                                   const std::string& suggestedName,
                                                   const std::string& fileTypes);

}  // namespace Vantrel::Web
