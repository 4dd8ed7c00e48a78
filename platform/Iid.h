// The interface id of each platform interface, found by type.
#pragma once

#include <guiddef.h>

/// `iidOf<IWDFDevice>` is the interface id of IWDFDevice; each header that declares an interface
/// gives its value, so an interface without one fails to compile where it is asked for.
template <class Interface>
inline constexpr GUID iidOf = Interface::hasNoInterfaceId;

template <>
inline constexpr GUID iidOf<struct IUnknown> = {
    0x00000000, 0x0000, 0x0000, {0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

template <>
inline constexpr GUID iidOf<struct IClassFactory> = {
    0x00000001, 0x0000, 0x0000, {0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
