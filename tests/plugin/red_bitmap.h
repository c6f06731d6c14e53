// A picture for tests, red all over.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>

namespace Vantrel::Web {

inline constexpr COLORREF kRed = RGB(255, 0, 0);

// A bitmap file of one bit for each point.
inline std::string redBitmap(LONG width, LONG height) {
  constexpr LONG kBitsInRowStep = 32;
  constexpr RGBQUAD kColours[] = {{255, 255, 255, 0}, {0, 0, 255, 0}};
  const auto row = static_cast<size_t>((width + kBitsInRowStep - 1) / kBitsInRowStep * 4);
  BITMAPFILEHEADER file = {};
  BITMAPINFOHEADER info = {};
  file.bfType = 0x4D42;
  file.bfOffBits = sizeof file + sizeof info + sizeof kColours;
  info.biSize = sizeof info;
  info.biWidth = width;
  info.biHeight = height;
  info.biPlanes = 1;
  info.biBitCount = 1;
  std::string data(file.bfOffBits + row * static_cast<size_t>(height), '\xFF');
  file.bfSize = static_cast<DWORD>(data.size());
  std::memcpy(data.data(), &file, sizeof file);
  std::memcpy(data.data() + sizeof file, &info, sizeof info);
  std::memcpy(data.data() + sizeof file + sizeof info, kColours, sizeof kColours);
  return data;
}

}  // namespace Vantrel::Web
