// A control that is taken away where it hurts: inside its own events and answers, inside a dialog,
// with requests, dialogs and drops under way. And sinks that misbehave.
#include <gmock/gmock.h>

#include <filesystem>
#include <optional>

#include "tests/activex/control_fixture.h"
#include "tests/container/dragged_files_win.h"
#include "tests/support/fake_file_dialogs_win.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"

namespace Vantrel::Web::ActiveX {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::Script;

constexpr char kActivityPath[] = "/v5/vantrel/transfers/activity";
constexpr char kPath[] = "/some/path";

class EndingsTest : public ServedControlTest {
 protected:
  void SetUp() override {
    ServedControlTest::SetUp();
    server_.always(kActivityPath, Script::reply("{\"iteration_token\":\"t\",\"transfers\":[{}]}"));
    dialogs_.emplace();
    ov::TempFolder::write(folder_.path("a.txt"), "Hello");
    dialogs_->chosen = {file()};
    control_ = makeControl({.parameters = {{"drop-mode", "callback"}}});
  }
  void TearDown() override {
    control_.reset();
    dialogs_.reset();
    ServedControlTest::TearDown();
  }

  std::wstring file() const {
    return std::filesystem::path(ov::TempFolder::native(folder_.path("a.txt"))).make_preferred();
  }
  void endControl() { control_.reset(); }
  // Ended from inside one of its own calls, with references that others hold then.
  void endInside(int others) {
    control_->end(others);
    endControl();
  }

  HRESULT dropFile(Container::DraggedFiles& files) {
    ComPointer<IOleInPlaceObjectWindowless> object;
    ComPointer<IDropTarget> target;
    EXPECT_EQ(control_->activate(), S_OK);
    EXPECT_EQ(control_->query(object), S_OK);
    EXPECT_EQ(object->GetDropTarget(target.put()), S_OK);
    return Container::dragAndDrop(*target.get(), files);
  }
  HRESULT dropFile() {
    return dropFile(
        container().book.make<Container::DraggedFiles>("files", std::vector<std::wstring>{file()}));
  }
  Variants request(PageFunction& function) {
    return {text("POST"), text(kPath), text("{}"), Variant::of(&function)};
  }

  ov::TempFolder folder_;
  std::optional<TestSupport::FakeFileDialogs> dialogs_;
  std::unique_ptr<Control> control_;
};

TEST_F(EndingsTest, InsideATransferEvent) {
  PageFunction& handler = makeFunction("handler");
  handler.onCall = [this](const Variants&) { endControl(); };
  control_->set("eventHandler", Variant::of(&handler));
  control_->call("initSession", {text("my app"), text("")});
  EXPECT_TRUE(container().pumpUntil([&handler] { return handler.calls.size() == 1; }));
  EXPECT_EQ(control_, nullptr);
  container().pumpFor(1500);
  EXPECT_THAT(handler.calls, SizeIs(1));
}

TEST_F(EndingsTest, InsideTheAnswerToARequest) {
  PageFunction& function = makeFunction("function");
  function.onCall = [this](const Variants&) { endControl(); };
  for (int i = 0; i < 5; ++i) control_->call("vantrelHttpRequestAsync", request(function));
  EXPECT_TRUE(container().pumpUntil([&function] { return function.calls.size() == 1; }));
  container().pumpFor(300);
  EXPECT_THAT(function.calls, SizeIs(1));
  EXPECT_EQ(function.references(), 0);
}

TEST_F(EndingsTest, WithRequestsUnderWay) {
  server_.always(kPath, Script().hold());
  PageFunction& function = makeFunction("function");
  for (int i = 0; i < 5; ++i) control_->call("vantrelHttpRequestAsync", request(function));
  EXPECT_TRUE(server_.waitForRequests(kPath, 1));
  endControl();
  server_.release();
  container().pumpFor(300);
  EXPECT_THAT(function.calls, IsEmpty());
  EXPECT_EQ(function.references(), 0);
}

TEST_F(EndingsTest, WithAnAnswerPosted) {
  PageFunction& function = makeFunction("function");
  control_->call("vantrelHttpRequestAsync", request(function));
  EXPECT_TRUE(server_.waitForRequests(kPath, 1));
  // The answer comes to the message queue at some moment before or in the control's end.
  endControl();
  container().pumpFor(300);
  EXPECT_EQ(function.references(), 0);
}

TEST_F(EndingsTest, WithADialogThatWaitsForItsTurn) {
  PageFunction& function = makeFunction("function");
  control_->call("runOpenFileDialogAsync",
                 {text(""), Variant::boolean(false), text(""), Variant::of(&function)});
  endControl();
  container().pumpFor(100);
  EXPECT_THAT(function.calls, IsEmpty());
  EXPECT_THAT(dialogs_->calls, IsEmpty());
  EXPECT_EQ(function.references(), 0);
}

TEST_F(EndingsTest, InsideADialogThatThePageWaitsFor) {
  // The call under way holds the control, and so does its caller.
  dialogs_->onShow = [this] { endInside(2); };
  Control& control = *control_;
  ComPointer<IDispatch> dispatch;
  ASSERT_EQ(control.query(dispatch), S_OK);
  VARIANT arguments[2] = {Variant::boolean(true).take(), Variant::boolean(false).take()};
  DISPPARAMS parameters{arguments, nullptr, 2, 0};
  Variant result;
  const DISPID id = control.idOf("runOpenFileDialog");
  EXPECT_EQ(dispatch->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, result.put(), nullptr,
                             nullptr),
            S_OK);
  EXPECT_EQ(control_, nullptr);
}

