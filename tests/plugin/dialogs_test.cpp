// The script methods of dialogs: what the page hears, what the user's choice allows
// from then on, and what happens when the page goes while a dialog is shown.
#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "tests/plugin/dialogs_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(DialogsTest, ASynchronousOpenAnswersAndApprovesTheFiles) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_), toWide(path("b.txt"))};
  Instance instance(host());
  EXPECT_TRUE(isRefused(instance, file_));
  EXPECT_EQ(instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(true)}).value,
            text(escaped(file_) + ":" + escaped(path("b.txt"))));
  EXPECT_EQ(read(instance, file_), text(kHello));
}

TEST_F(DialogsTest, EachFormOfAReplyEscapesWhatItHasTo) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {L"C:\\a:b.txt"};
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  EXPECT_EQ(
      instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(false)}).value,
      text("C\\:\\\\a\\:b.txt"));
  // No file of the platform has such a name; if one had, the array would be no JSON.
  dialogs.chosen = {L"C:\\a\"b"};
  openAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function->calls[0].arguments, ElementsAre(text("[\"C:\\\\a\"b\"]")));
}

TEST_F(DialogsTest, LeaveForFoldersDoesNotMakeAnOpenDialogPickThem) {
  FakeFileDialogs dialogs;
  Instance instance(host());
  instance.call("runOpenFileDialog", {Value::boolean(true), Value::boolean(false)});
  EXPECT_THAT(dialogs.calls, testing::Contains("SetOptions " + std::to_string(dialogs.options)));
}

TEST_F(DialogsTest, AWordSaysWhetherAnAsynchronousOpenTakesSeveral) {
  FakeFileDialogs dialogs;
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  const std::pair<const char*, FILEOPENDIALOGOPTIONS> cases[] = {
      {"false", dialogs.options}, {"true", dialogs.options | FOS_ALLOWMULTISELECT}};
  for (const auto& [word, options] : cases) {
    dialogs.calls.clear();
    const size_t answers = function->calls.size();
    instance.call("runOpenFileDialogAsync",
                  {text("Title"), text(word), text(""), function.value()});
    ASSERT_TRUE(waitForCalls(function, answers + 1));
    EXPECT_THAT(dialogs.calls, testing::Contains("SetOptions " + std::to_string(options))) << word;
  }
}

TEST_F(DialogsTest, ASynchronousFolderMayBeAimedAtButIsNotApproved) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(folder_)};
  Instance instance(host());
  EXPECT_FALSE(mayDownloadTo(instance, folder_));
  EXPECT_EQ(instance.call("runOpenFolderDialog", {Value::boolean(false)}).value,
            text(escaped(folder_)));
  EXPECT_TRUE(isRefused(instance, folder_));
  EXPECT_TRUE(mayDownloadTo(instance, folder_));
  EXPECT_FALSE(mayDownloadTo(instance, folder_));
}

TEST_F(DialogsTest, ASynchronousSaveAnswersThePathAsItIs) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  Instance instance(host());
  EXPECT_EQ(instance.call("runSaveFileDialog", {text("höllo.txt")}).value, text(file_));
  EXPECT_TRUE(isRefused(instance, file_));
  EXPECT_TRUE(mayDownloadTo(instance, file_));
}

TEST_F(DialogsTest, ASynchronousCancelAndAFailureAreAnEmptyText) {
  FakeFileDialogs dialogs;
  Instance instance(host());
  for (const HRESULT result : {kCancelled, static_cast<HRESULT>(0x80070005)}) {
    dialogs.results["Show"] = result;
    EXPECT_EQ(
        instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(true)}).value,
        text(""));
    EXPECT_EQ(instance.call("runOpenFolderDialog", {Value::boolean(true)}).value, text(""));
    EXPECT_EQ(instance.call("runSaveFileDialog", {text("")}).value, text(""));
  }
  for (const char* words : {"open file", "open folder", "save file"}) {
    EXPECT_EQ(logCount("ERR Error displaying " + std::string(words) +
                       " dialog: Show failed: 0x80070005\r\n"),
              1u);
  }
}

TEST_F(DialogsTest, AnAsynchronousOpenShowsLaterAnswersAndApproves) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  EXPECT_EQ(openAsync(instance, function).value, Value::null());
  EXPECT_THAT(dialogs.calls, IsEmpty());
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 1);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function->calls[0].arguments, ElementsAre(text("[\"" + doubled(file_) + "\"]")));
  EXPECT_EQ(host().objects.pluginReferences(function.get()), 0);
  EXPECT_EQ(read(instance, file_), text(kHello));
  EXPECT_FALSE(mayDownloadTo(instance, file_));
}

