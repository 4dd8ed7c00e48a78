#include "suplcheck/Listing.h"

#include <algorithm>
#include <cstdio>

#include "base/ComPtr.h"
#include "base/ComTypes.h"
#include "modem/SuplDocument.h"
#include "modem/SuplProvisioning.h"
#include "modem/XmlNodes.h"
#include "suplcheck/Text.h"

namespace suplcheck {

namespace {

using stelvane::ComPtr;
using stelvane::SuplRecord;

std::string OrNone(const std::string& text) {
  return text.empty() ? "(none)" : Printable(text);
}

// The first record with that id, which is the one that the driver's query finds.
const Entry* EntryOf(const std::vector<Entry>& entries, IXMLDOMNode* node) {
  const stelvane::Bstr query(L"@SID");
  ComPtr<IXMLDOMNode> attribute;
  std::string id;
  if (FAILED(node->selectSingleNode(query.Get(), attribute.Put())) || !attribute ||
      FAILED(stelvane::NodeText(attribute.Get(), id))) {
    return nullptr;
  }
  const auto entry = std::ranges::find_if(
      entries, [&id](const Entry& one) { return one.findable && one.id == id; });
  return entry == entries.end() ? nullptr : &*entry;
}

// Why no element serves an IMSI.
std::string WhyNoRecord(const std::vector<Entry>& entries, const SuplRecord& record) {
  const std::string key = record.m_strMcc + record.m_strMnc;
  if (key.empty()) return "no id matches, and there is no record \"_Default\"";
  const auto match = std::ranges::find_if(entries, [&record](const Entry& entry) {
    return entry.id && record.m_strImsi.starts_with(entry.Beginning());
  });
  const std::string name = match == entries.end() ? "an id" : match->Name();
  return name + " matches, but there is no record " + Quoted('_' + key);
}

std::string WhyNoCommand(HRESULT result, const SuplRecord& record) {
  const std::string type = Quoted(record.m_strSupl_Address_type);
  return result == E_INVALIDARG ? "address type " + type + " needs an address"
                                : "address type " + type + " is not 0, 1 or 2";
}

void PrintNothing(const SuplRecord& record, const std::string& why, Report& report) {
  std::printf("IMSI %s: nothing is sent\n", record.m_strImsi.c_str());
  report.Warning("IMSI " + record.m_strImsi + ": nothing is sent: " + why);
}

void PrintCommands(const std::string& slpCommand, const SuplRecord& record) {
  for (const std::string& command :
       {slpCommand, stelvane::TerminalCommand(), stelvane::VersionCommand(record)}) {
    std::printf("  %s\n", Printable(command).c_str());
  }
}

}  // namespace

void PrintEntries(const std::vector<Entry>& entries) {
  std::size_t width = 3;
  for (const Entry& entry : entries) width = std::max(width, entry.id.value_or("").size());
  const int column = static_cast<int>(std::min<std::size_t>(width, 20));
  std::printf("   #  %-*s  version  type    port    address\n", column, "SID");
  for (const Entry& entry : entries) {
    const SuplRecord& record = entry.record;
    std::printf("%4d  %-*s  %-7s  %-6s  %-6s  %s\n", entry.number, column,
                OrNone(entry.id.value_or("")).c_str(), OrNone(record.m_strSupl_Ver_Info).c_str(),
                OrNone(record.m_strSupl_Address_type).c_str(),
                OrNone(record.m_strSupl_Port_Number).c_str(),
                OrNone(record.m_strSupl_Address).c_str());
  }
}

void PrintLookup(IXMLDOMDocument3* document, const std::vector<Entry>& entries,
                 const std::string& imsi, Report& report) {
  SuplRecord record;
  record.m_strImsi = imsi;
  ComPtr<IXMLDOMNode> node;
  HRESULT result = stelvane::FindSuplRecord(document, record, node);
  if (SUCCEEDED(result) && !node) {
    PrintNothing(record, WhyNoRecord(entries, record), report);
    return;
  }
  if (SUCCEEDED(result)) result = stelvane::ReadSuplRecord(node.Get(), record);
  if (FAILED(result)) {
    report.Error("the XML parser fails while IMSI " + imsi + " is looked up");
    return;
  }
  std::string slpCommand;
  if (const HRESULT built = stelvane::BuildSlpCommand(record, slpCommand); FAILED(built)) {
    PrintNothing(record, WhyNoCommand(built, record), report);
    return;
  }
  const Entry* const entry = EntryOf(entries, node.Get());
  std::printf("IMSI %s: %s\n", imsi.c_str(), entry != nullptr ? entry->Name().c_str() : "a record");
  PrintCommands(slpCommand, record);
}

}  // namespace suplcheck
