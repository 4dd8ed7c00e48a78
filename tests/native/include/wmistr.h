// Requests that the tracing system makes of a provider.
#pragma once

#include <windows.h>

enum WMIDPREQUESTCODE : int { WMI_ENABLE_EVENTS = 4, WMI_DISABLE_EVENTS = 5 };
