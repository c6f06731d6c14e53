// The names under which the probe control is known to its tests; nobody else ever sees them.
#pragma once

#include <guiddef.h>

namespace Vantrel::Web::Container {

constexpr wchar_t kProbeLibrary[] = L"ov_probe_control.dll";
constexpr CLSID kProbeClassId = {
    0x2B1F3C60, 0x5A0E, 0x4C0B, {0x9C, 0x41, 0x7E, 0x55, 0x10, 0x0A, 0x31, 0x01}};
constexpr IID kProbeEventsId = {
    0x2B1F3C60, 0x5A0E, 0x4C0B, {0x9C, 0x41, 0x7E, 0x55, 0x10, 0x0A, 0x31, 0x02}};
constexpr DISPID kProbeEvent = 100;

}  // namespace Vantrel::Web::Container
