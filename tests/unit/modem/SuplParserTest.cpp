// What the lookup asks of the XML parser, with a parser of the test's own in its place: a parser
// that refuses, and the settings that no parser's answer shows.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include <string>

#include "modem/SuplConfigFile.h"
#include "tests/unit/modem/FakeDom.h"

namespace stelvane {
namespace {

using testing::ElementsAre;

class SuplParser : public testing::Test {
 protected:
  SuplParser() {
    GetEnvironmentVariableW(L"systemroot", before_, MAX_PATH);
    SetEnvironmentVariableW(L"systemroot", L"R:\\root");
    record_.m_strImsi = "310410123456789";
    record_.m_strSupl_Address = "of the SIM before";
  }
  ~SuplParser() override { SetEnvironmentVariableW(L"systemroot", before_); }
  FakeParser& Parser() { return class_.parser(); }

  FakeParserClass class_;
  SuplRecord record_;

 private:
  WCHAR before_[MAX_PATH] = {};
};

TEST_F(SuplParser, IsAskedForValidationWithoutExternalsAndForTheFilesOwnDeclaration) {
  EXPECT_EQ(LoadSuplRecord(record_), S_FALSE);
  EXPECT_THAT(Parser().calls,
              ElementsAre("async off", "validate on", "externals off", "ProhibitDTD=False",
                          "load R:\\root\\System32\\Drivers\\Umdf\\StelvaneSUPLInfo-DTD.xml"));
  EXPECT_EQ(record_.m_strSupl_Address, "") << "the fields are emptied before";
  EXPECT_EQ(record_.m_strImsi, "310410123456789");
}

TEST_F(SuplParser, RefusingTheDeclarationSettingIsOverlooked) {
  Parser().propertyResult = E_FAIL;
  EXPECT_EQ(LoadSuplRecord(record_), S_FALSE);
  EXPECT_EQ(Parser().calls.size(), 5U);
}

TEST_F(SuplParser, FailingToLoadFailsTheLookupWithItsResult) {
  Parser().loadResult = E_ACCESSDENIED;
  EXPECT_EQ(LoadSuplRecord(record_), E_ACCESSDENIED);
}

TEST_F(SuplParser, ThatCannotBeMadeFailsTheLookupWithItsResult) {
  class_.SetResult(E_OUTOFMEMORY);
  EXPECT_EQ(LoadSuplRecord(record_), E_OUTOFMEMORY);
}

TEST_F(SuplParser, WithoutASystemRootIsStillAskedForTheFile) {
  SetEnvironmentVariableW(L"systemroot", nullptr);
  EXPECT_EQ(LoadSuplRecord(record_), S_FALSE);
  EXPECT_EQ(Parser().calls.back(), "load \\System32\\Drivers\\Umdf\\StelvaneSUPLInfo-DTD.xml");
}

TEST_F(SuplParser, ASystemRootThatDoesNotFitAPathIsNone) {
  const std::basic_string<WCHAR> longRoot(MAX_PATH, L'r');
  SetEnvironmentVariableW(L"systemroot", longRoot.c_str());
  EXPECT_EQ(LoadSuplRecord(record_), S_FALSE);
  EXPECT_EQ(Parser().calls.back(), "load \\System32\\Drivers\\Umdf\\StelvaneSUPLInfo-DTD.xml");
}

}  // namespace
}  // namespace stelvane
