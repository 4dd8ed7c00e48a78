#include "workbench/trace/ResultNames.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace bench {

namespace {

struct NamedCode {
  std::uint32_t code;
  std::string_view name;
};

// In the order of their codes.
constexpr NamedCode kResults[] = {
    {0x00000000, "S_OK"},
    {0x00000001, "S_FALSE"},
    {0x80004001, "E_NOTIMPL"},
    {0x80004002, "E_NOINTERFACE"},
    {0x80004003, "E_POINTER"},
    {0x80004004, "E_ABORT"},
    {0x80004005, "E_FAIL"},
    {0x8000000A, "E_PENDING"},
    {0x8000FFFF, "E_UNEXPECTED"},
    {0x80020005, "DISP_E_TYPEMISMATCH"},
    {0x80040110, "CLASS_E_NOAGGREGATION"},
    {0x80040111, "CLASS_E_CLASSNOTAVAILABLE"},
    {0x80040154, "REGDB_E_CLASSNOTREG"},
    {0x800401F0, "CO_E_NOTINITIALIZED"},
    {0x80070005, "E_ACCESSDENIED"},
    {0x80070006, "E_HANDLE"},
    {0x8007000E, "E_OUTOFMEMORY"},
    {0x80070057, "E_INVALIDARG"},
    // The driver's own.
    {0xA0000001, "NO_FINAL_RESULT"},
    {0xA0000002, "MODEM_ERROR"},
};

constexpr NamedCode kWindowsErrors[] = {
    {0, "ERROR_SUCCESS"},
    {1, "ERROR_INVALID_FUNCTION"},
    {2, "ERROR_FILE_NOT_FOUND"},
    {3, "ERROR_PATH_NOT_FOUND"},
    {5, "ERROR_ACCESS_DENIED"},
    {6, "ERROR_INVALID_HANDLE"},
    {8, "ERROR_NOT_ENOUGH_MEMORY"},
    {13, "ERROR_INVALID_DATA"},
    {14, "ERROR_OUTOFMEMORY"},
    {21, "ERROR_NOT_READY"},
    {22, "ERROR_BAD_COMMAND"},
    {31, "ERROR_GEN_FAILURE"},
    {50, "ERROR_NOT_SUPPORTED"},
    {87, "ERROR_INVALID_PARAMETER"},
    {121, "ERROR_SEM_TIMEOUT"},
    {122, "ERROR_INSUFFICIENT_BUFFER"},
    {170, "ERROR_BUSY"},
    {234, "ERROR_MORE_DATA"},
    {258, "WAIT_TIMEOUT"},
    {259, "ERROR_NO_MORE_ITEMS"},
    {433, "ERROR_NO_SUCH_DEVICE"},
    {995, "ERROR_OPERATION_ABORTED"},
    {997, "ERROR_IO_PENDING"},
    {998, "ERROR_NOACCESS"},
    {1115, "ERROR_SHUTDOWN_IN_PROGRESS"},
    {1117, "ERROR_IO_DEVICE"},
    {1167, "ERROR_DEVICE_NOT_CONNECTED"},
    {1168, "ERROR_NOT_FOUND"},
    {1223, "ERROR_CANCELLED"},
    {1359, "ERROR_INTERNAL_ERROR"},
    {1450, "ERROR_NO_SYSTEM_RESOURCES"},
    {1455, "ERROR_COMMITMENT_LIMIT"},
    {1460, "ERROR_TIMEOUT"},
    {1610, "ERROR_BAD_CONFIGURATION"},
    {5023, "ERROR_INVALID_STATE"},
};

constexpr NamedCode kStatuses[] = {
    {0xC0000001, "STATUS_UNSUCCESSFUL"},
    {0xC000000E, "STATUS_NO_SUCH_DEVICE"},
    {0xC0000010, "STATUS_INVALID_DEVICE_REQUEST"},
    {0xC000009D, "STATUS_DEVICE_NOT_CONNECTED"},
    {0xC00000B5, "STATUS_IO_TIMEOUT"},
    {0xC0000120, "STATUS_CANCELLED"},
    {0xC0000184, "STATUS_INVALID_DEVICE_STATE"},
};

constexpr std::uint32_t kFromWindows = 0x80070000;
constexpr std::uint32_t kFromKernel = 0x10000000;  // the bit of a result that is a status

template <std::size_t Size>
std::string_view NameOf(const NamedCode (&table)[Size], std::uint32_t code) {
  const auto* const found = std::ranges::find(table, code, &NamedCode::code);
  return found == std::end(table) ? std::string_view() : found->name;
}

std::string WithName(const char* number, std::string_view name) {
  return name.empty() ? number : std::string(number).append("(").append(name).append(")");
}

}  // namespace

std::string ResultText(std::uint32_t result) {
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "0x%08x", static_cast<unsigned>(result));
  std::string_view name = NameOf(kResults, result);
  if (name.empty() && (result & 0xFFFF0000) == kFromWindows) {
    name = NameOf(kWindowsErrors, result & 0xFFFF);
  }
  if (name.empty()) name = NameOf(kStatuses, result & ~kFromKernel);
  return WithName(number.data(), name);
}

std::string WindowsErrorText(std::uint32_t error) {
  return WithName(std::to_string(error).c_str(), NameOf(kWindowsErrors, error));
}

}  // namespace bench
