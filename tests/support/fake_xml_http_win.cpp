#include "tests/support/fake_xml_http_win.h"

#include <gtest/gtest.h>

#include <msxml2.h>
#include <ole2.h>

#include "tests/support/counted_interface_win.h"
#include "text/wide_text.h"

// The platform's interfaces have no virtual destructor; objects end in Release, which knows them.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace Vantrel::Web::TestSupport {

namespace {

constexpr GUID kXmlHttp60 = {
    0x88D96A0A, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr GUID kXmlHttpRequest = {
    0xED8C108D, 0x4349, 0x11D2, {0x91, 0xA4, 0x00, 0xC0, 0x4F, 0x79, 0x69, 0xE8}};

FakeXmlHttp* current = nullptr;

std::string textOf(BSTR text) {
  return toUtf8(std::wstring(text != nullptr ? text : L"(null)"));
}

class Request : public CountedInterface<IXMLHTTPRequest> {
 public:
  Request() : CountedInterface(kXmlHttpRequest, current->living) {}
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE open(BSTR method, BSTR url, VARIANT asynchronous, VARIANT user,
                                 VARIANT password) override {
    const bool waits = asynchronous.vt == VT_BOOL && asynchronous.boolVal == VARIANT_FALSE;
    const bool anonymous = user.vt == VT_EMPTY && password.vt == VT_EMPTY;
    return current->note("open", textOf(method) + " " + textOf(url) +
                                     (waits ? " synchronous" : " asynchronous") +
                                     (anonymous ? "" : " with a user"));
  }
  HRESULT STDMETHODCALLTYPE setRequestHeader(BSTR, BSTR) override {
    return current->note("setRequestHeader");
  }
  HRESULT STDMETHODCALLTYPE getResponseHeader(BSTR, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE getAllResponseHeaders(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE send(VARIANT body) override {
    const HRESULT result = current->note("send", body.vt == VT_EMPTY ? "" : "a body");
    if (current->onSend) current->onSend();
    return result;
  }
  HRESULT STDMETHODCALLTYPE abort() override { return current->note("abort"); }
  HRESULT STDMETHODCALLTYPE get_status(long* status) override {
    *status = current->status;
    return current->note("get_status");
  }
  HRESULT STDMETHODCALLTYPE get_statusText(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_responseXML(IDispatch**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_responseText(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_responseBody(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_responseStream(VARIANT* stream) override {
    const HRESULT result = current->note("get_responseStream");
    if (FAILED(result)) return result;
    stream->vt = VT_UNKNOWN;
    stream->punkVal = current->hasStream ? bodyStream() : nullptr;
    return result;
  }
  HRESULT STDMETHODCALLTYPE get_readyState(long*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_onreadystatechange(IDispatch*) override { return E_NOTIMPL; }

 private:
  static IStream* bodyStream() {
    IStream* stream = nullptr;
    CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    stream->Write(current->body.data(), static_cast<ULONG>(current->body.size()), nullptr);
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    return stream;
  }
};

class Factory : public CountedInterface<IClassFactory> {
 public:
  Factory() : CountedInterface(IID_IClassFactory, current->living) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    const HRESULT result = current->note("CoCreateInstance");
    if (FAILED(result)) return result;
    auto* const made = new Request;
    const HRESULT found = made->QueryInterface(id, object);
    made->Release();
    return found;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

FakeXmlHttp::FakeXmlHttp() {
  current = this;
  EXPECT_GE(CoInitialize(nullptr), 0);
  auto* const factory = new Factory;
  EXPECT_EQ(CoRegisterClassObject(kXmlHttp60, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                  &cookie_),
            S_OK);
  factory->Release();
}

FakeXmlHttp::~FakeXmlHttp() {
  CoRevokeClassObject(cookie_);
  CoUninitialize();
  EXPECT_EQ(living, 0);
  current = nullptr;
}

HRESULT FakeXmlHttp::note(const std::string& name, const std::string& arguments) {
  calls.push_back(arguments.empty() ? name : name + " " + arguments);
  const auto found = results.find(name);
  return found == results.end() ? S_OK : found->second;
}

}  // namespace Vantrel::Web::TestSupport
