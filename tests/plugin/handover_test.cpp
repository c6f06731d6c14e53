// The way of a dialog from the script call to the browser's message loop: the hidden windows, the
// order of what is posted to them, a post that fails, and the module ended and started again.
#include <optional>

#include "tests/plugin/dialogs_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HandoverTest : public DialogsTest {
 protected:
  static HWND hiddenWindow(int number) {
    return FindWindowExW(HWND_MESSAGE, nullptr,
                         (L"OWEventWindow" + std::to_wstring(number)).c_str(),
                         (L"OrvaneWebEventWindow" + std::to_wstring(number)).c_str());
  }
};

TEST_F(HandoverTest, EveryInstanceHasAWindowOfItsOwnWhoseNumberNeverComesAgain) {
  {
    std::optional<Instance> first(std::in_place, host());
    const Instance second(host());
    EXPECT_NE(hiddenWindow(0), nullptr);
    EXPECT_NE(hiddenWindow(1), nullptr);
    EXPECT_EQ(GetWindowThreadProcessId(hiddenWindow(1), nullptr), GetCurrentThreadId());
    first.reset();
    EXPECT_EQ(hiddenWindow(0), nullptr);
    const Instance third(host());
    EXPECT_NE(hiddenWindow(1), nullptr);
    EXPECT_NE(hiddenWindow(2), nullptr);
  }
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  const Instance later(host());
  EXPECT_NE(hiddenWindow(3), nullptr);
}

TEST_F(HandoverTest, DialogsOfTwoInstancesComeInTheOrderOfTheirCalls) {
  FakeFileDialogs dialogs;
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance one(host());
  Instance other(host());
  const auto save = [&](Instance& instance, const char* title) {
    instance.call("runSaveFileDialogAsync", {text(title), text(""), text(""), function.value()});
  };
  save(one, "1");
  save(other, "2");
  save(one, "3");
  EXPECT_THAT(dialogs.calls, IsEmpty());
  ASSERT_TRUE(waitForCalls(function, 3));
  std::vector<std::string> titles;
  for (const std::string& call : dialogs.calls) {
    if (call.rfind("SetTitle ", 0) == 0) titles.push_back(call);
  }
  EXPECT_THAT(titles, ElementsAre("SetTitle 1", "SetTitle 2", "SetTitle 3"));
}

TEST_F(HandoverTest, TheEndOfOneInstanceLeavesTheDialogsOfAnother) {
  FakeFileDialogs dialogs;
  const Host::PageReference gone = host().page.makeFunction("gone");
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance one(host());
  Instance other(host());
  openAsync(one, gone);
  openAsync(other, function);
  // What its window took with it stays.
  one.end({.objects = {{gone.get(), 1}}});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(gone->calls, IsEmpty());
}

TEST_F(HandoverTest, APostThatFailsIsTheAnswerAndLeavesItsWorkWhole) {
  FakeFileDialogs dialogs;
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  ASSERT_NE(DestroyWindow(hiddenWindow(0)), FALSE);
  EXPECT_EQ(openAsync(instance, function).value,
            text(errorReply("Error displaying open file dialog: PostMessage failed (1400)")));
  // The synchronous forms need no window.
  EXPECT_EQ(instance.call("runSaveFileDialog", {text("")}).value, text(""));
  host().pumpFor(100);
  EXPECT_THAT(function->calls, IsEmpty());
  instance.end({.objects = {{function.get(), 1}}});
}

TEST_F(HandoverTest, AfterAnEndAndAnotherStartDialogsWorkAndFormerOnesStayAway) {
  FakeFileDialogs dialogs;
  const Host::PageReference former = host().page.makeFunction("former");
  const Host::PageReference function = host().page.makeFunction("callback");
  {
    Instance instance(host());
    openAsync(instance, former);
    instance.end({.objects = {{former.get(), 1}}});
  }
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  dialogs.chosen = {toWide(file_)};
  Instance instance(host());
  openAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(former->calls, IsEmpty());
  EXPECT_EQ(read(instance, file_), text(kHello));
}

}  // namespace
}  // namespace Vantrel::Web
