// The interfaces through which a container holds and shows the control: its site, its windows, its
// connection points, what it says of itself.
#include <gmock/gmock.h>

#include <objsafe.h>
#include <ocidl.h>
#include <olectl.h>

#include <functional>
#include <utility>

#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

class ContainerInterfacesTest : public ControlTest {
 protected:
  static HWND windowOf(Control& control) {
    ComPointer<IOleWindow> window;
    HWND handle = nullptr;
    if (SUCCEEDED(control.query(window))) window->GetWindow(&handle);
    return handle;
  }
};

TEST_F(ContainerInterfacesTest, AllInterfacesAreOfOneObject) {
  const auto control = makeControl();
  const IID ids[] = {IID_IDispatch,
                     kDispatchInterfaceId,
                     IID_IOleObject,
                     IID_IOleControl,
                     IID_IOleWindow,
                     IID_IOleInPlaceObject,
                     IID_IOleInPlaceObjectWindowless,
                     IID_IOleInPlaceActiveObject,
                     IID_IViewObject,
                     IID_IViewObject2,
                     IID_IViewObjectEx,
                     IID_IPersist,
                     IID_IPersistPropertyBag,
                     IID_IPersistStreamInit,
                     IID_IPersistStorage,
                     IID_IProvideClassInfo,
                     IID_IProvideClassInfo2,
                     IID_IConnectionPointContainer,
                     IID_ISpecifyPropertyPages,
                     IID_IObjectSafety};
  for (const IID& id : ids) {
    ComPointer<IUnknown> part;
    ASSERT_EQ(control->unknown()->QueryInterface(id, part.putVoid()), S_OK);
    ComPointer<IUnknown> whole;
    ASSERT_EQ(part->QueryInterface(IID_IUnknown, whole.putVoid()), S_OK);
    EXPECT_EQ(whole.get(), control->unknown());
  }
  ComPointer<IUnknown> none;
  EXPECT_EQ(control->unknown()->QueryInterface(IID_IDropTarget, none.putVoid()), E_NOINTERFACE);
  EXPECT_EQ(control->unknown()->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
}

TEST_F(ContainerInterfacesTest, APartOfAnAggregateShowsTheWhole) {
  // The page's function plays the aggregate: the control's interfaces answer as it does.
  auto& whole = makeFunction("aggregate");
  ComPointer<IUnknown> inner;
  ASSERT_EQ(library().create(kControlClassId, &whole, IID_IUnknown, inner.putVoid()), S_OK);
  ComPointer<IOleObject> object;
  ASSERT_EQ(inner->QueryInterface(IID_IOleObject, object.putVoid()), S_OK);
  EXPECT_EQ(whole.references(), 1);
  ComPointer<IUnknown> seen;
  ASSERT_EQ(object->QueryInterface(IID_IUnknown, seen.putVoid()), S_OK);
  EXPECT_NE(seen.get(), inner.get());
}

TEST_F(ContainerInterfacesTest, AWindowIsMadeWhereTheSiteWants) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  EXPECT_EQ(windowOf(*control), nullptr);
  ASSERT_EQ(control->activate(), S_OK);
  const HWND window = windowOf(*control);
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(GetParent(window), container().window());
  RECT place = {};
  GetWindowRect(window, &place);
  MapWindowPoints(nullptr, container().window(), reinterpret_cast<POINT*>(&place), 2);
  EXPECT_NE(EqualRect(&place, &start.site.place), FALSE);
  EXPECT_TRUE(control->site().inPlaceActive);
  EXPECT_FALSE(control->site().windowlessActive);
  EXPECT_EQ(control->site().shows, 1);
  // Without a picture what lies behind shows through.
  EXPECT_NE(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TRANSPARENT, 0);
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::OnCreate()"));
  // The system knows it as a target of drags.
  EXPECT_EQ(RevokeDragDrop(window), S_OK);
  EXPECT_EQ(control->deactivate(), S_OK);
  EXPECT_EQ(IsWindow(window), FALSE);
  EXPECT_FALSE(control->site().inPlaceActive);
}

TEST_F(ContainerInterfacesTest, TheWindowPaintsThroughTheControl) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  control->activate();
  SendMessageW(windowOf(*control), WM_PAINT, 0, 0);
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::OnDraw()"));
}

