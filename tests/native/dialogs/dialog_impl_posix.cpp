// Native test builds have no dialogs: whoever asks for one is told so.

#include <stdexcept>

#include "dialogs/dialog_impl.h"

namespace Vantrel::Web {

namespace {

[[noreturn]] void refuse() {
  throw std::runtime_error("no dialogs on this platform");
}

}  // namespace

std::unique_ptr<IDialogImpl> newOpenFileDialogImpl(void*, const std::string&, bool, bool,
                                                   const std::string&) {
  refuse();
}

std::unique_ptr<IDialogImpl> newOpenFolderDialogImpl(void*, const std::string&, bool) {
  refuse();
}

std::unique_ptr<IDialogImpl> newSaveFileDialogImpl(void*, const std::string&, const std::string&,
                                                   const std::string&) {
  refuse();
}

}  // namespace Vantrel::Web
