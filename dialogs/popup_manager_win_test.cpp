#include "dialogs/popup_manager_win.h"

#include <gtest/gtest.h>

namespace Vantrel::Web {
namespace {

class PopupManagerTest : public testing::Test {
 protected:
  static HWND make(DWORD style, HWND parent) {
    return CreateWindowExW(0, L"STATIC", L"", style, 0, 0, 20, 20, parent, nullptr, nullptr,
                           nullptr);
  }
  ~PopupManagerTest() override {
    DestroyWindow(child_);
    DestroyWindow(popup_);
    DestroyWindow(top_);
  }

  const HWND top_ = make(WS_OVERLAPPEDWINDOW | WS_VISIBLE, nullptr);
  const HWND child_ = make(WS_CHILD | WS_VISIBLE, top_);
  const HWND popup_ = make(WS_POPUP | WS_VISIBLE, top_);
};

TEST_F(PopupManagerTest, AChildWindowStandsForTheWindowItIsIn) {
  const WinPopupMgrImpl manager(child_);
  EXPECT_EQ(manager.owner(), top_);
  EXPECT_TRUE(IsWindowEnabled(top_));
}

TEST_F(PopupManagerTest, AnOwnerThatIsTheTopLevelWindowDisablesNothing) {
  const WinPopupMgrImpl manager(top_);
  EXPECT_EQ(manager.owner(), top_);
  EXPECT_TRUE(IsWindowEnabled(top_));
}

TEST_F(PopupManagerTest, APopupDisablesTheWindowBelowForItsLife) {
  {
    const WinPopupMgrImpl manager(popup_);
    EXPECT_EQ(manager.owner(), popup_);
    EXPECT_FALSE(IsWindowEnabled(top_));
  }
  EXPECT_TRUE(IsWindowEnabled(top_));
}

TEST_F(PopupManagerTest, AWindowThatWasDisabledBeforeStaysSo) {
  EnableWindow(top_, FALSE);
  { const WinPopupMgrImpl manager(popup_); }
  EXPECT_FALSE(IsWindowEnabled(top_));
}

TEST_F(PopupManagerTest, WithoutAWindowTheActiveOneIsTaken) {
  SetActiveWindow(top_);
  const WinPopupMgrImpl manager(nullptr);
  EXPECT_EQ(manager.owner(), GetLastActivePopup(top_));
}

TEST_F(PopupManagerTest, AThreadWithoutWindowsTakesTheForegroundWindow) {
  HWND owner = top_;
  const HANDLE thread = CreateThread(
      nullptr, 0,
      [](void* result) -> DWORD {
        *static_cast<HWND*>(result) = WinPopupMgrImpl(nullptr).owner();
        return 0;
      },
      &owner, 0, nullptr);
  ASSERT_NE(thread, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  EXPECT_EQ(owner, GetForegroundWindow());
}

}  // namespace
}  // namespace Vantrel::Web
