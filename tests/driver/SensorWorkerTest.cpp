// A sensor core whose worker thread cannot be started.

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SensorWorker = SensorTest;

TEST_F(SensorWorker, AThreadThatCannotBeStartedDoesNotFailTheStartAndEventsWaitForNobody) {
  LoadSensor();
  faults().FailImport("CreateThread", faults().CallCount("CreateThread") + 1);
  StartLoaded();
  EXPECT_EQ(faults().Failed(), 1U);
  const auto client = Connect();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_INIT", "EV_FIRST_CLIENT_CONNECTED"));
  EXPECT_THAT(Log(Doing::kHandled), IsEmpty());
  EXPECT_THAT(Commands(), IsEmpty());
  EXPECT_EQ(rig().host().Stop(), S_OK);
}

}  // namespace
}  // namespace bench
