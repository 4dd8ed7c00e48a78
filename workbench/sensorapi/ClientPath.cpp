#include "workbench/sensorapi/ClientPath.h"

#include "workbench/framework/FxFile.h"

namespace bench {

DirectPath::DirectPath(SensorService& service)
    : service_(service), file_(&Make<FxFile>(service.world(), nullptr, "client file")) {}

IWDFFile* DirectPath::File() const {
  return file_;
}

SensorAnswer DirectPath::Send(const SensorRequest& request) {
  ClassExtension* const extension = service_.Extension();
  return extension != nullptr ? extension->Serve(file_, request)
                              : SensorAnswer{.result = kInvalidState};
}

void DirectPath::Close() {
  if (!open_) return;
  open_ = false;
  if (ClassExtension* const extension = service_.Extension(); extension != nullptr) {
    extension->Disconnect(file_);
  }
  file_->Delete();
}

}  // namespace bench
