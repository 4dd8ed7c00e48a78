// What is printed on the standard output: the records, and what a SIM gets.
#pragma once

#include <string>
#include <vector>

#include "platform/XmlDom.h"
#include "suplcheck/Entries.h"
#include "suplcheck/Report.h"

namespace suplcheck {

void PrintEntries(const std::vector<Entry>& entries);

/// The record of a SIM and its commands, by the driver's own functions; a SIM that gets nothing is
/// a warning.
void PrintLookup(IXMLDOMDocument3* document, const std::vector<Entry>& entries,
                 const std::string& imsi, Report& report);

}  // namespace suplcheck
