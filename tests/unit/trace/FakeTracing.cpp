#include "tests/unit/trace/FakeTracing.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace {

FakeTracing state;
// Stands for the buffer that the system hands to the control callback.
int controlBuffer;

ULONG WINAPI FakeRegister(WMIDPREQUEST control, void* /*context*/, LPCGUID controlGuid,
                          ULONG guidCount, PTRACE_GUID_REGISTRATION /*guids*/, LPCWSTR image,
                          LPCWSTR resource, TRACEHANDLE* registration) {
  state.registrations++;
  state.control = control;
  state.controlGuid = *controlGuid;
  state.guidCount = guidCount;
  state.gaveMofNames = image != nullptr || resource != nullptr;
  if (state.enableDuringRegistration) state.Request(WMI_ENABLE_EVENTS);
  if (state.registrationStatus == ERROR_SUCCESS) *registration = FakeTracing::kRegistration;
  return state.registrationStatus;
}

ULONG WINAPI FakeUnregister(TRACEHANDLE registration) {
  state.unregistered.push_back(registration);
  return ERROR_SUCCESS;
}

TRACEHANDLE WINAPI FakeLogger(void* buffer) {
  return buffer == &controlBuffer ? state.logger : 0;
}
UCHAR WINAPI FakeLevel(TRACEHANDLE logger) {
  return logger == state.logger ? state.level : 0;
}
ULONG WINAPI FakeFlags(TRACEHANDLE logger) {
  return logger == state.logger ? state.enableFlags : 0;
}

ULONG __cdecl FakeMessage(TRACEHANDLE logger, ULONG flags, LPCGUID guid, USHORT number, ...) {
  TracedMessage message = {logger, flags, *guid, number, {}};
  va_list arguments;
  va_start(arguments, number);
  while (const auto* data = va_arg(arguments, const std::uint8_t*)) {
    const SIZE_T size = va_arg(arguments, SIZE_T);
    message.bytes.insert(message.bytes.end(), data, data + size);
  }
  va_end(arguments);
  state.messages.push_back(message);
  return ERROR_SUCCESS;
}

struct Replacement {
  const char* name;
  void* function;
};

template <class T>
T* At(std::uintptr_t base, std::uintptr_t offset) {
  return reinterpret_cast<T*>(base + offset);
}

/// Points the program's import of the name at the function; ends the program if it has none.
void Redirect(const Replacement& replacement) {
  const auto base = reinterpret_cast<std::uintptr_t>(GetModuleHandleW(nullptr));
  const auto* headers =
      At<IMAGE_NT_HEADERS>(base, static_cast<ULONG>(At<IMAGE_DOS_HEADER>(base, 0)->e_lfanew));
  const IMAGE_DATA_DIRECTORY& imports =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(base, imports.VirtualAddress); dll->Name != 0;
       ++dll) {
    const auto* name = At<IMAGE_THUNK_DATA>(base, dll->OriginalFirstThunk);
    auto* slot = At<void*>(base, dll->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* import = At<IMAGE_IMPORT_BY_NAME>(base, name->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(import->Name), replacement.name) != 0) continue;
      DWORD old = 0;
      VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &old);
      *slot = replacement.function;
      VirtualProtect(slot, sizeof(*slot), old, &old);
      return;
    }
  }
  std::abort();
}

bool RedirectAll() {
  const Replacement replacements[] = {
      {"RegisterTraceGuidsW", reinterpret_cast<void*>(FakeRegister)},
      {"UnregisterTraceGuids", reinterpret_cast<void*>(FakeUnregister)},
      {"GetTraceLoggerHandle", reinterpret_cast<void*>(FakeLogger)},
      {"GetTraceEnableLevel", reinterpret_cast<void*>(FakeLevel)},
      {"GetTraceEnableFlags", reinterpret_cast<void*>(FakeFlags)},
      {"TraceMessage", reinterpret_cast<void*>(FakeMessage)},
  };
  for (const Replacement& replacement : replacements) Redirect(replacement);
  return true;
}

}  // namespace

ULONG FakeTracing::Enable(UCHAR newLevel, ULONG newFlags) {
  level = newLevel;
  enableFlags = newFlags;
  return Request(WMI_ENABLE_EVENTS);
}

ULONG FakeTracing::Request(int code) {
  ULONG size = sizeof(controlBuffer);
  return control(static_cast<WMIDPREQUESTCODE>(code), nullptr, &size, &controlBuffer);
}

std::vector<USHORT> FakeTracing::Numbers() const {
  std::vector<USHORT> numbers;
  for (const TracedMessage& message : messages) numbers.push_back(message.number);
  return numbers;
}

FakeTracing& Tracing() {
  static const bool redirected = RedirectAll();
  static_cast<void>(redirected);
  return state;
}
