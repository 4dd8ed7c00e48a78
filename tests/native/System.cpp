// Registry and texts.
#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "tests/native/Native.h"

namespace {

std::u16string Text(LPCWSTR text) {
  std::u16string copy;
  for (; text != nullptr && *text != 0; ++text) copy.push_back(static_cast<char16_t>(*text));
  return copy;
}

std::mutex stateLock;
// Guarded by stateLock.
std::map<std::pair<std::u16string, std::u16string>, DWORD> registry;
std::u16string messageText;

/// Length of a text given with -1 for "up to its zero, which counts".
template <class Character>
int FullLength(const Character* text, int length) {
  if (length >= 0) return length;
  length = 0;
  while (text[length] != 0) ++length;
  return length + 1;
}

/// Converts character by character; a room of 0 asks for the size needed.
template <class From, class To, class Convert>
int ConvertText(const From* from, int length, To* to, int room, Convert convert) {
  length = FullLength(from, length);
  if (room == 0) return length;
  if (length > room) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  for (int i = 0; i < length; ++i) to[i] = convert(from[i]);
  return length;
}

}  // namespace

void native::SetRegistryDword(LPCWSTR key, LPCWSTR value, DWORD data) {
  const std::lock_guard lock(stateLock);
  registry[{Text(key), Text(value)}] = data;
}

void native::ClearRegistry() {
  const std::lock_guard lock(stateLock);
  registry.clear();
}

void native::SetMessageText(LPCWSTR text) {
  const std::lock_guard lock(stateLock);
  messageText = Text(text);
}

LSTATUS RegGetValueW(HKEY /*key*/, LPCWSTR subkey, LPCWSTR value, DWORD /*flags*/, DWORD* type,
                     void* data, DWORD* size) {
  const std::lock_guard lock(stateLock);
  const auto found = registry.find({Text(subkey), Text(value)});
  if (found == registry.end()) return static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND);
  if (type != nullptr) *type = REG_DWORD;
  const DWORD room = size != nullptr ? std::exchange(*size, DWORD{sizeof(DWORD)}) : 0;
  if (data == nullptr) return ERROR_SUCCESS;
  if (room < sizeof(DWORD)) return static_cast<LSTATUS>(ERROR_MORE_DATA);
  std::memcpy(data, &found->second, sizeof(DWORD));
  return ERROR_SUCCESS;
}

DWORD FormatMessageW(DWORD flags, const void* /*source*/, DWORD /*id*/, DWORD /*language*/,
                     LPWSTR buffer, DWORD /*size*/, void* /*arguments*/) {
  const std::lock_guard lock(stateLock);
  if (messageText.empty() || (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) == 0) {
    SetLastError(ERROR_MR_MID_NOT_FOUND);
    return 0;
  }
  // The caller passes the address of a pointer in the place of the buffer.
  auto* const text = static_cast<WCHAR*>(std::calloc(messageText.size() + 1, sizeof(WCHAR)));
  if (text == nullptr) return 0;
  for (std::size_t i = 0; i < messageText.size(); ++i) text[i] = static_cast<WCHAR>(messageText[i]);
  std::memcpy(buffer, &text, sizeof text);
  return static_cast<DWORD>(messageText.size());
}

HLOCAL LocalFree(HLOCAL memory) {
  std::free(memory);
  return nullptr;
}

int MultiByteToWideChar(UINT /*codePage*/, DWORD /*flags*/, LPCSTR text, int length, LPWSTR wide,
                        int wideSize) {
  return ConvertText(text, length, wide, wideSize, [](char character) {
    return static_cast<WCHAR>(static_cast<unsigned char>(character));
  });
}

int WideCharToMultiByte(UINT /*codePage*/, DWORD /*flags*/, LPCWSTR wide, int length, LPSTR text,
                        int textSize, LPCSTR /*defaultCharacter*/, BOOL* /*usedDefault*/) {
  return ConvertText(wide, length, text, textSize, [](WCHAR character) {
    return character <= 0xFF ? static_cast<char>(character) : '?';
  });
}
