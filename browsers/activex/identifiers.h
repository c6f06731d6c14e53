// The names under which the control is known to the system. They are in the registries and pages of
// users and never change; orvane_web.idl has them a second time, and a test compares.
#pragma once

#include <guiddef.h>

namespace Vantrel::Web::ActiveX {

constexpr GUID kTypeLibraryId = {
    0x36B9C4ED, 0x8E71, 0x46A7, {0x82, 0x27, 0x8F, 0xBD, 0x96, 0x2E, 0xD1, 0x69}};
constexpr unsigned short kTypeLibraryMajor = 2;
constexpr unsigned short kTypeLibraryMinor = 8;
constexpr unsigned long kTypeLibraryLocale = 1033;

constexpr GUID kDispatchInterfaceId = {
    0xF0D8624E, 0x30EE, 0x422E, {0xAB, 0xD8, 0xC3, 0xE9, 0x7A, 0xB6, 0x04, 0xBC}};
constexpr GUID kEventInterfaceId = {
    0xE37768F5, 0xFDB4, 0x40C2, {0xB0, 0x06, 0x74, 0x6B, 0x52, 0xDE, 0x07, 0x36}};
constexpr GUID kControlClassId = {
    0xE9378289, 0x952A, 0x49ED, {0x95, 0xA3, 0xF5, 0x14, 0x1E, 0x4E, 0x8B, 0xD6}};
constexpr GUID kPropertyPageClassId = {
    0x5F802412, 0xDCD9, 0x4FE1, {0x89, 0xD9, 0x9B, 0x01, 0x36, 0xCE, 0xB0, 0x1D}};

constexpr wchar_t kControlProgId[] = L"Orvane.OrvaneWebCtrl.1";
constexpr wchar_t kPropertyPageProgId[] = L"Orvane.OrvaneWebPropPage.1";

// What a container learns of the control before it makes one: OLEMISC_RECOMPOSEONRESIZE,
// CANTLINKINSIDE, INSIDEOUT, ACTIVATEWHENVISIBLE and SETCLIENTSITEFIRST.
constexpr unsigned long kControlMiscStatus = 0x20191;

}  // namespace Vantrel::Web::ActiveX
