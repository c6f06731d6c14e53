// Script methods: native file dialogs. The dialogs themselves are not there yet: a call that passes
// its checks ends as if the user had chosen nothing.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"
#include "runtime/ov_log.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web::Gecko {

namespace {

// The one place for a rule against a second dialog. There is none on this platform.
bool isDialogOpen() {
  return false;
}

// The asynchronous forms log what the synchronous ones refuse in silence.
bool refuse(const char* method) {
  ov_err("%s() - invalid arguments", method);
  return false;
}

bool refuseSecondDialog(NPVariant* result) {
  stringToVariant(jsonErrorReply(kErrorDialogOpen), result);
  return true;
}

bool nothingChosen(NPVariant* result) {
  stringToVariant("", result);
  return true;
}

}  // namespace

bool ovOrvaneWebPlugin::runOpenFileDialog(const NPVariant* args, uint32_t argCount,
                                          NPVariant* result) {
  if (isDialogOpen()) {
    stringToVariant(nullptr, result);
    return true;
  }
  if (!argumentsAre({Argument::kBoolean, Argument::kBoolean}, args, argCount)) return false;
  return nothingChosen(result);
}

bool ovOrvaneWebPlugin::runOpenFolderDialog(const NPVariant* args, uint32_t argCount,
                                            NPVariant* result) {
  if (isDialogOpen()) {
    stringToVariant(nullptr, result);
    return true;
  }
  if (!argumentsAre({Argument::kBoolean}, args, argCount)) return false;
  return nothingChosen(result);
}

bool ovOrvaneWebPlugin::runSaveFileDialog(const NPVariant* args, uint32_t argCount,
                                          NPVariant* result) {
  if (isDialogOpen()) {
    stringToVariant(nullptr, result);
    return true;
  }
  if (!argumentsAre({Argument::kText}, args, argCount)) return false;
  return nothingChosen(result);
}

bool ovOrvaneWebPlugin::runOpenFileDialogAsync(const NPVariant* args, uint32_t argCount,
                                               NPVariant* result) {
  if (isDialogOpen()) return refuseSecondDialog(result);
  using enum Argument;
  if (!argumentsAre({kText, kBoolean, kText, kObject}, args, argCount) &&
      !argumentsAre({kText, kBoolean, kText, kObject, kBoolean}, args, argCount)) {
    return refuse("runOpenFileDialogAsync");
  }
  setNull(result);
  return true;
}

bool ovOrvaneWebPlugin::runOpenFolderDialogAsync(const NPVariant* args, uint32_t argCount,
                                                 NPVariant* result) {
  if (isDialogOpen()) return refuseSecondDialog(result);
  using enum Argument;
  if (!argumentsAre({kText, kBoolean, kObject}, args, argCount) &&
      !argumentsAre({kText, kBoolean, kObject, kBoolean}, args, argCount)) {
    return refuse("runOpenFolderDialogAsync");
  }
  setNull(result);
  return true;
}

bool ovOrvaneWebPlugin::runSaveFileDialogAsync(const NPVariant* args, uint32_t argCount,
                                               NPVariant* result) {
  if (isDialogOpen()) return refuseSecondDialog(result);
  using enum Argument;
  if (!argumentsAre({kText, kText, kText, kObject}, args, argCount)) {
    return refuse("runSaveFileDialogAsync");
  }
  setNull(result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
