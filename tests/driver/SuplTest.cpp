#include "tests/driver/SuplTest.h"

#include <cstring>

namespace bench {

namespace {

constexpr GUID kErrorReport = {
    0x60500131, 0x3db8, 0x4031, {0xb5, 0x8c, 0x61, 0x83, 0x5d, 0x2b, 0xbf, 0x55}};
constexpr USHORT kWithText = 10;
constexpr UCHAR kVerbose = 5;

constexpr const char* kDeclaration =
    "<!DOCTYPE Operators [\n"
    "<!ELEMENT Operators ANY>\n"
    "<!ELEMENT SUPL ANY>\n"
    "<!ATTLIST SUPL SID CDATA #REQUIRED>\n"
    "<!ELEMENT SuplServer ANY>\n"
    "<!ELEMENT Supl_Ver_Info (#PCDATA)>\n"
    "<!ELEMENT Supl_Address_type (#PCDATA)>\n"
    "<!ELEMENT Supl_Address (#PCDATA)>\n"
    "<!ELEMENT Supl_Port_Number (#PCDATA)>\n"
    "]>\n";

std::string Element(const std::string& name, const std::string& text) {
  return text.empty() ? "" : "<" + name + ">" + text + "</" + name + ">";
}

}  // namespace

std::string Record(const SuplText& record) {
  return "<SUPL SID=\"" + record.sid + "\">" + Element("Supl_Ver_Info", record.version) +
         "<SuplServer>" + Element("Supl_Address_type", record.type) +
         Element("Supl_Address", record.address) + Element("Supl_Port_Number", record.port) +
         "</SuplServer></SUPL>\n";
}

std::string File(std::initializer_list<SuplText> records) {
  std::string content;
  for (const SuplText& record : records) content += Record(record);
  return FileWith(content);
}

std::string FileWith(const std::string& content) {
  return "<?xml version=\"1.0\"?>\n" + std::string(kDeclaration) + "<Operators>\n" + content +
         "</Operators>\n";
}

std::vector<std::string> SuplTest::Provision(const std::string& imsi, const std::string& file) {
  Build();
  if (!file.empty()) rig_->systemRoot().WriteConfigFile(file);
  SetSim(imsi);
  Listen();
  Start();
  const auto commands = Commands();
  modem_->Forget();
  return {commands.begin() + 4, commands.end()};
}

std::vector<std::string> SuplTest::Provisioned(const std::string& slpParameters,
                                               const std::string& version) {
  return {"AT+CIMI", "AT+XLCSSLP=" + slpParameters, "AT+XLCSTER=1", "AT+XLCSSUPLVER=" + version};
}

void SuplTest::Listen() {
  rig_->redirector().Tracing().Enable(kVerbose, ~0U);
}

void SuplTest::SetSim(const std::string& imsi) {
  modem_->Answer("AT+CIMI", Ok({imsi}));
}

std::vector<std::string> SuplTest::NextStart() {
  modem_->Forget();
  ClientSession& client = clients_.empty() ? Connect() : *clients_.back();
  // The first client's connection starts a fix; later on another interval does.
  if (Commands().empty()) {
    static constexpr ULONG kIntervals[] = {3000, 4000};
    static std::size_t turn = 0;
    EXPECT_TRUE(client.SetReportInterval(kIntervals[turn++ % 2]).Accepted());
    EXPECT_EQ(client.Subscribe(), S_OK);
    Settle();
  }
  std::vector<std::string> commands;
  for (const std::string& command : Commands()) {
    if (command.starts_with("AT+XLSRSTOP")) continue;
    if (command.starts_with("AT+XLCSLSR")) break;
    commands.push_back(command);
  }
  return commands;
}

std::vector<std::string> SuplTest::Messages() {
  Take();
  std::vector<std::string> messages;
  for (const auto& [message, cause] : kept_) messages.push_back(message);
  return messages;
}

std::string SuplTest::LastCause() {
  Take();
  return kept_.empty() ? "" : kept_.back().second;
}

void SuplTest::Take() {
  for (const TraceRecord& record : rig_->redirector().Tracing().TakeMessages()) {
    if (std::memcmp(&record.message, &kErrorReport, sizeof kErrorReport) != 0) continue;
    const std::string bytes(record.arguments.begin(), record.arguments.end());
    const std::string message = bytes.c_str();
    std::string cause = bytes.substr(message.size() + 1);
    if (record.number == kWithText) {
      cause = cause.c_str();
    } else {
      DWORD id = 0;
      std::memcpy(&id, cause.data(), std::min(cause.size(), sizeof id));
      cause = std::to_string(id);
    }
    kept_.emplace_back(message, cause);
  }
}

}  // namespace bench
