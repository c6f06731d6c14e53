// An element's life through the library, again and again, with another call of the platform failing
// each time, until none is left: its window and picture, a drop, dialogs and reads. Whatever fails,
// nothing leaks, the window is free afterwards, and the next element works.
#include <gmock/gmock.h>

#include <windows.h>
#include <ole2.h>
#include <shellapi.h>
#include <shlobj.h>
#include <sys/stat.h>
#include <urlmon.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include "tests/host/process_state.h"
#include "tests/plugin/drop_fixture.h"
#include "tests/plugin/red_bitmap.h"
#include "tests/support/failing_imports_win.h"
#include "tests/support/fake_file_dialogs_win.h"

namespace Vantrel::Web {
namespace {

using namespace Gdiplus::DllExports;
using TestSupport::FailingImports;
using TestSupport::FakeFileDialogs;

constexpr char kUrl[] = "http://x/red.bmp";
constexpr int kMostCalls = 2000;  // more than any piece of work makes
constexpr auto kFailed = static_cast<HRESULT>(0x8007000E);

class ElementTortureTest : public DropTest {
 protected:
  void SetUp() override {
    DropTest::SetUp();
    DestroyWindow(child_);
    function_.emplace(host().page.makeFunction("page"));
    dialogs_.emplace();
    dialogs_->chosen = {toWide(path("ö.txt"))};
    dialogs_->fails = [](const std::string&) { return FailingImports::fails("a dialog object"); };
    imports_.emplace(static_cast<HMODULE>(const_cast<void*>(host().module())));
  }
  void TearDown() override {
    imports_.reset();
    dialogs_.reset();
    function_.reset();
    DropTest::TearDown();
  }

  void failDrawing() {
    OV_FAILING_IMPORT(*imports_, BeginPaint, nullptr);
    OV_FAILING_IMPORT(*imports_, BitBlt, FALSE);
    OV_FAILING_IMPORT(*imports_, CreateCompatibleBitmap, nullptr);
    OV_FAILING_IMPORT(*imports_, CreateCompatibleDC, nullptr);
    OV_FAILING_IMPORT(*imports_, CreateDIBSection, nullptr);
    OV_FAILING_IMPORT(*imports_, CreateStreamOnHGlobal, kFailed);
    OV_FAILING_IMPORT(*imports_, GdiAlphaBlend, FALSE);
    OV_FAILING_IMPORT(*imports_, GetClientRect, FALSE);
    OV_FAILING_IMPORT(*imports_, GetDC, nullptr);
    OV_FAILING_IMPORT(*imports_, GetWindowRect, FALSE);
    OV_FAILING_IMPORT(*imports_, RegisterDragDrop, kFailed);
    OV_FAILING_IMPORT(*imports_, SelectObject, nullptr);
    OV_FAILING_IMPORT(*imports_, SetPropW, FALSE);
    OV_FAILING_IMPORT(*imports_, SetWindowLongPtrW, 0);
    OV_FAILING_IMPORT(*imports_, StretchBlt, FALSE);
  }
  void failDecoding() {
    constexpr auto kNoMemory = Gdiplus::OutOfMemory;
    OV_FAILING_IMPORT(*imports_, GdipCreateBitmapFromScan0, kNoMemory);
    OV_FAILING_IMPORT(*imports_, GdipCreateBitmapFromStream, kNoMemory);
    OV_FAILING_IMPORT(*imports_, GdipDrawImageRectI, kNoMemory);
    OV_FAILING_IMPORT(*imports_, GdipGetImageFlags, kNoMemory);
    OV_FAILING_IMPORT(*imports_, GdipGetImageGraphicsContext, kNoMemory);
    OV_FAILING_IMPORT(*imports_, GdipGetImageHeight, kNoMemory);
    OV_FAILING_IMPORT(*imports_, GdipGetImageWidth, kNoMemory);
  }
  void failFilesAndDialogs() {
    OV_FAILING_IMPORT(*imports_, CoCreateInstance, kFailed);
    OV_FAILING_IMPORT(*imports_, CreateFileW, INVALID_HANDLE_VALUE);
    OV_FAILING_IMPORT(*imports_, DragQueryFileW, 0u);
    OV_FAILING_IMPORT(*imports_, FindMimeFromData, kFailed);
    OV_FAILING_IMPORT(*imports_, GetFileAttributesExW, FALSE);
    OV_FAILING_IMPORT(*imports_, ReadFile, FALSE);
    OV_FAILING_IMPORT(*imports_, SetFilePointerEx, FALSE);
    OV_FAILING_IMPORT(*imports_, SHCreateShellItem, kFailed);
    OV_FAILING_IMPORT(*imports_, SHGetFolderLocation, kFailed);
    OV_FAILING_IMPORT(*imports_, _wstat64, -1);
  }

  // An element in a window of its own, which is new for each: a call that fails at the end may
  // leave the library's procedure in it.
  void life(const std::function<void(Instance&)>& part) {
    child_ = CreateWindowExW(0, L"ViewTestWindow", L"", WS_CHILD | WS_VISIBLE, 10, 10, kSize, kSize,
                             top_, nullptr, nullptr, nullptr);
    {
      Instance instance(host(), parameters_);
      instance.script();
      setWindow(instance);
      instance.set("eventHandler", function_->value());
      part(instance);
      instance.set("eventHandler", Value::null());
      instance.end(kept_);
      kept_ = {};
    }
    DestroyWindow(child_);
  }

