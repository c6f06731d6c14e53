// The type library, which travels in this library.
#pragma once

#include <windows.h>
#include <oaidl.h>

namespace Vantrel::Web::ActiveX {

// The description of one of its interfaces or classes, with a reference for the caller.
HRESULT loadTypeInfo(REFGUID id, ITypeInfo** info);

}  // namespace Vantrel::Web::ActiveX
