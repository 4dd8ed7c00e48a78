// How long before a report is due its single fix is requested.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "base/Sync.h"

namespace stelvane {

/// Up to this interval one periodic request runs; above it, timed single fixes do.
inline constexpr std::uint32_t kLongestPeriodicInterval = 8000;  // ms

/// Any thread; one lock of its own.
class LeadTimes {
 public:
  HRESULT Initialize() { return lock_.Initialize(); }

  static constexpr std::size_t kCount = 6;
  void SetDefaults() EXCLUDES(lock_);
  /// Lead time for a report interval, both in milliseconds; 0 up to kLongestPeriodicInterval.
  std::uint32_t For(std::uint32_t interval) EXCLUDES(lock_);

  /// The six lead times in whole seconds, separated by commas. May throw std::bad_alloc.
  std::string Text() EXCLUDES(lock_);

  /// Stores lead times from a text of that form; further pieces than six are counted, not stored.
  /// `refuse()` is told of each error and gives an HRESULT: a failure ends the call with it. A
  /// piece that reads as 0 is refused again and again for as long as `refuse` succeeds, with the
  /// lock held: this is meant, and a client that sends one waits until its results container
  /// fails. At the end a count other than six is refused; what was stored stays.
  template <class Refuse>
  HRESULT Store(const WCHAR* text, Refuse&& refuse) EXCLUDES(lock_);

 private:
  CriticalSection lock_;
  std::array<std::uint32_t, kCount> milliseconds_ GUARDED_BY(lock_) = {};
};

namespace lead_times {

/// Takes the piece up to the next comma off `text`; false when the text is used up.
bool NextPiece(const WCHAR*& text, const WCHAR*& piece);
/// The whole number that a piece starts with, after white space and with an optional sign, held in
/// the range of a LONG; 0 when there is none.
LONG ReadNumber(const WCHAR* piece);

}  // namespace lead_times

template <class Refuse>
HRESULT LeadTimes::Store(const WCHAR* text, Refuse&& refuse) {
  const ScopedLock lock(lock_);
  std::size_t count = 0;
  for (const WCHAR* piece = nullptr; lead_times::NextPiece(text, piece); ++count) {
    const LONG seconds = lead_times::ReadNumber(piece);
    while (seconds == 0) {
      if (const HRESULT result = refuse(); FAILED(result)) return result;
    }
    if (count < kCount) milliseconds_[count] = static_cast<std::uint32_t>(seconds) * 1000U;
  }
  return count == kCount ? S_OK : refuse();
}

}  // namespace stelvane
