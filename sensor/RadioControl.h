// Radio management: the private I/O control requests.
#pragma once

#include "platform/WdfRequest.h"

namespace stelvane {

class SensorCore;

/// Which value a private read gives.
enum class RadioValue { kCurrent, kPrevious };

/// Fills the request's 4-byte output with a radio state (0 on, 1 off). ERROR_INSUFFICIENT_BUFFER
/// as an HRESULT when the output is shorter. Completing the request is the caller's.
HRESULT ReadRadioState(SensorCore& core, IWDFIoRequest* request, RadioValue which);

/// Takes the request's 4-byte input as the radio state to switch to, or only to remember as the
/// previous one. An input of another length or above 6 does nothing, with success.
HRESULT SetRadioState(SensorCore& core, IWDFIoRequest* request, bool restoreOnly);

}  // namespace stelvane
