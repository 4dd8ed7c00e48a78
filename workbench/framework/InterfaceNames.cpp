#include "workbench/framework/InterfaceNames.h"

#include <cstdio>

#include "platform/WdfCallbacks.h"
#include "platform/WdfDevice.h"
#include "platform/WdfDriver.h"
#include "platform/WdfIoTarget.h"
#include "platform/WdfRequest.h"
#include "platform/WdfUsb.h"

namespace bench {

namespace {

struct NamedInterface {
  const GUID* iid;
  const char* name;
};

constexpr NamedInterface kInterfaces[] = {
    {&iidOf<IUnknown>, "IUnknown"},
    {&iidOf<IClassFactory>, "IClassFactory"},
    {&iidOf<IWDFObject>, "IWDFObject"},
    {&iidOf<IDriverEntry>, "IDriverEntry"},
    {&iidOf<IPnpCallback>, "IPnpCallback"},
    {&iidOf<IPnpCallbackHardware>, "IPnpCallbackHardware"},
    {&iidOf<IPnpCallbackSelfManagedIo>, "IPnpCallbackSelfManagedIo"},
    {&iidOf<IFileCallbackCleanup>, "IFileCallbackCleanup"},
    {&iidOf<IQueueCallbackDeviceIoControl>, "IQueueCallbackDeviceIoControl"},
    {&iidOf<IObjectCleanup>, "IObjectCleanup"},
    {&iidOf<IRequestCallbackRequestCompletion>, "IRequestCallbackRequestCompletion"},
    {&iidOf<IUsbTargetPipeContinuousReaderCallbackReadComplete>,
     "IUsbTargetPipeContinuousReaderCallbackReadComplete"},
    {&iidOf<IUsbTargetPipeContinuousReaderCallbackReadersFailed>,
     "IUsbTargetPipeContinuousReaderCallbackReadersFailed"},
    {&iidOf<IWDFDriver>, "IWDFDriver"},
    {&iidOf<IWDFDeviceInitialize>, "IWDFDeviceInitialize"},
    {&iidOf<IWDFDevice>, "IWDFDevice"},
    {&iidOf<IWDFDevice2>, "IWDFDevice2"},
    {&iidOf<IWDFDevice3>, "IWDFDevice3"},
    {&iidOf<IWDFNamedPropertyStore>, "IWDFNamedPropertyStore"},
    {&iidOf<IWDFIoQueue>, "IWDFIoQueue"},
    {&iidOf<IWDFIoRequest>, "IWDFIoRequest"},
    {&iidOf<IWDFMemory>, "IWDFMemory"},
    {&iidOf<IWDFFile>, "IWDFFile"},
    {&iidOf<IWDFIoTarget>, "IWDFIoTarget"},
    {&iidOf<IWDFIoTargetStateManagement>, "IWDFIoTargetStateManagement"},
    {&iidOf<IWDFRequestCompletionParams>, "IWDFRequestCompletionParams"},
    {&iidOf<IWDFIoRequestCompletionParams>, "IWDFIoRequestCompletionParams"},
    {&iidOf<IWDFUsbRequestCompletionParams>, "IWDFUsbRequestCompletionParams"},
    {&iidOf<IWDFUsbTargetFactory>, "IWDFUsbTargetFactory"},
    {&iidOf<IWDFUsbTargetDevice>, "IWDFUsbTargetDevice"},
    {&iidOf<IWDFUsbInterface>, "IWDFUsbInterface"},
    {&iidOf<IWDFUsbTargetPipe>, "IWDFUsbTargetPipe"},
    {&iidOf<IWDFUsbTargetPipe2>, "IWDFUsbTargetPipe2"},
};

}  // namespace

std::string InterfaceName(const GUID& iid) {
  for (const NamedInterface& known : kInterfaces) {
    if (SameGuid(iid, *known.iid)) return known.name;
  }
  char text[40];
  std::snprintf(text, sizeof text, "{%08lx-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x}",
                static_cast<unsigned long>(iid.Data1), unsigned{iid.Data2}, unsigned{iid.Data3},
                unsigned{iid.Data4[0]}, unsigned{iid.Data4[1]}, unsigned{iid.Data4[2]},
                unsigned{iid.Data4[3]}, unsigned{iid.Data4[4]}, unsigned{iid.Data4[5]},
                unsigned{iid.Data4[6]}, unsigned{iid.Data4[7]});
  return text;
}

}  // namespace bench
