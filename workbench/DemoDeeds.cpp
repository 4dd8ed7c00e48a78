// What a run of the demo does to the device and the modem on its way.
#include <string>

#include "driver/IoControlCodes.h"
#include "workbench/DemoRun.h"

namespace bench {

namespace {

// Writing 1 to it clears the assistance data.
constexpr PROPERTYKEY kClearAssistanceData = {
    {0xe1e962f4, 0x6e65, 0x45f7, {0x9c, 0x36, 0xd4, 0x87, 0xb7, 0xb1, 0xbd, 0x34}}, 2};

}  // namespace

void DemoRun::SwitchRadioOn() {
  if (showsAll_) console_.Line(clock_.Now(), "client   switches the radio on", Tone::kPlain);
  const std::string on(4, '\0');
  auto request = rig_->host().SendIoControl(stelvane::kIoctlSwitchRadio, on, 0);
  request.Wait();
  Check(request.Status(), "the radio cannot be switched on");
}

void DemoRun::ChangeSim() {
  if (showsAll_) {
    console_.Line(clock_.Now(), "SIM      now " + options_.simChange->imsi, Tone::kPlain);
  }
  rig_->modem().SetSim(options_.simChange->imsi);
  if (!clients_.front()->SetProperty(kClearAssistanceData, Variant::Ui4(1)).Accepted()) {
    faults_.push_back("the assistance data cannot be cleared");
  }
}

// The client asks once more, as one does that does not know yet.
void DemoRun::Unplug() {
  if (showsAll_) console_.Line(clock_.Now(), "device   is pulled out", Tone::kPlain);
  rig_->host().SurpriseRemoval();
  auto request = rig_->host().SendIoControl(stelvane::kIoctlSwitchRadio, std::string(4, '\0'), 0);
  request.Wait();
  if (SUCCEEDED(request.Status())) faults_.emplace_back("a request was served after the removal");
  until_ = clock_.Now();
}

}  // namespace bench
