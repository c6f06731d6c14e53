// Drags of files over the control: what may be dropped, and what the page hears of a drop.
#include <gmock/gmock.h>

#include <windows.h>
#include <ole2.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/activex/control_fixture.h"
#include "tests/container/dragged_files_win.h"
#include "tests/container/event_sink_win.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"

namespace Vantrel::Web::ActiveX {
namespace {

using Container::DraggedFiles;
using Container::Parameters;
using ov::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr DISPID kOnDrop = 100;
constexpr DISPID kOnDropEx = 101;

class DropsTest : public ServedControlTest {
 protected:
  void SetUp() override {
    ServedControlTest::SetUp();
    for (const char* const name : {"a.txt", "ö.txt"})
      TempFolder::write(folder_.path(name), "Hello");
    std::filesystem::create_directory(TempFolder::native(folder_.path("sub")));
    handler_ = &makeFunction("handler");
    sink_ = &container().book.make<EventSink>("sink", kEventInterfaceId);
  }
  void TearDown() override {
    target_.reset();
    if (control_) control_->disconnect(kEventInterfaceId, connection_);
    control_.reset();
    ServedControlTest::TearDown();
  }

  // A control in its site, its handler and its sink connected.
  void start(const Parameters& parameters, bool windowless = true) {
    control_ = makeControl({.parameters = parameters, .site = {.windowless = windowless}});
    ASSERT_EQ(control_->set("eventHandler", Variant::of(handler_)).result, S_OK);
    ASSERT_EQ(control_->connect(*sink_, kEventInterfaceId, connection_), S_OK);
    ASSERT_EQ(control_->activate(), S_OK);
    if (windowless) {
      ComPointer<IOleInPlaceObjectWindowless> object;
      ASSERT_EQ(control_->query(object), S_OK);
      ASSERT_EQ(object->GetDropTarget(target_.put()), S_OK);
    }
  }

  std::wstring path(const std::string& name) const {
    std::wstring text = toWide(folder_.path(name));
    for (wchar_t& letter : text) letter = letter == L'/' ? L'\\' : letter;
    return text;
  }
  // The path with its backslashes doubled.
  std::string escaped(const std::string& name) const {
    std::string text = toUtf8(path(name));
    for (size_t at = 0; (at = text.find('\\', at)) != std::string::npos; at += 2) {
      text.insert(at, 1, '\\');
    }
    return text;
  }
  DraggedFiles& files(const std::vector<std::wstring>& paths) {
    return container().book.make<DraggedFiles>("files", paths);
  }
  HRESULT enter(const std::vector<std::wstring>& paths) {
    DWORD effect = DROPEFFECT_COPY;
    const HRESULT result = target_->DragEnter(&files(paths), MK_LBUTTON, {}, &effect);
    EXPECT_EQ(effect, static_cast<DWORD>(DROPEFFECT_COPY));
    return result;
  }
  HRESULT drop(const std::vector<std::wstring>& paths) {
    DWORD effect = DROPEFFECT_COPY;
    const HRESULT result = target_->Drop(&files(paths), 0, {}, &effect);
    EXPECT_EQ(effect, static_cast<DWORD>(DROPEFFECT_COPY));
    return result;
  }
  void turn() { container().pumpOnce(); }
  bool isApproved(const std::string& name) {
    return control_->call("readAsArrayBuffer", {Variant::text(toUtf8(path(name)))})
        .value.asText()
        .starts_with("data:");
  }
  std::vector<std::string> told() const {
    std::vector<std::string> all;
    for (const Variants& call : handler_->calls) {
      all.push_back(call.at(0).asText() + " " + call.at(1).asText());
    }
    return all;
  }

