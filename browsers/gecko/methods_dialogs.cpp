// Script methods: native file dialogs. The dialogs themselves are not there yet: a call that passes
// its checks ends as if the user had chosen nothing.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web::Gecko {

namespace {

// The one place for a rule against a second dialog. There is none on this platform.
bool isDialogOpen() {
  return false;
}

bool nothingChosen(NPVariant* result) {
  stringToVariant(isDialogOpen() ? nullptr : "", result);
  return true;
}

bool answeredLater(NPVariant* result) {
  if (isDialogOpen()) {
    stringToVariant(jsonErrorReply(kErrorDialogOpen), result);
  } else {
    setNull(result);
  }
  return true;
}

}  // namespace

bool ovOrvaneWebPlugin::runOpenFileDialog(Arguments, NPVariant* result) {
  return nothingChosen(result);
}

bool ovOrvaneWebPlugin::runOpenFolderDialog(Arguments, NPVariant* result) {
  return nothingChosen(result);
}

bool ovOrvaneWebPlugin::runSaveFileDialog(Arguments, NPVariant* result) {
  return nothingChosen(result);
}

bool ovOrvaneWebPlugin::runOpenFileDialogAsync(Arguments, NPVariant* result) {
  return answeredLater(result);
}

bool ovOrvaneWebPlugin::runOpenFolderDialogAsync(Arguments, NPVariant* result) {
  return answeredLater(result);
}

bool ovOrvaneWebPlugin::runSaveFileDialogAsync(Arguments, NPVariant* result) {
  return answeredLater(result);
}

}  // namespace Vantrel::Web::Gecko
