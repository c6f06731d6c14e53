// The hidden window for real: its names, its class, its messages.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/log_recorder.h"
#include "tests/support/message_loop.h"
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

void count(void* argument) {
  ++*static_cast<int*>(argument);
}

class WinMessageWindowTest : public testing::Test {
 protected:
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
