// A tiny control that misbehaves on request: each method commits one offence against its container,
// so that the tests of the counting container see that it is caught. Without such a call it is
// clean.
#include <windows.h>
#include <ocidl.h>
#include <oleidl.h>
#include <olectl.h>

#include <array>
#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <utility>

#include "tests/container/probe_control.h"

namespace {

using namespace Vantrel::Web::Container;

std::atomic<int> living = 0;

struct Call {
  const DISPPARAMS& parameters;
  VARIANT* result;
  EXCEPINFO* exception;
};

// The platform's interfaces have no virtual destructor; these delete themselves, or never go.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class Probe final : public IDispatch,
                    public IOleObject,
                    public IPersistPropertyBag,
                    public IConnectionPointContainer,
                    public IConnectionPoint {
 public:
  Probe() { ++living; }
  ~Probe() {
    --living;
    if (sink_ != nullptr) sink_->Release();
    if (function_ != nullptr) function_->Release();
    if (site_ != nullptr) site_->Release();
    SysFreeString(host_);
  }

  STDMETHODIMP QueryInterface(REFIID id, void** result) override {
    *result = nullptr;
    if (id == IID_IUnknown || id == IID_IDispatch) *result = static_cast<IDispatch*>(this);
    if (id == IID_IOleObject) *result = static_cast<IOleObject*>(this);
    if (id == IID_IPersist || id == IID_IPersistPropertyBag)
      *result = static_cast<IPersistPropertyBag*>(this);
    if (id == IID_IConnectionPointContainer)
      *result = static_cast<IConnectionPointContainer*>(this);
    if (*result == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    for (size_t i = 0; i < kMethods.size(); ++i) {
      if (std::wcscmp(names[0], kMethods.at(i).name) != 0) continue;
      *ids = static_cast<DISPID>(i + 1);
      return S_OK;
    }
    *ids = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* exception, UINT*) override {
    if (id < 1 || static_cast<size_t>(id) > kMethods.size()) return DISP_E_MEMBERNOTFOUND;
    const Call call{*parameters, result, exception};
    return (this->*kMethods.at(static_cast<size_t>(id - 1)).function)(call);
  }

  STDMETHODIMP SetClientSite(IOleClientSite* site) override {
    if (site != nullptr) site->AddRef();
    if (site_ != nullptr) site_->Release();
    site_ = site;
    return S_OK;
  }
  STDMETHODIMP Close(DWORD) override { return S_OK; }
  STDMETHODIMP GetClientSite(IOleClientSite**) override { return E_NOTIMPL; }
  STDMETHODIMP SetHostNames(LPCOLESTR, LPCOLESTR) override { return E_NOTIMPL; }
  STDMETHODIMP SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
  STDMETHODIMP DoVerb(LONG, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
  STDMETHODIMP Update() override { return E_NOTIMPL; }
  STDMETHODIMP IsUpToDate() override { return E_NOTIMPL; }
  STDMETHODIMP GetUserClassID(CLSID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
  STDMETHODIMP SetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
  STDMETHODIMP GetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
  STDMETHODIMP Advise(IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP EnumAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
  STDMETHODIMP GetMiscStatus(DWORD, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

  STDMETHODIMP GetClassID(CLSID* id) override { return *id = kProbeClassId, S_OK; }
  STDMETHODIMP InitNew() override { return S_OK; }
  STDMETHODIMP Load(IPropertyBag* bag, IErrorLog*) override {
    VARIANT value{};
    value.vt = VT_BSTR;
    if (SUCCEEDED(bag->Read(L"Greeting", &value, nullptr))) host_ = value.bstrVal;
    return S_OK;
  }
  STDMETHODIMP Save(IPropertyBag*, BOOL, BOOL) override { return E_NOTIMPL; }

  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
  STDMETHODIMP FindConnectionPoint(REFIID id, IConnectionPoint** point) override {
    *point = nullptr;
    if (id != kProbeEventsId) return CONNECT_E_NOCONNECTION;
    *point = this;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP GetConnectionInterface(IID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer**) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP Advise(IUnknown* sink, DWORD* connection) override {
    *connection = 1;
    return sink->QueryInterface(kProbeEventsId, reinterpret_cast<void**>(&sink_));
  }
  STDMETHODIMP Unadvise(DWORD) override {
    if (sink_ == nullptr) return CONNECT_E_NOCONNECTION;
    std::exchange(sink_, nullptr)->Release();
    return S_OK;
  }
  STDMETHODIMP EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

  // The offences, and some clean calls.
  HRESULT echo(const Call& call) {
    return call.parameters.cArgs == 0 ? DISP_E_BADPARAMCOUNT
                                      : VariantCopy(call.result, call.parameters.rgvarg);
  }
  HRESULT greeting(const Call& call) {
    call.result->vt = VT_BSTR;
    call.result->bstrVal = SysAllocString(host_);
    return S_OK;
  }
  HRESULT refuse(const Call& call) {
    call.exception->wCode = 16;
    call.exception->bstrDescription = SysAllocString(L"the probe refuses");
    return DISP_E_EXCEPTION;
  }
  HRESULT fire(const Call& call) {
    if (sink_ == nullptr) return S_OK;
    DISPPARAMS parameters = call.parameters;
    return sink_->Invoke(kProbeEvent, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                         nullptr);
  }
  HRESULT later(const Call& call) {
    function_ = call.parameters.rgvarg[0].pdispVal;
    function_->AddRef();
    return S_OK;
  }
  HRESULT leakSite(const Call&) { return site_->AddRef(), S_OK; }
  HRESULT overReleaseSite(const Call&) { return site_->Release(), S_OK; }
  HRESULT callOffThread(const Call&) {
    std::thread([this] {
      site_->AddRef();
      site_->Release();
    }).join();
    return S_OK;
  }
  HRESULT leakSelf(const Call&) { return AddRef(), S_OK; }
  HRESULT stayLocked(const Call&) { return ++living, S_OK; }
  HRESULT callStub(const Call&) {
    IOleContainer* container = nullptr;
    site_->GetContainer(&container);
    void* document = nullptr;
    container->QueryInterface(kDocument, &document);
    container->Release();
    auto* object = static_cast<IDispatch*>(document);
    UINT count = 0;
    object->GetTypeInfoCount(&count);
    object->Release();
    return S_OK;
  }

 private:
  static constexpr IID kDocument = {
      0x332C4425, 0x26CB, 0x11D0, {0xB4, 0x83, 0x00, 0xC0, 0x4F, 0xD9, 0x01, 0x19}};
  struct Method {
    const wchar_t* name;
    HRESULT (Probe::*function)(const Call&);
  };
  static const std::array<Method, 11> kMethods;

  std::atomic<ULONG> references_ = 0;
  IOleClientSite* site_ = nullptr;
  IDispatch* sink_ = nullptr;
  IDispatch* function_ = nullptr;
  BSTR host_ = nullptr;
};

const std::array<Probe::Method, 11> Probe::kMethods = {
    {{L"echo", &Probe::echo},
     {L"greeting", &Probe::greeting},
     {L"refuse", &Probe::refuse},
     {L"fire", &Probe::fire},
     {L"later", &Probe::later},
     {L"leakSite", &Probe::leakSite},
     {L"overReleaseSite", &Probe::overReleaseSite},
     {L"callOffThread", &Probe::callOffThread},
     {L"leakSelf", &Probe::leakSelf},
     {L"stayLocked", &Probe::stayLocked},
     {L"callStub", &Probe::callStub}}};

class Factory final : public IClassFactory {
 public:
  STDMETHODIMP QueryInterface(REFIID id, void** result) override {
    *result = id == IID_IUnknown || id == IID_IClassFactory ? this : nullptr;
    return *result == nullptr ? E_NOINTERFACE : S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID id, void** result) override {
    return (new Probe)->QueryInterface(id, result);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};
#pragma GCC diagnostic pop

}  // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** result) {
  static Factory factory;
  *result = nullptr;
  return classId == kProbeClassId ? factory.QueryInterface(id, result) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return living == 0 ? S_OK : S_FALSE;
}
