// What comes back to the page later: answers of requests and dialogs, and transfer events. All of
// it on the control's thread, all references given back, whatever ends first.
#include <gmock/gmock.h>

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <string>

#include "tests/activex/control_fixture.h"
#include "tests/support/fake_file_dialogs_win.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using testing::ElementsAre;
using TestSupport::FakeFileDialogs;
using TestSupport::Script;

constexpr char kPath[] = "/some/path";
constexpr char kActivityPath[] = "/v5/vantrel/transfers/activity";

class AnswersTest : public ServedControlTest {
 protected:
  bool waitForCalls(const PageFunction& function, size_t count) {
    return container().pumpUntil([&] { return function.calls.size() >= count; });
  }
  CallResult sendAsync(Control& control, PageFunction& function, const char* body = "{}") {
    return control.call("vantrelHttpRequestAsync",
                        {text("POST"), text(kPath), text(body), Variant::of(&function)});
  }
  CallResult openAsync(Control& control, PageFunction& function) {
    return control.call("runOpenFileDialogAsync",
                        {text("Title"), Variant::boolean(true), text(""), Variant::of(&function)});
  }
};

TEST_F(AnswersTest, ASynchronousRequestAnswersAtOnce) {
  server_.always(kPath, Script::reply("{\"answer\":\"\xC3\xA4\"}"));
  const auto control = makeControl();
  EXPECT_EQ(
      control->call("vantrelHttpRequest", {text("POST"), text(kPath), text("{}")}).value.asText(),
      "{\"answer\":\"\xC3\xA4\"}");
}

TEST_F(AnswersTest, AReplyThatIsNoTextIsAnErrorReply) {
  server_.always(kPath, Script::reply("\xFF"));
  const auto control = makeControl();
  const std::string reply =
      control->call("vantrelHttpRequest", {text("POST"), text(kPath), text("{}")}).value.asText();
  EXPECT_EQ(reply.find("{\"error\":"), 0U) << reply;
  EXPECT_NE(reply.find("Error converting string encoding"), std::string::npos);
}

TEST_F(AnswersTest, AnAnswerReachesThePagesFunctionOnce) {
  server_.always(kPath, Script::reply("{\"answer\":1}"));
  auto& function = makeFunction("callback");
  const auto control = makeControl();
  EXPECT_EQ(sendAsync(*control, function).value.describe(), "text \"\"");
  EXPECT_TRUE(function.calls.empty());
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function.texts(), ElementsAre("{\"answer\":1}"));
  EXPECT_EQ(function.calls[0].size(), 1U);
  EXPECT_EQ(function.references(), 0);
  EXPECT_TRUE(logHas("DBG RequestCallback::returnError() - response={\"answer\":1}"));
}

TEST_F(AnswersTest, AForwardedRequestHasNoResult) {
  server_.always(kPath, Script::reply("{\"answer\":1}"));
  auto& function = makeFunction("callback");
  const auto control = makeControl();
  EXPECT_EQ(control
                ->call("httpRequestImplementation",
                       {text("POST"), text(kPath), text("{}"), Variant::of(&function)})
                .value.type(),
            VT_EMPTY);
  ASSERT_TRUE(waitForCalls(function, 1));
}

TEST_F(AnswersTest, AFailedExchangeIsAnErrorReply) {
  server_.always(kPath, Script().reset());
  auto& function = makeFunction("callback");
  const auto control = makeControl();
  sendAsync(*control, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function.texts(), ElementsAre(errorReply(kContactError)));
}

TEST_F(AnswersTest, ARefusedBodyIsAnsweredAtOnceAndTheFunctionGivenBack) {
  auto& function = makeFunction("callback");
  const auto control = makeControl();
  EXPECT_EQ(sendAsync(*control, function, "{").value.asText().find("{\"error\":"), 0U);
  EXPECT_EQ(function.references(), 0);
}

