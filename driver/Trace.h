// Software event tracing. The messages of X.cpp stand in X.trace beside it; the build makes from
// it X.trace.h, which only X.cpp includes, and the text files with which a viewer decodes a trace.
#pragma once

#include <windows.h>

#include <wmistr.h>

#include <evntrace.h>

#include <concepts>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace stelvane::trace {

enum class Level : UCHAR {
  kCritical = 1,
  kError = 2,
  kWarning = 3,
  kInformation = 4,
  kVerbose = 5,
};

enum class Flag : ULONG {
  kGeneral = 0x1,
  kUsb = 0x4,
};

/// Registers the trace provider with the system. When that fails, every trace site stays silent.
/// Called once, at load; the control callback may run on a system thread before this returns.
void RegisterTracing() noexcept;

/// Undoes RegisterTracing; without effect when that failed. Every trace site is silent afterwards.
void UnregisterTracing() noexcept;

/// Whether a listener wants messages of this level and flag. Any thread, no lock.
[[nodiscard]] bool IsEnabled(Level level, Flag flag) noexcept;

/// The session that TraceMessage writes to; 0 when no listener is there. Any thread, no lock.
[[nodiscard]] TRACEHANDLE LoggerHandle() noexcept;

/// What the system puts before the arguments of every message.
inline constexpr ULONG kMessageFlags = TRACE_MESSAGE_SEQUENCE | TRACE_MESSAGE_GUID |
                                       TRACE_MESSAGE_TIMESTAMP | TRACE_MESSAGE_SYSTEMINFO;

/// An integer of the same width and sign as Stored; no bool, no character, no enumeration.
template <class T, class Stored>
concept IntegerLike = (std::same_as<T, int> || std::same_as<T, long> ||
                       std::same_as<T, long long> || std::same_as<T, unsigned int> ||
                       std::same_as<T, unsigned long> ||
                       std::same_as<T, unsigned long long>)&&sizeof(T) == sizeof(Stored) &&
                      std::is_signed_v<T> == std::is_signed_v<Stored>;

// The arguments of a message. Each converts from the fitting types only, so that a call cannot
// disagree with the text that will be shown for it.

template <class Stored>
class Number {
 public:
  template <IntegerLike<Stored> T>
  Number(T value) noexcept : value_(static_cast<Stored>(value)) {}

  const void* Data() const noexcept { return &value_; }
  SIZE_T Size() const noexcept { return sizeof(value_); }

 private:
  Stored value_;
};

using Hr = Number<std::int32_t>;
using I32 = Number<std::int32_t>;
using U32 = Number<std::uint32_t>;
using Hex = Number<std::uint32_t>;
using U64 = Number<std::uint64_t>;

/// A narrow text that ends with a zero, sent with it. Null is sent as the text NULL: a null
/// pointer would end the argument list.
class Str {
 public:
  template <class T>
  requires std::same_as<T, const char*> || std::same_as<T, char*> Str(T text)
  noexcept : text_(text != nullptr ? text : "NULL") {}

  const void* Data() const noexcept { return text_; }
  SIZE_T Size() const noexcept { return std::strlen(text_) + 1; }

 private:
  const char* text_;
};

/// The value of a pointer, not what it points to.
class Ptr {
 public:
  template <class T>
  requires std::is_object_v<T> || std::is_void_v<T> Ptr(T* pointer)
  noexcept : pointer_(pointer) {}

  const void* Data() const noexcept { return &pointer_; }
  SIZE_T Size() const noexcept { return sizeof(pointer_); }

 private:
  const void* pointer_;
};

}  // namespace stelvane::trace

/// Traces a message of this source file's catalogue. Unless a listener wants it, no argument is
/// evaluated and no call is made.
#define TRACE(Name, ...)                                                \
  do {                                                                  \
    if (::stelvane::trace::IsEnabled(::stelvane::trace::Name::kLevel,   \
                                     ::stelvane::trace::Name::kFlag)) { \
      ::stelvane::trace::Name::Emit(__VA_ARGS__);                       \
    }                                                                   \
  } while (false)

/// Evaluates an HRESULT once; a failure is traced with the message, whose one argument it is, and
/// returned.
#define RETURN_IF_FAILED(expression, Name)             \
  do {                                                 \
    const HRESULT returnIfFailedResult = (expression); \
    if (FAILED(returnIfFailedResult)) {                \
      TRACE(Name, returnIfFailedResult);               \
      return returnIfFailedResult;                     \
    }                                                  \
  } while (false)
