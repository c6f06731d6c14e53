// Script methods: native file dialogs. The synchronous ones show a dialog at once, the others from
// a later turn of the browser's message loop.

#include <exception>
#include <memory>
#include <utility>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/page_callbacks.h"
#include "browsers/gecko/variant.h"
#include "core/approved_files.h"
#include "dialogs/native_dialogs.h"
#include "dialogs/shown_dialog.h"
#include "runtime/ov_log.h"
#include "text/error_reply.h"
#include "text/error_texts.h"
#include "text/text.h"
#include "threads/modal_scope.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::Gecko {

namespace {

// The one place for a rule against a further dialog: a second one is welcome, but each is inside
// the message loop of the one before.
bool isDialogOpen() {
  return ShownDialog::mostAreShown();
}

// The window that the dialogs of old systems belong to; null if the browser tells of none.
void* parentWindow(NPP npp) {
  void* window = nullptr;
  if (browserFuncs.getvalue == nullptr ||
      browserFuncs.getvalue(npp, NPNVnetscapeWindow, &window) != NPERR_NO_ERROR) {
    return nullptr;
  }
  return window;
}

// Stores the text of `show`, which shows a dialog to its end. What it throws is the log's alone;
// the page sees a cancel.
template <class Show>
bool answerNow(const char* failure, NPVariant* result, Show show) {
  const ModalScope scope;
  if (isDialogOpen()) {
    stringToVariant(nullptr, result);
    return true;
  }
  std::string text;
  try {
    text = show();
  } catch (const std::exception& exception) {
    ov_err("%s: %s", failure, exception.what());
  }
  stringToVariant(text, result);
  return true;
}

// Hands a dialog over to the message loop; the page's function hears of its outcome. The function
// is retained, by the callback, once there is a dialog to answer it.
template <class MakeDialog, class MakeCallback>
bool answerLater(const char* failure, NPVariant* result, OneShotManager* oneShotManager,
                 MakeDialog makeDialog, MakeCallback makeCallback) {
  if (isDialogOpen()) {
    stringToVariant(jsonErrorReply(kErrorDialogOpen), result);
    return true;
  }
  try {
    std::unique_ptr<NativeDialog> dialog = makeDialog();
    dialog->createDialogImpl();
    std::unique_ptr<Callback> callback = makeCallback();
    RunnableScheduler::scheduleRunnable(oneShotManager, std::move(dialog), std::move(callback));
    setNull(result);
  } catch (const std::exception& exception) {
    stringToVariant(exceptionJsonErrorReply(exception, failure), result);
  }
  return true;
}

}  // namespace

bool ovOrvaneWebPlugin::runOpenFileDialog(Arguments args, NPVariant* result) {
  return answerNow(kErrorOpenFileDialog, result, [&] {
    OpenFileDialog dialog(parentWindow(npp_), "", toBool(args[0]), toBool(args[1]), "", false);
    dialog.createDialogImpl();
    const std::vector<std::string>& chosen = dialog.show();
    addToApprovedFileList(chosen);
    return escapedPathList(chosen);
  });
}

bool ovOrvaneWebPlugin::runOpenFolderDialog(Arguments args, NPVariant* result) {
  return answerNow(kErrorOpenFolderDialog, result, [&] {
    OpenFolderDialog dialog(parentWindow(npp_), "", toBool(args[0]), false);
    dialog.createDialogImpl();
    const std::weak_ptr<bool> alive = lifeToken_;
    const std::vector<std::string>& chosen = dialog.show();
    // The dialog's message loop may have ended the instance.
    if (!chosen.empty() && !alive.expired()) core->setLastSelectedPath(chosen.front());
    return escapedPathList(chosen);
  });
}

bool ovOrvaneWebPlugin::runSaveFileDialog(Arguments args, NPVariant* result) {
  return answerNow(kErrorSaveFileDialog, result, [&] {
    SaveFileDialog dialog(parentWindow(npp_), "", countedTextOf(args[0]), "");
    dialog.createDialogImpl();
    const std::weak_ptr<bool> alive = lifeToken_;
    const std::vector<std::string>& chosen = dialog.show();
    if (chosen.empty()) return std::string();
    if (!alive.expired()) core->setLastSelectedPath(chosen.front());
    return chosen.front();
  });
}

bool ovOrvaneWebPlugin::runOpenFileDialogAsync(Arguments args, NPVariant* result) {
  const bool extendedInfo = args.size() > 4 && toBool(args[4]);
  return answerLater(
      kErrorOpenFileDialog, result, oneShotManager_.get(),
      [&] {
        return std::make_unique<OpenFileDialog>(parentWindow(npp_), countedTextOf(args[0]), false,
                                                toBool(args[1]), countedTextOf(args[2]),
                                                extendedInfo);
      },
      [&] {
        return std::make_unique<DialogCallback>(npp_, lifeToken_, args[3].value.objectValue,
                                                DialogKind::kOpenFile);
      });
}

bool ovOrvaneWebPlugin::runOpenFolderDialogAsync(Arguments args, NPVariant* result) {
  const bool extendedInfo = args.size() > 3 && toBool(args[3]);
  return answerLater(
      kErrorOpenFolderDialog, result, oneShotManager_.get(),
      [&] {
        return std::make_unique<OpenFolderDialog>(parentWindow(npp_), countedTextOf(args[0]),
                                                  toBool(args[1]), extendedInfo);
      },
      [&] {
        return std::make_unique<DialogCallback>(npp_, lifeToken_, args[2].value.objectValue,
                                                DialogKind::kOpenFolder);
      });
}

bool ovOrvaneWebPlugin::runSaveFileDialogAsync(Arguments args, NPVariant* result) {
  return answerLater(
      kErrorSaveFileDialog, result, oneShotManager_.get(),
      [&] {
        return std::make_unique<SaveFileDialog>(parentWindow(npp_), countedTextOf(args[0]),
                                                countedTextOf(args[1]), countedTextOf(args[2]));
      },
      [&] {
        return std::make_unique<DialogCallback>(npp_, lifeToken_, args[3].value.objectValue,
                                                DialogKind::kSaveFile);
      });
}

}  // namespace Vantrel::Web::Gecko
