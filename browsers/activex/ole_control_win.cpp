#include "browsers/activex/ole_control_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

// Of the properties that are stored.
constexpr int32_t kPropertiesVersion = 0x00010000;

// The part as `Interface`, if that is one of the ids for which it stands.
template <class Interface, class... Known, class Offering>
void* offer(REFIID id, Offering& part) {
  const bool known = ((id == __uuidof(Interface)) || ... || (id == __uuidof(Known)));
  return known ? static_cast<Interface*>(&part) : nullptr;
}

// What an object refers to may come back to it while it goes: the count is far from 0 then.
constexpr int32_t kGoing = 1 << 30;

}  // namespace

IUnknown& unknownOf(OleControl& control) {
  return control.outer();
}

OleControl::OleControl(IUnknown* outer)
    : inner_(*this),
      outer_(outer != nullptr ? outer : &inner_),
      object_(*this),
      inPlace_(*this),
      persistence_(*this),
      events_(*this),
      class_(*this),
      view_(*this) {}

OleControl::~OleControl() = default;

void OleControl::doPropExchange(PropertyExchange& exchange) {
  int32_t version = kPropertiesVersion;
  int32_t width = extent_.cx;
  int32_t height = extent_.cy;
  exchange.number(L"_Version", version);
  exchange.number(L"_ExtentX", width);
  exchange.number(L"_ExtentY", height);
  if (width >= 0 && height >= 0) setExtent({width, height});
}

const RECT* OleControl::windowlessPlace() const {
  return inPlace_.isWindowless() ? &inPlace_.place() : nullptr;
}

void OleControl::viewChanged() {
  inPlace_.invalidate();
  view_.sendViewChange();
}

void OleControl::onResetState() {
  ResetExchange exchange;
  doPropExchange(exchange);
}

void* OleControl::find(REFIID id) {
  void* found = offer<IOleObject>(id, object_);
  if (found == nullptr) found = offer<IOleControl>(id, object_);
  if (found == nullptr) {
    found = offer<IOleInPlaceObjectWindowless, IOleInPlaceObject, IOleWindow>(id, inPlace_);
  }
  if (found == nullptr) found = offer<IOleInPlaceActiveObject>(id, inPlace_);
  if (found == nullptr) found = offer<IPersistPropertyBag>(id, persistence_);
  if (found == nullptr) found = offer<IPersistStreamInit, IPersist>(id, persistence_);
  if (found == nullptr) found = offer<IPersistStorage>(id, persistence_);
  if (found == nullptr) found = offer<IConnectionPointContainer>(id, events_);
  if (found == nullptr) found = offer<IProvideClassInfo2, IProvideClassInfo>(id, class_);
  if (found == nullptr) found = offer<ISpecifyPropertyPages>(id, class_);
  // The platform's headers do not tie this one's id to its name.
  if (id == IID_IObjectSafety) found = static_cast<IObjectSafety*>(&class_);
  if (found == nullptr) found = offer<IViewObjectEx, IViewObject2, IViewObject>(id, view_);
  return found != nullptr ? found : findInterface(id);
}

HRESULT STDMETHODCALLTYPE OleControl::Inner::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = id == IID_IUnknown ? static_cast<IUnknown*>(this) : control_.find(id);
  if (*object == nullptr) return E_NOINTERFACE;
  static_cast<IUnknown*>(*object)->AddRef();
  return S_OK;
}

ULONG STDMETHODCALLTYPE OleControl::Inner::AddRef() {
  return static_cast<ULONG>(++references_);
}

ULONG STDMETHODCALLTYPE OleControl::Inner::Release() {
  const int32_t left = --references_;
  if (left != 0) return static_cast<ULONG>(left);
  references_ = kGoing;
  delete &control_;
  return 0;
}

}  // namespace Vantrel::Web::ActiveX