  // `part` gives whether all of it succeeded. A call fails in the whole life of the element, or
  // only in the part.
  void torture(const std::function<bool(Instance&)>& part, bool onlyPart = false) {
    const auto once = [&](const std::function<bool(Instance&)>& work) {
      bool whole = false;
      life([&](Instance& instance) { whole = work(instance); });
      (*function_)->calls.clear();
      dialogs_->calls.clear();
      return whole;
    };
    const auto failing = [&](int n) {
      const char* call = nullptr;
      if (!onlyPart) return imports_->runWithFailing(n, [&] { once(part); });
      once([&](Instance& instance) {
        call = imports_->runWithFailing(n, [&] { part(instance); });
        return true;
      });
      return call;
    };
    // Once with the failure and once without.
    const auto pair = [&](int n) {
      const char* const call = failing(n);
      EXPECT_TRUE(once(part)) << n << ": " << (call != nullptr ? call : "none");
      return call;
    };
    const auto use = [] { return std::pair(Host::handleCount(), graphicsObjects()); };
    for (int round = 0; round < 3; ++round) ASSERT_TRUE(once(part));
    int failures = 0;
    for (int n = 1; n <= kMostCalls && !HasFailure(); ++n) {
      // The first exception of a process takes handles that stay.
      pair(n);
      const auto before = use();
      const char* const call = pair(n);
      const std::string where = std::to_string(n) + ": " + (call != nullptr ? call : "none");
      EXPECT_EQ(use(), before) << where;
      EXPECT_TRUE(host().faults.empty()) << where;
      if (call == nullptr) {
        EXPECT_LT(0, failures);
        return;
      }
      ++failures;
    }
    if (!HasFailure()) FAIL() << "it never ends";
  }

  std::vector<Host::Parameter> parameters_ = {{"drop-mode", "callback"}, {"image", kUrl}};
  std::optional<Host::PageReference> function_;
  std::optional<FakeFileDialogs> dialogs_;
  std::optional<FailingImports> imports_;
  // What the present life leaves behind by design.
  Kept kept_;
};

TEST_F(ElementTortureTest, APictureIsShown) {
  failDrawing();
  failDecoding();
  const std::string picture = redBitmap(kSize / 2, kSize / 2);
  torture([&](Instance& instance) {
    sendPicture(instance, kUrl, picture);
    painted(true);
    return painted() == kRed;
  });
}

TEST_F(ElementTortureTest, WhatLiesBehindIsTaken) {
  failDrawing();
  // The host that hides the element for the moment.
  host().userAgent = "Chrome/50";
  parameters_ = {{"transparent", "yes"}};
  torture([&](Instance& instance) {
    NPWindow shown = window();
    shown.x = shown.y = 100;  // a place of the page where nothing of ours is
    host().plugin().setwindow(instance.npp(), &shown);
    return painted(true) == kBehind;
  });
}

TEST_F(ElementTortureTest, ADropIsTaken) {
  failDrawing();
  failFilesAndDialogs();
  torture([&](Instance&) {
    if (GetPropW(child_, L"OleDropTargetInterface") == nullptr) return false;
    drop({"a.txt"});
    const auto& calls = (*function_)->calls;
    return calls.size() == 2 &&
           calls[1].arguments.at(1).text.find("text/plain") != std::string::npos;
  });
}

TEST_F(ElementTortureTest, AFileIsChosenAndRead) {
  failFilesAndDialogs();
  torture([&](Instance& instance) {
    const std::string chosen =
        instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(false)})
            .value.text;
    instance.call("runOpenFolderDialog", {Value::boolean(false)});
    instance.call("runSaveFileDialog", {text("x.txt")});
    const bool whole = isApproved(instance, "ö.txt");
    const Value chunk = instance
                            .call("readChunkAsArrayBuffer",
                                  {text(path("ö.txt")), Value::number(1), Value::number(2)})
                            .value;
    return !chosen.empty() && whole && chunk == text("data:text/plain;base64,ZWw=");
  });
}

// The library's own memory, that of its standard library among it.
TEST_F(ElementTortureTest, MemoryEndsWhileAFileIsDroppedAndRead) {
  OV_FAILING_IMPORT(*imports_, malloc, nullptr);
  torture(
      [&](Instance& instance) {
        drop({"a.txt"});
        const bool told = (*function_)->calls.size() == 2;
        return isApproved(instance, "a.txt") && told;
      },
      true);
}

TEST_F(ElementTortureTest, MemoryEndsWhileAFileIsChosen) {
  OV_FAILING_IMPORT(*imports_, malloc, nullptr);
  torture(
      [&](Instance& instance) {
        return !instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(true)})
                    .value.text.empty();
      },
      true);
}

TEST_F(ElementTortureTest, MemoryEndsWhileAPictureIsShown) {
  OV_FAILING_IMPORT(*imports_, malloc, nullptr);
  const std::string picture = redBitmap(kSize / 2, kSize / 2);
  torture(
      [&](Instance& instance) {
        sendPicture(instance, kUrl, picture);
        return painted() == kRed;
      },
      true);
}

}  // namespace
}  // namespace Vantrel::Web
