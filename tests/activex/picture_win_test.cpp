// The control's picture: how it comes, when it is painted, and what becomes of it when something
// fails on the way.
#include <gmock/gmock.h>

#include <windows.h>
#include <msxml2.h>
#include <ole2.h>

#include <string>

#include "tests/activex/control_fixture.h"
#include "tests/container/drawing_win.h"
#include "tests/host/process_state.h"
#include "tests/plugin/red_bitmap.h"
#include "tests/support/fake_xml_http_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using Container::drawContent;
using Container::Drawing;
using testing::IsEmpty;
using TestSupport::FakeXmlHttp;
using TestSupport::httpReply;
using TestSupport::Script;
using TestSupport::ScriptedServer;

constexpr uint32_t kGround = 0x00336699;
constexpr uint32_t kRedPixel = 0x00FF0000;
constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr GUID kXmlHttpRequest = {
    0xED8C108D, 0x4349, 0x11D2, {0x91, 0xA4, 0x00, 0xC0, 0x4F, 0x79, 0x69, 0xE8}};
constexpr char kUrl[] = "http://host/red.bmp";

uint32_t middleOf(Control& control) {
  const Drawing drawing = drawContent(control.unknown(), 40, 30, kGround);
  EXPECT_EQ(drawing.result, S_OK);
  return drawing.at(20, 15);
}

class PictureTest : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
    http_.body = redBitmap(2, 2);
  }

  std::unique_ptr<Control> make(const std::string& url, const std::string& dropMode = "callback") {
    return makeControl({.parameters = {{"image", url}, {"drop-mode", dropMode}}});
  }

  FakeXmlHttp http_;
};

TEST_F(PictureTest, ItFillsTheControlAndIsFetchedBeforeTheCoreStarts) {
  const auto control = make(kUrl);
  const Drawing drawing = drawContent(control->unknown(), 40, 30, kGround);
  for (const auto& [x, y] :
       {std::pair(0, 0), std::pair(39, 0), std::pair(0, 29), std::pair(39, 29)})
    EXPECT_EQ(drawing.at(x, y), kRedPixel);
  EXPECT_TRUE(logHasInOrder({"DBG COrvaneWebCtrl::LoadPlugInImage()\r\n",
                             "DBG COrvaneWebCtrl::DidCompleteDownload()\r\n",
                             "DBG COrvaneWebCtrl::initPlugin()\r\n", "DBG PlugIn::init()",
                             "LOG Hostname: some.host\r\n", "DBG COrvaneWebCtrl::OnDraw()\r\n"}));
}

TEST_F(PictureTest, WithoutADropModeItIsFetchedAndNotPainted) {
  const auto control = make(kUrl, "");
  EXPECT_EQ(http_.calls.size(), 5U);
  EXPECT_EQ(middleOf(*control), kGround);
}

TEST_F(PictureTest, WithoutAPictureNothingIsPaintedOrFetched) {
  const auto control = make("");
  EXPECT_THAT(http_.calls, IsEmpty());
  EXPECT_EQ(middleOf(*control), kGround);
  EXPECT_FALSE(logHas("LoadPlugInImage"));
}

TEST_F(PictureTest, OneThatCannotBeDecodedIsWhite) {
  for (const char* const body : {"", "no picture at all", "BM"}) {
    http_.body = body;
    EXPECT_EQ(middleOf(*make(kUrl)), kWhite);
  }
}

TEST_F(PictureTest, AnotherStatusIsLoggedAndLeavesNone) {
  http_.status = 404;
  EXPECT_EQ(middleOf(*make(kUrl)), kGround);
  EXPECT_TRUE(logHas("ERR Image loading failed with error 404\r\n"));
}

TEST_F(PictureTest, AnotherProtocolIsLoggedAndNotAskedFor) {
  EXPECT_EQ(middleOf(*make("ftp://host/x")), kGround);
  EXPECT_THAT(http_.calls, IsEmpty());
  EXPECT_TRUE(logHas("ERR Image loading failed with unsupported protocol ftp\r\n"));
}

TEST_F(PictureTest, AnAnswerWithoutAStreamIsLogged) {
  http_.hasStream = false;
  EXPECT_EQ(middleOf(*make(kUrl)), kGround);
  EXPECT_TRUE(
      logHas("ERR COrvaneWebCtrl::DidCompleteDownload() "
             "IXMLHTTPRequest::get_responseStream() returned a NULL stream\r\n"));
  http_.results = {{"get_responseStream", E_OUTOFMEMORY}};
  EXPECT_EQ(middleOf(*make(kUrl)), kGround);
  EXPECT_TRUE(
      logHas("ERR COrvaneWebCtrl::DidCompleteDownload() "
             "IXMLHTTPRequest::get_responseStream() failed: 8007000e\r\n"));
}

TEST_F(PictureTest, AControlThatIsEndedWhileItWaitsEndsWhenTheRequestHas) {
  for (const bool closed : {false, true}) {
    Control control(container(), kControlClassId,
                    {.parameters = {{"image", kUrl}, {"drop-mode", "callback"}}, .load = false});
    ComPointer<IPersistPropertyBag> persist;
    ASSERT_EQ(control.query(persist), S_OK);
    http_.onSend = [&] {
      // The two that are left: the test's own and that of the call under way.
      if (closed) control.end(2);
      if (!closed) control.release(2);
    };
    IPersistPropertyBag* const called = persist.get();
    called->Load(&control.bag(), nullptr);
    EXPECT_TRUE(control.ended());
  }
}

constexpr char kOtherHost[] = "^other.host";
constexpr char kRefusal[] = "Invalid application ID hostname: some.host";

