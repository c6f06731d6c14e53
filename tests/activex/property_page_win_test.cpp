// The control's property page, alone and in the system's frame.
#include <gmock/gmock.h>

#include <windows.h>
#include <olectl.h>

#include <string>

#include "tests/activex/activex_fixture_win.h"
#include "tests/support/dialog_driver_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using TestSupport::DialogDriver;

constexpr RECT kPlace = {5, 7, 305, 207};

class PropertyPageTest : public ActiveXTest {
 protected:
  void SetUp() override {
    ActiveXTest::SetUp();
    ASSERT_EQ(getClassObject(kPropertyPageClassId, IID_IClassFactory, factory_.putVoid()), S_OK);
    ASSERT_EQ(factory_->CreateInstance(nullptr, IID_IPropertyPage, page_.putVoid()), S_OK);
    parent_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                              nullptr, nullptr, nullptr);
    ASSERT_NE(parent_, nullptr);
  }
  void TearDown() override {
    page_.reset();
    factory_.reset();
    EXPECT_EQ(GetWindow(parent_, GW_CHILD), nullptr);
    DestroyWindow(parent_);
    ActiveXTest::TearDown();
  }

  HWND shown() const { return GetWindow(parent_, GW_CHILD); }

  ComPointer<IClassFactory> factory_;
  ComPointer<IPropertyPage> page_;
  HWND parent_ = nullptr;
};

std::wstring textOf(HWND window) {
  wchar_t text[64] = L"";
  GetWindowTextW(window, text, 64);
  return text;
}

TEST_F(PropertyPageTest, ItTellsItsCaptionAndItsSize) {
  PROPPAGEINFO info = {};
  info.cb = sizeof info;
  ASSERT_EQ(page_->GetPageInfo(&info), S_OK);
  EXPECT_STREQ(info.pszTitle, L"General");
  EXPECT_EQ(info.pszDocString, nullptr);
  EXPECT_EQ(info.pszHelpFile, nullptr);
  CoTaskMemFree(info.pszTitle);
  // 250 by 110 units of the dialog's font, as any of its windows counts them.
  page_->Activate(parent_, &kPlace, FALSE);
  RECT units = {0, 0, 250, 110};
  MapDialogRect(shown(), &units);
  page_->Deactivate();
  EXPECT_EQ(info.size.cx, units.right);
  EXPECT_EQ(info.size.cy, units.bottom);
  EXPECT_EQ(page_->GetPageInfo(nullptr), E_POINTER);
}

TEST_F(PropertyPageTest, ItShowsOneTextWhereTheFrameWantsIt) {
  ASSERT_EQ(page_->Activate(parent_, &kPlace, FALSE), S_OK);
  const HWND dialog = shown();
  ASSERT_NE(dialog, nullptr);
  EXPECT_FALSE(IsWindowVisible(dialog));
  EXPECT_EQ(page_->Show(SW_SHOW), S_OK);
  EXPECT_TRUE(IsWindowVisible(dialog));
  RECT rect = {};
  GetWindowRect(dialog, &rect);
  EXPECT_EQ(rect.right - rect.left, 300);
  EXPECT_EQ(rect.bottom - rect.top, 200);
  const HWND text = GetWindow(dialog, GW_CHILD);
  EXPECT_EQ(textOf(text), L"Orvane Web");
  EXPECT_EQ(GetWindow(text, GW_HWNDNEXT), nullptr);
  RECT units = {7, 7, 243, 103};
  MapDialogRect(dialog, &units);
  GetWindowRect(text, &rect);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
  EXPECT_TRUE(EqualRect(&rect, &units));
  EXPECT_EQ(page_->Show(SW_HIDE), S_OK);
  EXPECT_FALSE(IsWindowVisible(dialog));
  EXPECT_EQ(page_->Deactivate(), S_OK);
  EXPECT_EQ(shown(), nullptr);
}

TEST_F(PropertyPageTest, ItMoves) {
  ASSERT_EQ(page_->Activate(parent_, &kPlace, FALSE), S_OK);
  constexpr RECT kOther = {1, 2, 101, 52};
  EXPECT_EQ(page_->Move(&kOther), S_OK);
  RECT rect = {};
  GetWindowRect(shown(), &rect);
  EXPECT_EQ(rect.right - rect.left, 100);
  EXPECT_EQ(rect.bottom - rect.top, 50);
  page_->Deactivate();
}

