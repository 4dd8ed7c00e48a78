#include "modem/ErrorReport.h"

#include "modem/ErrorReport.trace.h"

namespace stelvane {

namespace {

constexpr DWORD kDefaultLanguage = 0x400;

// Facility 8, not the Win32 facility 7: it is meant.
DWORD MessageId(HRESULT result) {
  const auto code = static_cast<DWORD>(result);
  return (code & 0x1FFF0000) == 0x00080000 ? code & 0xFFFF : code;
}

// Narrows in place: the narrow text never needs more room than the wide one.
const char* Narrow(WCHAR* text) {
  auto* const narrow = reinterpret_cast<char*>(text);
  std::size_t length = 0;
  for (; text[length] != 0; ++length) {
    const WCHAR character = text[length];
    narrow[length] = character < 0x80 ? static_cast<char>(character) : '?';
  }
  narrow[length] = 0;
  return narrow;
}

}  // namespace

void ReportError(const char* message, HRESULT result) noexcept {
  const DWORD id = MessageId(result);
  WCHAR* text = nullptr;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, id,
                     kDefaultLanguage, reinterpret_cast<WCHAR*>(&text), 0, nullptr);
  if (length == 0 || text == nullptr) {
    TRACE(ErrorWithId, message, id);
    return;
  }
  TRACE(ErrorWithText, message, Narrow(text));
  LocalFree(text);
}

}  // namespace stelvane