TEST_F(AnswersTest, WhatIsNotAnsweredWhenTheControlGoesIsGivenBack) {
  server_.always(kPath, Script().hold());
  auto& first = makeFunction("under way");
  auto& second = makeFunction("in the queue");
  {
    const auto control = makeControl();
    sendAsync(*control, first);
    sendAsync(*control, second);
    ASSERT_TRUE(server_.waitForRequests(kPath, 1));
  }
  EXPECT_EQ(first.references(), 0);
  EXPECT_EQ(second.references(), 0);
  EXPECT_TRUE(first.calls.empty());
  server_.release();
}

TEST_F(AnswersTest, AnAnswerThatWaitsForItsTurnGoesWithTheControl) {
  server_.always(kPath, Script::reply("{}"));
  auto& function = makeFunction("callback");
  {
    const auto control = makeControl();
    sendAsync(*control, function);
    // Handed over, but the loop has not turned.
    while (!logHas("OneShotManager::scheduleAsyncCallback()")) Sleep(1);
  }
  container().pumpOnce();
  EXPECT_TRUE(function.calls.empty());
  EXPECT_EQ(function.references(), 0);
}

// Posts that fail, and behind the second one, on the thread that has tried, the n-th request for
// memory. The first one is for the compiler's library: MinGW's cannot be without memory when a
// thread throws for the first time.
struct FailedPosts {
  std::atomic<DWORD> thread = 0;
  std::atomic<int> count = 0;
  std::atomic<int> left = 0;  // requests for memory until the one that fails
  int planned = 0;
};
FailedPosts failedPosts;
DWORD controlsThread = 0;

BOOL WINAPI postMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (GetCurrentThreadId() == controlsThread) {
    return PostMessageW(window, message, wParam, lParam);
  }
  failedPosts.thread = GetCurrentThreadId();
  if (++failedPosts.count == 2) failedPosts.left = failedPosts.planned;
  SetLastError(ERROR_NOT_ENOUGH_QUOTA);
  return FALSE;
}

void* allocate(size_t size) {
  const bool counts = GetCurrentThreadId() == failedPosts.thread && failedPosts.left > 0;
  return counts && --failedPosts.left == 0 ? nullptr : std::malloc(size);
}

TEST_F(AnswersTest, AnAnswerThatCannotBePostedIsGivenBackByTheControlsThreadWhateverElseFails) {
  constexpr int kMostRequests = 12;
  server_.always(kPath, Script::reply("{\"answer\":1}"));
  controlsThread = GetCurrentThreadId();
  const TestSupport::ImportPatch post(library().module(), "PostMessageW", postMessage);
  const TestSupport::ImportPatch memory(library().module(), "malloc", allocate);
  for (int n = 1; n <= kMostRequests; ++n) {
    SCOPED_TRACE(n);
    auto& function = makeFunction("callback " + std::to_string(n));
    failedPosts.count = 0;
    failedPosts.left = 0;
    failedPosts.planned = n;
    {
      const auto control = makeControl();
      for (int i = 0; i < 2; ++i) sendAsync(*control, function);
      while (failedPosts.count < 2) Sleep(1);
    }
    EXPECT_TRUE(function.calls.empty());
    EXPECT_EQ(function.references(), 0);
  }
}

TEST_F(AnswersTest, APageMayEndTheControlInsideAnAnswer) {
  server_.always(kPath, Script::reply("{}"));
  auto& ending = makeFunction("ending");
  auto& other = makeFunction("other");
  auto control = makeControl();
  sendAsync(*control, ending);
  sendAsync(*control, other);
  while (logCount("OneShotManager::scheduleAsyncCallback()") < 2) Sleep(1);
  ending.onCall = [&](const Variants&) {
    control.reset();
    // Its code is still on the stack.
    EXPECT_EQ(library().canUnload(), S_FALSE);
  };
  ASSERT_TRUE(waitForCalls(ending, 1));
  container().pumpOnce();
  EXPECT_TRUE(other.calls.empty());
  EXPECT_EQ(other.references(), 0);
}

