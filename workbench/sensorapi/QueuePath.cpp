#include "workbench/sensorapi/QueuePath.h"

#include <utility>

#include "workbench/framework/FxFile.h"

namespace bench {
namespace {

// Room for any answer: a report's NMEA text and satellites are the largest.
constexpr std::size_t kOutputSize = 64 * 1024;

}  // namespace

QueuePath::QueuePath(Host& host) : host_(host), file_(host.OpenFile()) {}

SensorAnswer QueuePath::Send(const SensorRequest& request) {
  const ClientRequest sent =
      host_.SendIoControl(kMessageReadWrite, Encode(request), kOutputSize, file_);
  if (!sent.Wait()) return {.result = kOperationAborted};  // the device went away
  if (FAILED(sent.Status())) return {.result = sent.Status()};
  auto answer = DecodeAnswer(std::string_view(sent.Output()).substr(0, sent.Information()));
  return answer ? *std::move(answer) : SensorAnswer{.result = E_UNEXPECTED};
}

void QueuePath::Close() {
  if (!open_) return;
  open_ = false;
  // A device that was removed took its files along.
  if (OwnObject<FxFile>(host_.world(), file_) != nullptr) host_.CleanupFile(file_);
}

}  // namespace bench
