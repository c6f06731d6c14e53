// The download of the control's picture: one request, made while the caller waits. The system's
// object for requests lets messages through meanwhile, so anything may happen to the caller, even
// its end; then nothing more is told.
//
// Owned by its delegate, the control; its thread only.
#pragma once

#include <windows.h>
#include <msxml2.h>

#include <memory>
#include <string>

#include "service/url.h"

namespace Vantrel::Web::ActiveX {

class CUrlDownload;

// Who hears of the outcome; exactly one of these unless the system itself fails, which is logged.
class IUrlDownloadDelegate {
 public:
  IUrlDownloadDelegate() = default;
  virtual ~IUrlDownloadDelegate() = default;
  IUrlDownloadDelegate(const IUrlDownloadDelegate&) = delete;
  IUrlDownloadDelegate& operator=(const IUrlDownloadDelegate&) = delete;

  // The answer is there, with status 200.
  virtual void didCompleteDownload(CUrlDownload* download, IXMLHTTPRequest* request) = 0;
  // The answer has another status.
  virtual void didFailDownload(CUrlDownload* download, long status) = 0;
  // The URL is not of the web, and nothing was asked for.
  virtual void didRejectProtocol(CUrlDownload* download, const Url& url) = 0;
};

class CUrlDownload {
 public:
  CUrlDownload(std::wstring url, IUrlDownloadDelegate* delegate);
  CUrlDownload(const CUrlDownload&) = delete;
  CUrlDownload& operator=(const CUrlDownload&) = delete;
  ~CUrlDownload() = default;

  // Returns when the answer is there or will not come. This object may be gone then.
  void download();

 private:
  const std::shared_ptr<bool> lifeToken_ = std::make_shared<bool>(true);
  const std::wstring url_;
  IUrlDownloadDelegate* const delegate_;
};

}  // namespace Vantrel::Web::ActiveX
