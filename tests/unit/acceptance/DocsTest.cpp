// The page about the certification list against the list.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {
namespace {

std::vector<std::string> RowsOfThePage() {
  std::ifstream page(std::string(DOCS_FOLDER) + "/acceptance.md");
  EXPECT_TRUE(page) << "the page is not there";
  std::vector<std::string> rows;
  bool remarks = false;
  for (std::string line; std::getline(page, line);) {
    remarks = remarks || line.starts_with("## Rows with a remark");
    if (remarks && line.starts_with("| ") && !line.starts_with("| row")) rows.push_back(line);
  }
  return rows;
}

TEST(ThePageOfTheCertificationList, NamesEachRowWithARemark) {
  std::vector<std::string> expected;
  for (const Check& check : CertificationList()) {
    if (check.remark.empty()) continue;
    std::string row = "| ";
    row.append(check.name).append(" | ").append(check.asked).append(" | ");
    expected.push_back(row.append(check.remark).append(" |"));
  }
  EXPECT_EQ(RowsOfThePage(), expected);
}

}  // namespace
}  // namespace bench::acceptance
