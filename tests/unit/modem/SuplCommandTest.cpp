// The command that a SUPL record becomes, and what the lookup does before it reads a file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "modem/SuplConfigFile.h"
#include "modem/SuplProvisioning.h"

namespace stelvane {
namespace {

struct Case {
  const char* type;
  const char* address;
  const char* command;  // empty: none
  HRESULT result;
};

class SuplCommand : public testing::TestWithParam<Case> {};

TEST_P(SuplCommand, OfARecordIsThis) {
  SuplRecord record;
  record.m_strSupl_Address_type = GetParam().type;
  record.m_strSupl_Address = GetParam().address;
  record.m_strSupl_Port_Number = "7275";
  std::string command = "what stood there";
  EXPECT_EQ(BuildSlpCommand(record, command), GetParam().result);
  EXPECT_EQ(command, GetParam().command);
}

INSTANTIATE_TEST_SUITE_P(
    Records, SuplCommand,
    testing::Values(Case{"2", "", "AT+XLCSSLP=2,,7275", S_OK},
                    Case{"2", "ADDRESS", "AT+XLCSSLP=2,\"ADDRESS\",7275", S_OK},
                    Case{"1", "ADDRESS", "AT+XLCSSLP=1,\"ADDRESS\",7275", S_OK},
                    Case{"0", "ADDRESS", "AT+XLCSSLP=0,\"ADDRESS\",7275", S_OK},
                    Case{"1", "", "", E_INVALIDARG}, Case{"0", "", "", E_INVALIDARG},
                    Case{"", "ADDRESS", "", E_FAIL}, Case{"", "", "", E_FAIL},
                    Case{"3", "ADDRESS", "", E_FAIL}, Case{"02", "ADDRESS", "", E_FAIL},
                    Case{" 1", "ADDRESS", "", E_FAIL}),
    [](const auto& test) { return "Case" + std::to_string(test.index); });

TEST(SuplLookup, WithoutAnIdentityFailsAndTouchesNothing) {
  SuplRecord record;
  record.m_strSupl_Address = "kept";
  EXPECT_EQ(LoadSuplRecord(record), E_FAIL);
  EXPECT_EQ(record.m_strSupl_Address, "kept");
}

}  // namespace
}  // namespace stelvane
