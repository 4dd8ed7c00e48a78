// The state machine's answer to EV_INIT_SUPL, which nobody posts, and to numbers that are no event.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sensor/SensorStateMachine.h"
#include "tests/unit/bench_framework/FakeDriver.h"
#include "tests/unit/modem/IdleListener.h"

namespace stelvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SuplEvent : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(bench_.host->AddDevice(), S_OK);
    ASSERT_EQ(bench_.host->Start(), S_OK);
    ASSERT_EQ(ModemControl::Create(listener_, modem_), S_OK);
    ASSERT_EQ(modem_->Bind(bench_.host->device()), S_OK);
    bench_.modem.answer = E_FAIL;  // no command needs waiting for
    ASSERT_EQ(events_.Initialize(), S_OK);
    ASSERT_EQ(leadTimes_.Initialize(), S_OK);
    ASSERT_EQ(fixes_.Initialize(), S_OK);
    ASSERT_EQ(output_.Initialize(), S_OK);
    ASSERT_EQ(machine_.Initialize(), S_OK);
    machine_.SetModem(modem_.Get());
  }
  void TearDown() override {
    if (modem_) modem_->CloseModemControl();
  }

  bench::Bench bench_;
  IdleListener listener_;
  ComPtr<ModemControl> modem_;
  EventQueue events_;
  Timers timers_;
  LeadTimes leadTimes_;
  FixStore fixes_;
  SensorOutput output_;
  SensorStateMachine machine_{{events_, timers_, leadTimes_, fixes_, output_}};
};

TEST_F(SuplEvent, RunsTheProvisioningAndKeepsTheState) {
  machine_.HandleEvent(EV_INIT_SUPL);
  EXPECT_THAT(bench_.modem.writes, ElementsAre("AT+CIMI\r\n"));
  EXPECT_EQ(machine_.State(), std::uint32_t{SENSOR_STATE_ERROR});
}

TEST_F(SuplEvent, NumbersThatAreNoEventDoNothing) {
  for (const std::uint32_t event : {0U, 7U, 14U}) machine_.HandleEvent(event);
  EXPECT_THAT(bench_.modem.writes, IsEmpty());
  EXPECT_EQ(machine_.State(), std::uint32_t{SENSOR_STATE_ERROR});
}

}  // namespace
}  // namespace stelvane
