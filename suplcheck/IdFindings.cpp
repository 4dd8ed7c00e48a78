#include "suplcheck/IdFindings.h"

#include <map>
#include <string>

#include "suplcheck/Text.h"

namespace suplcheck {

namespace {

// The digits of country and network: as many as the driver looks up for an IMSI of any other
// length, and for one of 15 digits.
constexpr std::size_t kShortId = 5;
constexpr std::size_t kLongId = 6;

/// The ids that the driver's query can find, each with the number of its first record.
using Ids = std::map<std::string, int>;

// An id that no IMSI begins with, or that does not mean a network.
std::string OddId(const Entry& entry) {
  const std::string digits = entry.Beginning();
  if (digits.empty()) {
    return "the id matches every IMSI: one without a record of its own gets nothing, not even the "
           "default record";
  }
  if (EqualButForCase(digits, "Default")) {
    return "never chosen: the default record's id is \"_Default\", exactly";
  }
  if (!IsDigits(digits)) {
    return "never chosen: an id is an underscore and the 5 or 6 digits that IMSIs begin with";
  }
  const std::string matches = "IMSIs that begin with " + digits + " match, but ";
  if (digits.size() != kShortId && digits.size() != kLongId) {
    const char* const wrong = digits.size() < kShortId ? "short" : "long";
    return "never chosen, the id is too " + std::string(wrong) + ": " + matches +
           "are looked up by their first 5 or 6 digits";
  }
  if (*entry.id != '_' + digits) {
    return "never chosen: " + matches + "are looked up as " + Quoted('_' + digits);
  }
  return {};
}

// The sixth digits with which an IMSI of 15 digits matches a short id and is not found.
std::string MissingDigits(const std::string& id, const Ids& ids) {
  std::string missing;
  for (char digit = '0'; digit <= '9'; ++digit) {
    if (!ids.contains(id + digit)) missing += digit;
  }
  return missing;
}

void CheckShortId(const Entry& entry, const Ids& ids, Report& report) {
  const std::string missing = MissingDigits(*entry.id, ids);
  if (missing.empty()) return;
  const std::string text = entry.Name() + ": IMSIs of 15 digits that begin with " +
                           entry.Beginning() +
                           " match, but are looked up by 6 digits: they get nothing, not even the "
                           "default record";
  if (missing.size() == 10) {
    report.Warning(text);
  } else {
    report.Note(text + ", if the sixth digit is one of " + missing);
  }
}

// Real IMSIs with a network code of 3 digits have 15 digits, so this is one note for all.
void NoteLongIds(const std::vector<Entry>& entries, const Ids& ids, const Report& report) {
  std::string first;
  int count = 0;
  for (const Entry& entry : entries) {
    if (!entry.findable || !OddId(entry).empty() || entry.Beginning().size() != kLongId) continue;
    if (ids.contains(entry.id->substr(0, 1 + kShortId))) continue;
    if (count++ == 0) first = *entry.id;
  }
  if (count == 0) return;
  report.Note(
      "IMSIs of fewer than 15 digits get nothing, not even the default record, where only "
      "an id of 6 digits matches: " +
      Quoted(first) + (count > 1 ? " and " + std::to_string(count - 1) + " more" : ""));
}

void CheckId(const Entry& entry, const Ids& ids, Report& report) {
  if (!entry.findable) {
    const std::string effect =
        entry.id ? "its SID matches IMSIs, but only elements \"SUPL\" of no namespace are looked up"
                 : "never chosen: the driver looks for elements \"SUPL\" of no namespace";
    report.Warning(entry.Name() + ": " + effect);
    return;
  }
  if (!entry.id) {
    report.Warning(entry.Name() + ": never chosen: it has no attribute \"SID\"");
    return;
  }
  if (const int first = ids.at(*entry.id); first != entry.number) {
    report.Warning(entry.Name() + ": never chosen: record " + std::to_string(first) +
                   " has the same id and comes first");
    return;
  }
  if (*entry.id == kDefaultId) return;
  if (const std::string odd = OddId(entry); !odd.empty()) {
    report.Warning(entry.Name() + ": " + odd);
  } else if (entry.Beginning().size() == kShortId) {
    CheckShortId(entry, ids, report);
  }
}

}  // namespace

void CheckIds(const std::vector<Entry>& entries, Report& report) {
  Ids ids;
  for (const Entry& entry : entries) {
    if (entry.findable && entry.id) ids.emplace(*entry.id, entry.number);
  }
  for (const Entry& entry : entries) CheckId(entry, ids, report);
  NoteLongIds(entries, ids, report);
  if (!ids.contains(kDefaultId)) {
    report.Warning("no record \"_Default\": a SIM that no record fits gets nothing");
  }
}

}  // namespace suplcheck
