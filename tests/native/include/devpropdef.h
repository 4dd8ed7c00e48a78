// Device properties.
#pragma once

#include <guiddef.h>

using DEVPROPID = ULONG;
using DEVPROPTYPE = ULONG;

struct DEVPROPKEY {
  GUID fmtid;
  DEVPROPID pid;
};

inline constexpr DEVPROPTYPE DEVPROP_TYPE_STRING = 0x12;
