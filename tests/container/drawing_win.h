// What a control draws through IViewObject, as pixels. Thread of the apartment.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Vantrel::Web::Container {

struct Drawing {
  HRESULT result = E_UNEXPECTED;
  int width = 0;
  int height = 0;
  // 0x00RRGGBB, row by row from above.
  std::vector<uint32_t> pixels;

  uint32_t at(int x, int y) const;
  // Writes it as a PNG file; false when the platform cannot.
  bool save(const std::wstring& file) const;
};

// The control's content drawn onto a ground of that colour.
Drawing drawContent(IUnknown* control, int width, int height, uint32_t ground);

}  // namespace Vantrel::Web::Container