TEST_F(EndingsTest, InsideADialogThatIsShownLater) {
  PageFunction& function = makeFunction("function");
  bool shown = false;
  dialogs_->onShow = [&] {
    shown = true;
    endControl();
  };
  control_->call("runOpenFolderDialogAsync",
                 {text(""), Variant::boolean(false), Variant::of(&function)});
  EXPECT_TRUE(container().pumpUntil([&shown] { return shown; }));
  container().pumpFor(100);
  EXPECT_THAT(function.calls, IsEmpty());
  EXPECT_EQ(function.references(), 0);
}

TEST_F(EndingsTest, InsideTheAnswerOfADialog) {
  PageFunction& function = makeFunction("function");
  function.onCall = [this](const Variants&) { endControl(); };
  control_->call("runOpenFolderDialogAsync",
                 {text(""), Variant::boolean(false), Variant::of(&function)});
  EXPECT_TRUE(container().pumpUntil([&function] { return !function.calls.empty(); }));
  EXPECT_EQ(function.references(), 0);
}

TEST_F(EndingsTest, WithADropThatWaitsForItsTurn) {
  PageFunction& handler = makeFunction("handler");
  control_->set("eventHandler", Variant::of(&handler));
  EXPECT_EQ(dropFile(), S_OK);
  endControl();
  container().pumpFor(100);
  EXPECT_THAT(handler.calls, IsEmpty());
}

// A drop that is being told is told whole; the control stays until then.
TEST_F(EndingsTest, InsideADropEvent) {
  auto& sink = container().book.make<EventSink>("sink", kEventInterfaceId);
  DWORD connection = 0;
  ASSERT_EQ(control_->connect(sink, kEventInterfaceId, connection), S_OK);
  sink.onEvent = [this](const Container::Event&) {
    if (control_ != nullptr) endInside(2);
  };
  PageFunction& handler = makeFunction("handler");
  control_->set("eventHandler", Variant::of(&handler));
  EXPECT_EQ(dropFile(), S_OK);
  EXPECT_TRUE(container().pumpUntil([&sink] { return !sink.events.empty(); }));
  container().pumpFor(100);
  EXPECT_THAT(sink.events, SizeIs(2));
  EXPECT_EQ(handler.texts(), (std::vector<std::string>{"drop", "dropex"}));
  EXPECT_EQ(sink.references(), 0);
  EXPECT_EQ(handler.references(), 0);
}

TEST_F(EndingsTest, InsideThePagesOwnDropEvent) {
  PageFunction& handler = makeFunction("handler");
  handler.onCall = [this](const Variants&) {
    if (control_ != nullptr) endInside(1);
  };
  control_->set("eventHandler", Variant::of(&handler));
  EXPECT_EQ(dropFile(), S_OK);
  EXPECT_TRUE(container().pumpUntil([&handler] { return !handler.calls.empty(); }));
  container().pumpFor(100);
  EXPECT_EQ(handler.texts(), (std::vector<std::string>{"drop", "dropex"}));
  EXPECT_EQ(handler.references(), 0);
}

TEST_F(EndingsTest, AHandlerThatIsReplacedInsideItsEventHearsNoMore) {
  PageFunction& second = makeFunction("second");
  PageFunction& first = makeFunction("first");
  first.onCall = [&](const Variants&) { control_->set("eventHandler", Variant::of(&second)); };
  control_->set("eventHandler", Variant::of(&first));
  EXPECT_EQ(dropFile(), S_OK);
  EXPECT_TRUE(container().pumpUntil([&second] { return !second.calls.empty(); }));
  EXPECT_THAT(first.calls, SizeIs(1));
  EXPECT_EQ(second.texts(), std::vector<std::string>{"dropex"});
  EXPECT_EQ(first.references(), 0);
}

TEST_F(EndingsTest, SinksThatFailOrLeaveInsideAnEventDisturbNobody) {
  auto& failing = container().book.make<EventSink>("failing sink", kEventInterfaceId);
  auto& leaving = container().book.make<EventSink>("leaving sink", kEventInterfaceId);
  auto& staying = container().book.make<EventSink>("staying sink", kEventInterfaceId);
  DWORD first = 0;
  DWORD second = 0;
  DWORD third = 0;
  ASSERT_EQ(control_->connect(failing, kEventInterfaceId, first), S_OK);
  ASSERT_EQ(control_->connect(leaving, kEventInterfaceId, second), S_OK);
  ASSERT_EQ(control_->connect(staying, kEventInterfaceId, third), S_OK);
  failing.answer = DISP_E_EXCEPTION;
  leaving.onEvent = [&](const Container::Event&) {
    control_->disconnect(kEventInterfaceId, second);
  };
  EXPECT_EQ(dropFile(), S_OK);
  EXPECT_TRUE(container().pumpUntil([&staying] { return staying.events.size() == 2; }));
  EXPECT_THAT(failing.events, SizeIs(2));
  EXPECT_THAT(leaving.events, SizeIs(1));
  EXPECT_EQ(leaving.references(), 0);
  EXPECT_EQ(staying.events[0].id, 100);
  EXPECT_EQ(staying.events[1].id, 101);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
