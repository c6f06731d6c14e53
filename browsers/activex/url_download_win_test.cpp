// The download of a picture, over a request object of the test's own.
#include "browsers/activex/url_download_win.h"

#include <gmock/gmock.h>

#include <memory>

#include "tests/support/fake_xml_http_win.h"
#include "tests/support/log_recorder.h"

namespace Vantrel::Web::ActiveX {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::FakeXmlHttp;
using TestSupport::LogRecorder;

class Delegate : public IUrlDownloadDelegate {
 public:
  void didCompleteDownload(CUrlDownload*, IXMLHTTPRequest* request) override {
    outcomes.push_back(request != nullptr ? "complete" : "complete without a request");
  }
  void didFailDownload(CUrlDownload*, long status) override {
    outcomes.push_back("failed " + std::to_string(status));
  }
  void didRejectProtocol(CUrlDownload*, const Url& url) override {
    outcomes.push_back("rejected " + url.scheme + " " + url.host + " " +
                       std::to_string(url.port(80)));
  }
  std::vector<std::string> outcomes;
};

class UrlDownloadTest : public testing::Test {
 protected:
  void download(const wchar_t* url) { CUrlDownload(url, &delegate_).download(); }

  LogRecorder log_;
  FakeXmlHttp http_;
  Delegate delegate_;
};

TEST_F(UrlDownloadTest, ItAsksOnceAndWaits) {
  download(L"http://host/picture.png");
  EXPECT_THAT(http_.calls,
              ElementsAre("CoCreateInstance", "open GET http://host/picture.png synchronous",
                          "send", "get_status"));
  EXPECT_THAT(delegate_.outcomes, ElementsAre("complete"));
  EXPECT_THAT(log_.lines("ERR"), IsEmpty());
}

TEST_F(UrlDownloadTest, TheSchemesOfTheWebAreTakenInAnyCase) {
  download(L"HTTP://host/a");
  download(L"https://host/a");
  download(L"hTTpS://host/a");
  EXPECT_THAT(delegate_.outcomes, ElementsAre("complete", "complete", "complete"));
}

TEST_F(UrlDownloadTest, AnotherProtocolIsRejectedWithoutARequest) {
  download(L"ftp://host/x");
  download(L"file:///C:/x");
  download(L"httpx://host:8080/x");
  EXPECT_THAT(delegate_.outcomes,
              ElementsAre("rejected ftp host 80", "rejected file  80", "rejected httpx host 8080"));
  EXPECT_THAT(http_.calls, IsEmpty());
}

TEST_F(UrlDownloadTest, ATextWithoutASchemeIsRejectedAsOneOfTheWeb) {
  download(L"");
  download(L"http:/");
  download(L"picture.png");
  EXPECT_THAT(delegate_.outcomes,
              ElementsAre("rejected http  80", "rejected http  80", "rejected http  80"));
  EXPECT_THAT(log_.lines("ERR"), IsEmpty());
}

TEST_F(UrlDownloadTest, AnyOtherStatusIsAFailure) {
  for (const long status : {404, 500, 201, 0}) {
    http_.status = status;
    download(L"http://host/a");
  }
  EXPECT_THAT(delegate_.outcomes,
              ElementsAre("failed 404", "failed 500", "failed 201", "failed 0"));
}

TEST_F(UrlDownloadTest, AFailingCallIsLoggedAndEndsIt) {
  struct Case {
    const char* call;
    const char* words;
  };
  for (const Case& failing :
       {Case{"CoCreateInstance", "CoCreateInstance(CLSID_XMLHTTP60)"},
        Case{"open", "IXMLHTTPRequest::open()"}, Case{"send", "IXMLHTTPRequest::send()"},
        Case{"get_status", "IXMLHTTPRequest::get_status()"}}) {
    log_.clear();
    http_.results = {{failing.call, E_ACCESSDENIED}};
    http_.calls.clear();
    download(L"http://host/a");
    EXPECT_THAT(log_.lines("ERR"), ElementsAre(std::string("CUrlDownload::Download() ") +
                                               failing.words + " failed: 80070005"));
    EXPECT_TRUE(http_.calls.back().starts_with(failing.call));
  }
  EXPECT_THAT(delegate_.outcomes, IsEmpty());
}

TEST_F(UrlDownloadTest, ADownloadThatGoesWhileItWaitsTellsNobody) {
  auto download = std::make_unique<CUrlDownload>(L"http://host/a", &delegate_);
  http_.onSend = [&download] { download.reset(); };
  download->download();
  EXPECT_EQ(download, nullptr);
  EXPECT_THAT(delegate_.outcomes, IsEmpty());
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
