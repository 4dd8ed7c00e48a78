// How the modem's output reaches the port: whole, cut, or joined.
#pragma once

#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "workbench/modem/Agenda.h"

namespace bench {

/// Used under the modem's lock.
class PortWriter {
 public:
  using Emit = std::function<void(std::string chunk)>;

  /// `emit` takes each chunk as it is ready to go.
  PortWriter(Agenda& agenda, Emit emit) : agenda_(agenda), emit_(std::move(emit)) {}

  /// Chunks of `bytes` each; 0: as written, up to a transfer's length.
  void Cut(std::size_t bytes);
  /// Chunks of 1 to 64 bytes.
  void CutAtRandom(std::uint32_t seed) { random_.emplace(seed); }
  /// Holds output until `delay` after the first byte held; 0: not at all.
  void Join(Millis delay) { join_ = delay; }

  void Write(Millis now, std::string_view text);

 private:
  void Flush();
  std::size_t NextLength();

  Agenda& agenda_;
  const Emit emit_;
  std::size_t cut_ = 0;
  std::optional<std::mt19937> random_;
  Millis join_ = 0;
  std::string held_;
};

}  // namespace bench
