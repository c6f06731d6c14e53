// What a container connects to a control's events: it notes each event with its arguments. A test
// makes it fail, or do something to the control, inside an event.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/container/reference_book_win.h"
#include "tests/container/variant_win.h"

namespace Vantrel::Web::Container {

struct Event {
  DISPID id;
  Variants arguments;
};

class EventSink : public Counted<IDispatch> {
 public:
  // `id` is the interface under which the control asks for it.
  EventSink(ReferenceBook& book, std::string label, REFIID id)
      : Counted(book, std::move(label)), interface_(id) {}

  std::vector<Event> events;
  // Runs inside an event, after it was noted.
  std::function<void(const Event&)> onEvent;
  // What an event ends with.
  HRESULT answer = S_OK;

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID interfaceId, LCID locale, WORD flags,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT* wrong) override;

 protected:
  void* find(REFIID id) override;

 private:
  const IID interface_;
};

}  // namespace Vantrel::Web::Container
