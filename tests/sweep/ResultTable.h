// The prescribed results, as data.
#pragma once

#include <windows.h>

#include <span>
#include <string_view>

namespace bench {

/// Names may end in "*", for anything that begins like this.
struct PrescribedResult {
  std::string_view operation;    // "OnD0Entry", "SendCommand AT+CIMI"
  std::string_view call;         // that failed in it
  HRESULT result;                // or one of the two below
  std::string_view after = "*";  // what was called before; empty: nothing
  HRESULT other = result;        // where the record does not show which of two applies
  int retries = 0;               // so many failures of the call are made good
};

/// The failed call's own code, unchanged.
inline constexpr HRESULT kSameCode = 0x2FFFFFFF;  // no code of anybody's
/// The failure is nothing to the operation; what comes after it decides.
inline constexpr HRESULT kNoMatter = S_OK;

/// The first that applies counts.
std::span<const PrescribedResult> PrescribedResults();

}  // namespace bench
