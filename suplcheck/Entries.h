// What the file says about operators, in the order of the file.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "modem/SuplRecord.h"
#include "platform/XmlDom.h"

namespace suplcheck {

inline constexpr const char* kDefaultId = "_Default";

/// An element that is a record, or that looks like one.
struct Entry {
  int number = 0;  // from 1
  std::string element;
  bool findable = false;                  // the driver looks for elements of this name
  std::optional<std::string> id;          // the attribute SID
  stelvane::SuplRecord record;            // as the driver reads it
  std::map<std::string, int> uses;        // how often each child that the driver reads stands there
  std::vector<std::string> outsideAscii;  // the children with such texts
  std::vector<std::string> ignored;       // other child elements

  /// "record 3 (SID "_310410")"
  std::string Name() const;
  /// What the driver holds against the beginning of an IMSI: the id without underscores.
  std::string Beginning() const;
};

/// Every SUPL element and every element with the attribute SID.
HRESULT ReadEntries(IXMLDOMDocument3* document, std::vector<Entry>& entries);

}  // namespace suplcheck
