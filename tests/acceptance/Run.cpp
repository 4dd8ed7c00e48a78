#include "tests/acceptance/Run.h"

#include <cstdio>
#include <exception>

#include "workbench/Console.h"
#include "workbench/framework/Rules.h"

namespace bench::acceptance {

namespace {

/// One section of rows after the other, numbered within each.
class Table {
 public:
  void Section(const std::string& title) {
    console_.Line("");
    console_.Line(title);
    row_ = 0;
  }
  void Row(const std::string& name, const std::string& asked, const std::string& remark,
           const Faults& faults) {
    const bool ok = faults.empty();
    const char* const verdict = !ok ? "FAILED" : remark.empty() ? "ok" : "ok, with a remark";
    char text[200];
    std::snprintf(text, sizeof text, "%4zu  %-46s %-55s %s", ++row_, name.c_str(), asked.c_str(),
                  verdict);
    console_.Line(text, ok ? Tone::kPlain : Tone::kBad);
    if (!remark.empty()) console_.Line("        meant: " + remark);
    for (const std::string& fault : faults) console_.Line("        " + fault, Tone::kBad);
    ++(ok ? total_.passed : total_.failed);
    if (ok && !remark.empty()) ++total_.remarks;
  }
  void Note(const std::string& text) const { console_.Line(text); }
  const Total& Sum() const { return total_; }

 private:
  const Console console_;
  std::size_t row_ = 0;
  Total total_;
};

void Show(Table& table, const std::string& title, const Checks& checks, Stand& stand) {
  table.Section(title);
  for (const Check& check : checks) {
    table.Row(check.name, check.asked, check.remark, RunCheck(check, stand));
  }
}

void ShowRules(Table& table, const std::string& title, const std::vector<std::string>& findings) {
  table.Section(title);
  for (const std::string_view rule : rule::kAll) {
    table.Row("rule: " + std::string(rule), "never broken", {}, FindingsOfRule(findings, rule));
  }
  table.Row("anything else", "nothing left behind", {}, FindingsOfNoRule(findings));
}

void RunLoad(Table& table, const std::string& when, bool stress) {
  Stand stand;
  if (stress) Show(table, "The stress mix", StressMix(), stand);
  Show(table, "The certification list, " + when, CertificationList(), stand);
  const auto share = stand.share().Times();
  ShowRules(table, "The framework's rules, " + when, stand.Close());
  table.Note("");
  table.Note("The driver's own share of the time, " + when + " (not judged)");
  table.Note("      " + ShareText(share));
}

}  // namespace

Faults RunCheck(const Check& check, Stand& stand) {
  try {
    return check.run(stand);
  } catch (const std::exception& error) {
    return {error.what()};
  }
}

Total RunAll() {
  Table table;
  RunLoad(table, "before the stress mix", false);
  RunLoad(table, "after the stress mix", true);
  const Total& total = table.Sum();
  table.Note("");
  table.Note("in all " + std::to_string(total.passed) + " rows passed, " +
             std::to_string(total.remarks) + " of them with a remark, " +
             std::to_string(total.failed) + " failed");
  return total;
}

}  // namespace bench::acceptance
