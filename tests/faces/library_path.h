// Where the shipped library stands, seen from the tests of this folder.
#pragma once

namespace Vantrel::Web::Faces {

inline constexpr wchar_t kLibrary[] = L"..\\..\\nporvaneweb.dll";

}  // namespace Vantrel::Web::Faces
