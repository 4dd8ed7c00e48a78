#include "tests/sweep/Prescribed.h"

#include <algorithm>

namespace bench {

namespace {

struct Prescription {
  std::string_view call;     // that fails; empty: the device is pulled out or stopped
  std::string_view finding;  // how it begins
  std::string_view why;
};

constexpr Prescription kPrescriptions[] = {
    {"ISensorClassExtension::Uninitialize", "class extension released initialized",
     "it was asked to end, and refused; the release goes on"},
    {"IUnknown::QueryInterface(IWDFIoTargetStateManagement)", "failure on the way down",
     "power-down answers with the failure to stop reading"},
    {"IWDFIoTargetStateManagement::Stop", "failure on the way down",
     "power-down answers with the failure to stop reading"},
    {"IWDFDevice2::ResumeIdle", "idle balance",
     "the call has no result, so that nobody sees it do nothing"},
    {"IPortableDeviceKeyCollection::GetAt", "data report departs from the supported fields",
     "a key that cannot be read is left out of the report"},
    {"IPortableDeviceKeyCollection::GetAt", "malformed event",
     "a key that cannot be read is left out of the report"},
    {"IWDFIoRequest::CompleteWithInformation", "request not answered in time",
     "the request was answered; the answer did not take effect"},
    {"IWDFIoRequest::CompleteWithInformation", "request never completed",
     "the request was answered; the answer did not take effect"},
    {"", "failure on the way down: IPnpCallbackSelfManagedIo::OnSelfManagedIoSuspend",
     "after a removal the suspend acts and says that a shutdown is in progress"},
    {"SetupDiOpenDeviceInfoW", "handle left open: device information list",
     "the list stays open when the device cannot be opened"},
};

}  // namespace

bool IsPrescribed(const Mishap& mishap, std::string_view finding) {
  return std::ranges::any_of(kPrescriptions, [&](const Prescription& prescription) {
    return mishap.name == prescription.call && finding.starts_with(prescription.finding);
  });
}

}  // namespace bench
