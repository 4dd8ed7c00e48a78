// Calls under a lock that are meant.
#include <gmock/gmock.h>

#include "tests/unit/bench_rules/DriverLife.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PrescribedCalls : public testing::Test {
 protected:
  PrescribedCalls() {
    life_.Imports().initSection(&life_.first);
    life_.script.onRelease = [this, release = life_.script.onRelease](IWDFDevice* device) {
      life_.Imports().deleteSection(&life_.first);
      return release(device);
    };
  }

  // GetDriver and then StopIdle and ResumeIdle, under a lock.
  void CallUnderALock() {
    life_.Imports().enter(&life_.first);
    ComPtr<IWDFDriver> driver;
    life_.device().GetDriver(driver.Put());
    life_.device().StopIdle(FALSE);
    life_.device().ResumeIdle();
    life_.Imports().leave(&life_.first);
  }

  DriverLife life_;
};

TEST_F(PrescribedCalls, AreNoBreachAndOthersAre) {
  static constexpr PrescribedCall kOne[] = {{"IWDFDevice::GetDriver", "a test"},
                                            {"IWDFDevice2::StopIdle", "a test"}};
  life_.Prescribe(kOne);
  life_.AtFlush([this](IWDFDevice*) { CallUnderALock(); });
  EXPECT_THAT(life_.Run(), ElementsAre(HasSubstr("IWDFDevice2::ResumeIdle")));
}

TEST_F(PrescribedCalls, CanBeAllOfAnInterface) {
  static constexpr PrescribedCall kAll[] = {{"IWDFDevice::", "a test"},
                                            {"IWDFDevice2::", "a test"}};
  life_.Prescribe(kAll);
  life_.AtFlush([this](IWDFDevice*) { CallUnderALock(); });
  EXPECT_THAT(life_.Run(), IsEmpty());
}

TEST_F(PrescribedCalls, AreABreachInAReadersCallback) {
  static constexpr PrescribedCall kAll[] = {{"IWDFDevice::", "a test"},
                                            {"IWDFDevice2::", "a test"}};
  life_.Prescribe(kAll);
  life_.script.onReaderFailure = [this](IWDFUsbTargetPipe*, HRESULT) {
    CallUnderALock();
    return TRUE;
  };
  EXPECT_THAT(life_.Run(), testing::SizeIs(3));
}

}  // namespace
}  // namespace bench
