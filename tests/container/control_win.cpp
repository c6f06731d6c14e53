#include "tests/container/control_win.h"

#include <algorithm>
#include <stdexcept>

namespace Vantrel::Web::Container {

namespace {

constexpr LCID kLocale = 1033;

std::string takeText(BSTR text) {
  const std::string copy = utf8Of(text);
  SysFreeString(text);
  return copy;
}

IUnknown* makeControl(const CountingContainer& container, REFCLSID classId) {
  void* made = nullptr;
  const HRESULT result = container.library().create(classId, nullptr, IID_IUnknown, &made);
  if (FAILED(result) || made == nullptr) throw std::runtime_error("the control was not made");
  return static_cast<IUnknown*>(made);
}

}  // namespace

Control::Control(CountingContainer& container, REFCLSID classId, const ControlStart& start)
    : Control(container, makeControl(container, classId), start) {}

Control::Control(CountingContainer& container, IUnknown* made, const ControlStart& start)
    : container_(container),
      site_(container.book.make<Site>("site", container.window(), start.site)),
      bag_(container.book.make<PropertyBag>("property bag", start.parameters)),
      unknown_(made) {
  ++container.controls;
  site_.document().address = start.address;
  ComPointer<IOleObject> object;
  if (start.giveSite && SUCCEEDED(query(object))) object->SetClientSite(&site_);
  if (start.load) loaded_ = load();
}

Control::~Control() {
  if (unknown_ != nullptr) end();
}

HRESULT Control::load() {
  ComPointer<IPersistPropertyBag> persist;
  const HRESULT offered = query(persist);
  if (FAILED(offered)) return offered;
  return persist->Load(&bag_, nullptr);
}

DISPID Control::idOf(const std::string& name) {
  const auto known = ids_.find(name);
  if (known != ids_.end()) return known->second;
  ComPointer<IDispatch> dispatch;
  if (FAILED(query(dispatch))) return DISPID_UNKNOWN;
  std::wstring wide = wideOf(name);
  LPOLESTR text = wide.data();
  DISPID id = DISPID_UNKNOWN;
  dispatch->GetIDsOfNames(IID_NULL, &text, 1, kLocale, &id);
  if (id != DISPID_UNKNOWN) ids_[name] = id;
  return id;
}

CallResult Control::invoke(DISPID id, WORD flags, const Variants& arguments) {
  CallResult call;
  ComPointer<IDispatch> dispatch;
  call.result = query(dispatch);
  if (FAILED(call.result)) return call;
  std::vector<VARIANT> list;
  for (const Variant& argument : arguments) list.push_back(argument.get());
  std::reverse(list.begin(), list.end());
  DISPID put = DISPID_PROPERTYPUT;
  const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS parameters{list.data(), puts ? &put : nullptr, static_cast<UINT>(list.size()),
                        puts ? 1U : 0U};
  EXCEPINFO exception{};
  call.result = dispatch->Invoke(id, IID_NULL, kLocale, flags, &parameters,
                                 puts ? nullptr : call.value.put(), &exception, &call.wrong);
  if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
  call.error = takeText(exception.bstrDescription);
  call.code = exception.wCode;
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrHelpFile);
  return call;
}

CallResult Control::call(const std::string& name, const Variants& arguments) {
  return invoke(idOf(name), DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
}

CallResult Control::get(const std::string& name) {
  return invoke(idOf(name), DISPATCH_PROPERTYGET, {});
}

CallResult Control::set(const std::string& name, const Variant& value) {
  return invoke(idOf(name), DISPATCH_PROPERTYPUT, {value});
}

HRESULT Control::connect(EventSink& sink, REFIID events, DWORD& connection) {
  ComPointer<IConnectionPointContainer> points;
  HRESULT result = query(points);
  if (FAILED(result)) return result;
  ComPointer<IConnectionPoint> point;
  result = points->FindConnectionPoint(events, point.put());
  if (FAILED(result)) return result;
  return point->Advise(static_cast<IDispatch*>(&sink), &connection);
}

HRESULT Control::disconnect(REFIID events, DWORD connection) {
  ComPointer<IConnectionPointContainer> points;
  HRESULT result = query(points);
  if (FAILED(result)) return result;
  ComPointer<IConnectionPoint> point;
  result = points->FindConnectionPoint(events, point.put());
  if (FAILED(result)) return result;
  return point->Unadvise(connection);
}

HRESULT Control::activate() {
  ComPointer<IOleObject> object;
  const HRESULT offered = query(object);
  if (FAILED(offered)) return offered;
  const RECT place = {0, 0, 100, 50};
  return object->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &site_, 0, container_.window(), &place);
}

HRESULT Control::deactivate() {
  ComPointer<IOleInPlaceObject> object;
  const HRESULT offered = query(object);
  return FAILED(offered) ? offered : object->InPlaceDeactivate();
}

void Control::end(int others) {
  ComPointer<IOleObject> object;
  if (SUCCEEDED(query(object))) {
    object->Close(OLECLOSE_NOSAVE);
    object->SetClientSite(nullptr);
  }
  object.reset();
  release(others);
}

void Control::release(int others) {
  const ULONG left = std::exchange(unknown_, nullptr)->Release();
  --container_.controls;
  if (left == static_cast<ULONG>(others)) return;
  container_.faults.add("control: " + std::to_string(left) + " references were left, " +
                        std::to_string(others) + " are known");
}

}  // namespace Vantrel::Web::Container
