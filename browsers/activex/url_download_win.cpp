#include "browsers/activex/url_download_win.h"

#include <oleauto.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "dialogs/dialog_com_win.h"
#include "runtime/ov_log.h"
#include "text/wide_text.h"

namespace Vantrel::Web::ActiveX {

namespace {

// The system's object for requests, version 6, which no library of constants has.
constexpr GUID kXmlHttp60 = {
    0x88D96A0A, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr GUID kXmlHttpRequest = {
    0xED8C108D, 0x4349, 0x11D2, {0x91, 0xA4, 0x00, 0xC0, 0x4F, 0x79, 0x69, 0xE8}};

constexpr long kStatusOk = 200;
constexpr char kDefaultScheme[] = "http";

struct TextFree {
  void operator()(BSTR text) const { SysFreeString(text); }
};
using Text = std::unique_ptr<OLECHAR, TextFree>;

bool beginsWith(const std::wstring& url, std::wstring_view scheme) {
  const auto lower = [](wchar_t letter) {
    return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
  };
  return url.size() >= scheme.size() &&
         std::equal(scheme.begin(), scheme.end(), url.begin(),
                    [&lower](wchar_t wanted, wchar_t letter) { return wanted == lower(letter); });
}

// A text without a scheme is an address of the web that cannot be asked for as it stands.
Url parsed(const std::wstring& url) {
  const std::string text = toUtf8(url);
  if (text.find("://") != std::string::npos) return Url(text);
  Url plain;
  plain.url = text;
  plain.scheme = kDefaultScheme;
  return plain;
}

// Whether the call worked; a failure is logged behind the call's name.
bool worked(HRESULT result, const char* call) {
  if (SUCCEEDED(result)) return true;
  ov_err("CUrlDownload::Download() %s failed: %x", call, static_cast<unsigned>(result));
  return false;
}

// The whole exchange. It may outlive whoever began it, so it has a URL of its own.
bool exchange(const std::wstring& url, ComPointer<IXMLHTTPRequest>& request, long& status) {
  if (!worked(CoCreateInstance(kXmlHttp60, nullptr, CLSCTX_INPROC_SERVER, kXmlHttpRequest,
                               request.putVoid()),
              "CoCreateInstance(CLSID_XMLHTTP60)")) {
    return false;
  }
  const Text method(SysAllocString(L"GET"));
  const Text address(SysAllocStringLen(url.data(), static_cast<UINT>(url.size())));
  VARIANT nothing = {};
  VARIANT synchronous = {};
  synchronous.vt = VT_BOOL;
  synchronous.boolVal = VARIANT_FALSE;
  return worked(request->open(method.get(), address.get(), synchronous, nothing, nothing),
                "IXMLHTTPRequest::open()") &&
         worked(request->send(nothing), "IXMLHTTPRequest::send()") &&
         worked(request->get_status(&status), "IXMLHTTPRequest::get_status()");
}

}  // namespace

CUrlDownload::CUrlDownload(std::wstring url, IUrlDownloadDelegate* delegate)
    : url_(std::move(url)), delegate_(delegate) {}

void CUrlDownload::download() {
  if (!beginsWith(url_, L"http://") && !beginsWith(url_, L"https://")) {
    delegate_->didRejectProtocol(this, parsed(url_));
    return;
  }
  const std::weak_ptr<bool> alive = lifeToken_;
  ComPointer<IXMLHTTPRequest> request;
  long status = 0;
  if (!exchange(std::wstring(url_), request, status) || alive.expired()) return;
  if (status == kStatusOk) {
    delegate_->didCompleteDownload(this, request.get());
  } else {
    delegate_->didFailDownload(this, status);
  }
}

}  // namespace Vantrel::Web::ActiveX
