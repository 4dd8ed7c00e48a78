// The way out, power changes and the radio of a sensor that has nobody to talk to.

#include "sensor/SensorOutput.h"

#include <gtest/gtest.h>

#include "sensor/RadioControl.h"
#include "sensor/SensorCore.h"

namespace stelvane {
namespace {

TEST(SensorOutputTest, AReportWithoutAClassExtensionFailsAndLeavesTheTimesAlone) {
  SensorOutput output;
  ASSERT_EQ(output.Initialize(), S_OK);
  ClientTable clients;
  ASSERT_EQ(clients.Initialize(), S_OK);
  int client = 0;
  clients.Connect(reinterpret_cast<ClientId>(&client));
  clients.SetSubscribed(reinterpret_cast<ClientId>(&client), true);
  EXPECT_EQ(output.SendDataReport(clients, FixRecord()), E_FAIL);
  EXPECT_EQ(output.LastReportedFixTime().wYear, 0);
  EXPECT_EQ(output.LastReportTime().wYear, 0);
}

TEST(SensorOutputTest, AReportThatNobodySubscribedToIsNoFailure) {
  SensorOutput output;
  ASSERT_EQ(output.Initialize(), S_OK);
  ClientTable clients;
  ASSERT_EQ(clients.Initialize(), S_OK);
  EXPECT_EQ(output.SendDataReport(clients, FixRecord()), S_OK);
}

TEST(SensorPowerTest, WithoutAModemNeitherWayWorks) {
  ComPtr<SensorCore> core;
  ASSERT_EQ(CreateObject(core), S_OK);
  EXPECT_EQ(core->PowerUp(), E_FAIL);
  EXPECT_EQ(core->PowerDown(), E_FAIL);
}

TEST(SensorRadioTest, WithoutAModemTheRadioIsNeitherReadNorSwitched) {
  ComPtr<SensorCore> core;
  ASSERT_EQ(CreateObject(core), S_OK);
  // The request is not looked at.
  EXPECT_EQ(ReadRadioState(*core.Get(), nullptr, RadioValue::kCurrent), E_FAIL);
  EXPECT_EQ(ReadRadioState(*core.Get(), nullptr, RadioValue::kPrevious), E_FAIL);
  EXPECT_EQ(SetRadioState(*core.Get(), nullptr, false), E_FAIL);
  EXPECT_EQ(SetRadioState(*core.Get(), nullptr, true), E_FAIL);
}

}  // namespace
}  // namespace stelvane
