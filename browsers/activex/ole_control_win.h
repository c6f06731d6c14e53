// What every control is, whatever it is for: an object with a count, that may be part of another
// one, and the interfaces through which a container holds, loads, shows and hears it. What the
// control itself has to do at its events it does in the overridden operations.
//
// Made by the class object, destroyed by its last Release; the apartment's thread only, but for the
// count.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <atomic>
#include <memory>
#include <string>

#include "browsers/activex/module_count_win.h"
#include "browsers/activex/view_part_win.h"

namespace Vantrel::Web::ActiveX {

// One reading or writing of the control's properties by a container.
class PropertyExchange {
 public:
  virtual ~PropertyExchange() = default;
  // The property's text, which a loading exchange replaces; empty for one that is missing.
  virtual void exchangeText(const wchar_t* name, std::wstring& value) = 0;

 protected:
  PropertyExchange() = default;
  PropertyExchange(const PropertyExchange&) = default;
  PropertyExchange& operator=(const PropertyExchange&) = default;
};

class OleControl {
 public:
  // `outer`, the object that this one becomes a part of, may be null.
  explicit OleControl(IUnknown* outer);
  virtual ~OleControl();
  OleControl(const OleControl&) = delete;
  OleControl& operator=(const OleControl&) = delete;

  // The control's own count and look-up, with one reference from the start.
  IUnknown& inner() { return inner_; }
  // The ones that its interfaces show.
  IUnknown& outer() { return *outer_; }

  // The properties come or go. Throws what the control cannot bear; the container gets E_FAIL.
  virtual void doPropExchange(PropertyExchange& exchange) = 0;
  // All properties are to be as in a new control.
  virtual void onResetState();
  // There is a new site, or none any more.
  virtual void onSetClientSite() {}
  // The container wants the picture. Nothing that it throws is told to the container.
  virtual void onDraw(HDC dc, const RECT& bounds) = 0;
  // The window is about to be made.
  virtual void onCreate(CREATESTRUCTW& create) = 0;
  // How large the container wants the control, in hundredths of a millimetre.
  const SIZEL& extent() const { return extent_; }
  void setExtent(const SIZEL& extent) { extent_ = extent; }
  // Where a control that is active without a window is in its container's one; null for any other.
  virtual const RECT* windowlessPlace() const { return nullptr; }
  // The picture has changed. The container hears of it, and may end the control.
  void viewChanged() { view_.sendViewChange(); }
  // The control's own interfaces: one reference, or null.
  virtual void* findInterface(REFIID id) = 0;

 private:
  // 100 by 50 points of a screen with 96 to the inch, until a container says otherwise.
  static constexpr SIZEL kFirstExtent = {2646, 1323};

  class Inner final : public ComBase<IUnknown> {
   public:
    explicit Inner(OleControl& control) : control_(control) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

   private:
    OleControl& control_;
    std::atomic<int32_t> references_ = 1;
  };

  void* find(REFIID id);

  const ModuleReference moduleReference_;
  Inner inner_;
  IUnknown* const outer_;  // no reference: the aggregate owns this part of it
  SIZEL extent_ = kFirstExtent;
  ViewPart view_;
};

}  // namespace Vantrel::Web::ActiveX
