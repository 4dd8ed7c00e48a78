// What the lookup asks of the XML parser, with a parser of the test's own in its place: a parser
// that refuses, and the settings that no parser's answer shows.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include "modem/SuplConfigFile.h"
#include "platform/XmlDom.h"
#include "tests/unit/platform/DomRecorders.h"

namespace stelvane {
namespace {

using testing::ElementsAre;

std::string Narrow(const WCHAR* text) {
  std::string narrow;
  for (; *text != 0; ++text) narrow.push_back(static_cast<char>(*text));
  return narrow;
}

/// Notes its settings and the file asked for; then it takes no document, as with an invalid one.
class FakeParser final : public platform_test::XMLDOMDocument2Recorder<IXMLDOMDocument3> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE put_async(VARIANT_BOOL on) override { return NoteFlag("async", on); }
  HRESULT STDMETHODCALLTYPE put_validateOnParse(VARIANT_BOOL on) override {
    return NoteFlag("validate", on);
  }
  HRESULT STDMETHODCALLTYPE put_resolveExternals(VARIANT_BOOL on) override {
    return NoteFlag("externals", on);
  }
  HRESULT STDMETHODCALLTYPE setProperty(BSTR name, VARIANT value) override {
    calls.push_back(Narrow(name) + "=" + Narrow(value.bstrVal));
    return propertyResult;
  }
  HRESULT STDMETHODCALLTYPE load(VARIANT file, VARIANT_BOOL* taken) override {
    calls.push_back("load " + Narrow(file.bstrVal));
    *taken = VARIANT_FALSE;
    return loadResult;
  }
  HRESULT STDMETHODCALLTYPE validateNode(IXMLDOMNode*, IXMLDOMParseError**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE importNode(IXMLDOMNode*, VARIANT_BOOL, IXMLDOMNode**) override {
    return E_NOTIMPL;
  }

  std::vector<std::string> calls;
  HRESULT propertyResult = S_OK;
  HRESULT loadResult = S_FALSE;

 private:
  HRESULT NoteFlag(const char* name, VARIANT_BOOL on) {
    calls.push_back(std::string(name) + (on == VARIANT_FALSE ? " off" : " on"));
    return S_OK;
  }
};

/// Serves the parser's class with one object.
class Factory final : public platform_test::UnknownRecorder<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void** object) override {
    *object = SUCCEEDED(result) ? &parser : nullptr;
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  FakeParser parser;
  HRESULT result = S_OK;
};

class SuplParser : public testing::Test {
 protected:
  void SetUp() override {
    SetEnvironmentVariableW(L"systemroot", L"R:\\root");
    ASSERT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
    ASSERT_EQ(CoRegisterClassObject(clsid::kDomDocument60, &factory_, CLSCTX_INPROC_SERVER,
                                    REGCLS_MULTIPLEUSE, &registration_),
              S_OK);
    record_.m_strImsi = "310410123456789";
    record_.m_strSupl_Address = "of the SIM before";
  }
  void TearDown() override {
    CoRevokeClassObject(registration_);
    CoUninitialize();
    SetEnvironmentVariableW(L"systemroot", L"C:\\windows");
  }

  Factory factory_;
  SuplRecord record_;
  DWORD registration_ = 0;
};

TEST_F(SuplParser, IsAskedForValidationWithoutExternalsAndForTheFilesOwnDeclaration) {
  EXPECT_EQ(LoadSuplRecord(record_), S_FALSE);
  EXPECT_THAT(factory_.parser.calls,
              ElementsAre("async off", "validate on", "externals off", "ProhibitDTD=False",
                          "load R:\\root\\System32\\Drivers\\Umdf\\StelvaneSUPLInfo-DTD.xml"));
  EXPECT_EQ(record_.m_strSupl_Address, "") << "the fields are emptied before";
  EXPECT_EQ(record_.m_strImsi, "310410123456789");
}

TEST_F(SuplParser, RefusingTheDeclarationSettingIsOverlooked) {
  factory_.parser.propertyResult = E_FAIL;
  EXPECT_EQ(LoadSuplRecord(record_), S_FALSE);
  EXPECT_EQ(factory_.parser.calls.size(), 5U);
}

TEST_F(SuplParser, FailingToLoadFailsTheLookupWithItsResult) {
  factory_.parser.loadResult = E_ACCESSDENIED;
  EXPECT_EQ(LoadSuplRecord(record_), E_ACCESSDENIED);
}

TEST_F(SuplParser, ThatCannotBeMadeFailsTheLookupWithItsResult) {
  factory_.result = E_OUTOFMEMORY;
  EXPECT_EQ(LoadSuplRecord(record_), E_OUTOFMEMORY);
}

TEST_F(SuplParser, WithoutASystemRootIsStillAskedForTheFile) {
  SetEnvironmentVariableW(L"systemroot", nullptr);
  EXPECT_EQ(LoadSuplRecord(record_), S_FALSE);
  EXPECT_EQ(factory_.parser.calls.back(),
            "load \\System32\\Drivers\\Umdf\\StelvaneSUPLInfo-DTD.xml");
}

}  // namespace
}  // namespace stelvane