TEST_F(DialogsTest, AnAsynchronousFolderIsApprovedAndMayBeAimedAt) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(folder_)};
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.call("runOpenFolderDialogAsync",
                {text(""), Value::boolean(false), function.value(), Value::boolean(true)});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function->calls[0].arguments.at(0).text,
              testing::HasSubstr("\"name\":\"" + doubled(folder_) +
                                 R"(","size":0,"type":"text/directory")"));
  EXPECT_EQ(read(instance, folder_), text(errorReply("Invalid file type: " + folder_)));
  EXPECT_TRUE(mayDownloadTo(instance, folder_));
}

TEST_F(DialogsTest, AnAsynchronousSaveIsAQuotedPathOrNull) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  const auto save = [&] {
    instance.call("runSaveFileDialogAsync", {text("T"), text("x.txt"), text(""), function.value()});
  };
  save();
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function->calls[0].arguments, ElementsAre(text("\"" + doubled(file_) + "\"")));
  EXPECT_TRUE(mayDownloadTo(instance, file_));
  dialogs.results["Show"] = kCancelled;
  save();
  ASSERT_TRUE(waitForCalls(function, 2));
  EXPECT_THAT(function->calls[1].arguments, ElementsAre(text("null")));
  EXPECT_FALSE(mayDownloadTo(instance, file_));
}

TEST_F(DialogsTest, BadFileTypesAreTheAnswerOfAnAsynchronousDialog) {
  FakeFileDialogs dialogs;
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  EXPECT_EQ(openAsync(instance, function, "{}").value, Value::null());
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function->calls[0].arguments,
              ElementsAre(text(
                  errorReply("Error displaying open file dialog: Error parsing fileTypes JSON"))));
}

TEST_F(DialogsTest, ADialogThatWaitsWhenItsInstanceEndsIsNeverShown) {
  FakeFileDialogs dialogs;
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  openAsync(instance, function);
  // The message that would have shown it went with the window; what it carried stays.
  instance.end({.objects = {{function.get(), 1}}});
  host().pumpFor(100);
  EXPECT_THAT(dialogs.calls, IsEmpty());
  EXPECT_THAT(function->calls, IsEmpty());
}

TEST_F(DialogsTest, AnInstanceMayEndUnderItsAsynchronousDialog) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  const Host::PageReference function = host().page.makeFunction("callback");
  std::optional<Instance> instance(std::in_place, host());
  bool shown = false;
  dialogs.onShow = [&] {
    shown = true;
    EXPECT_EQ(instance->destroy(), NPERR_NO_ERROR);
  };
  openAsync(*instance, function);
  EXPECT_TRUE(host().pumpUntil([&] { return shown; }));
  EXPECT_THAT(function->calls, IsEmpty());
  instance->settle({.objects = {{function.get(), 1}}});
  instance.reset();
  waitForRelease();
  // A stopped dialog's choice is nobody's.
  Instance other(host());
  EXPECT_TRUE(isRefused(other, file_));
}

TEST_F(DialogsTest, AnInstanceMayEndUnderItsSynchronousDialog) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(folder_)};
  for (const char* method : {"runOpenFolderDialog", "runSaveFileDialog"}) {
    std::optional<Instance> instance(std::in_place, host());
    instance->script();
    dialogs.onShow = [&] { EXPECT_EQ(instance->destroy(), NPERR_NO_ERROR); };
    const Value argument =
        std::string(method) == "runSaveFileDialog" ? text("") : Value::boolean(true);
    EXPECT_TRUE(instance->call(method, {argument}).accepted);
    instance->settle();
    waitForRelease();
  }
}

TEST_F(DialogsTest, TwoDialogsAtOnceAreBothAnswered) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  const Host::PageReference first = host().page.makeFunction("first");
  const Host::PageReference second = host().page.makeFunction("second");
  Instance instance(host());
  dialogs.onShow = [&] {
    openAsync(instance, second);
    EXPECT_TRUE(waitForCalls(second, 1));
  };
  openAsync(instance, first);
  ASSERT_TRUE(waitForCalls(first, 1));
  EXPECT_EQ(second->calls.size(), 1u);
}

// Each is shown from the message loop of the one before.
TEST_F(DialogsTest, ADialogTooManyInsideOthersIsNotShownAndSaysSo) {
  constexpr size_t kMost = 16;
  constexpr size_t kMore = 3;
  const std::string refusal = errorReply("A dialog is already open");
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  size_t shown = 0;
  const std::function<void()> showNext = [&] {
    const size_t depth = ++shown;
    dialogs.onShow = showNext;
    EXPECT_TRUE(waitForCalls(function, kMore));
    if (depth != kMost) return;
    EXPECT_EQ(
        instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(true)}).value,
        Value::nullString());
    EXPECT_EQ(openAsync(instance, function).value, text(refusal));
  };
  dialogs.onShow = showNext;
  for (size_t i = 0; i < kMost + kMore; ++i) openAsync(instance, function);
  ASSERT_TRUE(waitForCalls(function, kMost + kMore));
  EXPECT_EQ(shown, kMost);
  for (size_t i = 0; i < kMost + kMore; ++i) {
    EXPECT_THAT(function->calls[i].arguments,
                ElementsAre(text(i < kMore ? refusal : "[\"" + doubled(file_) + "\"]")));
  }
  dialogs.onShow = nullptr;
  EXPECT_EQ(instance.call("runSaveFileDialog", {text("")}).value, text(file_));
}

