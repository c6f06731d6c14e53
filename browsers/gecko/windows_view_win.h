// The view on Windows: it subclasses the window that the browser gives an element, paints the
// element's picture or, for a transparent element, a snapshot of what lies behind it, and takes
// drops of files.
//
// Owned by an ovOrvaneWebView; the browser's thread only, which is the window's.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "browsers/gecko/orvane_web_view.h"
#include "browsers/shared/drop_target_win.h"
#include "browsers/shared/picture_win.h"

namespace Vantrel::Web::Gecko {

class ovWindowsOrvaneWebViewImpl : public ovIOrvaneWebViewImpl, private DragReceiver {
 public:
  ovWindowsOrvaneWebViewImpl() = default;
  // Gives the window its former procedure back and takes no drops any more.
  ~ovWindowsOrvaneWebViewImpl() override;
  ovWindowsOrvaneWebViewImpl(const ovWindowsOrvaneWebViewImpl&) = delete;
  ovWindowsOrvaneWebViewImpl& operator=(const ovWindowsOrvaneWebViewImpl&) = delete;

  bool init(NPWindow* window, NPP instance, bool dropEnabled, bool allowDirectories,
            bool allowMultiple) override;
  void destroy() override {}
  void setImage(const unsigned char* data, uint32_t length) override;
  void setDelegate(ovIOrvaneWebViewDelegate* delegate) override { delegate_ = delegate; }
  void handleDrop(const NPVariant*) override {}
  int16_t handleEvent(void*) override { return 0; }
  void markSession(bool) override;
  void updateWindow(NPWindow* window) override;
  void setBrowserHost(const std::string& text) override { browserHost_ = text; }
  void setTransparent(bool flag) override { transparent_ = flag; }

 private:
  // The view that has subclassed the window; null for none.
  static ovWindowsOrvaneWebViewImpl* viewOf(HWND window);
  static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  HRESULT dragEnter(IDataObject*) override { return S_OK; }
  void dragOver() override;
  void dragLeave() override;
  HRESULT drop(IDataObject* data, const DWORD* effect) override;

  void subclass();
  void repaint() const;
  void releaseWindow();
  LRESULT onPaint(UINT message);
  void displayImage(HDC dc) const;
  void captureBackground(RECT rect);
  void tellDrop(const OrvaneWebIDropTarget& target, std::vector<std::string> files);

  HWND pluginWindow_ = nullptr;
  WNDPROC formerProc_ = nullptr;
  OwnedDropTarget dropTarget_;
  HBITMAP background_ = nullptr;
  std::unique_ptr<Picture> image_;
  std::string browserHost_;
  bool dropEnabled_ = false;
  bool dropAllowDirectories_ = false;
  bool dropAllowMultiple_ = false;
  bool backgroundReady_ = false;
  ovIOrvaneWebViewDelegate* delegate_ = nullptr;
  bool transparent_ = false;
};

}  // namespace Vantrel::Web::Gecko
