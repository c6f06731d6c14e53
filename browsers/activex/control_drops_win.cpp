// Drags over the control: what may be dropped, and what comes of a drop.

#include "browsers/activex/orvane_web_ctrl_win.h"

namespace Vantrel::Web::ActiveX {

HRESULT COrvaneWebCtrl::dragEnter(IDataObject*) {
  return E_INVALIDARG;
}

HRESULT COrvaneWebCtrl::drop(IDataObject*, const DWORD*) {
  return S_OK;
}

}  // namespace Vantrel::Web::ActiveX