  const TempFolder folder_;
  PageFunction* handler_ = nullptr;
  EventSink* sink_ = nullptr;
  DWORD connection_ = 0;
  std::unique_ptr<Control> control_;
  ComPointer<IDropTarget> target_;
};

TEST_F(DropsTest, WithoutADropModeADragIsRefusedAndADropIgnored) {
  start({{"drop-allow-multiple", "true"}});
  EXPECT_EQ(enter({path("a.txt")}), E_INVALIDARG);
  EXPECT_EQ(drop({path("a.txt")}), S_OK);
  turn();
  EXPECT_THAT(told(), IsEmpty());
  EXPECT_FALSE(isApproved("a.txt"));
}

TEST_F(DropsTest, ADragIsJudgedWhenItEnters) {
  start({{"drop-mode", "callback"}});
  EXPECT_EQ(enter({path("a.txt")}), S_OK);
  EXPECT_EQ(enter({}), S_OK);
  EXPECT_EQ(enter({path("gone.txt")}), S_OK);
  EXPECT_EQ(enter({path("a.txt"), path("ö.txt")}), E_INVALIDARG);
  EXPECT_EQ(enter({path("sub")}), E_INVALIDARG);
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::ValidateDrop()\r\n"));
  EXPECT_EQ(target_->DragOver(0, {}, nullptr), S_OK);
  EXPECT_EQ(target_->DragLeave(), S_OK);
  turn();
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DropsTest, SeveralAndDirectoriesEnterWhereTheyAreAllowed) {
  start({{"drop-mode", "callback"}, {"drop-allow-multiple", "true"}});
  EXPECT_EQ(enter({path("a.txt"), path("ö.txt")}), S_OK);
  EXPECT_EQ(enter({path("a.txt"), path("sub")}), E_INVALIDARG);
  control_.reset();
  target_.reset();
  start({{"drop-mode", "upload"}, {"drop-allow-directories", "true"}});
  EXPECT_EQ(enter({path("sub")}), S_OK);
  EXPECT_EQ(enter({path("sub"), path("a.txt")}), E_INVALIDARG);
}

TEST_F(DropsTest, DataThatHasNoFilesIsRefused) {
  start({{"drop-mode", "callback"}});
  DWORD effect = 0;
  DraggedFiles& other = files({path("a.txt")});
  other.answer = DV_E_FORMATETC;
  EXPECT_EQ(target_->DragEnter(&other, 0, {}, &effect), E_INVALIDARG);
  EXPECT_EQ(target_->DragEnter(nullptr, 0, {}, &effect), E_INVALIDARG);
  EXPECT_EQ(target_->Drop(&other, 0, {}, &effect), E_INVALIDARG);
  EXPECT_EQ(target_->Drop(nullptr, 0, {}, &effect), E_INVALIDARG);
  EXPECT_EQ(target_->Drop(&other, 0, {}, nullptr), E_INVALIDARG);
}

TEST_F(DropsTest, FilesInAnotherFormThanAskedForAreRefusedAndGivenBack) {
  start({{"drop-mode", "callback"}});
  DWORD effect = 0;
  for (const DWORD form : {TYMED_ISTREAM, TYMED_HGLOBAL}) {
    DraggedFiles& other = files({path("a.txt")});
    other.otherForm = form;
    EXPECT_EQ(target_->DragEnter(&other, 0, {}, &effect), E_INVALIDARG);
    EXPECT_EQ(target_->Drop(&other, 0, {}, &effect), E_INVALIDARG);
    EXPECT_EQ(other.taken(), 2);
    EXPECT_EQ(other.references(), 0);
  }
  turn();
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DropsTest, ADropIsToldWhenTheDragIsOver) {
  start({{"drop-mode", "callback"}});
  EXPECT_EQ(drop({path("ö.txt")}), S_OK);
  EXPECT_THAT(told(), IsEmpty());
  EXPECT_THAT(sink_->events, IsEmpty());
  turn();
  ASSERT_EQ(sink_->events.size(), 2U);
  EXPECT_EQ(sink_->events[0].id, kOnDrop);
  std::string list = escaped("ö.txt");
  list.insert(list.find(':'), 1, '\\');
  EXPECT_EQ(sink_->events[0].arguments.at(0).describe(), Variant::text(list).describe());
  EXPECT_EQ(sink_->events[1].id, kOnDropEx);
  const std::string json = sink_->events[1].arguments.at(0).asText();
  EXPECT_THAT(
      json, HasSubstr("\"name\":\"" + escaped("ö.txt") + R"(","size":5,"type":"text/plain"}]}})"));
  EXPECT_THAT(told(), ElementsAre("drop [\"" + escaped("ö.txt") + "\"]", "dropex " + json));
  EXPECT_TRUE(isApproved("ö.txt"));
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::TriggerOnDrop()\r\nLast message repeated 1 times\r\n"));
  turn();
  EXPECT_EQ(sink_->events.size(), 2U);
}

