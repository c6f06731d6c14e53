// The library itself: where its file is and what texts it carries. Any thread.
#pragma once

#include <windows.h>

#include <string>

namespace Vantrel::Web::ActiveX {

// Numbers of resources, which the library's .rc file has too.
constexpr unsigned kNameText = 1;  // also of the toolbox bitmap and of the type library
constexpr unsigned kPageNameText = 2;
constexpr unsigned kPageResource = 200;  // the page's dialog, and the text of its caption

HINSTANCE moduleInstance();

// The full path of the library's file. Throws std::runtime_error if the system does not tell it.
std::wstring modulePath();

// An empty text if there is none of that number.
std::wstring moduleText(unsigned number);

}  // namespace Vantrel::Web::ActiveX
