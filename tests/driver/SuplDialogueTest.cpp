// SUPL provisioning: which commands a SIM and a record lead to.

#include <algorithm>

#include "tests/driver/SuplTest.h"

namespace bench {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kImsi = "310410123456789";
constexpr const char* kOtherImsi = "262010123456789";

class SuplDialogue : public SuplTest {
 protected:
  /// The commands for a default record.
  std::vector<std::string> ForDefault(SuplText record) {
    record.sid = "_Default";
    return Provision(kImsi, File({record}));
  }
};

TEST_F(SuplDialogue, AType0RecordSendsItsAddressQuotedAndItsPort) {
  EXPECT_EQ(ForDefault({.type = "0"}), Provisioned("0,\"slp.example\",7275"));
}

TEST_F(SuplDialogue, AType1RecordSendsItsAddressQuotedAndItsPort) {
  EXPECT_EQ(ForDefault({.type = "1"}), Provisioned("1,\"slp.example\",7275"));
}

TEST_F(SuplDialogue, AType2RecordWithAnAddressSendsItQuoted) {
  EXPECT_EQ(ForDefault({.type = "2"}), Provisioned("2,\"slp.example\",7275"));
}

TEST_F(SuplDialogue, AType2RecordWithoutAnAddressSendsTwoCommasAndThePort) {
  EXPECT_EQ(ForDefault({.type = "2", .address = ""}), Provisioned("2,,7275"));
}

TEST_F(SuplDialogue, ARecordWithoutAPortSendsNothingBehindTheLastComma) {
  EXPECT_EQ(ForDefault({.port = ""}), Provisioned("0,\"slp.example\","));
}

TEST_F(SuplDialogue, ARecordWithoutAVersionSendsTheVersionCommandWithNothingBehindTheEqualSign) {
  EXPECT_EQ(ForDefault({.version = ""}), Provisioned("0,\"slp.example\",7275", ""));
}

TEST_F(SuplDialogue, TheVersionIsSentAsItStands) {
  EXPECT_EQ(ForDefault({.version = "2.0.1 beta"}),
            Provisioned("0,\"slp.example\",7275", "2.0.1 beta"));
}

class SuplMandatoryAddress : public SuplTest, public testing::WithParamInterface<const char*> {};

TEST_P(SuplMandatoryAddress, MissingSendsNoneOfTheThreeCommandsAndTheNextStartTriesAgain) {
  const SuplText record{.sid = "_Default", .type = GetParam(), .address = ""};
  EXPECT_EQ(Provision(kImsi, File({record})), OnlySim());
  const char* const message =
      "slp_address is a mandatory parameter if m_strSupl_Address_type is \"0\" or \"1\" ";
  EXPECT_EQ(Messages().back(), message);
  EXPECT_EQ(NextStart(), OnlySim());
  EXPECT_EQ(std::ranges::count(Messages(), message), 2);
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_Default"}}));
  EXPECT_EQ(NextStart(), Provisioned("0,\"slp.example\",7275"));
}

INSTANTIATE_TEST_SUITE_P(Types, SuplMandatoryAddress, testing::Values("0", "1"));

class SuplUnknownType : public SuplTest, public testing::WithParamInterface<const char*> {};

TEST_P(SuplUnknownType, SendsNoneOfTheThreeCommandsAndTheNextStartTriesAgain) {
  EXPECT_EQ(Provision(kImsi, File({{.sid = "_Default", .type = GetParam()}})), OnlySim());
  EXPECT_EQ(Messages().back(), "Error while Creating \"XLCSSLP\" Cpmmand ");
  EXPECT_EQ(NextStart(), OnlySim());
}

INSTANTIATE_TEST_SUITE_P(Types, SuplUnknownType, testing::Values("3", "", "00", "2.", "x"),
                         [](const auto& test) { return "Type" + std::to_string(test.index); });

TEST_F(SuplDialogue, TheSameSimTwiceSendsOnlyTheQuestionForIt) {
  ForDefault({});
  EXPECT_EQ(NextStart(), OnlySim());
  EXPECT_EQ(NextStart(), OnlySim());
}

TEST_F(SuplDialogue, AChangedSimIsProvisionedAtTheNextStart) {
  EXPECT_EQ(
      Provision(kImsi, File({{.sid = "_310410"}, {.sid = "_262010", .address = "other.example"}})),
      Provisioned("0,\"slp.example\",7275"));
  SetSim(kOtherImsi);
  EXPECT_EQ(NextStart(), Provisioned("0,\"other.example\",7275"));
  EXPECT_EQ(NextStart(), OnlySim());
}

TEST_F(SuplDialogue, TheWholeOfItIsOneEngineUse) {
  ForDefault({});
  SetSim(kOtherImsi);
  const std::size_t before = Calls("IWDFDevice2::StopIdle");
  EXPECT_EQ(NextStart().size(), 4U);
  EXPECT_EQ(Calls("IWDFDevice2::StopIdle") - before, 2U) << "the request has its own";
}

TEST_F(SuplDialogue, TheOldSimPutBackIsProvisionedAnew) {
  ForDefault({});
  SetSim(kOtherImsi);
  NextStart();
  SetSim(kImsi);
  EXPECT_EQ(NextStart(), Provisioned("0,\"slp.example\",7275"));
}

TEST_F(SuplDialogue, TheFileIsReadAgainForAnotherSim) {
  ForDefault({});
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_Default", .address = "new.example"}}));
  EXPECT_EQ(NextStart(), OnlySim());
  SetSim(kOtherImsi);
  EXPECT_EQ(NextStart(), Provisioned("0,\"new.example\",7275"));
}

TEST_F(SuplDialogue, ARefusedSimQuestionSendsNothingElse) {
  Build();
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_Default"}}));
  modem_->Answer("AT+CIMI", Error());
  Listen();
  Start();
  EXPECT_EQ(Commands(), BringUp());
  EXPECT_THAT(Messages(), ElementsAre("Not Configuring SUPL Information"));
  EXPECT_EQ(LastCause(), std::to_string(0xA0000002U)) << "the system has no text for it";
}

TEST_F(SuplDialogue, ARefusedServerCommandGoesOnAndTheSimCountsAsProvisioned) {
  Build();
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_310410"}}));
  SetSim(kImsi);
  modem_->Answer("AT+XLCSSLP=", Error());
  Listen();
  Start();
  EXPECT_EQ(Commands().back(), "AT+XLCSSUPLVER=2");
  EXPECT_THAT(Messages(),
              ElementsAre("Not able to Configure SUPL Information using Command \"XLCSSLP\""));
  EXPECT_EQ(NextStart(), OnlySim());
}

TEST_F(SuplDialogue, ARefusedTerminalCommandGoesOnAndTheSimCountsAsProvisioned) {
  Build();
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_310410"}}));
  SetSim(kImsi);
  modem_->Answer("AT+XLCSTER=", Error());
  Listen();
  Start();
  EXPECT_EQ(Commands().back(), "AT+XLCSSUPLVER=2");
  EXPECT_THAT(Messages(), ElementsAre("Not able to updates the terminal information using "
                                      "Command \"XLCSTER\""));
  EXPECT_EQ(NextStart(), OnlySim());
}

TEST_F(SuplDialogue, ARefusedVersionCommandLeavesTheSimToBeTriedAgain) {
  Build();
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_310410"}}));
  SetSim(kImsi);
  modem_->Answer("AT+XLCSSUPLVER=", {Error(), Ok()});
  Listen();
  Start();
  EXPECT_THAT(Messages(),
              ElementsAre("Not able to Set SUPL Vestion using command \"XLCSSUPLVER\""));
  EXPECT_EQ(NextStart(), Provisioned("0,\"slp.example\",7275"));
  EXPECT_EQ(NextStart(), OnlySim());
}

TEST_F(SuplDialogue, AVersionThatHoldsErrorIsTakenForARefusalWhenItIsEchoed) {
  Build();
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_Default", .version = "ERROR"}}));
  modem_->Answer("AT+XLCSSUPLVER=", Raw("AT+XLCSSUPLVER=ERROR\r\n"));
  Listen();
  Start();
  EXPECT_EQ(Messages().back(), "Not able to Set SUPL Vestion using command \"XLCSSUPLVER\"");
  EXPECT_EQ(NextStart(), Provisioned("0,\"slp.example\",7275", "ERROR")) << "tried again";
}

TEST_F(SuplDialogue, AnIdentityBehindAnotherEchoIsNone) {
  ForDefault({});
  modem_->Answer(kSwitchOn, Ok({kOtherImsi}));
  ASSERT_EQ(SwitchRadio(0), S_OK);
  modem_->Answer("AT+CIMI", Ok());
  EXPECT_EQ(NextStart(), OnlySim()) << "the SIM that was provisioned";
}

TEST_F(SuplDialogue, AnIdentityOf13DigitsIsDropped) {
  EXPECT_EQ(Provision("3104101234567", File({{.sid = "_Default"}})), OnlySim());
  EXPECT_THAT(Messages(), IsEmpty()) << "no identity is the one that was provisioned";
}

TEST_F(SuplDialogue, AnIdentityOf16DigitsIsDropped) {
  EXPECT_EQ(Provision("3104101234567890", File({{.sid = "_Default"}})), OnlySim());
}

TEST_F(SuplDialogue, AnIdentityIsReadOutOfALineWithOtherCharacters) {
  EXPECT_EQ(Provision("IMSI: 310-410-123456789", File({{.sid = "_310410"}})),
            Provisioned("0,\"slp.example\",7275"));
}

TEST_F(SuplDialogue, ASwitchReportWithoutItsBlankFallsThroughToTheIdentity) {
  // "0" alone has not the digits of an identity, so the right one stays.
  Build();
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_310410"}, {.sid = "_31041"}}));
  modem_->Answer("AT+CIMI", Ok({kImsi, "+XLCSSWITCH: 0"}));
  Start();
  EXPECT_THAT(Commands(), Contains("AT+XLCSSLP=0,\"slp.example\",7275"));
  modem_->Answer("AT+CIMI", Ok({kImsi, "+XLCSSWITCH: 31041012345678"}));
  EXPECT_EQ(NextStart().size(), 4U) << "fourteen digits in it are an identity of their own";
}

}  // namespace
}  // namespace bench