TEST_F(PropertyPageTest, CallsOutOfTurnAreRefused) {
  EXPECT_EQ(page_->Show(SW_SHOW), E_UNEXPECTED);
  EXPECT_EQ(page_->Move(&kPlace), E_UNEXPECTED);
  EXPECT_EQ(page_->Deactivate(), E_UNEXPECTED);
  EXPECT_EQ(page_->Activate(parent_, nullptr, FALSE), E_POINTER);
  EXPECT_TRUE(FAILED(page_->Activate(nullptr, &kPlace, FALSE)));
  ASSERT_EQ(page_->Activate(parent_, &kPlace, FALSE), S_OK);
  EXPECT_EQ(page_->Activate(parent_, &kPlace, FALSE), E_UNEXPECTED);
  EXPECT_EQ(page_->Show(SW_MAXIMIZE), E_INVALIDARG);
  EXPECT_EQ(page_->Move(nullptr), E_POINTER);
  EXPECT_EQ(page_->Deactivate(), S_OK);
}

TEST_F(PropertyPageTest, ThereIsNothingToChange) {
  IUnknown* object = factory_.get();
  EXPECT_EQ(page_->SetObjects(1, &object), S_OK);
  EXPECT_EQ(page_->SetObjects(0, nullptr), S_OK);
  EXPECT_EQ(page_->SetObjects(1, nullptr), E_POINTER);
  EXPECT_EQ(page_->IsPageDirty(), S_FALSE);
  EXPECT_EQ(page_->Apply(), S_OK);
  EXPECT_EQ(page_->Help(L"help"), E_NOTIMPL);
  MSG message = {};
  EXPECT_EQ(page_->TranslateAccelerator(&message), S_FALSE);
  EXPECT_EQ(page_->TranslateAccelerator(nullptr), E_POINTER);
}

TEST_F(PropertyPageTest, ItIsNoPartOfAnotherObject) {
  void* object = this;
  EXPECT_EQ(factory_->CreateInstance(factory_.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
}

TEST_F(PropertyPageTest, APageThatGoesTakesItsWindowAlong) {
  ASSERT_EQ(page_->Activate(parent_, &kPlace, FALSE), S_OK);
  page_.reset();
  EXPECT_EQ(shown(), nullptr);
}

TEST_F(PropertyPageTest, AWindowMayGoBeforeItsPage) {
  ASSERT_EQ(page_->Activate(parent_, &kPlace, FALSE), S_OK);
  DestroyWindow(shown());
  EXPECT_EQ(page_->Show(SW_SHOW), E_UNEXPECTED);
  EXPECT_EQ(page_->Activate(parent_, &kPlace, FALSE), S_OK);
  EXPECT_EQ(page_->Deactivate(), S_OK);
}

// The system finds the page through the class object, as it would through the registry.
class PropertyFrameTest : public PropertyPageTest {
 protected:
  void SetUp() override {
    PropertyPageTest::SetUp();
    ASSERT_EQ(CoRegisterClassObject(kPropertyPageClassId, factory_.get(), CLSCTX_INPROC_SERVER,
                                    REGCLS_MULTIPLEUSE, &cookie_),
              S_OK);
  }
  void TearDown() override {
    CoRevokeClassObject(cookie_);
    PropertyPageTest::TearDown();
  }
  HRESULT showFrame() {
    IUnknown* object = factory_.get();
    CLSID page = kPropertyPageClassId;
    return OleCreatePropertyFrame(parent_, 0, 0, L"Orvane Web", 1, &object, 1, &page, 1033, 0,
                                  nullptr);
  }

  DWORD cookie_ = 0;
};

BOOL CALLBACK takeText(HWND window, LPARAM found) {
  if (textOf(window) == L"Orvane Web" && IsWindowVisible(window) != FALSE) {
    *reinterpret_cast<bool*>(found) = true;
  }
  return TRUE;
}

TEST_F(PropertyFrameTest, TheSystemsFrameShowsThePageUntilOk) {
  bool found = false;
  {
    const DialogDriver driver([&found](HWND dialog) {
      EnumChildWindows(dialog, takeText, reinterpret_cast<LPARAM>(&found));
      DialogDriver::accept(dialog);
    });
    EXPECT_EQ(showFrame(), S_OK);
  }
  EXPECT_TRUE(found);
}

TEST_F(PropertyFrameTest, TheSystemsFrameMayBeCancelledAgainAndAgain) {
  for (int round = 0; round < 3; ++round) {
    const DialogDriver driver([](HWND dialog) { DialogDriver::cancel(dialog); });
    EXPECT_EQ(showFrame(), S_OK);
  }
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
