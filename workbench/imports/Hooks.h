// How a function of the workbench takes the place of an imported one: every call is counted and,
// if the fault plan says so, fails before it does anything.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "workbench/imports/Imports.h"
#include "workbench/imports/Redirector.h"

namespace bench {

struct Hook {
  std::size_t import;  // position in kImports
  void* replacement;
};

/// The replacements, by what they are about; one array each, with static lifetime.
std::span<const Hook> TimeHooks();
std::span<const Hook> ResourceHooks();
std::span<const Hook> SystemHooks();
/// Functions that are only counted and made to fail.
std::span<const Hook> CountedHooks();

/// Where in the module a call came from, as an offset from its base. A body that wants to know
/// takes it as its first parameter.
struct Site {
  std::uintptr_t offset;
};

template <typename Result>
Result Fail(const Failure& failure) {
  if (failure.lastError != 0) SetLastError(failure.lastError);
  if constexpr (std::is_pointer_v<Result>) {
    return reinterpret_cast<Result>(failure.result);
  } else {
    return static_cast<Result>(failure.result);
  }
}

/// Counts a call and, if it has to fail, gives that; otherwise what `run` gives. A function without
/// a result cannot fail.
template <std::size_t kImport, typename Result, typename Run>
Result Guarded(const Run& run) {
  const auto failure = Redirector::Current().Faults().OnCall(kImport);
  if constexpr (!std::is_void_v<Result>) {
    if (failure) return Fail<Result>(*failure);
  }
  return run();
}

template <typename... Arguments>
inline constexpr bool kTakesSite = false;
template <typename... Arguments>
inline constexpr bool kTakesSite<Site, Arguments...> = true;

template <std::size_t kImport, auto kBody>
struct Redirected;

template <std::size_t kImport, typename Result, typename... Arguments,
          Result (*kBody)(Arguments...)>
requires(!kTakesSite<Arguments...>) struct Redirected<kImport, kBody> {
  static Result WINAPI Call(Arguments... arguments) {
    return Guarded<kImport, Result>([&] { return kBody(arguments...); });
  }
};

template <std::size_t kImport, typename Result, typename... Arguments,
          Result (*kBody)(Site, Arguments...)>
struct Redirected<kImport, kBody> {
  static Result WINAPI Call(Arguments... arguments) {
    const void* const caller = __builtin_return_address(0);
    return Guarded<kImport, Result>(
        [&] { return kBody(Site{Redirector::Current().OffsetOf(caller)}, arguments...); });
  }
};

template <std::size_t kImport, typename Function>
struct Counted;

template <std::size_t kImport, typename Result, typename... Arguments>
struct Counted<kImport, Result(Arguments...)> {
  static Result WINAPI Call(Arguments... arguments) {
    return Guarded<kImport, Result>([&] {
      const auto original =
          reinterpret_cast<Result(WINAPI*)(Arguments...)>(Redirector::Current().Original(kImport));
      return original(arguments...);
    });
  }
};

/// `kBody` in the place of the import at `kImport`.
template <std::size_t kImport, auto kBody>
Hook Redirect() {
  return {kImport, reinterpret_cast<void*>(&Redirected<kImport, kBody>::Call)};
}

/// The import at `kImport`, of the type `Function`, itself.
template <std::size_t kImport, typename Function>
Hook Count() {
  return {kImport, reinterpret_cast<void*>(&Counted<kImport, Function>::Call)};
}

}  // namespace bench
