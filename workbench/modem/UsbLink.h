// The seam between the simulated USB stack and the simulated modem: bytes and control requests.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace bench {

/// A USB setup packet, decoded.
struct ControlRequest {
  std::uint8_t requestType = 0;
  std::uint8_t request = 0;
  std::uint16_t value = 0;
  std::uint16_t index = 0;
  std::uint16_t length = 0;
};

/// What the modem does with the host's transfers. Statuses are HRESULTs (negative: failed). Calls
/// come on the host's sending thread and return at once; answers come later through the sink.
class UsbLink {
 public:
  virtual ~UsbLink() = default;
  virtual std::int32_t OnControlRequest(const ControlRequest& request) = 0;
  virtual std::int32_t OnHostWrite(std::string_view bytes) = 0;

  /// Where the modem's bytes go: one call is one chunk as the modem flushed it. Set once by the
  /// USB stack before the first transfer; called on the modem's own thread.
  using ByteSink = std::function<void(std::string_view bytes)>;
  virtual void SetSink(ByteSink sink) = 0;
};

}  // namespace bench
