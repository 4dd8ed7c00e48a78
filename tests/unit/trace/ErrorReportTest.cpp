// The messages that are kept as texts: the number that the system is asked for, and what is traced.

#include "modem/ErrorReport.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "driver/Trace.h"
#include "modem/SuplConfigFile.h"
#include "tests/unit/trace/FakeTracing.h"

namespace stelvane {
namespace {

constexpr USHORT kWithText = 10;
constexpr USHORT kWithId = 11;
constexpr UCHAR kErrorLevel = 2;

constexpr HRESULT Code(ULONG bits) {
  return static_cast<HRESULT>(bits);
}

/// The system's text for a number, as the system writes it.
std::string SystemText(DWORD id) {
  char text[512] = {};
  const DWORD length =
      FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, id, 0, text, sizeof text, nullptr);
  EXPECT_NE(length, 0U) << id;
  return text;
}

class ErrorReport : public testing::Test {
 protected:
  ErrorReport() {
    tracing_ = FakeTracing();
    trace::RegisterTracing();
    tracing_.Enable(kErrorLevel, ~ULONG{0});
  }
  ~ErrorReport() override {
    tracing_.Request(WMI_DISABLE_EVENTS);
    trace::UnregisterTracing();
  }

  /// The one message traced so far, and what stands behind its text.
  void ExpectOne(USHORT number, const std::string& message, const std::string& cause) {
    ASSERT_EQ(tracing_.messages.size(), 1U);
    const TracedMessage& traced = tracing_.messages.front();
    EXPECT_EQ(traced.number, number);
    const std::string bytes(traced.bytes.begin(), traced.bytes.end());
    EXPECT_EQ(bytes, message + '\0' + cause);
  }
  void ExpectText(const std::string& message, const std::string& text) {
    ExpectOne(kWithText, message, text + '\0');
  }
  void ExpectId(const std::string& message, DWORD id) {
    ExpectOne(kWithId, message, std::string(reinterpret_cast<const char*>(&id), sizeof id));
  }

  FakeTracing& tracing_ = Tracing();
};

TEST_F(ErrorReport, AResultOfFacility8HasTheTextOfItsLow16Bits) {
  ReportError("cause:", Code(0x80080005));
  ExpectText("cause:", SystemText(ERROR_ACCESS_DENIED));
}

TEST_F(ErrorReport, AResultOfFacility8WithoutATextIsTracedAsItsLow16Bits) {
  ReportError("cause:", Code(0x8008FFFF));
  ExpectId("cause:", 0xFFFF);
}

TEST_F(ErrorReport, ASuccessOfFacility8IsLookedUpLikeAFailure) {
  ReportError("cause:", Code(0x0008FFFF));
  ExpectId("cause:", 0xFFFF);
}

TEST_F(ErrorReport, AResultOfFacility7IsLookedUpWhole) {
  ReportError("cause:", Code(0x8007FFFF));
  ExpectId("cause:", 0x8007FFFF);
}

TEST_F(ErrorReport, AResultWithATextOfItsOwnHasThatText) {
  ReportError("cause:", E_INVALIDARG);
  ExpectText("cause:", SystemText(static_cast<DWORD>(E_INVALIDARG)));
}

TEST_F(ErrorReport, ACodeOfTheCommandEngineIsTracedAsItsNumber) {
  ReportError("cause:", Code(0xA0000001));
  ExpectId("cause:", 0xA0000001);
}

TEST_F(ErrorReport, ALookupWithoutAnIdentityIsReportedWithNoCause) {
  SuplRecord record;
  EXPECT_EQ(LoadSuplRecord(record), E_FAIL);
  ExpectText("IMSI Value Not Set. Error:", SystemText(0));
}

}  // namespace
}  // namespace stelvane