TEST_F(ContainerInterfacesTest, TheWindowFollowsItsPlace) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  control->activate();
  ComPointer<IOleInPlaceObject> inPlace;
  ASSERT_EQ(control->query(inPlace), S_OK);
  const RECT place = {5, 6, 45, 36};
  const RECT clip = {5, 6, 25, 36};
  EXPECT_EQ(inPlace->SetObjectRects(&place, &clip), S_OK);
  const HWND window = windowOf(*control);
  RECT client = {};
  GetClientRect(window, &client);
  EXPECT_EQ(client.right, 40);
  EXPECT_EQ(client.bottom, 30);
  RECT seen = {};
  EXPECT_EQ(GetWindowRgnBox(window, &seen), SIMPLEREGION);
  EXPECT_EQ(seen.right, 20);
  inPlace->SetObjectRects(&place, &place);
  EXPECT_EQ(GetWindowRgnBox(window, &seen), ERROR);
  EXPECT_EQ(inPlace->SetObjectRects(nullptr, nullptr), E_INVALIDARG);
}

TEST_F(ContainerInterfacesTest, WithoutAWindowWhereTheSiteCan) {
  const auto control = makeControl();
  ASSERT_EQ(control->activate(), S_OK);
  EXPECT_TRUE(control->site().windowlessActive);
  EXPECT_EQ(windowOf(*control), nullptr);
  ComPointer<IOleInPlaceObjectWindowless> windowless;
  ASSERT_EQ(control->query(windowless), S_OK);
  ComPointer<IDropTarget> target;
  EXPECT_EQ(windowless->GetDropTarget(target.put()), S_OK);
  EXPECT_TRUE(target);
  LRESULT answer = 1;
  EXPECT_EQ(windowless->OnWindowMessage(WM_MOUSEMOVE, 0, 0, &answer), S_FALSE);
}

TEST_F(ContainerInterfacesTest, ADropTargetMayOutliveItsControl) {
  ComPointer<IDropTarget> target;
  {
    const auto control = makeControl();
    ComPointer<IOleInPlaceObjectWindowless> windowless;
    ASSERT_EQ(control->query(windowless), S_OK);
    windowless->GetDropTarget(target.put());
  }
  EXPECT_EQ(target->DragLeave(), S_OK);
}

TEST_F(ContainerInterfacesTest, ASiteThatRefusesLeavesItPassive) {
  ControlStart start;
  start.site.inPlace = false;
  const auto control = makeControl(start);
  EXPECT_NE(control->activate(), S_OK);
  start.giveSite = false;
  const auto second = makeControl(start);
  EXPECT_EQ(second->activate(), E_UNEXPECTED);
}

// A site that takes the activation back at a step of it.
class RestlessSite : public Container::Site {
 public:
  using Site::Site;

  std::function<void()> onActivate;
  std::function<void()> onContext;
  std::function<void()> onUi;

  STDMETHODIMP OnInPlaceActivateEx(BOOL* noRedraw, DWORD flags) override {
    const HRESULT result = Site::OnInPlaceActivateEx(noRedraw, flags);
    if (onActivate) onActivate();
    return result;
  }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                LPRECT place, LPRECT clip, LPOLEINPLACEFRAMEINFO info) override {
    const HRESULT result = Site::GetWindowContext(frame, document, place, clip, info);
    if (onContext) onContext();
    return result;
  }
  STDMETHODIMP OnUIActivate() override {
    const HRESULT result = Site::OnUIActivate();
    if (onUi) onUi();
    return result;
  }
};

TEST_F(ContainerInterfacesTest, ASiteMayTakeTheActivationBackAtEachStep) {
  for (const bool windowless : {true, false}) {
    const auto control = makeControl();
    auto& site = container().book.make<RestlessSite>(
        "restless", container().window(), Container::SiteSettings{.windowless = windowless});
    ComPointer<IOleObject> object;
    ASSERT_EQ(control->query(object), S_OK);
    object->SetClientSite(&site);
    const auto activate = [&] {
      return object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &site, 0, container().window(), nullptr);
    };
    site.onActivate = [&] { control->deactivate(); };
    EXPECT_EQ(activate(), E_ABORT);
    EXPECT_FALSE(site.inPlaceActive);
    site.onContext = std::exchange(site.onActivate, nullptr);
    EXPECT_EQ(activate(), E_ABORT);
    EXPECT_FALSE(site.inPlaceActive);
    site.onUi = std::exchange(site.onContext, nullptr);
    EXPECT_EQ(activate(), S_OK);
    EXPECT_FALSE(site.inPlaceActive);
    EXPECT_FALSE(site.uiActive);
    site.onUi = nullptr;
    EXPECT_EQ(activate(), S_OK);
    EXPECT_TRUE(site.uiActive);
  }
}

