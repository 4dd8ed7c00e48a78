// A USB transfer as a request describes it, and the targets that carry it out.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/WdfRequest.h"
#include "platform/WdfTypes.h"
#include "workbench/modem/UsbLink.h"

namespace bench {

class FxBase;
class FxMemory;

struct Transfer {
  const FxBase* target = nullptr;  // the object that formatted the request
  WDF_USB_REQUEST_TYPE type = WdfUsbRequestTypeInvalid;
  ControlRequest control;      // of a control transfer
  FxMemory* memory = nullptr;  // of a write
  std::size_t offset = 0;
  std::size_t length = 0;
};

/// The part of an I/O target that a request is sent to.
class TransferTarget {
 public:
  /// S_OK if the target takes requests now.
  virtual HRESULT AcceptsSend() const = 0;
  /// Carries the transfer out; the completion status.
  virtual HRESULT CarryOut(const Transfer& transfer) = 0;

 protected:
  ~TransferTarget() = default;
};

/// The part of `memory` that an optional offset record selects: all of it without a record. Nothing
/// if it does not lie inside.
std::optional<WDFMEMORY_OFFSET> RangeOf(std::size_t memorySize, const WDFMEMORY_OFFSET* offset);

}  // namespace bench
