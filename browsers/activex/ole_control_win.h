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

#include "browsers/activex/class_part_win.h"
#include "browsers/activex/events_part_win.h"
#include "browsers/activex/in_place_part_win.h"
#include "browsers/activex/object_part_win.h"
#include "browsers/activex/persistence_part_win.h"
#include "browsers/activex/property_exchange_win.h"
#include "browsers/activex/view_part_win.h"

namespace Vantrel::Web::ActiveX {

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

  ObjectPart& object() { return object_; }
  InPlacePart& inPlace() { return inPlace_; }
  PersistencePart& persistence() { return persistence_; }
  EventsPart& events() { return events_; }

  // The properties come or go. What it throws is logged, and the container gets E_FAIL.
  virtual void doPropExchange(PropertyExchange& exchange);
  // All properties are to be as in a new control.
  virtual void onResetState();
  // There is a new site, or none any more.
  virtual void onSetClientSite() {}
  // The picture is to be painted.
  virtual void onDraw(HDC dc, const RECT& bounds) = 0;
  // The window is about to be made.
  virtual void onCreate(CREATESTRUCTW& create) = 0;
  // How large the container wants the control, in hundredths of a millimetre.
  const SIZEL& extent() const { return extent_; }
  void setExtent(const SIZEL& extent) { extent_ = extent; }
  // Where a control that is active without a window is in its container's one; null for any other.
  const RECT* windowlessPlace() const;
  // The picture has changed. The container hears of it, and may end the control.
  void viewChanged();
  // Who takes drags over the control; may be null.
  virtual IDropTarget* dropTarget() = 0;
  // The control's own interfaces; null for one that it has not.
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
  ObjectPart object_;
  InPlacePart inPlace_;
  PersistencePart persistence_;
  EventsPart events_;
  ClassPart class_;
  ViewPart view_;
};

}  // namespace Vantrel::Web::ActiveX