TEST_F(ContainerInterfacesTest, TheWindowsClassGoesWithTheLastWindow) {
  ControlStart start;
  start.site.windowless = false;
  const auto isKnown = [this] {
    WNDCLASSEXW found = {};
    found.cbSize = sizeof found;
    return GetClassInfoExW(library().module(), L"OrvaneWebControl", &found) != FALSE;
  };
  const auto first = makeControl(start);
  const auto second = makeControl(start);
  first->activate();
  second->activate();
  DestroyWindow(windowOf(*first));
  first->deactivate();
  EXPECT_TRUE(isKnown());
  second->deactivate();
  EXPECT_FALSE(isKnown());
}

TEST_F(ContainerInterfacesTest, TheUserMayHaveTheKeyboardInIt) {
  const auto control = makeControl();
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  const RECT place = {0, 0, 10, 10};
  EXPECT_EQ(object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &control->site(), 0, container().window(),
                           &place),
            S_OK);
  EXPECT_TRUE(control->site().uiActive);
  EXPECT_EQ(object->DoVerb(OLEIVERB_HIDE, nullptr, &control->site(), 0, nullptr, nullptr), S_OK);
  EXPECT_FALSE(control->site().uiActive);
  EXPECT_TRUE(control->site().inPlaceActive);
  EXPECT_EQ(object->DoVerb(7, nullptr, nullptr, 0, nullptr, nullptr), OLEOBJ_S_INVALIDVERB);
  EXPECT_EQ(object->DoVerb(OLEIVERB_OPEN, nullptr, nullptr, 0, nullptr, nullptr), E_NOTIMPL);
}

TEST_F(ContainerInterfacesTest, AControlMayGoWhileItIsShown) {
  ControlStart start;
  start.site.windowless = false;
  auto control = makeControl(start);
  control->activate();
  const HWND window = windowOf(*control);
  control->release();
  EXPECT_EQ(IsWindow(window), FALSE);
}

TEST_F(ContainerInterfacesTest, AWindowMayGoWithTheContainersOne) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  control->activate();
  DestroyWindow(windowOf(*control));
  EXPECT_EQ(windowOf(*control), nullptr);
  EXPECT_EQ(control->deactivate(), S_OK);
}

TEST_F(ContainerInterfacesTest, ClosingSavesWhatHasChanged) {
  const auto control = makeControl();
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  object->Close(OLECLOSE_SAVEIFDIRTY);
  EXPECT_EQ(control->site().saves, 0);
  control->set("name", text("x"));
  object->Close(OLECLOSE_NOSAVE);
  EXPECT_EQ(control->site().saves, 0);
  object->Close(OLECLOSE_SAVEIFDIRTY);
  EXPECT_EQ(control->site().saves, 1);
}

TEST_F(ContainerInterfacesTest, WhatItSaysOfItself) {
  const auto control = makeControl();
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  DWORD status = 0;
  EXPECT_EQ(object->GetMiscStatus(DVASPECT_CONTENT, &status), S_OK);
  EXPECT_EQ(status, 131473U);
  EXPECT_EQ(object->GetMiscStatus(DVASPECT_ICON, &status), DV_E_DVASPECT);
  LPOLESTR name = nullptr;
  EXPECT_EQ(object->GetUserType(USERCLASSTYPE_FULL, &name), S_OK);
  EXPECT_STREQ(name, L"Orvane Web");
  CoTaskMemFree(name);
  CLSID id = {};
  EXPECT_EQ(object->GetUserClassID(&id), S_OK);
  EXPECT_EQ(id, kControlClassId);
  SIZEL size = {-1, 5};
  EXPECT_EQ(object->SetExtent(DVASPECT_CONTENT, &size), E_FAIL);
  ComPointer<IOleClientSite> site;
  EXPECT_EQ(object->GetClientSite(site.put()), S_OK);
  EXPECT_EQ(site.get(), &control->site());
}

TEST_F(ContainerInterfacesTest, ItsPropertiesAreWhatAUserMayAskFor) {
  const auto control = makeControl();
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  ComPointer<IEnumOLEVERB> verbs;
  ASSERT_EQ(object->EnumVerbs(verbs.put()), S_OK);
  ComPointer<IEnumOLEVERB> copy;
  ASSERT_EQ(verbs->Clone(copy.put()), S_OK);
  for (IEnumOLEVERB* const list : {verbs.get(), copy.get()}) {
    OLEVERB verb = {};
    ASSERT_EQ(list->Next(1, &verb, nullptr), S_OK);
    EXPECT_EQ(verb.lVerb, OLEIVERB_PROPERTIES);
    EXPECT_STREQ(verb.lpszVerbName, L"&Properties");
    CoTaskMemFree(verb.lpszVerbName);
    EXPECT_EQ(list->Next(1, &verb, nullptr), S_FALSE);
    EXPECT_EQ(list->Reset(), S_OK);
    EXPECT_EQ(list->Skip(1), S_OK);
  }
}

