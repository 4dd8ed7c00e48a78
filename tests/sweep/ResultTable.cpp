#include "tests/sweep/ResultTable.h"

#include "base/Result.h"

namespace bench {

namespace {

using stelvane::kNoAtPort;

constexpr std::string_view kMakesLock = "InitializeCriticalSectionAndSpinCount";

constexpr PrescribedResult kResults[] = {
    // ---- The module. DllMain answers FALSE, which counts as E_FAIL, for its lock alone.
    {"DllMain", kMakesLock, E_FAIL},
    {"DllMain", "RegisterTraceGuidsW", kNoMatter},
    {"DllMain", "GetTraceLoggerHandle", kNoMatter},
    {"DllMain", "DisableThreadLibraryCalls", kNoMatter},
    {"*", "TraceMessage", kNoMatter},
    {"DllGetClassObject", "malloc", E_OUTOFMEMORY},
    {"CreateInstance", "malloc", E_OUTOFMEMORY},
    {"CreateInstance", kMakesLock, kSameCode},

    // ---- Adding a device.
    {"OnDeviceAdd", "malloc", E_OUTOFMEMORY},
    {"OnDeviceAdd", kMakesLock, kSameCode},
    {"OnDeviceAdd", "IWDFDeviceInitialize::*", kNoMatter},
    {"OnDeviceAdd", "IWDFDriver::CreateDevice", kSameCode},

    // ---- Its start. First the queue, without which it goes on.
    {"OnPrepareHardware", "IWDFDevice::GetDefaultIoQueue", kNoMatter},
    {"OnPrepareHardware", "IWDFDevice::CreateIoQueue", kNoMatter},
    {"OnPrepareHardware", "malloc", kNoMatter, "IWDFDevice::GetDefaultIoQueue"},
    {"OnPrepareHardware", kMakesLock, kNoMatter, "IWDFDevice::GetDefaultIoQueue"},
    // The context, then the two buffers of the device's description.
    {"OnPrepareHardware", kMakesLock, E_POINTER, "IWDFDevice::CreateIoQueue"},
    {"OnPrepareHardware", kMakesLock, E_POINTER, kMakesLock},
    {"OnPrepareHardware", "malloc", E_POINTER, "IWDFDevice::CreateIoQueue", E_UNEXPECTED},
    {"OnPrepareHardware", "malloc", E_POINTER, "malloc"},
    {"OnPrepareHardware", "IWDFDevice::RetrieveDeviceInstanceId", kNoMatter},
    {"OnPrepareHardware", "SetupDiCreateDeviceInfoList", kNoMatter},
    {"OnPrepareHardware", "SetupDiOpenDeviceInfoW", kNoMatter},
    {"OnPrepareHardware", "SetupDiGetDevicePropertyW", kSameCode},
    // The sensor core, then its modem.
    {"OnPrepareHardware", "malloc", E_UNEXPECTED, "IWDFDevice::RetrieveDeviceInstanceId",
     E_OUTOFMEMORY},
    {"OnPrepareHardware", kMakesLock, E_UNEXPECTED, "IWDFDevice::RetrieveDeviceInstanceId",
     kSameCode},
    {"OnPrepareHardware", "CreateEventW", E_UNEXPECTED, "IWDFDevice::RetrieveDeviceInstanceId",
     kSameCode},
    {"OnPrepareHardware", "IWDFDevice::RetrieveDevicePropertyStore", kSameCode},
    {"OnPrepareHardware", "IWDFNamedPropertyStore::GetNamedValue", kSameCode},
    {"OnPrepareHardware", "StringFromCLSID", kSameCode},
    {"OnPrepareHardware", "CreateThread", kNoMatter},
    // The AT port. What has no result says no, zero or nothing, and no interface qualifies.
    {"OnPrepareHardware", "IUnknown::QueryInterface(*", kSameCode},
    {"OnPrepareHardware", "IWDFUsbTargetFactory::CreateUsbTargetDevice", kSameCode},
    {"OnPrepareHardware", "IWDFUsbTargetDevice::GetNumInterfaces", kNoAtPort},
    {"OnPrepareHardware", "IWDFDevice::CreateRequest", kSameCode},
    {"OnPrepareHardware", "IWDFUsbTargetDevice::FormatRequestForControlTransfer", kSameCode},
    {"OnPrepareHardware", "IWDFIoRequest::Send", kSameCode},
    {"OnPrepareHardware", "IWDFRequestCompletionParams::GetCompletionStatus", kSameCode},
    {"OnPrepareHardware", "IWDFUsbTargetDevice::RetrieveUsbInterface", kSameCode},
    {"OnPrepareHardware", "IWDFUsbInterface::GetNumEndPoints", kNoAtPort},
    {"OnPrepareHardware", "IWDFUsbInterface::RetrieveUsbPipeObject", kSameCode},
    {"OnPrepareHardware", "IWDFUsbTargetPipe::GetType", kNoAtPort},
    {"OnPrepareHardware", "IWDFUsbTargetPipe::IsOutEndPoint", kNoAtPort},
    {"OnPrepareHardware", "IWDFUsbTargetPipe2::ConfigureContinuousReader", kSameCode},
    // The class extension.
    {"OnPrepareHardware", "CoCreateInstance*", kSameCode},
    {"OnPrepareHardware", "ISensorClassExtension::Initialize", kSameCode},
    {"OnPrepareHardware", "IWDFDevice::CreateDeviceInterface", kSameCode},
    {"OnPrepareHardware", "IWDFDevice::AssignDeviceInterfaceState", kSameCode},

    // ---- Power, self-managed I/O, the stop.
    {"OnD0Entry", "IUnknown::QueryInterface(IWDFIoTargetStateManagement)", kSameCode},
    {"OnD0Entry", "IWDFIoTargetStateManagement::Start", kSameCode},
    {"OnD0Entry", "IWDFDevice2::ResumeIdle", kNoMatter},
    {"OnD0Exit", "IUnknown::QueryInterface(IWDFIoTargetStateManagement)", kSameCode},
    {"OnD0Exit", "IWDFIoTargetStateManagement::Stop", kSameCode},
    {"OnSelfManagedIoInit", "IUnknown::QueryInterface(IWDFDevice3)", kNoMatter},
    {"OnSelfManagedIoInit", "IWDFDevice3::AssignS0IdleSettingsEx", kNoMatter},
    {"OnSelfManagedIoSuspend", "IWDFIoQueue::*", kNoMatter},
    {"OnReleaseHardware", "IWDFObject::DeleteWdfObject", kNoMatter},
    {"OnReleaseHardware", "ISensorClassExtension::Uninitialize", kNoMatter},
    {"OnReleaseHardware", "IWDFDevice2::ResumeIdle", kNoMatter},

    // ---- Clients. A key that cannot be read is passed over.
    {"OnGet*", "CoCreateInstance*", kSameCode},
    {"OnGet*", "IPortableDeviceKeyCollection::GetAt", kNoMatter},
    {"OnGet*", "IPortableDeviceKeyCollection::*", kSameCode},
    {"OnGet*", "IPortableDeviceValues::Set*", kSameCode},
    {"OnGet*", "IPortableDeviceValuesCollection::Add", kSameCode},
    {"OnGetDataFields", "SystemTimeToFileTime", kSameCode},
    {"OnGetDataFields", "malloc", E_OUTOFMEMORY},
    {"OnGetDataFields", "CoTaskMemAlloc", E_OUTOFMEMORY},
    {"OnSetProperties", "CoCreateInstance*", kSameCode},
    {"OnClientConnect", "malloc", E_OUTOFMEMORY},

    // ---- The driver's own requests: the radio is read and switched.
    {"OnDeviceIoControl", "IWDFIoRequest::GetInputMemory", kNoMatter},
    {"OnDeviceIoControl", "IWDFMemory::GetDataBuffer", kNoMatter},
    {"OnDeviceIoControl", "IWDFMemory::CopyFromBuffer", kSameCode},
    {"OnDeviceIoControl", "SendCommand AT+XLSRSTOP*", kNoMatter},
    {"OnDeviceIoControl", "SendCommand AT+XLCSSWITCH*", kSameCode},

    // ---- A command's write.
    {"SendCommand *", "IUnknown::QueryInterface(IWDFIoTarget)", E_FAIL},
    {"SendCommand *", "IWDFDevice::CreateRequest", kSameCode},
    {"SendCommand *", "IWDFDriver::CreateWdfMemory", kSameCode},
    {"SendCommand *", "IWDFMemory::CopyFromBuffer", kSameCode},
    {"SendCommand *", "IWDFIoTarget::FormatRequestForWrite", kSameCode},
    {"SendCommand *", "IWDFIoRequest::Send", kSameCode},
    {"SendCommand *", "IWDFRequestCompletionParams::GetCompletionStatus", kSameCode},

    // ---- A data report. Like a read, it passes over a key that cannot be read.
    {"SendDataReport", "CoCreateInstance*", kSameCode},
    {"SendDataReport", "IPortableDeviceKeyCollection::GetAt", kNoMatter},
    {"SendDataReport", "IPortableDeviceKeyCollection::*", kSameCode},
    {"SendDataReport", "IPortableDeviceValues::Set*", kSameCode},
    {"SendDataReport", "IPortableDeviceValuesCollection::Add", kSameCode},
    {"SendDataReport", "ISensorClassExtension::PostEvent", kSameCode},
    {"SendDataReport", "SystemTimeToFileTime", kSameCode},
    {"SendDataReport", "CoTaskMemAlloc", E_OUTOFMEMORY},

    // ---- Bring-up. A failed hand-over is followed by the usual bring-up; the quality of service,
    // the clock and the SUPL settings never fail it.
    {.operation = "InitializeEngine",
     .call = "SendCommand ATE1",
     .result = kSameCode,
     .retries = 3},
    {"InitializeEngine", "SendCommand AT+XLCSSWITCH?", kSameCode},
    {"InitializeEngine", "SendCommand *", kNoMatter},
    {"InitializeEngine", "LoadSuplRecord", kNoMatter},
    {"InitializeEngine", "RegGetValueW", kNoMatter},
    {"InitializeEngine", "FormatMessageW", kNoMatter},

    // ---- A location request. The SUPL settings and the quality of service come before it.
    {"StartLocationRequest", "SendCommand AT+XLCSLSR=*", kSameCode},
    {"StartLocationRequest", "SendCommand *", kNoMatter},
    {"StartLocationRequest", "LoadSuplRecord", kNoMatter},
    {"StartLocationRequest", "FormatMessageW", kNoMatter},

    // ---- The SUPL file, which may well not be there; without a system root it is not.
    {"LoadSuplRecord", "CoCreateInstance", kSameCode},
    {"LoadSuplRecord", "IXMLDOMDocument::setProperty", kNoMatter, "*", S_FALSE},
    {"LoadSuplRecord", "GetEnvironmentVariableW", S_FALSE},
    {"LoadSuplRecord", "FormatMessageW", kNoMatter, "*", S_FALSE},
    {"LoadSuplRecord", "IXMLDOMDocument::load", kSameCode},
    {"LoadSuplRecord", "IXMLDOMDocument::get_xml", kSameCode},
    {"LoadSuplRecord", "IXMLDOMDocument::select*", kSameCode},
    {"LoadSuplRecord", "IXMLDOMNodeList::nextNode", kSameCode},
    {"LoadSuplRecord", "IXMLDOMNode::get_text", kSameCode},
    {"LoadSuplRecord", "IXMLDOMNode::get_baseName", kSameCode},
    {"LoadSuplRecord", "IXMLDOMNode::get_childNodes", kSameCode},
};

}  // namespace

std::span<const PrescribedResult> PrescribedResults() {
  return kResults;
}

}  // namespace bench
