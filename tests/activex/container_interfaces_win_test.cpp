// The interfaces through which a container holds the control: its connection points, what it says
// of itself.
#include <gmock/gmock.h>

#include <objsafe.h>
#include <ocidl.h>
#include <olectl.h>

#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

class ContainerInterfacesTest : public ControlTest {};

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
