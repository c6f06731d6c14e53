// The control's picture: fetched once, before the core starts, and decoded from the answer.

#include <windows.h>
#include <oleauto.h>

#include "browsers/activex/orvane_web_ctrl_win.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::ActiveX {

namespace {

// The stream that a request's answer can be read from, null after a failure, which is logged.
void responseStream(IXMLHTTPRequest& request, ComPointer<IStream>& stream) {
  VARIANT answer = {};
  const HRESULT result = request.get_responseStream(&answer);
  if (FAILED(result)) {
    ov_err("COrvaneWebCtrl::DidCompleteDownload() IXMLHTTPRequest::get_responseStream() failed: %x",
           static_cast<unsigned>(result));
    return;
  }
  if (answer.vt == VT_UNKNOWN && answer.punkVal != nullptr) {
    answer.punkVal->QueryInterface(IID_IStream, stream.putVoid());
  }
  VariantClear(&answer);
  if (!stream) {
    ov_err(
        "COrvaneWebCtrl::DidCompleteDownload() IXMLHTTPRequest::get_responseStream() returned a "
        "NULL stream");
  }
}

}  // namespace

void COrvaneWebCtrl::loadPlugInImage() {
  OV_DEBUG("COrvaneWebCtrl::LoadPlugInImage()");
  downloader_ = std::make_unique<CUrlDownload>(imageUrl_, this);
  downloader_->download();
}

void COrvaneWebCtrl::didCompleteDownload(CUrlDownload*, IXMLHTTPRequest* request) {
  OV_DEBUG("COrvaneWebCtrl::DidCompleteDownload()");
  ComPointer<IStream> stream;
  responseStream(*request, stream);
  if (!stream) return;
  image_ = std::make_unique<Picture>(*stream.get());
  viewChanged();
}

void COrvaneWebCtrl::didFailDownload(CUrlDownload*, long status) {
  ov_err("Image loading failed with error %d", static_cast<int>(status));
}

void COrvaneWebCtrl::didRejectProtocol(CUrlDownload*, const Url& url) {
  ov_err("Image loading failed with unsupported protocol %s", url.scheme.c_str());
}

}  // namespace Vantrel::Web::ActiveX