TEST_F(ContainerInterfacesTest, ItsClassNamesItsEvents) {
  const auto control = makeControl();
  ComPointer<IProvideClassInfo2> provider;
  ASSERT_EQ(control->query(provider), S_OK);
  GUID id = {};
  EXPECT_EQ(provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &id), S_OK);
  EXPECT_EQ(id, kEventInterfaceId);
  EXPECT_EQ(provider->GetGUID(0, &id), E_INVALIDARG);
  ComPointer<ITypeInfo> info;
  ASSERT_EQ(provider->GetClassInfo(info.put()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
  EXPECT_EQ(attributes->guid, kControlClassId);
  info->ReleaseTypeAttr(attributes);
}

TEST_F(ContainerInterfacesTest, ItHasOnePageAndIsSafe) {
  const auto control = makeControl();
  ComPointer<ISpecifyPropertyPages> pages;
  ASSERT_EQ(control->query(pages), S_OK);
  CAUUID list = {};
  ASSERT_EQ(pages->GetPages(&list), S_OK);
  ASSERT_EQ(list.cElems, 1U);
  EXPECT_EQ(list.pElems[0], kPropertyPageClassId);
  CoTaskMemFree(list.pElems);
  ComPointer<IObjectSafety> safety;
  ASSERT_EQ(control->unknown()->QueryInterface(IID_IObjectSafety, safety.putVoid()), S_OK);
  DWORD supported = 0;
  DWORD enabled = 0;
  EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
  EXPECT_EQ(enabled, DWORD{INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA});
  EXPECT_EQ(safety->SetInterfaceSafetyOptions(IID_IDispatch, enabled, enabled), S_OK);
  EXPECT_EQ(safety->SetInterfaceSafetyOptions(IID_IDispatch, 0x8000, 0x8000), E_FAIL);
}

TEST_F(ContainerInterfacesTest, ConnectionsAreCountedAndListed) {
  const auto control = makeControl();
  auto& first = container().book.make<EventSink>("first", kEventInterfaceId);
  auto& second = container().book.make<EventSink>("second", IID_IDispatch);
  DWORD one = 0;
  DWORD two = 0;
  EXPECT_EQ(control->connect(first, kEventInterfaceId, one), S_OK);
  EXPECT_EQ(control->connect(second, kEventInterfaceId, two), S_OK);
  EXPECT_NE(one, two);
  ComPointer<IConnectionPointContainer> points;
  ASSERT_EQ(control->query(points), S_OK);
  ComPointer<IEnumConnectionPoints> list;
  ASSERT_EQ(points->EnumConnectionPoints(list.put()), S_OK);
  ComPointer<IConnectionPoint> point;
  ULONG count = 0;
  ASSERT_EQ(list->Next(1, point.put(), &count), S_OK);
  EXPECT_EQ(list->Skip(1), S_FALSE);
  IID id = {};
  EXPECT_EQ(point->GetConnectionInterface(&id), S_OK);
  EXPECT_EQ(id, kEventInterfaceId);
  ComPointer<IEnumConnections> connections;
  ASSERT_EQ(point->EnumConnections(connections.put()), S_OK);
  CONNECTDATA data[3] = {};
  EXPECT_EQ(connections->Next(3, data, &count), S_FALSE);
  ASSERT_EQ(count, 2U);
  EXPECT_EQ(data[1].dwCookie, two);
  for (ULONG i = 0; i < count; ++i) data[i].pUnk->Release();
  EXPECT_EQ(control->disconnect(kEventInterfaceId, one), S_OK);
  EXPECT_EQ(control->disconnect(kEventInterfaceId, one), CONNECT_E_NOCONNECTION);
  connections.reset();
  EXPECT_EQ(first.references(), 0);
  EXPECT_EQ(points->FindConnectionPoint(IID_IDispatch, point.put()), CONNECT_E_NOCONNECTION);
}

TEST_F(ContainerInterfacesTest, ASinkWithoutTheInterfaceIsRefused) {
  const auto control = makeControl();
  ComPointer<IConnectionPointContainer> points;
  ASSERT_EQ(control->query(points), S_OK);
  ComPointer<IConnectionPoint> point;
  ASSERT_EQ(points->FindConnectionPoint(kEventInterfaceId, point.put()), S_OK);
  DWORD number = 0;
  EXPECT_EQ(point->Advise(static_cast<IOleContainer*>(&control->site().document()), &number),
            CONNECT_E_CANNOTCONNECT);
  EXPECT_EQ(point->Advise(nullptr, &number), E_POINTER);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
