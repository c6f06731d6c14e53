// The handle of the module that this code is linked into: the library, or a test program.
#pragma once

namespace Vantrel::Web {

void* moduleHandle();

}  // namespace Vantrel::Web
