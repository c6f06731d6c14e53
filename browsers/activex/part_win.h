// A group of interfaces of the control, with what belongs to them. Each is a member of the control
// and shares its count and its look-up of interfaces; the apartment's thread only, but for the
// count.
#pragma once

#include <windows.h>
#include <ole2.h>

#include "browsers/activex/com_base_win.h"

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

 private:
  OleControl& control_;
};

}  // namespace Vantrel::Web::ActiveX
