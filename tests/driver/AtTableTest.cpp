// The table of AT commands in the documentation against what the driver really sends.

#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/driver/RigTest.h"

namespace bench {
namespace {

using testing::IsEmpty;

// Chosen by the driver only if the walk over the clients tested something, which it does not.
const std::string kNeverSent = "AT+XLCSLQOS=50,,150";

std::string Escaped(const std::string& text) {
  return std::regex_replace(text, std::regex(R"([.^$|()\[\]{}*+?\\])"), R"(\$&)");
}

// What stands for a value in the table, as a pattern of values.
std::regex PatternOf(const std::string& command) {
  std::string pattern = Escaped(command);
  const std::vector<std::pair<std::string, std::string>> values = {
      {"\xE2\x80\xA6", ".*"},
      {"y/m/d,h:m:s", "[0-9]+/[0-9]+/[0-9]+,[0-9]+:[0-9]+:[0-9]+"},
      {"=type,\"address\",port", "=[0-2],(\"[^\"]+\")?,[0-9]*"},
      {"=version", "=.*"},
      {",id", ",[0-9]+"},
      {"1,1,,,,,5,,,2,,", "[0-9]+,[0-9]+,,,,,[0-9]*,,,2,,"},
  };
  for (const auto& [placeholder, value] : values) {
    if (const auto at = pattern.find(placeholder); at != std::string::npos) {
      pattern.replace(at, placeholder.size(), value);
    }
  }
  return std::regex(pattern);
}

// The commands of the table's first column.
std::vector<std::string> DocumentedCommands() {
  std::ifstream file(std::string(DOCS_FOLDER) + "/at-dialogue.md");
  EXPECT_TRUE(file) << "the page is not there";
  std::vector<std::string> commands;
  const std::regex quoted("`(AT[^`]*)`");
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("| `AT", 0) != 0) continue;
    const std::string cell = line.substr(0, line.find(" | "));
    for (std::sregex_iterator found(cell.begin(), cell.end(), quoted), end; found != end; ++found) {
      commands.push_back((*found)[1]);
    }
  }
  return commands;
}

class AtTableTest : public testing::Test {
 protected:
  /// Runs a scenario on a fresh driver and keeps the commands that the modem received.
  template <class Scenario>
  void Watch(RigOptions options, Scenario scenario) {
    VirtualClock clock;
    Rig rig(clock, std::move(options));
    rig.systemRoot().WriteConfigFile(
        R"(<SUPL_List><SUPL SID="_001010"><Supl_Ver_Info>2</Supl_Ver_Info><SuplServer>)"
        R"(<Supl_Address_type>1</Supl_Address_type><Supl_Address>slp.example.com</Supl_Address>)"
        R"(<Supl_Port_Number>7275</Supl_Port_Number></SuplServer></SUPL></SUPL_List>)");
    scenario(rig, clock);
    for (const auto& [line, count] : rig.modem().Snapshot().commandLines) seen_.insert(line);
    rig.Shutdown();
    EXPECT_THAT(rig.Findings(), IsEmpty());
  }
  static void SwitchRadio(Rig& rig, char state) {
    const std::string input{state, 0, 0, 0};
    EXPECT_TRUE(rig.host().SendIoControl(0x8905A008, input, 0).Wait(60'000));
  }
  static RigOptions WithFaults(const char* script) {
    RigOptions options;
    options.modem.faults = *ParseFaults(script, "scenario");
    return options;
  }

  std::set<std::string> seen_;
};

TEST_F(AtTableTest, EveryCommandSentStandsInTheTableAndEveryRowIsSent) {
  const auto run = [](Rig& rig, Clock& clock) {
    ASSERT_EQ(rig.Start(), S_OK);
    const auto client = rig.NewClient();
    ASSERT_EQ(client->Connect(), S_OK);
    ASSERT_TRUE(client->SetReportInterval(2000).Accepted());
    ASSERT_EQ(client->Subscribe(), S_OK);
    ASSERT_TRUE(client->WaitForReports(2, clock.Now() + 60'000));
    constexpr PROPERTYKEY kClearAssistance = {
        {0xe1e962f4, 0x6e65, 0x45f7, {0x9c, 0x36, 0xd4, 0x87, 0xb7, 0xb1, 0xbd, 0x34}}, 2};
    EXPECT_TRUE(client->SetProperty(kClearAssistance, Variant::Ui4(1)).Accepted());
    clock.SleepFor(5000);
    SwitchRadio(rig, 1);
    SwitchRadio(rig, 0);
    clock.SleepFor(20'000);
    client->Disconnect();
    clock.SleepFor(5000);
  };
  const auto handOver = [](Rig& rig, Clock& clock) {
    rig.redirector().Registry().SetDword(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tavrel\\Stelvane",
                                         L"DisableInternalGNSS", 1);
    ASSERT_EQ(rig.Start(), S_OK);
    clock.SleepFor(30'000);
  };
  Watch({}, run);
  Watch(WithFaults("on AT+XLCSSLP error 1\non AT+XLCSLSR error 1"), run);
  Watch({}, handOver);
  Watch(WithFaults("on AT+XLCSSHUTDOWN error 1"), handOver);
  Watch(WithFaults("on AT@nvm error 1"), handOver);

  const std::vector<std::string> documented = DocumentedCommands();
  ASSERT_FALSE(documented.empty());
  for (const std::string& line : seen_) {
    bool found = false;
    for (const std::string& command : documented) {
      found = found || std::regex_match(line, PatternOf(command));
    }
    EXPECT_TRUE(found) << line << " is sent and not documented";
  }
  for (const std::string& command : documented) {
    bool sent = false;
    for (const std::string& line : seen_) {
      sent = sent || std::regex_match(line, PatternOf(command));
    }
    EXPECT_EQ(sent, command != kNeverSent) << command;
  }
}

}  // namespace
}  // namespace bench
