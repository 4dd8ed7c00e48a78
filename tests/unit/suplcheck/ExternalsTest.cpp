// What a document type declaration names outside the file.

#include <gtest/gtest.h>

#include "suplcheck/Externals.h"

namespace suplcheck {
namespace {

struct Case {
  const wchar_t* text;
  Externals found;
};

class ExternalsOf : public testing::TestWithParam<Case> {};

TEST_P(ExternalsOf, ADocumentAreThese) {
  EXPECT_EQ(FindExternals(GetParam().text), GetParam().found);
}

constexpr auto kNone = Externals::kNone;
constexpr auto kBeside = Externals::kBeside;
constexpr auto kInstead = Externals::kInstead;
INSTANTIATE_TEST_SUITE_P(
    Documents, ExternalsOf,
    testing::Values(Case{L"", kNone}, Case{L"<R/>", kNone}, Case{L"<R> SYSTEM \"x\"</R>", kNone},
                    Case{L"<!DOCTYPE R><R/>", kNone},
                    Case{L"<!DOCTYPE R [<!ELEMENT R ANY>]><R> SYSTEM 'x'</R>", kNone},
                    Case{L"<!DOCTYPE SYSTEM [<!ELEMENT SYSTEM ANY>]><SYSTEM/>", kNone},
                    Case{L"<!DOCTYPE R [<!ENTITY e ' SYSTEM \"'>]><R/>", kNone},
                    Case{L"<!DOCTYPE R [<!ENTITY e ']>'><!-- ' SYSTEM 'x' -->]><R/>", kNone},
                    Case{L"<?p <!DOCTYPE R SYSTEM 'x'?><!DOCTYPE R []><R/>", kNone},
                    Case{L"<!-- it's --><!DOCTYPE R SYSTEM 'x'><R/>", kInstead},
                    Case{L"<!DOCTYPE R\n\tPUBLIC \"-//X\" \"x\"><R/>", kInstead},
                    Case{L"<!DOCTYPE R SYSTEM 'x' [<!ELEMENT R ANY>]><R/>", kBeside},
                    Case{L"<!DOCTYPE R [<!ENTITY % e SYSTEM 'x'>%e;]><R/>", kBeside},
                    Case{L"<!DOCTYPE R [<!ENTITY e ']>'><!ENTITY f PUBLIC 'p' 'x'>]><R/>",
                         kBeside}),
    [](const auto& test) { return "Case" + std::to_string(test.index); });

}  // namespace
}  // namespace suplcheck
