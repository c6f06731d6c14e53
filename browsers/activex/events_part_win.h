// The control's events for those who connect to them: containers and scripts that name them.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include <string>
#include <vector>

#include "browsers/activex/part_win.h"
#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web::ActiveX {

// A sink and the number by which its connection is known.
struct Connection {
  ComPointer<IDispatch> sink;
  DWORD number;
};

// The one point to connect to. It has a look-up of its own, but lives as long as the control.
class ConnectionPoint final : public ComBase<IConnectionPoint> {
 public:
  explicit ConnectionPoint(OleControl& control) : control_(control) {}

  // All that are connected, the ones held that are to be called.
  const std::vector<Connection>& connections() const { return connections_; }
  bool isConnected(DWORD number) const;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return unknownOf(control_).AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return unknownOf(control_).Release(); }
  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* id) override;
  HRESULT STDMETHODCALLTYPE
  GetConnectionPointContainer(IConnectionPointContainer** container) override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* number) override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD number) override;
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

 private:
  OleControl& control_;
  std::vector<Connection> connections_;
  DWORD lastNumber_ = 0;
};

class EventsPart final : public Part<IConnectionPointContainer> {
 public:
  explicit EventsPart(OleControl& control) : Part(control), point_(control) {}

  // Calls all sinks with one text. One that is disconnected meanwhile is left out, one that fails
  // is logged.
  void fire(DISPID event, const std::string& text);

  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID id, IConnectionPoint** point) override;

 private:
  ConnectionPoint point_;
};

}  // namespace Vantrel::Web::ActiveX
