#include "browsers/activex/type_library_win.h"

#include <oleauto.h>

#include "browsers/activex/module_resources_win.h"
#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web::ActiveX {

HRESULT loadTypeInfo(REFGUID id, ITypeInfo** info) {
  *info = nullptr;
  ComPointer<ITypeLib> library;
  const HRESULT loaded = LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, library.put());
  return SUCCEEDED(loaded) ? library->GetTypeInfoOfGuid(id, info) : loaded;
}

}  // namespace Vantrel::Web::ActiveX
