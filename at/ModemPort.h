// The modem's AT port: the bulk pipe pair of one USB interface of the driver's own device.
#pragma once

#include "base/ComPtr.h"
#include "base/Sync.h"
#include "platform/WdfCallbacks.h"
#include "platform/WdfDevice.h"
#include "platform/WdfUsb.h"

namespace stelvane {

/// Opening and closing are serialised by the caller; the pipes may be asked for on any thread.
class ModemPort {
 public:
  HRESULT Initialize() { return lock_.Initialize(); }

  /// Wakes the command port with a control-line request, takes the pipes of the first interface
  /// with exactly two endpoints, both bulk, and configures the continuous reader with `readers`
  /// (which must answer both reader callbacks). Does not start the reader. kNoAtPort when no
  /// interface qualifies, else the result of the first step that failed; after a failure the
  /// port is closed.
  HRESULT Open(IWDFDevice* device, IUnknown* readers);

  /// Releases both pipes and deletes the USB target device.
  void Close();

  ComPtr<IWDFUsbTargetPipe> InPipe() EXCLUDES(lock_);
  ComPtr<IWDFUsbTargetPipe> OutPipe() EXCLUDES(lock_);

 private:
  HRESULT SearchInterfaces(IWDFUsbTargetDevice* usbDevice, UCHAR count, IUnknown* readers);
  HRESULT TakePipes(IWDFUsbInterface* usbInterface);
  void TakePipe(UCHAR index, IWDFUsbTargetPipe* pipe) EXCLUDES(lock_);

  CriticalSection lock_;
  ComPtr<IWDFUsbTargetPipe> bulkInPipe_ GUARDED_BY(lock_);   // modem to driver
  ComPtr<IWDFUsbTargetPipe> bulkOutPipe_ GUARDED_BY(lock_);  // driver to modem
};

}  // namespace stelvane
