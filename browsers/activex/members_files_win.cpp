// Script methods: the reading of files that the user approved, and drops given by the page.

#include "browsers/activex/orvane_web_ctrl_win.h"
#include "core/file_reading.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::ActiveX {

namespace {

// The low 32 bits of a whole number; false for anything else, fractions included. A negative number
// is a large one, which no file reaches.
bool low32Of(const VARIANT& number, uint32_t* value) {
  switch (number.vt) {
    case VT_I1:
      *value = static_cast<uint32_t>(static_cast<int32_t>(static_cast<signed char>(number.cVal)));
      return true;
    case VT_I2:
      *value = static_cast<uint32_t>(static_cast<int32_t>(number.iVal));
      return true;
    case VT_UI1:
      *value = number.bVal;
      return true;
    case VT_UI2:
      *value = number.uiVal;
      return true;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
      *value = number.ulVal;
      return true;
    case VT_I8:
    case VT_UI8:
      *value = static_cast<uint32_t>(number.ullVal);
      return true;
    default:
      return false;
  }
}

}  // namespace

MethodText COrvaneWebCtrl::readAsArrayBuffer(const DispatchArguments& args) {
  return Vantrel::Web::readAsArrayBuffer(args.text(0));
}

MethodText COrvaneWebCtrl::readChunkAsArrayBuffer(const DispatchArguments& args) {
  uint32_t offset = 0;
  uint32_t chunkSize = 0;
  if (!low32Of(args.anything(1), &offset)) {
    ov_err("readChunkAsArrayBuffer() - offset value invalid");
    return {};
  }
  if (!low32Of(args.anything(2), &chunkSize)) {
    ov_err("readChunkAsArrayBuffer() - chunk size invalid");
    return {};
  }
  return Vantrel::Web::readChunkAsArrayBuffer(args.text(0), offset, chunkSize);
}

// Drops come by the control's own drop target; the method is there for pages that call it.
MethodText COrvaneWebCtrl::handleDrop(const DispatchArguments&) {
  return {};
}

}  // namespace Vantrel::Web::ActiveX