TEST_F(AnswersTest, TransfersReachTheHandlerThatIsSetWhenTheirTurnComes) {
  server_.next(kActivityPath, Script::reply("{\"n\":1}"));
  auto& first = makeFunction("first");
  auto& second = makeFunction("second");
  const auto control = makeControl();
  control->set("eventHandler", Variant::of(&first));
  control->call("initSession", {text("an app"), text("")});
  while (!logHas("DBG COrvaneWebCtrl::transferEventOccurred()")) Sleep(1);
  control->set("eventHandler", Variant::of(&second));
  ASSERT_TRUE(waitForCalls(second, 1));
  EXPECT_TRUE(first.calls.empty());
  ASSERT_EQ(second.calls[0].size(), 2U);
  EXPECT_EQ(second.calls[0][0].asText(), "transfer");
  EXPECT_EQ(second.calls[0][1].asText(), "{\"n\":1}");
}

TEST_F(AnswersTest, WithoutAHandlerTransfersAreLost) {
  auto& handler = makeFunction("handler");
  const auto control = makeControl();
  control->set("eventHandler", Variant::of(&handler));
  control->call("initSession", {text("an app"), text("")});
  while (!logHas("DBG COrvaneWebCtrl::transferEventOccurred()")) Sleep(1);
  control->set("eventHandler", Variant::null());
  container().pumpOnce();
  EXPECT_TRUE(handler.calls.empty());
  EXPECT_EQ(handler.references(), 0);
}

TEST_F(AnswersTest, AHandlerMayEndTheControlOrFail) {
  auto& handler = makeFunction("handler");
  auto control = makeControl();
  control->set("eventHandler", Variant::of(&handler));
  handler.answer = DISP_E_EXCEPTION;
  handler.onCall = [&](const Variants&) { control.reset(); };
  control->call("initSession", {text("an app"), text("")});
  ASSERT_TRUE(waitForCalls(handler, 1));
  EXPECT_EQ(control, nullptr);
}

TEST_F(AnswersTest, ADialogsChoiceIsToldAndApproved) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {L"C:\\a.txt"};
  auto& function = makeFunction("callback");
  const auto control = makeControl();
  EXPECT_EQ(openAsync(*control, function).value.describe(), "text \"\"");
  EXPECT_TRUE(dialogs.calls.empty());
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function.texts(), ElementsAre("[\"C:\\\\a.txt\"]"));
  EXPECT_EQ(function.references(), 0);
  EXPECT_TRUE(logHas("DBG DialogCallback::returnMessage() - result=[\"C:\\\\a.txt\"]"));
  EXPECT_EQ(control->call("readAsArrayBuffer", {text("C:\\a.txt")})
                .value.asText()
                .find("Unable to read file context"),
            std::string::npos);
}

TEST_F(AnswersTest, ACancelledDialogIsToldAsWell) {
  FakeFileDialogs dialogs;
  dialogs.results["Show"] = HRESULT_FROM_WIN32(ERROR_CANCELLED);
  auto& open = makeFunction("open");
  auto& save = makeFunction("save");
  const auto control = makeControl();
  openAsync(*control, open);
  control->call("runSaveFileDialogAsync", {text(""), text("n"), text(""), Variant::of(&save)});
  ASSERT_TRUE(waitForCalls(save, 1));
  EXPECT_THAT(open.texts(), ElementsAre("[]"));
  EXPECT_THAT(save.texts(), ElementsAre("null"));
}

TEST_F(AnswersTest, ADialogThatHasNotHadItsTurnGoesWithTheControl) {
  FakeFileDialogs dialogs;
  auto& function = makeFunction("callback");
  {
    const auto control = makeControl();
    openAsync(*control, function);
    EXPECT_EQ(function.references(), 1);
  }
  EXPECT_EQ(function.references(), 0);
  container().pumpOnce();
  EXPECT_TRUE(dialogs.calls.empty());
}

