// The hidden window for real: its names, its class, its messages.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/log_recorder.h"
#include "tests/support/message_loop.h"
#include "tests/support/runtime/real_call_win.h"
#include "threads/platform.h"
#include "threads/win_message_window.h"

namespace Vantrel::Web {
namespace {

using TestSupport::runMessageLoop;

HWND windowOf(const WinMessageWindow& window) {
  return static_cast<HWND>(window.handle());
}

std::wstring classOf(const WinMessageWindow& window) {
  wchar_t name[64] = L"";
  GetClassNameW(windowOf(window), name, 64);
  return name;
}

std::wstring titleOf(const WinMessageWindow& window) {
  wchar_t name[64] = L"";
  GetWindowTextW(windowOf(window), name, 64);
  return name;
}

bool isRegistered(const std::wstring& name) {
  WNDCLASSEXW found = {};
  found.cbSize = sizeof found;
  return GetClassInfoExW(static_cast<HINSTANCE>(moduleHandle()), name.c_str(), &found) != 0;
}

// So many of the next unregistrations fail.
int refusedUnregistrations = 0;

BOOL WINAPI testUnregisterClassW(LPCWSTR name, HINSTANCE module) {
  static const auto unregister =
      ov::real_call<decltype(&UnregisterClassW)>(L"user32.dll", "UnregisterClassW");
  if (refusedUnregistrations == 0) return unregister(name, module);
  --refusedUnregistrations;
  SetLastError(ERROR_CLASS_HAS_WINDOWS);
  return FALSE;
}

void count(void* argument) {
  ++*static_cast<int*>(argument);
}

}  // namespace

// The linker takes this instead of the import library's.
extern "C" {
decltype(&UnregisterClassW) __imp_UnregisterClassW = &testUnregisterClassW;
}

namespace {

class WinMessageWindowTest : public testing::Test {
 protected:
  // Makes a window that goes without its class; the class's name.
  static std::wstring leaveAClass() {
    auto window = std::make_unique<WinMessageWindow>();
    std::wstring name = classOf(*window);
    refusedUnregistrations = 1;
    window.reset();
    return name;
  }

