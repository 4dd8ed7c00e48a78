// Looking a SIM up in a document whose operations fail one at a time.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include "modem/SuplConfigFile.h"
#include "tests/unit/modem/FakeDom.h"

namespace stelvane {
namespace {

using testing::Contains;
using testing::IsSupersetOf;

/// One loaded document with one record, whose address stands there twice. One at a time.
class FakeDocument {
 public:
  explicit FakeDocument(const WCHAR* id = L"_310410") : id_(Asked(), L"SID", id) {
    Parser().loadResult = S_OK;
    Parser().ids = &ids_;
    Parser().record = &record_;
  }
  FakeParser& Parser() { return class_.parser(); }
  Refusals& Asked() { return Parser().refusals; }

  HRESULT Load(const char* imsi = "310410123456789") {
    settings.m_strImsi = imsi;
    return LoadSuplRecord(settings);
  }

  SuplRecord settings;

 private:
  FakeParserClass class_;
  FakeNode id_;
  FakeNodeList ids_{Asked(), {&id_}};
  FakeNode version_{Asked(), L"Supl_Ver_Info", L"2"};
  FakeNode type_{Asked(), L"Supl_Address_type", L"0"};
  FakeNode address_{Asked(), L"Supl_Address", L"first"};
  FakeNode laterAddress_{Asked(), L"Supl_Address", L"second"};
  FakeNode port_{Asked(), L"Supl_Port_Number", L"7275"};
  FakeNode server_{Asked(), L"SuplServer", L"", {&type_, &address_, &laterAddress_, &port_}};
  FakeNode record_{Asked(), L"SUPL", L"", {&version_, &server_}};
};

std::map<std::string, int> CallsOfAWholeLookup() {
  FakeDocument document;
  EXPECT_GE(document.Load(), 0);
  return document.Asked().Calls();
}

TEST(SuplNodes, AreAskedForTheIdsAndThenForTheRecordOfTheSim) {
  FakeDocument document;
  EXPECT_GE(document.Load(), 0);
  EXPECT_THAT(document.Parser().calls, IsSupersetOf({"//@SID", "//SUPL[@SID='_310410']"}));
  EXPECT_EQ(document.settings.m_strMcc, "310");
  EXPECT_EQ(document.settings.m_strMnc, "410");
  EXPECT_EQ(document.settings.m_strSupl_Ver_Info, "2");
  EXPECT_EQ(document.settings.m_strSupl_Address_type, "0");
  EXPECT_EQ(document.settings.m_strSupl_Address, "second");
  EXPECT_EQ(document.settings.m_strSupl_Port_Number, "7275");
}

TEST(SuplNodes, AnyOperationThatFailsFailsTheLookupWithItsResult) {
  const std::map<std::string, int> calls = CallsOfAWholeLookup();
  ASSERT_EQ(calls.size(), 8U);
  for (const auto& [operation, count] : calls) {
    for (int nth = 1; nth <= count; ++nth) {
      FakeDocument document;
      document.Asked().Refuse(operation, nth);
      EXPECT_EQ(document.Load(), Refusals::kRefused) << operation << " " << nth;
    }
  }
}

TEST(SuplNodes, AParserThatGivesNoListOfIdsHasNone) {
  FakeDocument document;
  document.Parser().ids = nullptr;
  EXPECT_GE(document.Load(), 0);
  EXPECT_EQ(document.settings.m_strMcc, "");
  EXPECT_THAT(document.Parser().calls, Contains("//SUPL[@SID='_Default']"));
}

TEST(SuplNodes, AnIdentityWithoutDigitsForANetworkIsLookedUpAsTheDefault) {
  FakeDocument document(L"_310");
  EXPECT_GE(document.Load("310"), 0);
  EXPECT_EQ(document.settings.m_strMcc, "310");
  EXPECT_EQ(document.settings.m_strMnc, "");
  EXPECT_THAT(document.Parser().calls, Contains("//SUPL[@SID='_Default']"));
}

TEST(SuplNodes, FieldsStoredBeforeAFailureKeepTheirValues) {
  FakeDocument document;
  document.Asked().Refuse("get_text", 5);  // the id, the version, the type, the first address
  EXPECT_EQ(document.Load(), Refusals::kRefused);
  EXPECT_EQ(document.settings.m_strSupl_Ver_Info, "2");
  EXPECT_EQ(document.settings.m_strSupl_Address_type, "0");
  EXPECT_EQ(document.settings.m_strSupl_Address, "first");
  EXPECT_EQ(document.settings.m_strSupl_Port_Number, "");
}

}  // namespace
}  // namespace stelvane
