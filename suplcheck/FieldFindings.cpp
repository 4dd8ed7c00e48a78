#include "suplcheck/FieldFindings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "modem/SuplDocument.h"
#include "modem/SuplProvisioning.h"
#include "suplcheck/Text.h"

namespace suplcheck {

namespace {

struct Field {
  std::string_view name;
  std::string stelvane::SuplRecord::*text;
};
using stelvane::SuplRecord;
constexpr std::array<Field, 4> kFields = {{
    {stelvane::kVersionElement, &SuplRecord::m_strSupl_Ver_Info},
    {stelvane::kAddressTypeElement, &SuplRecord::m_strSupl_Address_type},
    {stelvane::kAddressElement, &SuplRecord::m_strSupl_Address},
    {stelvane::kPortElement, &SuplRecord::m_strSupl_Port_Number},
}};

bool IsControl(char c) {
  return (c >= 0 && c < ' ') || c == 0x7F;
}

bool IsPort(std::string_view text) {
  std::uint16_t port = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, port);
  return error == std::errc{} && stop == end && port != 0;
}

// What any of the texts may suffer from.
void CheckText(const Entry& entry, const Field& field, Report& report) {
  const std::string& text = entry.record.*field.text;
  const std::string place = entry.Name() + ": " + std::string(field.name) + " " + Quoted(text);
  if (std::ranges::any_of(text, IsControl)) {
    report.Warning(place + " holds a line break or control character, which breaks the command");
  }
  constexpr std::string_view kSpace = " \t\r\n";
  if (!text.empty() && (kSpace.find(text.front()) != std::string_view::npos ||
                        kSpace.find(text.back()) != std::string_view::npos)) {
    report.Warning(place + " has white space around it, which is sent too");
  }
}

// What the driver's own making of the server command says.
void CheckServer(const Entry& entry, Report& report) {
  const SuplRecord& record = entry.record;
  const std::string type = Quoted(record.m_strSupl_Address_type);
  std::string command;
  const HRESULT result = stelvane::BuildSlpCommand(record, command);
  if (result == E_INVALIDARG) {
    report.Warning(entry.Name() + ": nothing is sent: address type " + type + " needs an address");
  } else if (record.m_strSupl_Address_type.empty()) {
    report.Warning(entry.Name() + ": nothing is sent: there is no address type");
  } else if (FAILED(result)) {
    report.Warning(entry.Name() + ": nothing is sent: address type " + type + " is not 0, 1 or 2");
  }
  if (record.m_strSupl_Address.find('"') != std::string::npos) {
    report.Warning(entry.Name() + ": the address " + Quoted(record.m_strSupl_Address) +
                   " holds a double quote, which ends it early in the command");
  }
  if (!IsPort(record.m_strSupl_Port_Number)) {
    report.Warning(entry.Name() + ": the port " + Quoted(record.m_strSupl_Port_Number) +
                   " is not a number from 1 to 65535");
  }
  if (record.m_strSupl_Ver_Info.empty()) {
    report.Warning(entry.Name() + ": no version: " + Quoted(stelvane::VersionCommand(record)) +
                   " is sent with nothing after it");
  }
}

// A name that differs only by the case of its letters was meant to be the driver's.
std::string Hint(std::string_view name) {
  if (EqualButForCase(name, stelvane::kServerElement)) return stelvane::kServerElement;
  for (const Field& field : kFields) {
    if (EqualButForCase(name, field.name)) return std::string(field.name);
  }
  return {};
}

std::string WhyIgnored(const std::string& name) {
  const std::string hint = Hint(name);
  if (hint.empty()) return "is unknown and ignored";
  return hint == name ? "is ignored in this place" : "is ignored: it is written " + Quoted(hint);
}

void CheckChildren(const Entry& entry, Report& report) {
  for (const auto& [name, count] : entry.uses) {
    if (count > 1) {
      report.Warning(entry.Name() + ": " + name + " stands there " + std::to_string(count) +
                     " times; of a doubled text the last counts");
    }
  }
  for (const std::string& name : entry.outsideAscii) {
    report.Warning(entry.Name() + ": " + name +
                   " holds a character outside ASCII, which is changed or lost on the way");
  }
  for (const std::string& name : entry.ignored) {
    report.Warning(entry.Name() + ": element " + Quoted(name) + " " + WhyIgnored(name));
  }
}

}  // namespace

void CheckFields(const Entry& entry, Report& report) {
  CheckChildren(entry, report);
  CheckServer(entry, report);
  for (const Field& field : kFields) CheckText(entry, field, report);
}

}  // namespace suplcheck
