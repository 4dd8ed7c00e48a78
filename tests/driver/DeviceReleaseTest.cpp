// Releases: two at once, one after the other, and of a device that is not the module's.

#include <atomic>
#include <utility>

#include "tests/driver/RigTest.h"

namespace bench {
namespace {

// The messages of sensor/SensorCore.cpp, and the one that begins the stop.
constexpr GUID kCoreMessages = {
    0x144badba, 0x9576, 0x456f, {0xb9, 0x9f, 0x61, 0xff, 0xb7, 0xa1, 0x63, 0xb2}};
constexpr USHORT kStopBegins = 13;

using DeviceReleaseTest = RigTest;

TEST_F(DeviceReleaseTest, TwoReleasesAtOnceStopTheCoreOnce) {
  std::atomic<int> stops{0};
  RigOptions options;
  options.trace = TraceOptions{.listener = [&](const TraceRecord& message) {
    if (IsEqualGUID(message.message, kCoreMessages) && message.number == kStopBegins) ++stops;
  }};
  Start(std::move(options));
  std::atomic<HRESULT> second{E_PENDING};
  Thread other;
  std::atomic<bool> begun{false};
  rig().calls().SetHook([&](const CallEntry& entry) {
    // The core's stop deletes the USB device.
    if (stops == 0 || entry.call != "IWDFObject::DeleteWdfObject" || begun.exchange(true)) return;
    other = Thread(clock_, [&] { second = callbacks().hardware->OnReleaseHardware(device()); });
    clock_.SleepFor(1);  // the other has come as far as it gets
  });
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
  other.Join();
  rig().calls().SetHook({});
  EXPECT_TRUE(begun);
  EXPECT_EQ(second, S_OK);
  EXPECT_EQ(stops, 1);
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::Uninitialize"), 1U);
}

TEST_F(DeviceReleaseTest, ReleasingAnotherDeviceLeavesTheModuleDeviceInPlace) {
  Start();
  ASSERT_EQ(rig().host().PowerDown(), S_OK);
  IWDFDevice* const another = nullptr;
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(another), S_OK);
  const ULONG held = device()->References();
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
  EXPECT_EQ(device()->References(), held - 1);  // the module's own
}

TEST_F(DeviceReleaseTest, ReleasingTwiceStopsTheCoreOnce) {
  Start();
  EXPECT_EQ(rig().host().Stop(), S_OK);
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::Uninitialize"), 1U);
}

TEST_F(DeviceReleaseTest, AReleasedDeviceCannotBePreparedAgain) {
  Start();
  EXPECT_EQ(rig().host().Stop(), S_OK);
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(device()), kShutdownInProgress);
}

}  // namespace
}  // namespace bench
