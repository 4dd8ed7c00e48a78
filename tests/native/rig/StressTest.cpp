// Many threads in the driver at once: what they do to each other is the sanitizers' to find.
#include <array>
#include <memory>
#include <string_view>
#include <vector>

#include "tests/driver/RigTest.h"

namespace bench {
namespace {

constexpr ULONG kSwitchRadio = 0x8905A008;
constexpr PROPERTYKEY kLatitude = {keys::kLocationSet, 2};
constexpr int kRounds = 6;

class DriverThreads : public RigTest {
 protected:
  /// One client after another, each with its own interval and habits.
  void BeAClient(ULONG interval) {
    for (int round = 0; round < kRounds; ++round) {
      const auto client = rig().NewClient();
      EXPECT_EQ(client->Connect(), S_OK);
      EXPECT_TRUE(client->SetReportInterval(interval).Accepted());
      EXPECT_EQ(client->Subscribe(), S_OK);
      client->WaitForReports(2, clock_.Now() + 20'000);
      client->SetDesiredAccuracy(static_cast<ULONG>(round % 2));
      client->ReadData({kLatitude});
      if (round % 2 == 0) client->Unsubscribe();
      client->Disconnect();
    }
  }

  void SwitchTheRadio() {
    for (ULONG state = 0; state < kRounds; ++state) {
      const ULONG off = state % 2;
      rig()
          .host()
          .SendIoControl(kSwitchRadio, {reinterpret_cast<const char*>(&off), sizeof off}, 0)
          .Wait();
      clock_.SleepFor(9'000);
    }
  }

  Thread Run(std::function<void()> body) { return Thread(clock_, std::move(body)); }
};

TEST_F(DriverThreads, ClientsComeAndGoWhileTheModemReportsAndTheRadioIsSwitched) {
  Start();
  rig().redirector().Tracing().Enable(5, ~ULONG{0});
  {
    std::array threads = {Run([this] { BeAClient(1000); }), Run([this] { BeAClient(5000); }),
                          Run([this] { BeAClient(9000); }), Run([this] { SwitchTheRadio(); })};
  }
  EXPECT_GT(rig().sensors().EventHistory().size(), 0u);
}

TEST_F(DriverThreads, ThePowerGoesDownAndUpUnderSubscribedClients) {
  Start();
  {
    std::array threads = {Run([this] { BeAClient(1000); }), Run([this] { BeAClient(60'000); })};
    for (int cycle = 0; cycle < kRounds; ++cycle) {
      clock_.SleepFor(3'000);
      EXPECT_EQ(rig().host().PowerDown(), S_OK);
      clock_.SleepFor(500);
      EXPECT_EQ(rig().host().PowerUp(), S_OK);
    }
  }
  EXPECT_GT(rig().sensors().EventHistory().size(), 0u);
}

TEST_F(DriverThreads, TheDeviceIsPulledOutUnderSubscribedClients) {
  Start();
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  EXPECT_TRUE(client->SetReportInterval(1000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  EXPECT_TRUE(client->WaitForReports(3, clock_.Now() + 60'000));
  const Thread reader = Run([&client] { client->ReadData({kLatitude}); });
  rig().host().SurpriseRemoval();
  clock_.SleepFor(100);
  client->Disconnect();
}

}  // namespace
}  // namespace bench
