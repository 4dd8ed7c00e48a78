#include "suplcheck/LoadedFile.h"

#include <windows.h>

#include <shlwapi.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "base/ComTypes.h"
#include "modem/SuplDocument.h"
#include "suplcheck/Externals.h"
#include "suplcheck/Text.h"

namespace suplcheck {

namespace {

using stelvane::Bstr;
using stelvane::ComPtr;

constexpr std::uint64_t kLargestFile = std::uint64_t{16} << 20;
constexpr auto kNoDeclaration = static_cast<HRESULT>(0xC00CE224);

std::string Code(HRESULT result) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08lX", static_cast<unsigned long>(result));
  return text.data();
}

std::wstring_view View(const Bstr& text) {
  return {text.Get() != nullptr ? text.Get() : L"", SysStringLen(text.Get())};
}

// Without the line break that the parser puts at its end.
std::string Reason(IXMLDOMParseError* error) {
  Bstr text;
  if (FAILED(error->get_reason(text.Put()))) return {};
  std::string reason = Utf8(View(text));
  reason.erase(reason.find_last_not_of(" \r\n") + 1);
  return reason;
}

// What is wrong with the file before anybody looks into it, or nothing.
std::string Unreadable(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return "no such file";
  if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return "this is a folder";
  const std::uint64_t size = (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
  if (size == 0) return "the file is empty";
  if (size > kLargestFile) return "the file is larger than 16 MiB";
  auto* const file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return "the file cannot be opened: error " + std::to_string(GetLastError());
  }
  CloseHandle(file);
  return {};
}

std::wstring FullPath(const std::wstring& name) {
  const DWORD size = GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
  std::vector<wchar_t> path(size + 1);
  GetFullPathNameW(name.c_str(), size, path.data(), nullptr);
  return path.data();
}

// The parser takes a name for an address, in which these characters have another meaning.
std::wstring ParserName(const std::wstring& path) {
  if (path.find_first_of(L"%#") == std::wstring::npos) return path;
  std::vector<wchar_t> url(path.size() * 9 + 16);  // a character becomes at most three codes
  auto length = static_cast<DWORD>(url.size());
  return SUCCEEDED(UrlCreateFromPathW(path.c_str(), url.data(), &length, 0)) ? url.data() : path;
}

// Not every parser validates when it loads.
bool IsValid(IXMLDOMDocument3* document, Report& report) {
  ComPtr<IXMLDOMParseError> error;
  const HRESULT result = document->validate(error.Put());
  if (result == S_OK) return true;
  LONG code = 0;
  if (error && SUCCEEDED(error->get_errorCode(&code)) && code == kNoDeclaration) {
    report.Error("it has no document type declaration, against which the driver validates it");
  } else {
    ReportParseError("not valid against its document type declaration", error.Get(), report);
  }
  return false;
}

// True when the declaration stands in the file itself.
bool IsSelfContained(IXMLDOMDocument3* document, Report& report) {
  Bstr text;
  if (FAILED(document->get_xml(text.Put()))) return true;
  switch (FindExternals(View(text))) {
    case Externals::kNone:
      return true;
    case Externals::kBeside:
      report.Warning("the declaration refers to something outside, which the driver leaves out");
      return true;
    case Externals::kInstead:
      report.Error("the document type declaration is outside, and the driver does not fetch it");
      return false;
  }
  return true;
}

}  // namespace

void ReportParseError(const char* what, IXMLDOMParseError* error, Report& report) {
  std::string text = what;
  Place place;
  if (error != nullptr) {
    LONG code = 0;
    error->get_line(&place.line);
    error->get_linepos(&place.column);
    error->get_errorCode(&code);
    if (const std::string reason = Reason(error); !reason.empty()) text += ": " + reason;
    text += " (" + Code(code) + ")";
  }
  report.Error(text, place);
}

ComPtr<IXMLDOMDocument3> LoadFile(const std::wstring& name, Report& report) {
  const std::wstring path = FullPath(name);
  if (const std::string unreadable = Unreadable(path); !unreadable.empty()) {
    report.Error(unreadable);
    return {};
  }
  ComPtr<IXMLDOMDocument3> document;
  if (const HRESULT result = stelvane::CreateSuplDocument(document); FAILED(result)) {
    report.Error("the XML parser (MSXML 6) cannot be used: " + Code(result));
    return {};
  }
  bool loaded = false;
  const HRESULT result =
      stelvane::LoadSuplDocument(document.Get(), ParserName(path).c_str(), loaded);
  if (FAILED(result) || !loaded) {
    ComPtr<IXMLDOMParseError> error;
    document->get_parseError(error.Put());
    ReportParseError("the XML parser refuses it", error.Get(), report);
    return {};
  }
  if (!IsSelfContained(document.Get(), report) || !IsValid(document.Get(), report)) return {};
  return document;
}

}  // namespace suplcheck
