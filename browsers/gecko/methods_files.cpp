// Script methods: the reading of files that the user approved. The reading itself is not there yet:
// a call that passes its checks gives an empty text.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"

namespace Vantrel::Web::Gecko {

bool ovOrvaneWebPlugin::readAsArrayBuffer(Arguments args, NPVariant* result) {
  if (countedTextOf(args[0]).empty()) return false;
  stringToVariant("", result);
  return true;
}

bool ovOrvaneWebPlugin::readChunkAsArrayBuffer(Arguments args, NPVariant* result) {
  if (countedTextOf(args[0]).empty()) return false;
  stringToVariant("", result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