TEST_F(DropsTest, SeveralAreToldInTheirOrderWithoutBeingJudgedAgain) {
  start({{"drop-mode", "callback"}});
  EXPECT_EQ(drop({path("ö.txt"), path("sub"), path("gone.txt"), path("a.txt")}), S_OK);
  turn();
  EXPECT_EQ(told().at(0), "drop [\"" + escaped("ö.txt") + "\",\"" + escaped("sub") + "\",\"" +
                              escaped("gone.txt") + "\",\"" + escaped("a.txt") + "\"]");
}

TEST_F(DropsTest, APathOf260CharactersIsLeftOutWithoutAWord) {
  start({{"drop-mode", "callback"}});
  const std::wstring longest = L"C:\\" + std::wstring(256, L'x');
  EXPECT_EQ(drop({longest, longest + L"x", path("a.txt")}), S_OK);
  turn();
  EXPECT_EQ(told().at(0),
            "drop [\"C:\\\\" + std::string(256, 'x') + "\",\"" + escaped("a.txt") + "\"]");
}

TEST_F(DropsTest, AnEmptyDropIsToldAsNothing) {
  start({{"drop-mode", "callback"}});
  EXPECT_EQ(drop({}), S_OK);
  turn();
  EXPECT_THAT(told(), ElementsAre("drop []", "dropex {\"dataTransfer\":{\"files\":[]}}"));
}

TEST_F(DropsTest, TwoDropsBeforeTheirTurnAreToldAtOnce) {
  start({{"drop-mode", "callback"}});
  drop({path("a.txt")});
  drop({path("ö.txt")});
  turn();
  EXPECT_EQ(told().size(), 2U);
  EXPECT_EQ(told().at(0), "drop [\"" + escaped("a.txt") + "\",\"" + escaped("ö.txt") + "\"]");
}

TEST_F(DropsTest, APathThatIsNoTextKeepsTheDropForTheNext) {
  start({{"drop-mode", "callback"}});
  drop({L"C:\\\xD800"});
  turn();
  EXPECT_TRUE(logHas("ERR ERROR: Failure converting file from drop list to UTF-8\r\n"));
  EXPECT_THAT(told(), IsEmpty());
  drop({path("a.txt")});
  turn();
  EXPECT_EQ(logCount("ERR ERROR: Failure converting file from drop list to UTF-8\r\n"), 2U);
  EXPECT_FALSE(isApproved("a.txt"));
}

TEST_F(DropsTest, AnUploadGoesToTheClient) {
  start({{"drop-mode", "upload"}, {"drop-upload-url", "https://h/in"}});
  EXPECT_EQ(drop({path("a.txt")}), S_OK);
  turn();
  EXPECT_THAT(told(), IsEmpty());
  EXPECT_THAT(sink_->events, IsEmpty());
  ASSERT_FALSE(server_.requests().empty());
  EXPECT_THAT(server_.requests().back(), HasSubstr("a.txt"));
  EXPECT_THAT(server_.requests().back(), HasSubstr("https://h/in"));
  EXPECT_TRUE(isApproved("a.txt"));
}

