// A group of interfaces of the control, with what belongs to them. Each is a member of the control
// and shares its count and its look-up of interfaces; the apartment's thread only, but for the
// count.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <utility>

#include "browsers/activex/com_base_win.h"
#include "dialogs/dialog_com_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

class OleControl;

// Whose count and look-up the control's interfaces share.
IUnknown& unknownOf(OleControl& control);

template <class... Interfaces>
class Part : public ComBase<Interfaces...> {
 public:
  explicit Part(OleControl& control) : control_(control) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    return unknownOf(control_).QueryInterface(id, object);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return unknownOf(control_).AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return unknownOf(control_).Release(); }

 protected:
  OleControl& control() const { return control_; }

  // Runs what an interface's function does. The control outlives it, whatever a page, a container
  // or a window does meanwhile; what it throws becomes `otherwise`.
  template <class Function>
  HRESULT entered(HRESULT otherwise, Function&& function) const {
    const ComPointer<IUnknown> hold(&unknownOf(control_));
    return guarded<HRESULT>(otherwise, std::forward<Function>(function));
  }

 private:
  OleControl& control_;
};

}  // namespace Vantrel::Web::ActiveX
