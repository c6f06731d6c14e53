#include "browsers/activex/events_part_win.h"

#include <olectl.h>

#include <algorithm>

#include "browsers/activex/enumerators_win.h"
#include "browsers/activex/identifiers.h"
#include "browsers/activex/ole_control_win.h"
#include "browsers/activex/variant_win.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::ActiveX {

namespace {

// A reference that may be copied.
template <class Interface>
class Shared {
 public:
  explicit Shared(Interface* pointer) : pointer_(pointer) {}
  Shared(const Shared& other) : pointer_(other.pointer_.get()) {}
  Shared& operator=(const Shared&) = delete;
  Interface* get() const { return pointer_.get(); }

  void give(Interface** pointer) const {
    *pointer = pointer_.get();
    (*pointer)->AddRef();
  }

 private:
  ComPointer<Interface> pointer_;
};

struct SharedConnection {
  Shared<IDispatch> sink;
  DWORD number;

  void give(CONNECTDATA* connection) const {
    connection->pUnk = sink.get();
    connection->pUnk->AddRef();
    connection->dwCookie = number;
  }
};

using PointList = Enumerator<IEnumConnectionPoints, IConnectionPoint*, Shared<IConnectionPoint>>;
using ConnectionList = Enumerator<IEnumConnections, CONNECTDATA, SharedConnection>;

std::vector<SharedConnection> copyOf(const std::vector<Connection>& connections) {
  std::vector<SharedConnection> copies;
  copies.reserve(connections.size());
  for (const Connection& connection : connections) {
    copies.push_back({Shared<IDispatch>(connection.sink.get()), connection.number});
  }
  return copies;
}

}  // namespace

HRESULT STDMETHODCALLTYPE ConnectionPoint::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (id != IID_IUnknown && id != IID_IConnectionPoint) return E_NOINTERFACE;
  *object = static_cast<IConnectionPoint*>(this);
  AddRef();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ConnectionPoint::GetConnectionInterface(IID* id) {
  if (id == nullptr) return E_POINTER;
  *id = kEventInterfaceId;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE
ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  return unknownOf(control_).QueryInterface(IID_IConnectionPointContainer,
                                            reinterpret_cast<void**>(container));
}

HRESULT STDMETHODCALLTYPE ConnectionPoint::Advise(IUnknown* sink, DWORD* number) {
  if (sink == nullptr || number == nullptr) return E_POINTER;
  *number = 0;
  return guarded<HRESULT>(E_OUTOFMEMORY, [=, this]() -> HRESULT {
    Connection connection = {};
    // Some sinks know the interface's own name only, which has the same functions.
    if (FAILED(sink->QueryInterface(kEventInterfaceId, connection.sink.putVoid())) &&
        FAILED(sink->QueryInterface(IID_IDispatch, connection.sink.putVoid()))) {
      return CONNECT_E_CANNOTCONNECT;
    }
    connection.number = ++lastNumber_;
    *number = connection.number;
    connections_.push_back(std::move(connection));
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE ConnectionPoint::Unadvise(DWORD number) {
  const auto found = std::find_if(connections_.begin(), connections_.end(),
                                  [number](const Connection& c) { return c.number == number; });
  if (found == connections_.end()) return CONNECT_E_NOCONNECTION;
  // Out of the list before it hears of it.
  const Connection gone = std::move(*found);
  connections_.erase(found);
  return S_OK;
}

bool ConnectionPoint::isConnected(DWORD number) const {
  return std::any_of(connections_.begin(), connections_.end(),
                     [number](const Connection& c) { return c.number == number; });
}

HRESULT STDMETHODCALLTYPE ConnectionPoint::EnumConnections(IEnumConnections** connections) {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  return guarded<HRESULT>(E_OUTOFMEMORY, [=, this] {
    *connections = new ConnectionList(copyOf(connections_), 0);
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE EventsPart::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (points == nullptr) return E_POINTER;
  *points = nullptr;
  return entered(E_OUTOFMEMORY, [=, this] {
    std::vector<Shared<IConnectionPoint>> list;
    list.emplace_back(&point_);
    *points = new PointList(std::move(list), 0);
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE EventsPart::FindConnectionPoint(REFIID id, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  if (id != kEventInterfaceId) return CONNECT_E_NOCONNECTION;
  *point = &point_;
  point_.AddRef();
  return S_OK;
}

void EventsPart::fire(DISPID event, const std::string& text) {
  const ComPointer<IUnknown> hold(&unknownOf(control()));
  const Bstr argument = bstrOf(text);
  // A sink may connect others, or disconnect itself or others.
  for (const SharedConnection& connection : copyOf(point_.connections())) {
    if (!point_.isConnected(connection.number)) continue;
    VARIANT variant = {};
    variant.vt = VT_BSTR;
    variant.bstrVal = argument.get();
    DISPPARAMS params = {&variant, nullptr, 1, 0};
    const HRESULT result = connection.sink.get()->Invoke(
        event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
    // A sink need not know every event.
    if (FAILED(result) && result != DISP_E_MEMBERNOTFOUND) {
      ov_err("An event's receiver failed: %x", static_cast<unsigned>(result));
    }
  }
}

}  // namespace Vantrel::Web::ActiveX
