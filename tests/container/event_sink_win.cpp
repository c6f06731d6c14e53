#include "tests/container/event_sink_win.h"

namespace Vantrel::Web::Container {

STDMETHODIMP EventSink::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP EventSink::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP EventSink::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
  return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP EventSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                               EXCEPINFO*, UINT*) {
  note("Invoke");
  events.push_back({id, argumentsOf(*parameters)});
  const Event event = events.back();
  if (onEvent) onEvent(event);
  return answer;
}

void* EventSink::find(REFIID id) {
  if (id == interface_) return static_cast<IDispatch*>(this);
  return Counted::find(id);
}

}  // namespace Vantrel::Web::Container
