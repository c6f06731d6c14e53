// One control as a container holds it: made by its class object, given a site and the parameters of
// its element, called through IDispatch as a script engine calls, and ended. Thread of the
// container's apartment.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <oleidl.h>

#include <map>
#include <string>
#include <vector>

#include "dialogs/dialog_com_win.h"
#include "tests/container/counting_container_win.h"
#include "tests/container/event_sink_win.h"
#include "tests/container/property_bag_win.h"
#include "tests/container/site_win.h"
#include "tests/container/variant_win.h"

namespace Vantrel::Web::Container {

// What one call through IDispatch ended with.
struct CallResult {
  HRESULT result = E_UNEXPECTED;
  Variant value;
  // Of DISP_E_EXCEPTION: what the script is told.
  std::string error;
  unsigned code = 0;
  // Of a wrong argument: its place, counted from the last one.
  UINT wrong = 0;

  bool accepted() const { return SUCCEEDED(result); }
};

struct ControlStart {
  Parameters parameters = {};
  SiteSettings site = {};
  PageAddress address = {};
  bool giveSite = true;
  bool load = true;
};

class Control {
 public:
  // Made, given its site and loaded. Throws std::runtime_error when there is no control.
  Control(CountingContainer& container, REFCLSID classId, const ControlStart& start = {});
  // Of a control that somebody else has made, whose one reference comes with it.
  Control(CountingContainer& container, IUnknown* made, const ControlStart& start = {});
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  ~Control();

  IUnknown* unknown() const { return unknown_; }
  Site& site() { return site_; }
  PropertyBag& bag() { return bag_; }
  // What the load ended with.
  HRESULT loaded() const { return loaded_; }
  HRESULT load();

  template <typename Interface>
  HRESULT query(ComPointer<Interface>& result) {
    return unknown_->QueryInterface(__uuidof(Interface), result.putVoid());
  }

  // The members by their names.
  DISPID idOf(const std::string& name);
  CallResult call(const std::string& name, const Variants& arguments = {});
  CallResult get(const std::string& name);
  CallResult set(const std::string& name, const Variant& value);
  // By number, with flags of the caller's choice.
  CallResult invoke(DISPID id, WORD flags, const Variants& arguments);

  // Connects the sink to the control's events of that interface; the connection's number.
  HRESULT connect(EventSink& sink, REFIID events, DWORD& connection);
  HRESULT disconnect(REFIID events, DWORD connection);

  // Shows it in its site, with or without a window as the site allows.
  HRESULT activate();
  HRESULT deactivate();

  // Ends it as a container does: closed, its site taken back, released. `others` are references
  // that somebody else still holds then.
  void end(int others = 0);
  // Only the last part: as a container does that is itself going down.
  void release(int others = 0);
  bool ended() const { return unknown_ == nullptr; }

 private:
  CountingContainer& container_;
  Site& site_;
  PropertyBag& bag_;
  IUnknown* unknown_ = nullptr;
  HRESULT loaded_ = E_UNEXPECTED;
  std::map<std::string, DISPID> ids_;
};

}  // namespace Vantrel::Web::Container
