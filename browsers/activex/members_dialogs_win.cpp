// Script methods: native file dialogs. The synchronous ones show a dialog at once, the others from
// a later turn of the message loop. A call holds the control, so a dialog's own loop does not end
// it.

#include <stdexcept>

#include "browsers/activex/callbacks_win.h"
#include "browsers/activex/orvane_web_ctrl_win.h"
#include "core/approved_files.h"
#include "dialogs/native_dialogs.h"
#include "text/text.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::ActiveX {

namespace {

// An argument that the script may leave out, or that is no truth value, is false.
bool isTrue(const VARIANT& given) {
  Variant value;
  VARIANT source = given;  // what it holds stays the argument's
  return !isMissing(given) && SUCCEEDED(VariantChangeType(value.get(), &source, 0, VT_BOOL)) &&
         value.value().boolVal != VARIANT_FALSE;
}

}  // namespace

MethodText COrvaneWebCtrl::runOpenFileDialog(const DispatchArguments& args) {
  OpenFileDialog dialog(window(), "", args.flag(0), args.flag(1), "", false);
  dialog.createDialogImpl();
  const std::vector<std::string>& chosen = dialog.show();
  addToApprovedFileList(chosen);
  return escapedPathList(chosen);
}

MethodText COrvaneWebCtrl::runOpenFolderDialog(const DispatchArguments& args) {
  OpenFolderDialog dialog(window(), "", args.flag(0), false);
  dialog.createDialogImpl();
  const std::vector<std::string>& chosen = dialog.show();
  if (!chosen.empty()) core_->setLastSelectedPath(chosen.front());
  return escapedPathList(chosen);
}

MethodText COrvaneWebCtrl::runSaveFileDialog(const DispatchArguments& args) {
  SaveFileDialog dialog(window(), "", args.text(0), "");
  dialog.createDialogImpl();
  const std::vector<std::string>& chosen = dialog.show();
  if (chosen.empty()) return {};
  core_->setLastSelectedPath(chosen.front());
  return chosen.front();
}

// The scheduler owns the dialog and its callback from here on.
MethodText COrvaneWebCtrl::schedule(std::unique_ptr<NativeDialog> dialog, IDispatch* function,
                                    DialogKind kind) {
  if (!oneShotManager_) throw std::runtime_error("No way to the page");
  dialog->createDialogImpl();
  RunnableScheduler::scheduleRunnable(oneShotManager_.get(), std::move(dialog),
                                      std::make_unique<DialogCallback>(*this, function, kind));
  return std::string();
}

MethodText COrvaneWebCtrl::runOpenFileDialogAsync(const DispatchArguments& args) {
  return schedule(std::make_unique<OpenFileDialog>(window(), args.text(0), false, args.flag(1),
                                                   args.text(2), isTrue(args.anything(4))),
                  args.object(3), DialogKind::kOpenFile);
}

MethodText COrvaneWebCtrl::runOpenFolderDialogAsync(const DispatchArguments& args) {
  return schedule(std::make_unique<OpenFolderDialog>(window(), args.text(0), args.flag(1),
                                                     isTrue(args.anything(3))),
                  args.object(2), DialogKind::kOpenFolder);
}

MethodText COrvaneWebCtrl::runSaveFileDialogAsync(const DispatchArguments& args) {
  return schedule(
      std::make_unique<SaveFileDialog>(window(), args.text(0), args.text(1), args.text(2)),
      args.object(3), DialogKind::kSaveFile);
}

}  // namespace Vantrel::Web::ActiveX
