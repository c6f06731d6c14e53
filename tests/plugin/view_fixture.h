// Base of the test cases that give an element a window: a page's window with the element's in it,
// both green behind what the library paints.
#pragma once

#include <windows.h>

#include <string>

#include "tests/host/process_state.h"
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {

inline constexpr COLORREF kBehind = RGB(0, 128, 0);
inline constexpr int kSize = 40;

using Host::graphicsObjects;

class ViewTest : public PluginTest {
 protected:
  void SetUp() override;
  void TearDown() override {
    DestroyWindow(top_);
    PluginTest::TearDown();
  }

  NPWindow window() const {
    NPWindow window = {};
    window.window = child_;
    window.x = window.y = 10;
    window.width = window.height = kSize;
    return window;
  }
  void setWindow(Instance& instance) {
    NPWindow shown = window();
    EXPECT_EQ(host().plugin().setwindow(instance.npp(), &shown), NPERR_NO_ERROR);
  }
  void sendPicture(Instance& instance, const char* url, std::string data,
                   NPReason reason = NPRES_DONE) {
    NPStream stream = {};
    stream.url = url;
    char type[] = "image/bmp";
    uint16_t kind = 0;
    host().plugin().newstream(instance.npp(), type, &stream, 0, &kind);
    host().plugin().write(instance.npp(), &stream, 0, static_cast<int32_t>(data.size()),
                          data.data());
    host().plugin().destroystream(instance.npp(), &stream, reason);
  }
  // The colour in the middle once everything that waits is painted.
  COLORREF painted(bool erase = false) {
    InvalidateRect(child_, nullptr, erase ? TRUE : FALSE);
    UpdateWindow(child_);
    return shown();
  }
  // The colour in the middle as it is.
  COLORREF shown() const {
    const HDC dc = GetDC(child_);
    const COLORREF colour = GetPixel(dc, kSize / 2, kSize / 2);
    ReleaseDC(child_, dc);
    return colour;
  }
  // Makes the element a colour that nobody else paints.
  void fill(COLORREF colour) const {
    const HDC dc = GetDC(child_);
    const HBRUSH brush = CreateSolidBrush(colour);
    const RECT all = {0, 0, kSize, kSize};
    FillRect(dc, &all, brush);
    DeleteObject(brush);
    ReleaseDC(child_, dc);
  }

  HWND top_ = nullptr;
  HWND child_ = nullptr;
};

}  // namespace Vantrel::Web
