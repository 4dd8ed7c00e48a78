// How a client's requests get to the class extension.
#pragma once

#include "platform/WdfRequest.h"
#include "workbench/sensorapi/ClassExtension.h"
#include "workbench/sensorapi/SensorRequest.h"

namespace bench {

class FxFile;

/// One client's open file on the device.
class ClientPath {
 public:
  virtual ~ClientPath() = default;

  /// The file that the driver knows the client by.
  virtual IWDFFile* File() const = 0;
  /// Blocks until the request is answered. May be called from several threads at once.
  virtual SensorAnswer Send(const SensorRequest& request) = 0;
  /// Closes the file; nothing may be sent afterwards.
  virtual void Close() = 0;
};

/// Straight into the class extension, on the caller's thread.
class DirectPath final : public ClientPath {
 public:
  explicit DirectPath(SensorService& service);
  ~DirectPath() override { Close(); }

  IWDFFile* File() const override;
  SensorAnswer Send(const SensorRequest& request) override;
  void Close() override;

 private:
  SensorService& service_;
  FxFile* file_;  // owned by the ledger
  bool open_ = true;
};

}  // namespace bench
