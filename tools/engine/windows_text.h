// Texts as Windows wants them, for the Windows side of the browser. No std::wstring: the host
// system's C++ library has wider characters than Windows.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace engine {

// With a NUL at its end.
using WideText = std::vector<WCHAR>;

inline WideText wide(const std::string& text) {
  const int size = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
  WideText result(static_cast<size_t>(size));
  MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, result.data(), size);
  return result;
}

// The drive Z: is the Unix root in every Wine prefix.
inline WideText windowsPath(const std::string& unixPath) {
  std::string path = "Z:" + unixPath;
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  return wide(path);
}

}  // namespace engine
