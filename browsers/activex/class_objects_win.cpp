// What COM asks the library itself for: the class objects, and whether it may be unloaded.

#include "browsers/activex/class_objects_win.h"

#include <new>

#include "browsers/activex/com_base_win.h"
#include "browsers/activex/identifiers.h"
#include "browsers/activex/module_count_win.h"
#include "browsers/activex/orvane_web_ctrl_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

namespace {

class ClassObject final : public CountedObject<IClassFactory> {
 public:
  explicit ClassObject(CreateObject create) : create_(create) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    // Who makes an object a part of himself has to take its own count.
    if (outer != nullptr && id != IID_IUnknown) return CLASS_E_NOAGGREGATION;
    return create_(outer, id, object);
  }

  HRESULT STDMETHODCALLTYPE LockServer(WINBOOL lock) override {
    if (lock != FALSE) {
      lockModule();
    } else {
      unlockModule();
    }
    return S_OK;
  }

 private:
  const CreateObject create_;
};

struct ServedClass {
  const GUID& id;
  CreateObject create;
};

constexpr ServedClass kClasses[] = {
    {kControlClassId, createControl},
    {kPropertyPageClassId, createPropertyPage},
};

}  // namespace

HRESULT createControl(IUnknown* outer, REFIID id, void** object) {
  return guarded<HRESULT>(E_OUTOFMEMORY, [=] {
    IUnknown& control = (new COrvaneWebCtrl(outer))->inner();
    const HRESULT result = control.QueryInterface(id, object);
    control.Release();
    return result;
  });
}

}  // namespace Vantrel::Web::ActiveX

// STDAPI's own declarations have no visibility; the library's .def file exports the names.
STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** object) {
  using namespace Vantrel::Web::ActiveX;
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  for (const ServedClass& served : kClasses) {
    if (classId != served.id) continue;
    auto* const classObject = new (std::nothrow) ClassObject(served.create);
    if (classObject == nullptr) return E_OUTOFMEMORY;
    const HRESULT result = classObject->QueryInterface(id, object);
    classObject->Release();
    return result;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return Vantrel::Web::ActiveX::isModuleIdle() ? S_OK : S_FALSE;
}
