// Each command's dialogue, and the rules of the echo.
#include <gtest/gtest.h>

#include "tests/unit/bench_modem/ModemHost.h"

namespace bench {
namespace {

/// A host that has switched the echo on.
class EchoingHost : public ModemHost {
 public:
  explicit EchoingHost(ModemOptions options = {}) : ModemHost(std::move(options)) { Ask("ATE1"); }
};

TEST(ModemEcho, FirstAte1IsNotEchoedAndTheNextOneIs) {
  ModemHost host;
  EXPECT_EQ(host.Ask("ATE1"), kOk);
  EXPECT_EQ(host.Ask("ATE1"), std::string("ATE1\r\n") + kOk);
}

TEST(ModemEcho, CommandsAreNotEchoedBeforeAte1NorAfterAte0) {
  ModemHost host;
  EXPECT_EQ(host.Ask("AT"), kOk);
  host.Ask("ATE1");
  EXPECT_EQ(host.Ask("ATE0"), std::string("ATE0\r\n") + kOk);
  EXPECT_EQ(host.Ask("AT"), kOk);
}

TEST(ModemEcho, OnFromTheStartWhenSetUpSo) {
  ModemHost host({.echo = true});
  EXPECT_EQ(host.Ask("AT"), std::string("AT\r\n") + kOk);
}

TEST(ModemEcho, IsAtOnceAndTheAnswerFollowsAfterTheLatency) {
  ModemHost host({.latency = 70, .echo = true});
  host.Ask("AT");
  const auto chunks = host.Chunks();
  ASSERT_EQ(chunks.size(), 2u);
  EXPECT_EQ(chunks[0], std::pair(Millis{0}, std::string("AT\r\n")));
  EXPECT_EQ(chunks[1], std::pair(Millis{70}, std::string(kOk)));
}

TEST(ModemDialogue, ALineMayComeInPiecesAndEndInCrOrLf) {
  EchoingHost host;
  host.Send("A");
  host.Send("T+CI");
  EXPECT_EQ(host.ReadFor(1000), "");
  host.Send("MI\r");
  EXPECT_EQ(host.ReadUntil(kOk), std::string("AT+CIMI\r\n\r\n001010123456789\r\n") + kOk);
  host.Send("\n");
  EXPECT_EQ(host.ReadFor(1000), "");
  host.Send("AT\n");
  EXPECT_EQ(host.ReadUntil(kOk), std::string("AT\r\n") + kOk);
}

TEST(ModemDialogue, CommandsInOneWriteAreServedOneAfterTheOther) {
  ModemHost host;
  host.Send("ATE1\r\nAT\r\nAT+XLCSLQOS=50\r\n");
  EXPECT_EQ(host.ReadFor(1000), std::string(kOk) + "AT\r\n" + kOk + "AT+XLCSLQOS=50\r\n" + kOk);
}

TEST(ModemDialogue, EveryPlainCommandIsEchoedAndAnsweredOk) {
  EchoingHost host;
  for (const std::string command :
       {"AT", "AT+XLCSLQOS=50", "AT+XLCSLQOS=15,,150", "AT+CCLK=\"14/7/5,9:3:7\"",
        "AT+XLGNVRAM=7,0", "AT+XLCSSLP=2,,7275", "AT+XLCSTER=1", "AT+XLCSSUPLVER=2",
        "AT+XLCSSUPLVER=", "AT+XLCSSWITCH=0,1", "AT+XLCSSWITCH=1", "AT+XLCSSHUTDOWN",
        "AT@nvm:store_nvm(fix_usb)"}) {
    EXPECT_EQ(host.Ask(command), command + "\r\n" + kOk);
  }
}

TEST(ModemDialogue, UnknownAndMalformedCommandsAreErrors) {
  EchoingHost host;
  const std::vector<std::string> commands = {
      "AT+UNKNOWN",
      "at",
      "AT+XLCSLQOS=",
      "AT+CCLK=14/7/5",
      "AT+XLGNVRAM=7",
      "AT+XLCSSLP=2,7275",
      "AT+XLCSSWITCH=2",
      "AT+XLCSSWITCH=",
      "AT+XLCSLSR=1,1",
      "AT+XLCSLSR=1,1,,,,,x,,,2,,",
      "AT+XLSRSTOP=1,1",
      "AT+XLSRSTOP=0",
      "AT+XLSRSTOP=0,x",
      "AT+CFUN=1",
      "AT@nvm:store_nvm(x)",
      "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,)"};
  for (const std::string& command : commands) {
    EXPECT_EQ(host.Ask(command), command + "\r\n" + kError);
  }
  EXPECT_EQ(host.modem.Snapshot().errorsSent, commands.size());
}

TEST(ModemDialogue, SwitchIsReportedAsItStands) {
  EchoingHost host;
  EXPECT_EQ(host.Ask("AT+XLCSSWITCH?"),
            std::string("AT+XLCSSWITCH?\r\n\r\n+XLCSSWITCH : 1\r\n") + kOk);
  host.Ask("AT+XLCSSWITCH=0,1");
  EXPECT_EQ(host.Ask("AT+XLCSSWITCH?"),
            std::string("AT+XLCSSWITCH?\r\n\r\n+XLCSSWITCH : 0\r\n") + kOk);
  host.Ask("AT+XLCSSWITCH=1");
  EXPECT_TRUE(host.modem.Snapshot().engineOn);
}

TEST(ModemDialogue, ImsiIsThatOfTheSimInTheSlot) {
  ModemHost host;
  EXPECT_EQ(host.Ask("AT+CIMI"), std::string("\r\n001010123456789\r\n") + kOk);
  host.modem.SetSim("310410123456789");
  EXPECT_EQ(host.Ask("AT+CIMI"), std::string("\r\n310410123456789\r\n") + kOk);
  EXPECT_EQ(host.modem.Snapshot().imsi, "310410123456789");
  host.modem.SetSim("");
  EXPECT_EQ(host.Ask("AT+CIMI"), kError);
}

TEST(ModemDialogue, SettingsAreKeptAsText) {
  ModemHost host;
  host.Ask("AT+XLCSLQOS=15,,150");
  host.Ask("AT+CCLK=\"0/1/1,0:0:0\"");
  host.Ask("AT+XLCSSLP=1,\"slp.example.net\",7275");
  host.Ask("AT+XLCSTER=1");
  host.Ask("AT+XLCSSUPLVER=2");
  const ModemSnapshot state = host.modem.Snapshot();
  EXPECT_EQ(state.qos, "15,,150");
  EXPECT_EQ(state.clock, "0/1/1,0:0:0");
  EXPECT_EQ(state.supl, (SuplSettings{"1", "slp.example.net", "7275", "1", "2"}));
}

TEST(ModemDialogue, AddressWithACommaStaysWhole) {
  ModemHost host;
  host.Ask("AT+XLCSSLP=0,\"a,b\",1");
  EXPECT_EQ(host.modem.Snapshot().supl.address, "a,b");
}

constexpr const char* kReadUsb =
    "AT@usbmwtestfw:usb_profile_get_nvm_configuration(USBPOW_ID_DEFAULT)";

TEST(ModemDialogue, UsbProfileIsReadInOneLine) {
  ModemHost host;
  EXPECT_EQ(host.Ask(kReadUsb),
            std::string("\r\n+USB: profile_str=\"MBIM_GNSS\";options_str=\"\";vendor_id=1234;"
                        "vendor_name=\"Example\";product_id=5678;"
                        "product_name=\"Example LTE modem\"\r\n") +
                kOk);
}

TEST(ModemDialogue, UsbProfileIsWrittenAndStored) {
  ModemHost host;
  const UsbProfile old = host.modem.Snapshot().usbProfile;
  const UsbProfile expected{"MBIM", "x", "1234", "v, w", "5678", "p"};
  EXPECT_EQ(host.Ask("AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,"
                     "\"MBIM\",\"x\",1234,\"v, w\",5678,\"p\")"),
            kOk);
  EXPECT_EQ(host.modem.Snapshot().usbProfile, expected);
  EXPECT_EQ(host.modem.Snapshot().storedUsbProfile, old);
  host.Ask("AT@nvm:store_nvm(fix_usb)");
  EXPECT_EQ(host.modem.Snapshot().storedUsbProfile, expected);
}

TEST(ModemDialogue, UsbProfileWithAllFieldsEmptyIsTaken) {
  ModemHost host;
  EXPECT_EQ(host.Ask("AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,"
                     "\"MBIM\",\"\",,\"\",,\"\")"),
            kOk);
  EXPECT_EQ(host.modem.Snapshot().usbProfile, (UsbProfile{"MBIM", "", "", "", "", ""}));
}

TEST(ModemRestart, AnswersThenIsSilentAndForgetsItsEcho) {
  ModemHost host({.restartTime = 4000});
  host.Ask("ATE1");
  EXPECT_EQ(host.Ask("AT+CFUN=1,1"), std::string("AT+CFUN=1,1\r\n") + kOk);
  host.Send("AT\r\n");
  EXPECT_EQ(host.ReadFor(3990), "");
  EXPECT_EQ(host.ReadFor(1000), "");
  EXPECT_EQ(host.Ask("AT"), kOk);
  EXPECT_EQ(host.modem.Snapshot().restarts, 1u);
}

TEST(ModemRestart, DropsTheRunningRequestAndWhatWasNotStored) {
  ModemHost host;
  const UsbProfile old = host.modem.Snapshot().usbProfile;
  host.Ask(
      "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,"
      "\"MBIM\",\"\",,\"\",,\"\")");
  host.Ask("AT+XLCSLSR=1,1,,,,,1,,,2,,");
  host.Ask("AT+CFUN=1,1");
  EXPECT_EQ(host.ReadFor(60'000), "");
  EXPECT_EQ(host.modem.Snapshot().running, std::nullopt);
  EXPECT_EQ(host.modem.Snapshot().usbProfile, old);
}

TEST(ModemRestart, BringsTheEngineBackAsItsSwitchIsStored) {
  ModemHost host({.restartTime = 10});
  host.Ask("AT+XLCSSHUTDOWN");
  EXPECT_FALSE(host.modem.Snapshot().engineRunning);
  host.Ask("AT+CFUN=1,1");
  host.ReadFor(20);
  EXPECT_TRUE(host.modem.Snapshot().engineRunning);
  host.Ask("AT+XLCSSWITCH=0,1");
  host.Ask("AT+CFUN=1,1");
  host.ReadFor(20);
  EXPECT_EQ(host.Ask("AT+XLCSSWITCH?"), std::string("\r\n+XLCSSWITCH : 0\r\n") + kOk);
  EXPECT_FALSE(host.modem.Snapshot().engineRunning);
}

TEST(ModemControl, LineStateIsTakenAndOtherRequestsStall) {
  ModemHost host;
  const ControlRequest lineState{.requestType = 0x21, .request = 0x22, .value = 3};
  EXPECT_EQ(host.modem.OnControlRequest(lineState), 0);
  EXPECT_LT(host.modem.OnControlRequest({.requestType = 0x21, .request = 0x20}), 0);
  EXPECT_EQ(host.modem.Snapshot().controlRequests, 2u);
  EXPECT_EQ(host.modem.Snapshot().stalledControlRequests, 1u);
}

TEST(ModemObserving, SeesEveryCommandAndEveryByte) {
  ModemHost host;
  std::string read = host.Ask("ATE1");
  read += host.Ask("AT+CIMI");
  read += host.Ask("AT+CIMI");
  EXPECT_EQ(host.Commands(), (std::vector<std::string>{"ATE1", "AT+CIMI", "AT+CIMI"}));
  EXPECT_EQ(host.Answers(), read);
  const ModemSnapshot state = host.modem.Snapshot();
  EXPECT_EQ(state.commands, 3u);
  EXPECT_EQ(state.commandLines.at("AT+CIMI"), 2u);
  EXPECT_EQ(state.bytesIn, std::string("ATE1\r\nAT+CIMI\r\nAT+CIMI\r\n").size());
  EXPECT_EQ(state.bytesOut, read.size());
}

}  // namespace
}  // namespace bench
