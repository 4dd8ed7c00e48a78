// What the parser says of a file that it refuses, as it is shown: this machine's parser gives
// neither line nor reason, others do.

#include <gtest/gtest.h>

#include <string>

#include "suplcheck/LoadedFile.h"
#include "tests/unit/platform/DomRecorders.h"

namespace suplcheck {
namespace {

struct Refusal final : platform_test::XMLDOMParseErrorRecorder<> {
  HRESULT STDMETHODCALLTYPE get_errorCode(__LONG32* value) override { return Give(code, value); }
  HRESULT STDMETHODCALLTYPE get_line(__LONG32* value) override { return Give(line, value); }
  HRESULT STDMETHODCALLTYPE get_linepos(__LONG32* value) override { return Give(column, value); }
  HRESULT STDMETHODCALLTYPE get_reason(BSTR* text) override {
    *text = reason != nullptr ? SysAllocString(reason) : nullptr;
    return *text != nullptr ? S_OK : S_FALSE;
  }

  static HRESULT Give(__LONG32 from, __LONG32* to) {
    *to = from;
    return S_OK;
  }

  __LONG32 code = static_cast<__LONG32>(0xC00CE502);
  __LONG32 line = 0;
  __LONG32 column = 0;
  const wchar_t* reason = nullptr;
};

/// What is written for a refusal of the file "f.xml".
std::string Written(IXMLDOMParseError* error) {
  Report report("f.xml");
  testing::internal::CaptureStderr();
  ReportParseError("refused", error, report);
  EXPECT_EQ(report.ExitCode(), 2);
  std::string text = testing::internal::GetCapturedStderr();
  std::erase(text, '\r');
  return text;
}

TEST(ParseError, BeginsWithFileLineAndColumnAndHasTheReasonWithoutItsLineBreak) {
  Refusal refusal;
  refusal.line = 12;
  refusal.column = 7;
  refusal.reason = L"End tag \u00e4 is missing.\r\n";
  EXPECT_EQ(Written(&refusal),
            "f.xml:12:7: error: refused: End tag \xc3\xa4 is missing. (0xC00CE502)\n");
}

TEST(ParseError, WithoutAColumnHasTheLine) {
  Refusal refusal;
  refusal.line = 12;
  EXPECT_EQ(Written(&refusal), "f.xml:12: error: refused (0xC00CE502)\n");
}

TEST(ParseError, WithoutAPlaceHasTheFileOnly) {
  Refusal refusal;
  refusal.column = 3;
  refusal.reason = L"bad";
  EXPECT_EQ(Written(&refusal), "f.xml: error: refused: bad (0xC00CE502)\n");
}

TEST(ParseError, MayBeMissing) {
  EXPECT_EQ(Written(nullptr), "f.xml: error: refused\n");
}

}  // namespace
}  // namespace suplcheck
