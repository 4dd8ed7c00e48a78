// The SUPL configuration file, read by the system's own XML parser: which record a SIM gets.

#include "tests/driver/SuplTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLong = "310410123456789";
constexpr const char* kShort = "31041012345678";
constexpr const char* kNoMatch = "Can not Find correct MCC/MNC from XML Error:";
constexpr const char* kNoRecord = "Error while calling selectSingleNode. Error:";
constexpr const char* kNoRoot = "Failed to Get Environment Variable \"systemroot\". Error:";
constexpr const char* kNotLoaded = "Failed to load DOM from StelvaneSUPLInfo-DTD.xml. Error:";
constexpr const char* kNoType = "Error while Creating \"XLCSSLP\" Cpmmand ";

class SuplFile : public SuplTest {
 protected:
  /// The commands with which a record of this address is provisioned.
  static std::vector<std::string> From(const std::string& address) {
    return Provisioned("0,\"" + address + "\",7275");
  }
};

TEST_F(SuplFile, AnIdentityOf15DigitsGetsTheRecordOfItsFirst6) {
  EXPECT_EQ(Provision(kLong, File({{.sid = "_31041", .address = "five"},
                                   {.sid = "_310410", .address = "six"},
                                   {.sid = "_Default", .address = "default"}})),
            From("six"));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(SuplFile, AnIdentityOf14DigitsMatchesButLooksForTheRecordOfItsFirst5) {
  EXPECT_EQ(Provision(kShort, File({{.sid = "_310410", .address = "six"},
                                    {.sid = "_31041", .address = "five"}})),
            From("five"));
}

TEST_F(SuplFile, AnIdentityOf14DigitsWithOnlyARecordOf6DigitsGetsNothingNotEvenTheDefault) {
  EXPECT_EQ(Provision(kShort, File({{.sid = "_310410"}, {.sid = "_Default"}})), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNoRecord, kNoType));
}

TEST_F(SuplFile, AnIdentityOf15DigitsWithOnlyARecordOf5DigitsGetsNothing) {
  EXPECT_EQ(Provision(kLong, File({{.sid = "_31041"}, {.sid = "_Default"}})), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNoRecord, kNoType));
}

TEST_F(SuplFile, AFurtherUnderscoreMatchesButTheRecordIsNotFound) {
  EXPECT_EQ(Provision(kLong, File({{.sid = "_310_410"}, {.sid = "_Default"}})), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNoRecord, kNoType));
}

TEST_F(SuplFile, ARecordWithoutTheLeadingUnderscoreMatchesButIsNotFound) {
  EXPECT_EQ(Provision(kLong, File({{.sid = "310410"}})), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNoRecord, kNoType));
}

TEST_F(SuplFile, ADefaultRecordAloneServesEverySimAfterTheMessage) {
  EXPECT_EQ(Provision(kLong, File({{.sid = "_Default", .address = "default"}})), From("default"));
  EXPECT_THAT(Messages(), ElementsAre(kNoMatch));
  SetSim("00101012345678");
  EXPECT_EQ(NextStart(), From("default"));
}

TEST_F(SuplFile, NoMatchAndNoDefaultSendsNothing) {
  EXPECT_EQ(Provision(kLong, File({{.sid = "_262010"}})), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNoMatch, kNoRecord, kNoType));
}

TEST_F(SuplFile, NoRecordAtAllSendsNothing) {
  EXPECT_EQ(Provision(kLong, FileWith("")), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNoMatch, kNoRecord, kNoType));
}

TEST_F(SuplFile, AMissingFileSendsNothingAndTheSimIsTriedAgainAtTheNextStart) {
  EXPECT_EQ(Provision(kLong, ""), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNotLoaded, kNoType));
  EXPECT_EQ(NextStart(), OnlySim());
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_310410", .address = "late"}}));
  EXPECT_EQ(NextStart(), From("late"));
}

TEST_F(SuplFile, ATextThatTheSystemCountsButDoesNotGiveIsReportedByItsNumber) {
  Build();
  constexpr Failure kLengthWithoutText{.result = 7, .lastError = 0};
  rig_->redirector().Faults().FailImport("FormatMessageW", 1, kLengthWithoutText,
                                         Extent::kSameFunction);
  Listen();
  Start();
  EXPECT_THAT(Messages(), ElementsAre(kNotLoaded, kNoType));
  EXPECT_EQ(LastCause(), std::to_string(static_cast<DWORD>(E_FAIL)));
}

TEST_F(SuplFile, WithoutASystemRootTheFileIsNotFoundAndBothAreReported) {
  Build();
  rig_->systemRoot().WriteConfigFile(File({{.sid = "_Default"}}));
  rig_->redirector().Faults().FailImport("GetEnvironmentVariableW", 1);
  Listen();
  Start();
  EXPECT_EQ(Commands(), BringUp());
  EXPECT_THAT(Messages(), ElementsAre(kNoRoot, kNotLoaded, kNoType));
}

