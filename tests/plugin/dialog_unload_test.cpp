// The browser lets the library go while one of its dialogs is shown: the element is removed, the
// module ended and unloaded. Its code stays until the dialog has gone.
#include <optional>

#include "tests/host/process_state.h"
#include "tests/plugin/dialogs_fixture.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web {
namespace {

class DialogUnloadTest : public DialogsTest {
 protected:
  // What a browser does with a library that it no longer needs.
  void leave(Instance& instance, const Kept& kept = {}) {
    EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR);
    instance.settle(kept);
    host().unload();
    EXPECT_TRUE(host().mapped());
  }
  // As soon as the browser takes messages, and not before: its thread may be in the library's code.
  void expectRelease() {
    EXPECT_TRUE(host().mapped());
    EXPECT_TRUE(host().pumpUntil([this] { return !host().mapped(); }));
  }
};

TEST_F(DialogUnloadTest, AnAsynchronousDialogKeepsTheLibraryToItsEnd) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  bool shown = false;
  dialogs.onShow = [&] {
    leave(instance, {.objects = {{function.get(), 1}}});
    shown = true;
  };
  openAsync(instance, function);
  EXPECT_TRUE(host().pumpUntil([&] { return shown; }));
  EXPECT_TRUE(host().pumpUntil([this] { return !host().mapped(); }));
  EXPECT_TRUE(function->calls.empty());
}

TEST_F(DialogUnloadTest, ASynchronousDialogKeepsTheLibraryToItsEnd) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(file_)};
  Instance instance(host());
  instance.script();
  dialogs.onShow = [&] { leave(instance); };
  EXPECT_TRUE(
      instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(false)}).accepted);
  expectRelease();
}

TEST_F(DialogUnloadTest, OfTwoDialogsTheLastOneKeepsIt) {
  FakeFileDialogs dialogs;
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.script();
  bool bothShown = false;
  dialogs.onShow = [&] {
    openAsync(instance, function);
    dialogs.onShow = [&] {
      leave(instance, {.objects = {{function.get(), 1}}});
      bothShown = true;
    };
    EXPECT_TRUE(host().pumpUntil([&] { return bothShown; }));
    // The second one has gone and has given its hold back; the first one's is left.
    waitForRelease();
    EXPECT_TRUE(host().mapped());
  };
  EXPECT_TRUE(instance.call("runSaveFileDialog", {text("")}).accepted);
  expectRelease();
}

TEST_F(DialogUnloadTest, ALibraryThatIsNotUnloadedStaysAsItIs) {
  FakeFileDialogs dialogs;
  {
    Instance instance(host());
    instance.script();
    dialogs.onShow = [&] { EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR); };
    EXPECT_TRUE(instance.call("runSaveFileDialog", {text("")}).accepted);
    instance.settle();
  }
  waitForRelease();
  EXPECT_TRUE(host().mapped());
  Instance other(host());
  EXPECT_EQ(other.call("runSaveFileDialog", {text("")}).value, text(""));
}

TEST_F(DialogUnloadTest, ManyDialogsThatOutliveTheirInstanceLeaveNoThreadAndNoHandle) {
  FakeFileDialogs dialogs;
  const auto round = [&] {
    Instance instance(host());
    instance.script();
    dialogs.onShow = [&] { EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR); };
    EXPECT_TRUE(instance.call("runSaveFileDialog", {text("")}).accepted);
    instance.settle();
    waitForRelease();
  };
  constexpr int kRounds = 50;
  for (int i = 0; i < kRounds && !HasFailure(); ++i) round();
  const size_t threads = Host::threadIds().size();
  const size_t handles = Host::handleCount();
  for (int i = 0; i < kRounds && !HasFailure(); ++i) round();
  EXPECT_EQ(Host::threadIds().size(), threads);
  EXPECT_EQ(Host::handleCount(), handles);
}

HANDLE WINAPI noThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return nullptr;
}

TEST_F(DialogUnloadTest, WithoutAThreadToUnloadItTheLibraryStays) {
  FakeFileDialogs dialogs;
  auto* const library = static_cast<HMODULE>(const_cast<void*>(host().module()));
  Instance instance(host());
  instance.script();
  dialogs.onShow = [&] {
    EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR);
    instance.settle();
  };
  {
    const TestSupport::ImportPatch patch(library, "CreateThread", noThread);
    EXPECT_TRUE(instance.call("runSaveFileDialog", {text("")}).accepted);
  }
  EXPECT_TRUE(logHas("ERR The library stays loaded: error 8\r\n"));
  host().unload();
  host().pumpFor(100);
  EXPECT_TRUE(host().mapped());
  // In a browser it stays to the end of the process.
  FreeLibrary(library);
}

// The platform's own dialog, removed from under by the page while the user looks at it.
class RealDialogUnloadTest : public RealDialogsTest {};

TEST_F(RealDialogUnloadTest, TheUserClosesADialogWhoseLibraryWasUnloaded) {
  const Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  bool left = false;
  {
    const PageTask leave([&] {
      EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR);
      instance.settle({.objects = {{function.get(), 1}}});
      host().unload();
      left = true;
    });
    const DialogDriver driver([this, &leave](HWND dialog) {
      leave.run();
      EXPECT_TRUE(host().mapped());
      DialogDriver::accept(dialog, toWide(file_));
    });
    openAsync(instance, function);
    EXPECT_TRUE(host().pumpUntil([&] { return left && !host().mapped(); }));
  }
  EXPECT_TRUE(function->calls.empty());
}

}  // namespace
}  // namespace Vantrel::Web
