// The road of one fix: from the modem's bytes to a subscribed client.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "workbench/clock/VirtualClock.h"
#include "workbench/rig/Rig.h"

namespace bench {
namespace {

using testing::IsEmpty;

TEST(RoadOfOneFix, ASubscribedClientGetsItsReportsAndNothingIsLeftBehind) {
  VirtualClock clock;
  Rig rig(clock);
  ASSERT_EQ(rig.Start(), S_OK);
  const auto client = rig.NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(client->SetReportInterval(5000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  EXPECT_TRUE(client->WaitForReports(5, clock.Now() + 60'000));
  client->Disconnect();
  rig.Shutdown();
  EXPECT_THAT(rig.Findings(), IsEmpty());
}

}  // namespace
}  // namespace bench