TEST_F(DropsTest, AnUploadThatFailsIsLoggedAndOver) {
  profile_.removeServiceUrl();
  start({{"drop-mode", "upload"}, {"vantrel-launch-wait-timeout-ms", "0"}});
  drop({path("a.txt")});
  turn();
  EXPECT_TRUE(logHas(std::string("ERR ") + kContactError + "\r\n"));
  const size_t lines = logCount(kContactError);
  turn();
  EXPECT_EQ(logCount(kContactError), lines);
}

TEST_F(DropsTest, AHandlerThatIsTakenBackHearsNoMore) {
  start({{"drop-mode", "callback"}});
  handler_->onCall = [this](const Variants&) { control_->set("eventHandler", Variant::null()); };
  drop({path("a.txt")});
  turn();
  EXPECT_EQ(told().size(), 1U);
}

TEST_F(DropsTest, AFailingSinkAndAThrowingHandlerArePassedOver) {
  start({{"drop-mode", "callback"}});
  sink_->answer = E_FAIL;
  handler_->answer = DISP_E_EXCEPTION;
  drop({path("a.txt")});
  turn();
  EXPECT_EQ(sink_->events.size(), 2U);
  EXPECT_EQ(told().size(), 2U);
}

TEST_F(DropsTest, ADropInsideAnEventIsForgottenWithTheOneUnderWay) {
  start({{"drop-mode", "callback"}});
  bool again = true;
  sink_->onEvent = [&](const Container::Event&) {
    if (std::exchange(again, false)) drop({path("ö.txt")});
  };
  drop({path("a.txt")});
  turn();
  turn();
  // The first telling forgets what came while it ran.
  EXPECT_EQ(told().at(0), "drop [\"" + escaped("a.txt") + "\"]");
  EXPECT_EQ(told().size(), 2U);
}

TEST_F(DropsTest, AControlEndedByItsEventHearsNothingMore) {
  start({{"drop-mode", "callback"}});
  target_.reset();
  ComPointer<IOleInPlaceObjectWindowless> object;
  ASSERT_EQ(control_->query(object), S_OK);
  ASSERT_EQ(object->GetDropTarget(target_.put()), S_OK);
  object.reset();
  sink_->onEvent = [this](const Container::Event&) {
    if (control_->ended()) return;
    control_->disconnect(kEventInterfaceId, connection_);
    control_->set("eventHandler", Variant::null());
    control_->end(2);  // the drop and the event under way hold it
  };
  drop({path("a.txt")});
  turn();
  EXPECT_EQ(sink_->events.size(), 1U);
  EXPECT_TRUE(logHas("DBG ~COrvaneWebCtrl()"));
  EXPECT_THAT(told(), IsEmpty());
  control_.reset();
}

TEST_F(DropsTest, AControlThatEndsBeforeItsTurnForgetsTheDrop) {
  start({{"drop-mode", "callback"}});
  drop({path("a.txt")});
  control_->disconnect(kEventInterfaceId, connection_);
  control_.reset();
  turn();
  EXPECT_THAT(told(), IsEmpty());
  // The target is the system's as long as it likes.
  EXPECT_EQ(drop({path("a.txt")}), S_OK);
}

TEST_F(DropsTest, AWindowTakesDropsAndGivesItsTargetBack) {
  start({{"drop-mode", "callback"}}, false);
  const HWND window = GetWindow(container().window(), GW_CHILD);
  ASSERT_NE(window, nullptr);
  auto* const registered = static_cast<IDropTarget*>(GetPropW(window, L"OleDropTargetInterface"));
  ASSERT_NE(registered, nullptr);
  EXPECT_EQ(Container::dragAndDrop(*registered, files({path("a.txt")})), S_OK);
  turn();
  EXPECT_EQ(told().size(), 2U);
  EXPECT_EQ(control_->deactivate(), S_OK);
  EXPECT_FALSE(IsWindow(window));
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