TEST_F(AnswersTest, APageMayEndTheControlWhileADialogIsShown) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {L"C:\\a.txt"};
  auto& function = makeFunction("callback");
  auto control = makeControl();
  openAsync(*control, function);
  bool shown = false;
  dialogs.onShow = [&] {
    control.reset();
    shown = true;
  };
  ASSERT_TRUE(container().pumpUntil([&] { return shown; }));
  container().pumpFor(50);
  EXPECT_TRUE(function.calls.empty());
  EXPECT_EQ(function.references(), 0);
}

TEST_F(AnswersTest, ASynchronousDialogAnswersAtOnce) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {L"C:\\a.txt"};
  const auto control = makeControl();
  EXPECT_EQ(control->call("runSaveFileDialog", {text("n")}).value.asText(), "C:\\a.txt");
  EXPECT_EQ(
      control->call("runOpenFileDialog", {Variant::boolean(false), text("true")}).value.asText(),
      "C\\:\\\\a.txt");
  dialogs.results["Show"] = HRESULT_FROM_WIN32(ERROR_CANCELLED);
  const CallResult none = control->call("runSaveFileDialog", {text("n")});
  EXPECT_EQ(none.value.type(), VT_BSTR);
  EXPECT_EQ(none.value.get().bstrVal, nullptr);
  dialogs.results["Show"] = E_FAIL;
  EXPECT_EQ(control->call("runOpenFolderDialog", {Variant::integer(1)}).value.get().bstrVal,
            nullptr);
  EXPECT_TRUE(logHas("ERR Error displaying open folder dialog: "));
}

// Each is shown from the message loop of the one before.
TEST_F(AnswersTest, ADialogTooManyInsideOthersIsNotShownAndSaysSo) {
  constexpr size_t kMost = 16;
  constexpr size_t kMore = 3;
  FakeFileDialogs dialogs;
  dialogs.chosen = {L"C:\\a.txt"};
  auto& function = makeFunction("callback");
  const auto control = makeControl();
  size_t shown = 0;
  const std::function<void()> showNext = [&] {
    const size_t depth = ++shown;
    dialogs.onShow = showNext;
    EXPECT_TRUE(waitForCalls(function, kMore));
    if (depth != kMost) return;
    const CallResult now = control->call("runSaveFileDialog", {text("n")});
    EXPECT_EQ(now.value.type(), VT_BSTR);
    EXPECT_EQ(now.value.get().bstrVal, nullptr);
    EXPECT_TRUE(logHas("ERR Error displaying save file dialog: A dialog is already open"));
  };
  dialogs.onShow = showNext;
  for (size_t i = 0; i < kMost + kMore; ++i) openAsync(*control, function);
  ASSERT_TRUE(waitForCalls(function, kMost + kMore));
  EXPECT_EQ(shown, kMost);
  for (size_t i = 0; i < kMost + kMore; ++i) {
    EXPECT_EQ(function.texts()[i],
              i < kMore ? errorReply("A dialog is already open") : "[\"C:\\\\a.txt\"]");
  }
  dialogs.onShow = nullptr;
  EXPECT_EQ(control->call("runSaveFileDialog", {text("n")}).value.asText(), "C:\\a.txt");
}

TEST_F(AnswersTest, ASynchronousDialogKeepsItsControlToTheEndOfTheCall) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {L"C:\\a.txt"};
  auto control = makeControl();
  ComPointer<IDispatch> dispatch;
  ASSERT_EQ(control->query(dispatch), S_OK);
  dialogs.onShow = [&] {
    dispatch.reset();
    control->release(1);  // the call's own is left
    EXPECT_FALSE(logHas("~COrvaneWebCtrl()"));
  };
  Variant name = text("n");
  VARIANT argument = name.get();
  DISPPARAMS params = {&argument, nullptr, 1, 0};
  Variant result;
  IDispatch* const raw = dispatch.get();
  raw->Invoke(6, IID_NULL, 0, DISPATCH_METHOD, &params, result.put(), nullptr, nullptr);
  EXPECT_EQ(result.asText(), "C:\\a.txt");
  EXPECT_TRUE(logHas("~COrvaneWebCtrl()"));
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
