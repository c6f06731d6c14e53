// The control shown in its container's window: with a window of its own or, where the container
// offers it, without one.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <oleidl.h>

#include <array>

#include "browsers/activex/part_win.h"
#include "browsers/shared/drop_target_win.h"
#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web::ActiveX {

class InPlacePart final : public Part<IOleInPlaceObjectWindowless, IOleInPlaceActiveObject> {
 public:
  explicit InPlacePart(OleControl& control) : Part(control) {}
  // The window goes; the container hears nothing more.
  ~InPlacePart() override;

  // Shows the control, if the site takes it; with `forUser` it gets the keyboard as well.
  HRESULT activate(bool forUser);
  void deactivate();
  // Active as before, but not seen.
  void hide();
  // Has the picture painted again.
  void invalidate();

  bool isActive() const { return state_ != State::kPassive; }
  bool isWindowless() const { return windowless_; }
  // The control's own window; null without one.
  HWND window() const { return window_; }
  // Where it stands in the container's window.
  const RECT& place() const { return place_; }

  // IOleWindow
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(WINBOOL) override { return E_NOTIMPL; }

  // IOleInPlaceObjectWindowless
  HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
  HRESULT STDMETHODCALLTYPE UIDeactivate() override;
  HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT place, LPCRECT clip) override;
  HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override { return INPLACE_E_NOTUNDOABLE; }
  HRESULT STDMETHODCALLTYPE OnWindowMessage(UINT message, WPARAM wParam, LPARAM lParam,
                                            LRESULT* result) override;
  HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget** target) override;

  // IOleInPlaceActiveObject
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG) override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(WINBOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnDocWindowActivate(WINBOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, WINBOOL) override {
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE EnableModeless(WINBOOL) override { return S_OK; }

 private:
  enum class State { kPassive, kShown, kForUser };
  // What is told which object has the keyboard: the container's frame, and the window of its
  // document, where that has one of its own. Each may be null.
  using WindowsAround = std::array<ComPointer<IOleInPlaceUIWindow>, 2>;

  static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  HRESULT enter(IOleClientSite& clientSite);
  HRESULT announce(IOleInPlaceSite& site);
  HRESULT openWindow(HWND parent);
  void closeWindow();
  void takeKeyboard();
  // Held for calls in which the container may take the activation back.
  WindowsAround windowsAround() const;
  void paint();

  State state_ = State::kPassive;
  bool windowless_ = false;
  HWND window_ = nullptr;
  bool ownsClass_ = false;  // holds the windows' class, also for one that has gone already
  RECT place_ = {};
  ComPointer<IOleInPlaceSite> site_;
  ComPointer<IOleInPlaceSiteEx> siteEx_;                // the same, if it is one
  ComPointer<IOleInPlaceSiteWindowless> siteNoWindow_;  // the same, if windowless
  WindowsAround around_;
};

}  // namespace Vantrel::Web::ActiveX
