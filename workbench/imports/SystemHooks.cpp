// The registry, the installed devices and event tracing.
#include <cstdarg>

#include "workbench/imports/Hooks.h"

namespace bench {

namespace {

Redirector& Here() {
  return Redirector::Current();
}

LSTATUS ReadRegistry(HKEY root, const wchar_t* key, const wchar_t* value, DWORD flags, DWORD* type,
                     void* data, DWORD* size) {
  return Here().Registry().Get(root, key, value, flags, type, data, size);
}

HDEVINFO MakeList(Site site, const GUID* deviceClass, HWND window) {
  const HDEVINFO list = Here().Devices().CreateList();
  Here().Books().Take(Resource::kDeviceInfoList, reinterpret_cast<std::uintptr_t>(list),
                      site.offset);
  return list;
}

BOOL OpenDevice(HDEVINFO list, const wchar_t* instanceId, HWND window, DWORD flags,
                SP_DEVINFO_DATA* data) {
  return Here().Devices().Open(list, instanceId, data);
}

BOOL ReadProperty(HDEVINFO list, SP_DEVINFO_DATA* data, const DEVPROPKEY* key, DEVPROPTYPE* type,
                  BYTE* buffer, DWORD size, DWORD* required, DWORD flags) {
  return Here().Devices().GetProperty(list, data, key, type, buffer, size, required);
}

BOOL DestroyList(HDEVINFO list) {
  if (!Here().Books().Give(Resource::kDeviceInfoList, reinterpret_cast<std::uintptr_t>(list))) {
    Here().Books().Misuse("SetupDiDestroyDeviceInfoList of what is no list");
  }
  return Here().Devices().DestroyList(list);
}

ULONG RegisterTracing(Site site, WMIDPREQUEST callback, void* context, const GUID* control,
                      ULONG count, TRACE_GUID_REGISTRATION* guids, const wchar_t* path,
                      const wchar_t* resource, TRACEHANDLE* registration) {
  const ULONG result =
      Here().Tracing().Register(callback, context, control, count, guids, registration);
  if (result == ERROR_SUCCESS) {
    Here().Books().Take(Resource::kTraceRegistration, *registration, site.offset);
  }
  return result;
}

ULONG UnregisterTracing(TRACEHANDLE registration) {
  if (!Here().Books().Give(Resource::kTraceRegistration, registration)) {
    Here().Books().Misuse("UnregisterTraceGuids of what is not registered");
  }
  return Here().Tracing().Unregister(registration);
}

TRACEHANDLE LoggerHandle(void* buffer) {
  return Here().Tracing().LoggerHandle(buffer);
}
UCHAR EnableLevel(TRACEHANDLE logger) {
  return Here().Tracing().EnableLevel(logger);
}
ULONG EnableFlags(TRACEHANDLE logger) {
  return Here().Tracing().EnableFlags(logger);
}

// The message number is a 16-bit argument, which arrives in the lower half of its 32-bit place.
ULONG WINAPIV Message(TRACEHANDLE logger, ULONG flags, const GUID* message, ULONG number, ...) {
  const auto failure = Here().Faults().OnCall(ImportIndex("TraceMessage"));
  if (failure) return Fail<ULONG>(*failure);
  va_list arguments;
  va_start(arguments, number);
  const ULONG result =
      Here().Tracing().Message(logger, flags, message, static_cast<USHORT>(number), arguments);
  va_end(arguments);
  return result;
}

}  // namespace

std::span<const Hook> SystemHooks() {
  static const Hook kHooks[] = {
      Redirect<ImportIndex("RegGetValueW"), &ReadRegistry>(),
      Redirect<ImportIndex("SetupDiCreateDeviceInfoList"), &MakeList>(),
      Redirect<ImportIndex("SetupDiOpenDeviceInfoW"), &OpenDevice>(),
      Redirect<ImportIndex("SetupDiGetDevicePropertyW"), &ReadProperty>(),
      Redirect<ImportIndex("SetupDiDestroyDeviceInfoList"), &DestroyList>(),
      Redirect<ImportIndex("RegisterTraceGuidsW"), &RegisterTracing>(),
      Redirect<ImportIndex("UnregisterTraceGuids"), &UnregisterTracing>(),
      Redirect<ImportIndex("GetTraceLoggerHandle"), &LoggerHandle>(),
      Redirect<ImportIndex("GetTraceEnableLevel"), &EnableLevel>(),
      Redirect<ImportIndex("GetTraceEnableFlags"), &EnableFlags>(),
      {ImportIndex("TraceMessage"), reinterpret_cast<void*>(&Message)},
  };
  return kHooks;
}

}  // namespace bench