  TestSupport::LogRecorder log_;
  int calls_ = 0;
};

TEST_F(WinMessageWindowTest, NamesAreCountedAndNeverUsedAgain) {
  auto first = std::make_unique<WinMessageWindow>();
  const WinMessageWindow second;
  EXPECT_EQ(classOf(*first), L"OWEventWindow0");
  EXPECT_EQ(titleOf(*first), L"OrvaneWebEventWindow0");
  EXPECT_EQ(classOf(second), L"OWEventWindow1");
  first.reset();
  const WinMessageWindow third;
  EXPECT_EQ(classOf(third), L"OWEventWindow2");
  EXPECT_EQ(titleOf(third), L"OrvaneWebEventWindow2");
}

TEST_F(WinMessageWindowTest, TheClassGoesWithItsWindow) {
  auto window = std::make_unique<WinMessageWindow>();
  const std::wstring name = classOf(*window);
  EXPECT_TRUE(isRegistered(name));
  window.reset();
  EXPECT_FALSE(isRegistered(name));
}

// As it is on Windows while the window's own procedure is further up the stack.
TEST_F(WinMessageWindowTest, AClassThatStaysGoesWithTheNextWindowThatComesOrGoes) {
  const std::wstring name = leaveAClass();
  EXPECT_TRUE(isRegistered(name));
  const std::wstring second = leaveAClass();
  EXPECT_FALSE(isRegistered(name));
  EXPECT_TRUE(isRegistered(second));
  auto window = std::make_unique<WinMessageWindow>();
  EXPECT_FALSE(isRegistered(second));
  // Both fail: the one that is tried again, and the window's own.
  const std::wstring third = leaveAClass();
  refusedUnregistrations = 2;
  const std::wstring fourth = classOf(*window);
  window.reset();
  EXPECT_TRUE(isRegistered(third));
  EXPECT_TRUE(isRegistered(fourth));
  const WinMessageWindow last;
  EXPECT_FALSE(isRegistered(third));
  EXPECT_FALSE(isRegistered(fourth));
}

TEST_F(WinMessageWindowTest, MoreClassesThanHaveRoomAreGivenUp) {
  constexpr int kTooMany = 200;
  std::vector<std::wstring> names;
  for (int i = 0; i < kTooMany; ++i) {
    const WinMessageWindow window;
    names.push_back(classOf(window));
    refusedUnregistrations = kTooMany;
  }
  refusedUnregistrations = 0;
  const WinMessageWindow last;
  const auto left = std::count_if(names.begin(), names.end(), isRegistered);
  EXPECT_GT(left, 0);
  EXPECT_LT(left, kTooMany);
}

void registerForeignClass(const std::wstring& name) {
  WNDCLASSEXW foreign = {};
  foreign.cbSize = sizeof foreign;
  foreign.lpfnWndProc = DefWindowProcW;
  foreign.hInstance = static_cast<HINSTANCE>(moduleHandle());
  foreign.lpszClassName = name.c_str();
  ASSERT_NE(RegisterClassExW(&foreign), 0);
}

TEST_F(WinMessageWindowTest, AClassThatAnotherLibraryLeftBehindIsReplaced) {
  registerForeignClass(L"OWEventWindow0");
  WinMessageWindow window;
  ASSERT_EQ(classOf(window), L"OWEventWindow0");
  EXPECT_EQ(window.post(count, &calls_), 0U);
  runMessageLoop();
  EXPECT_EQ(calls_, 1);
}

TEST_F(WinMessageWindowTest, AClassThatIsInUseServesAsItIs) {
  registerForeignClass(L"OWEventWindow0");
  const HWND other = CreateWindowExW(0, L"OWEventWindow0", L"", 0, 0, 0, 0, 0, HWND_MESSAGE,
                                     nullptr, static_cast<HINSTANCE>(moduleHandle()), nullptr);
  ASSERT_NE(other, nullptr);
  const WinMessageWindow window;
  EXPECT_NE(windowOf(window), nullptr);
  DestroyWindow(other);
}

TEST_F(WinMessageWindowTest, APostedFunctionRunsOnceWhenTheLoopTurns) {
  WinMessageWindow window;
  EXPECT_EQ(window.post(count, &calls_), 0U);
  std::thread([&] { EXPECT_EQ(window.post(count, &calls_), 0U); }).join();
  EXPECT_EQ(calls_, 0);
  runMessageLoop();
  EXPECT_EQ(calls_, 2);
  runMessageLoop();
  EXPECT_EQ(calls_, 2);
}

TEST_F(WinMessageWindowTest, NoExceptionLeavesTheWindowProcedure) {
  WinMessageWindow window;
  window.post([](void*) { throw std::runtime_error("100% broken"); }, nullptr);
  window.post([](void*) { throw 1; }, nullptr);  // NOLINT(*-exception-baseclass)
  window.post(count, &calls_);
  runMessageLoop();
  EXPECT_EQ(calls_, 1);
  EXPECT_EQ(log_.lines("ERR"),
            (std::vector<std::string>{"100% broken", "an exception of an unknown kind"}));
}

TEST_F(WinMessageWindowTest, WhatAWindowHasNotRunDiesWithIt) {
  {
    WinMessageWindow window;
    window.post(count, &calls_);
  }
  runMessageLoop();
  EXPECT_EQ(calls_, 0);
}

TEST_F(WinMessageWindowTest, APostToALostWindowGivesTheCode) {
  WinMessageWindow window;
  DestroyWindow(windowOf(window));
  EXPECT_EQ(window.post(count, &calls_), DWORD{ERROR_INVALID_WINDOW_HANDLE});
}

TEST_F(WinMessageWindowTest, AWindowMayGoInsideACallOfItsOwn) {
  auto window = std::make_unique<WinMessageWindow>();
  window->post(
      [](void* argument) { static_cast<std::unique_ptr<WinMessageWindow>*>(argument)->reset(); },
      &window);
  runMessageLoop();
  EXPECT_EQ(window, nullptr);
}

TEST_F(WinMessageWindowTest, OtherMessagesGoToThePlatform) {
  const WinMessageWindow window;
  EXPECT_EQ(SendMessageW(windowOf(window), WM_GETTEXTLENGTH, 0, 0),
            static_cast<LRESULT>(titleOf(window).size()));
}

}  // namespace
}  // namespace Vantrel::Web
