// Script methods: the reading of files that the user approved. The reading itself is not there yet:
// a call that passes its checks gives an empty text.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

bool ovOrvaneWebPlugin::readAsArrayBuffer(const NPVariant* args, uint32_t argCount,
                                          NPVariant* result) {
  if (!argumentsAre({Argument::kText}, args, argCount)) {
    ov_err("readAsArrayBuffer() - invalid arguments");
    return false;
  }
  if (countedTextOf(args[0]).empty()) return false;
  stringToVariant("", result);
  return true;
}

bool ovOrvaneWebPlugin::readChunkAsArrayBuffer(const NPVariant* args, uint32_t argCount,
                                               NPVariant* result) {
  if (argCount != 3 || !argumentsBegin({Argument::kText}, args, argCount)) {
    ov_err("readChunkAsArrayBuffer() - invalid arguments");
    return false;
  }
  if (!isNumber(args[1])) {
    ov_err("readChunkAsArrayBuffer() - offset value invalid");
    return false;
  }
  if (!isNumber(args[2])) {
    ov_err("readChunkAsArrayBuffer() - chunk size invalid");
    return false;
  }
  if (countedTextOf(args[0]).empty()) return false;
  stringToVariant("", result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
