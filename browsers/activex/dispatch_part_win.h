// The control as scripts see it.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include "browsers/activex/dispatch_table_win.h"
#include "browsers/activex/part_win.h"

namespace Vantrel::Web::ActiveX {

class DispatchPart final : public Part<IDispatch> {
 public:
  explicit DispatchPart(COrvaneWebCtrl& control);

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* wrong) override;

 private:
  // What a call is given and gives.
  struct Call {
    LCID locale;
    WORD flags;
    const DISPPARAMS& params;
    VARIANT* result;       // null if the caller wants none
    EXCEPINFO* exception;  // null likewise
    UINT* wrong;           // null likewise
  };

  HRESULT callMember(DISPID member, const Call& call);
  HRESULT callMethod(const DispatchMethod& method, const Call& call);
  HRESULT runMethod(const DispatchMethod& method, const DispatchArguments& args, const Call& call);
  HRESULT useName(const Call& call);
  HRESULT useEventHandler(const Call& call);

  COrvaneWebCtrl& webControl_;
};

}  // namespace Vantrel::Web::ActiveX
