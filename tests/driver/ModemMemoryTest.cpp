// Memory that runs out once in a modem procedure that must not fail its caller.

#include "tests/driver/ModemTest.h"

namespace bench {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr GUID kCommands = {
    0xb03fb04c, 0xc7b4, 0x424f, {0xb1, 0x46, 0xc5, 0xa6, 0x80, 0xe0, 0x57, 0x2d}};
constexpr USHORT kCommandStarts = 10;
constexpr USHORT kCommandHasEnded = 11;

class ModemMemory : public ModemTest {
 protected:
  /// The driver's next request for memory after this command fails.
  void FailMemoryAfter(std::string command) {
    TraceSession& tracing = rig_->redirector().Tracing();
    tracing.SetListener(
        [this, command = std::move(command), runs = false](const TraceRecord& record) mutable {
          if (!IsEqualGUID(record.message, kCommands)) return;
          if (record.number == kCommandStarts) {
            runs = reinterpret_cast<const char*>(record.arguments.data()) == command;
          } else if (record.number == kCommandHasEnded && runs && Faults().Failed() == 0) {
            Faults().FailImport("malloc", Faults().CallCount("malloc") + 1);
          }
        });
    tracing.Enable(TRACE_LEVEL_VERBOSE, ~0U);
  }
  FaultPlan& Faults() { return rig_->redirector().Faults(); }
};

TEST_F(ModemMemory, LackingForTheClockTheBringUpGoesOnWithoutIt) {
  RigOptions options;
  // Two digits each: the clock's text is then too long to be kept without memory.
  options.startUtc = SYSTEMTIME{.wYear = 2014,
                                .wMonth = 11,
                                .wDayOfWeek = 4,
                                .wDay = 20,
                                .wHour = 10,
                                .wMinute = 11,
                                .wSecond = 12,
                                .wMilliseconds = 0};
  Build(std::move(options));
  FailMemoryAfter("AT+XLCSLQOS=50");
  Start();
  EXPECT_EQ(Faults().Failed(), 1U);
  EXPECT_THAT(Commands(), ElementsAre("ATE1", "AT+XLCSSWITCH?", "AT+XLCSLQOS=50", "AT+CIMI"));
  Connect();
  EXPECT_EQ(Commands().back(), "AT+XLCSLSR=1,1,,,,,,,,2,,") << "initialised";
}

TEST_F(ModemMemory, LackingForTheSuplSettingsTheBringUpEndsWellAndTheNextStartTriesAgain) {
  Build();
  rig_->systemRoot().InstallConfigFile(std::string(PACKAGE_FOLDER) + "/StelvaneSUPLInfo-DTD.xml");
  FailMemoryAfter("AT+CIMI");
  Start();
  EXPECT_EQ(Faults().Failed(), 1U);
  EXPECT_EQ(Commands(), BringUp());
  Connect();
  EXPECT_THAT(Commands(), Contains("AT+XLCSTER=1"));
  EXPECT_EQ(Commands().back(), "AT+XLCSLSR=1,1,,,,,,,,2,,");
}

TEST_F(ModemMemory, LackingForTheSuplSettingsTheLocationRequestIsMadeAllTheSame) {
  StartQuietly();
  FailMemoryAfter("AT+CIMI");
  Connect();
  EXPECT_EQ(Faults().Failed(), 1U);
  EXPECT_THAT(Commands(), ElementsAre("AT+CIMI", "AT+XLCSLSR=1,1,,,,,,,,2,,"));
}

TEST_F(ModemMemory, LackingForTheHandOverANormalBringUpFollows) {
  constexpr const char* kQueryProfile =
      "AT@usbmwtestfw:usb_profile_get_nvm_configuration(USBPOW_ID_DEFAULT)";
  Build();
  rig_->redirector().Registry().SetDword(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tavrel\\Stelvane",
                                         L"DisableInternalGNSS", 1);
  FailMemoryAfter(kQueryProfile);
  Start();
  EXPECT_EQ(Faults().Failed(), 1U);
  std::vector<std::string> expected = BringUp();
  expected.insert(expected.begin() + 1, kQueryProfile);
  EXPECT_EQ(Commands(), expected);
}

}  // namespace
}  // namespace bench