TEST_F(PictureTest, ACallThatComesWhileItIsFetchedIsHeldToThePagesHost) {
  Control control(container(), kControlClassId,
                  {.parameters = {{"image", kUrl}, {"drop-mode", "callback"}}, .load = false});
  http_.onSend = [&] {
    const auto replyTo = [&](const char* name, const Variants& arguments) {
      return control.call(name, arguments).value.asText();
    };
    EXPECT_EQ(replyTo("initSession", {text(kOtherHost), text("")}), errorReply(kRefusal));
    const Variant body =
        text(R"({"orvane_vantrel_settings":{"app_id":")" + std::string(kOtherHost) + R"("}})");
    EXPECT_EQ(replyTo("vantrelHttpRequest", {text("POST"), text("/path"), body}),
              errorReply(kRefusal));
    EXPECT_EQ(replyTo("vantrelHttpRequestAsync",
                      {text("POST"), text("/path"), body, Variant::of(&makeFunction("function"))}),
              errorReply(kRefusal));
  };
  EXPECT_EQ(control.load(), S_OK);
  EXPECT_EQ(http_.calls.size(), 5U);
  EXPECT_EQ(logCount("LOG Hostname: some.host\r\n"), 1U);
}

TEST_F(PictureTest, ASiteThatIsTakenAwayWhileItIsFetchedIsStillThePages) {
  Control control(container(), kControlClassId,
                  {.parameters = {{"image", kUrl}, {"drop-mode", "callback"}}, .load = false});
  const auto initSession = [&] {
    return control.call("initSession", {text(kOtherHost), text("")}).value.asText();
  };
  http_.onSend = [&] {
    ComPointer<IOleObject> object;
    ASSERT_EQ(control.query(object), S_OK);
    EXPECT_EQ(object->SetClientSite(nullptr), S_OK);
    EXPECT_EQ(initSession(), errorReply(kRefusal));
  };
  EXPECT_EQ(control.load(), S_OK);
  EXPECT_EQ(initSession(), errorReply(kRefusal));
  // Nothing holds it once the control has started.
  EXPECT_EQ(control.site().references(), 0);
}

TEST_F(PictureTest, ASecondLoadFetchesNothing) {
  const auto control = make(kUrl);
  const size_t calls = http_.calls.size();
  EXPECT_EQ(control->load(), S_OK);
  EXPECT_EQ(http_.calls.size(), calls);
}

TEST_F(PictureTest, AWindowIsTransparentOnlyWithoutAPicture) {
  for (const std::string url : {"", kUrl}) {
    const auto control = makeControl(
        {.parameters = {{"image", url}, {"drop-mode", "callback"}}, .site = {.windowless = false}});
    ASSERT_EQ(control->activate(), S_OK);
    const HWND window = GetWindow(container().window(), GW_CHILD);
    ASSERT_NE(window, nullptr);
    const bool transparent = (GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TRANSPARENT) != 0;
    EXPECT_EQ(transparent, url.empty());
  }
  EXPECT_EQ(logCount("DBG COrvaneWebCtrl::OnCreate()\r\n"), 2U);
}

TEST_F(PictureTest, ManyPicturesLeaveNoObjectOfTheGraphicsSystem) {
  for (int round = 0; round < 3; ++round) middleOf(*make(kUrl));
  const size_t before = Host::graphicsObjects();
  for (int round = 0; round < 30; ++round) EXPECT_EQ(middleOf(*make(kUrl)), kRedPixel);
  EXPECT_EQ(Host::graphicsObjects(), before);
}

// Over the system's own request object.
class ServedPictureTest : public ControlTest {
 protected:
  void SetUp() override {
    askOnce();
    ControlTest::SetUp();
  }

  // The system makes threads for its first request, which would be taken for the library's.
  void askOnce() {
    ASSERT_GE(CoInitialize(nullptr), 0);
    CLSID id = {};
    ASSERT_EQ(CLSIDFromProgID(L"Msxml2.XMLHTTP.6.0", &id), S_OK);
    ComPointer<IXMLHTTPRequest> request;
    ASSERT_EQ(
        CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, kXmlHttpRequest, request.putVoid()),
        S_OK);
    const Variant method = text("GET");
    const Variant url = text(server_.url() + "/");
    Variant waits = Variant::boolean(false);
    ASSERT_EQ(request->open(method.get().bstrVal, url.get().bstrVal, waits.get(), {}, {}), S_OK);
    ASSERT_EQ(request->send({}), S_OK);
    request.reset();
    CoUninitialize();
  }

  ScriptedServer server_;
};

TEST_F(ServedPictureTest, ItComesFromAServer) {
  server_.always("/red.bmp", Script().send(httpReply(redBitmap(2, 2))));
  server_.always("/none.bmp", Script().send(httpReply("", "404 Not Found")));
  const auto make = [&](const char* path) {
    return makeControl({.parameters = {{"image", server_.url() + path}, {"drop-mode", "upload"}}});
  };
  EXPECT_EQ(middleOf(*make("/red.bmp")), kRedPixel);
  EXPECT_EQ(middleOf(*make("/none.bmp")), kGround);
  EXPECT_TRUE(logHas("ERR Image loading failed with error 404\r\n"));
}

TEST_F(ServedPictureTest, AServerThatDoesNotAnswerIsLogged) {
  const auto control = makeControl(
      {.parameters = {{"image", "http://127.0.0.1:" + std::to_string(TestSupport::unusedPort())},
                      {"drop-mode", "upload"}}});
  EXPECT_EQ(middleOf(*control), kGround);
  EXPECT_TRUE(logHas("ERR CUrlDownload::Download() IXMLHTTPRequest::send() failed: "));
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