TEST_F(SuplFile, AMalformedFileSendsNothing) {
  EXPECT_EQ(Provision(kLong, "<Operators><SUPL SID=\"_310410\"></Operators>"), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNotLoaded, kNoType));
}

TEST_F(SuplFile, AnEmptyFileSendsNothing) {
  EXPECT_EQ(Provision(kLong, " "), OnlySim());
  EXPECT_THAT(Messages(), ElementsAre(kNotLoaded, kNoType));
}

TEST_F(SuplFile, ANamespacePrefixOfTheChildrenDoesNotMatter) {
  const std::string record =
      "<SUPL SID=\"_310410\" xmlns:o=\"urn:o\"><o:Supl_Ver_Info>7</o:Supl_Ver_Info>"
      "<o:SuplServer><o:Supl_Address_type>1</o:Supl_Address_type>"
      "<o:Supl_Address>prefixed</o:Supl_Address><o:Supl_Port_Number>1</o:Supl_Port_Number>"
      "</o:SuplServer></SUPL>";
  EXPECT_EQ(Provision(kLong, "<Operators>" + record + "</Operators>"),
            Provisioned("1,\"prefixed\",1", "7"));
}

TEST_F(SuplFile, OfRepeatedChildrenTheLaterOnesCount) {
  const std::string server =
      "<Supl_Address_type>2</Supl_Address_type><Supl_Address_type>0</Supl_Address_type>"
      "<Supl_Address>a</Supl_Address><Supl_Address>b</Supl_Address>"
      "<Supl_Port_Number>1</Supl_Port_Number>";
  EXPECT_EQ(Provision(kLong, FileWith("<SUPL SID=\"_310410\"><Supl_Ver_Info>1</Supl_Ver_Info>"
                                      "<SuplServer>" +
                                      server +
                                      "</SuplServer><SuplServer><Supl_Port_Number>2"
                                      "</Supl_Port_Number></SuplServer>"
                                      "<Supl_Ver_Info>9</Supl_Ver_Info></SUPL>")),
            Provisioned("0,\"b\",2", "9"));
}

TEST_F(SuplFile, OfTwoRecordsOfOneNetworkTheFirstCounts) {
  EXPECT_EQ(Provision(kLong, File({{.sid = "_310410", .address = "first"},
                                   {.sid = "_310410", .address = "second"}})),
            From("first"));
}

TEST_F(SuplFile, UnknownChildrenCommentsAndTextBetweenThemAreIgnored) {
  const std::string record =
      "<SUPL SID=\"_310410\"><!-- a --> text <Other><Supl_Ver_Info>8</Supl_Ver_Info></Other>"
      "<Supl_Address>outside</Supl_Address><Supl_Ver_Info>3</Supl_Ver_Info>"
      "<SuplServer> <Supl_Ver_Info>4</Supl_Ver_Info><!-- b --><Supl_Address_type>0"
      "</Supl_Address_type><More/><Supl_Address>inside</Supl_Address>"
      "<Supl_Port_Number>5</Supl_Port_Number></SuplServer></SUPL>";
  EXPECT_EQ(Provision(kLong, "<Operators>" + record + "</Operators>"),
            Provisioned("0,\"inside\",5", "3"));
}

TEST_F(SuplFile, EntitiesInTextAreResolved) {
  EXPECT_EQ(
      Provision(
          kLong,
          File({{.sid = "_310410", .version = "&lt;2&gt;", .address = "a&amp;b.example&#46;net"}})),
      Provisioned("0,\"a&b.example.net\",7275", "<2>"));
}

TEST_F(SuplFile, ARecordIsFoundAtAnyDepth) {
  EXPECT_EQ(Provision(kLong, FileWith("<Operators><Operators>" +
                                      Record({.sid = "_310410", .address = "deep"}) +
                                      "</Operators></Operators>")),
            From("deep"));
}

TEST_F(SuplFile, TheLastOfTwoThousandRecordsIsFound) {
  std::string content;
  for (int i = 0; i < 1999; ++i) {
    content += Record({.sid = "_" + std::to_string(400'000 + i), .address = "wrong"});
  }
  EXPECT_EQ(Provision(kLong, FileWith(content + Record({.sid = "_310410", .address = "last"}))),
            From("last"));
}

TEST_F(SuplFile, TheShippedFileServesTestNetworksAndEverybodyElse) {
  Build();
  rig_->systemRoot().InstallConfigFile(std::string(PACKAGE_FOLDER) + "/StelvaneSUPLInfo-DTD.xml");
  Start();
  EXPECT_EQ(Commands().size(), 8U) << "the SIM of the test network";
  EXPECT_EQ(Commands().at(5), "AT+XLCSSLP=0,\"slp.001-01.example\",7275");
  SetSim("310410123456789");
  Listen();
  const auto commands = NextStart();
  EXPECT_EQ(commands, Provisioned("0,\"slp.example\",7275"));
  EXPECT_THAT(Messages(), ElementsAre(kNoMatch)) << "the default record";
}

}  // namespace
}  // namespace bench