// What the browser was asked for before it was asked for its window.
int retainsBefore = 0;
decltype(NPNetscapeFuncs::getvalue) hostGetValue = nullptr;

NPError notingGetValue(NPP npp, NPNVariable variable, void* value) {
  if (variable == NPNVnetscapeWindow) {
    retainsBefore = Host::CountingHost::current().calls.count("NPN_RetainObject");
  }
  return hostGetValue(npp, variable, value);
}

TEST_F(DialogsTest, TheFunctionIsRetainedOnceThereIsADialogToAnswerIt) {
  FakeFileDialogs dialogs;
  const Host::PageReference function = host().page.makeFunction("callback");
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  Host::TableShape shape;
  shape.edit = [](NPNetscapeFuncs& table) {
    hostGetValue = std::exchange(table.getvalue, &notingGetValue);
  };
  EXPECT_EQ(host().initialize(shape), NPERR_NO_ERROR);
  Instance instance(host());
  instance.script();
  const Value title = text("T");
  const Value no = Value::boolean(false);
  const std::pair<const char*, std::vector<Value>> calls[] = {
      {"runOpenFileDialogAsync", {title, no, text(""), function.value()}},
      {"runOpenFolderDialogAsync", {title, no, function.value()}},
      {"runSaveFileDialogAsync", {title, text(""), text(""), function.value()}}};
  for (const auto& [method, arguments] : calls) {
    const int before = host().calls.count("NPN_RetainObject");
    instance.call(method, arguments);
    EXPECT_EQ(retainsBefore, before) << method;
    EXPECT_EQ(host().calls.count("NPN_RetainObject"), before + 1) << method;
  }
  dialogs.results["Show"] = kCancelled;
  ASSERT_TRUE(waitForCalls(function, std::size(calls)));
}

TEST_F(RealDialogsTest, TheAnswerIsWhatTheUserTyped) {
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  {
    const DialogDriver driver([this](HWND dialog) {
      EXPECT_EQ(IsWindowEnabled(window_), FALSE);
      DialogDriver::accept(dialog, toWide(file_));
    });
    openAsync(instance, function);
    ASSERT_TRUE(waitForCalls(function, 1));
  }
  EXPECT_THAT(function->calls[0].arguments, ElementsAre(text("[\"" + doubled(file_) + "\"]")));
  EXPECT_EQ(read(instance, file_), text(kHello));
  const DialogDriver driver(DialogDriver::cancel);
  EXPECT_EQ(instance.call("runSaveFileDialog", {text("x.txt")}).value, text(""));
}

// Two at once, the second asked for while the first is shown. The first one's loop is below the
// second's, so the second is answered first whichever the user closes first.
class TwoRealDialogsTest : public RealDialogsTest {
 protected:
  using Close = std::function<void(HWND first, HWND second)>;

  void closeBoth(const Close& close) {
    const Host::PageReference first = host().page.makeFunction("first");
    const Host::PageReference second = host().page.makeFunction("second");
    std::vector<std::string> answered;
    first->onCall = [&](const Host::PageCall&) { answered.emplace_back("first"); };
    second->onCall = [&](const Host::PageCall&) { answered.emplace_back("second"); };
    Instance instance(host());
    {
      const PageTask openSecond([&] { openAsync(instance, second); });
      const DialogDriver driver([&](HWND dialog) {
        openSecond.run();
        const HWND other = DialogDriver::another(dialog);
        ASSERT_NE(other, nullptr);
        close(dialog, other);
      });
      openAsync(instance, first);
      ASSERT_TRUE(waitForCalls(first, 1));
    }
    EXPECT_THAT(answered, ElementsAre("second", "first"));
    EXPECT_THAT(second->calls.at(0).arguments, ElementsAre(text("[\"" + doubled(file_) + "\"]")));
    EXPECT_THAT(first->calls.at(0).arguments, ElementsAre(text("[]")));
    EXPECT_EQ(read(instance, file_), text(kHello));
  }
};

TEST_F(TwoRealDialogsTest, TheSecondClosedFirst) {
  closeBoth([this](HWND first, HWND second) {
    DialogDriver::accept(second, toWide(file_));
    DialogDriver::waitUntilGone(second);
    DialogDriver::cancel(first);
  });
}

TEST_F(TwoRealDialogsTest, TheFirstClosedFirst) {
  closeBoth([this](HWND first, HWND second) {
    DialogDriver::cancel(first);
    DialogDriver::waitUntilGone(first);
    DialogDriver::accept(second, toWide(file_));
  });
}

}  // namespace
}  // namespace Vantrel::Web
