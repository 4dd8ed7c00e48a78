// A power cycle in the middle of what the sensor does.

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SensorPower : public SensorTest {
 protected:
  void Cycle() {
    EXPECT_EQ(rig().host().PowerDown(), S_OK);
    RunFor(1000);
    EXPECT_EQ(rig().host().PowerUp(), S_OK);
    Settle();
  }
};

TEST_F(SensorPower, ARunningPeriodicRequestIsStartedAgainAfterAPowerCycle) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  Mark();
  Cycle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING"));
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2", Periodic(5)));
  // The resume and the stop both gave the use of the first request back; it is kept so on purpose.
  EXPECT_EQ(EngineUses(), 0);
  RunFor(5000);
  const std::size_t before = ReportCount();
  SayFix();
  EXPECT_EQ(ReportCount(), before + 1);
}

TEST_F(SensorPower, AnOutstandingSingleFixIsAskedForAgain) {
  StartSensor();
  const auto client = Subscriber(9000);
  RunFor(6500);
  Mark();
  Cycle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_DATA_REQUESTED"));
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix));
  SayFix();
  EXPECT_EQ(ReportCount(), 1U);
}

TEST_F(SensorPower, WithNothingRunningNothingIsPosted) {
  StartSensor();
  const auto client = Subscriber(9000);
  Mark();
  Cycle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(SensorPower, TimersRunOnWhileThePowerIsDown) {
  StartSensor();
  const auto client = Subscriber(9000);
  const Millis subscribed = clock_.Now() - 1;
  Mark();
  EXPECT_EQ(rig().host().PowerDown(), S_OK);
  RunFor(4000);
  EXPECT_EQ(rig().host().PowerUp(), S_OK);
  RunUntil(subscribed + 6500);
  EXPECT_THAT(TimesOf(kSingleFix), ElementsAre(subscribed + 6000));
}

TEST_F(SensorPower, AReaderThatDoesNotStartFailsThePowerUpAndNothingIsAskedForAgain) {
  StartSensor();
  const auto client = Subscriber(5000);
  EXPECT_EQ(rig().host().PowerDown(), S_OK);
  rig().calls().FailCall("IWDFIoTargetStateManagement::Start", 1, E_ABORT);
  Mark();
  EXPECT_EQ(rig().host().PowerUp(), E_ABORT);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_EQ(EngineUses(), 1);
}

TEST_F(SensorPower, TheResultOfThePowerUpIsThatOfTheReaderAlsoWhenItIsASuccess) {
  StartSensor();
  const auto client = Subscriber(5000);
  EXPECT_EQ(rig().host().PowerDown(), S_OK);
  rig().calls().FailCall("IWDFIoTargetStateManagement::Start", 1, S_FALSE);
  Mark();
  EXPECT_EQ(rig().host().D0Entry(WdfPowerDeviceD3), S_FALSE);
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING"));
  Settle();
}

TEST_F(SensorPower, AReaderThatDoesNotStopIsTheResultOfThePowerDown) {
  StartSensor();
  rig().calls().FailCall("IWDFIoTargetStateManagement::Stop", 1, E_ABORT);
  EXPECT_EQ(callbacks().pnp->OnD0Exit(device(), WdfPowerDeviceD3), E_ABORT);
}

// Two engine errors have given the use of the running request back.
TEST_F(SensorPower, APeriodicRequestThatDoesNotHoldTheDeviceIsNotStartedAgain) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayError();
  SayError();
  ASSERT_EQ(EngineUses(), 0);
  Mark();
  Cycle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(SensorPower, ThePowerDownLeavesTheRequestTheHoldAndTheTimersAsTheyAre) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_EQ(rig().host().PowerDown(), S_OK);
  Settle();
  EXPECT_EQ(EngineUses(), 1);
  EXPECT_THAT(Commands(), IsEmpty());
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_THAT(Log(Doing::kArmed), IsEmpty());
  EXPECT_THAT(Log(Doing::kTurnedOff), IsEmpty());
  EXPECT_EQ(rig().host().PowerUp(), S_OK);
}

}  // namespace
}  // namespace bench
