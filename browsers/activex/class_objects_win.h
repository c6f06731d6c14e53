// The class objects that the library serves, and how they make their objects.
#pragma once

#include <windows.h>
#include <unknwn.h>

namespace Vantrel::Web::ActiveX {

// Makes an object, as a part of `outer` if that is not null, and hands out one of its interfaces.
// Lets no exception out.
using CreateObject = HRESULT (*)(IUnknown* outer, REFIID id, void** object);

HRESULT createControl(IUnknown* outer, REFIID id, void** object);
HRESULT createPropertyPage(IUnknown* outer, REFIID id, void** object);

}  // namespace Vantrel::Web::ActiveX
