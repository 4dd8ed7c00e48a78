// A client's way through the device's I/O queue and the driver.
#pragma once

#include "workbench/framework/Host.h"
#include "workbench/sensorapi/ClientPath.h"

namespace bench {

/// Each request is an I/O-control request of the host's device. The host has to outlive it.
class QueuePath final : public ClientPath {
 public:
  explicit QueuePath(Host& host);
  ~QueuePath() override { Close(); }

  IWDFFile* File() const override { return file_; }
  SensorAnswer Send(const SensorRequest& request) override;
  void Close() override;

 private:
  Host& host_;
  IWDFFile* file_;
  bool open_ = true;
};

}  // namespace bench
