#include "tests/unit/trace/TraceTest.trace.h"

#include <gmock/gmock.h>

#include "tests/unit/trace/FakeTracing.h"

namespace stelvane::trace {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

constexpr ULONG kGeneralBit = 0x1;
constexpr ULONG kUsbBit = 0x4;
constexpr ULONG kAllBits = 0xFFFFFFFF;

enum Unscoped { kUnscoped = 1 };
enum class Scoped { kOne = 1 };

// Other types than the catalogue's do not compile.
static_assert(std::is_convertible_v<HRESULT, Hr> && std::is_convertible_v<int, Hr>);
static_assert(!std::is_convertible_v<unsigned, Hr> && !std::is_convertible_v<DWORD, I32>);
static_assert(std::is_convertible_v<unsigned, U32> && std::is_convertible_v<DWORD, Hex>);
static_assert(!std::is_convertible_v<int, U32> && !std::is_convertible_v<HRESULT, Hex>);
static_assert(!std::is_convertible_v<bool, U32> && !std::is_convertible_v<bool, Hr>);
static_assert(!std::is_convertible_v<char32_t, U32> && !std::is_convertible_v<USHORT, U32>);
static_assert(!std::is_convertible_v<Unscoped, U32> && !std::is_convertible_v<Unscoped, Hr>);
static_assert(!std::is_convertible_v<Scoped, I32> && !std::is_convertible_v<double, U32>);
static_assert(std::is_convertible_v<ULONGLONG, U64> && !std::is_convertible_v<DWORD, U64>);
static_assert(!std::is_convertible_v<LONGLONG, U64> && !std::is_convertible_v<ULONGLONG, U32>);
static_assert(std::is_convertible_v<const char*, Str> && std::is_convertible_v<char*, Str>);
static_assert(!std::is_convertible_v<const wchar_t*, Str> && !std::is_convertible_v<void*, Str>);
static_assert(!std::is_convertible_v<const unsigned char*, Str>);
static_assert(!std::is_convertible_v<std::nullptr_t, Str> && !std::is_convertible_v<int, Str>);
static_assert(std::is_convertible_v<TracedMessage*, Ptr> &&
              std::is_convertible_v<const void*, Ptr>);
static_assert(!std::is_convertible_v<std::uintptr_t, Ptr>);

class Trace : public ::testing::Test {
 protected:
  Trace() { tracing_ = FakeTracing(); }
  ~Trace() override {
    if (tracing_.control != nullptr) tracing_.Request(WMI_DISABLE_EVENTS);
    UnregisterTracing();
  }

  FakeTracing& tracing_ = Tracing();
};

class RegisteredTrace : public Trace {
 protected:
  RegisteredTrace() { RegisterTracing(); }
};

void Enter() {
  TRACE(Entered);
}

void AtEachLevel() {
  TRACE(AtCritical);
  TRACE(AtError);
  TRACE(AtWarning);
  TRACE(AtInformation);
  TRACE(AtVerbose);
}

void AtEachFlag(int& computed) {
  TRACE(AtCritical);
  TRACE(OnUsb, static_cast<ULONG>(++computed));
}

void SendDates(const char* date, const char* time, ULONG code) {
  TRACE(Built, date, time, code);
}

void SendAll(HRESULT result, int difference, unsigned count, ULONG bits, ULONGLONG big,
             const char* text, const void* place) {
  TRACE(Everything, result, difference, count, bits, big, text, place);
}

void SendLast() {
  TRACE(Last);
}

HRESULT OpenOrFail(HRESULT result, int& evaluated) {
  if (evaluated == 0)
    RETURN_IF_FAILED((++evaluated, result), OpenFailed);
  else
    return E_UNEXPECTED;
  return S_OK;
}

template <class T>
void Append(Bytes& bytes, T value) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(&value);
  bytes.insert(bytes.end(), data, data + sizeof(value));
}

TEST_F(Trace, RegistersOneControlGuidWithoutMofNames) {
  RegisterTracing();
  constexpr GUID kControl = {
      0xf4acaab5, 0xc82f, 0x4f79, {0xbf, 0x37, 0xc0, 0x4f, 0x93, 0xc0, 0x13, 0x89}};
  EXPECT_EQ(tracing_.registrations, 1);
  EXPECT_TRUE(IsEqualGUID(tracing_.controlGuid, kControl));
  EXPECT_EQ(tracing_.guidCount, 1u);
  EXPECT_FALSE(tracing_.gaveMofNames);
}

TEST_F(Trace, IsSilentBeforeRegistration) {
  AtEachLevel();
  EXPECT_THAT(tracing_.messages, IsEmpty());
}

TEST_F(Trace, StaysSilentAfterAFailedRegistrationEvenWhenEnabled) {
  tracing_.registrationStatus = ERROR_ACCESS_DENIED;
  RegisterTracing();
  tracing_.Enable(5, kAllBits);
  AtEachLevel();
  EXPECT_THAT(tracing_.messages, IsEmpty());
}

TEST_F(Trace, UnregistersNothingAfterAFailedRegistration) {
  tracing_.registrationStatus = ERROR_ACCESS_DENIED;
  RegisterTracing();
  UnregisterTracing();
  EXPECT_THAT(tracing_.unregistered, IsEmpty());
}

TEST_F(Trace, AListenerThatIsThereDuringRegistrationIsHeard) {
  tracing_.enableDuringRegistration = true;
  tracing_.level = 4;
  tracing_.enableFlags = kGeneralBit;
  RegisterTracing();
  Enter();
  EXPECT_THAT(tracing_.Numbers(), ElementsAre(10));
}

TEST_F(RegisteredTrace, IsSilentAfterUnregistration) {
  tracing_.Enable(5, kAllBits);
  UnregisterTracing();
  AtEachLevel();
  EXPECT_THAT(tracing_.messages, IsEmpty());
  EXPECT_THAT(tracing_.unregistered, ElementsAre(FakeTracing::kRegistration));
}

TEST_F(RegisteredTrace, UnregistersOnlyOnce) {
  UnregisterTracing();
  UnregisterTracing();
  EXPECT_EQ(tracing_.unregistered.size(), 1u);
}

TEST_F(RegisteredTrace, WithoutAListenerNothingIsCalledOrComputed) {
  int computed = 0;
  AtEachFlag(computed);
  EXPECT_EQ(computed, 0);
  EXPECT_THAT(tracing_.messages, IsEmpty());
}

TEST_F(RegisteredTrace, AnArgumentIsComputedOnceForAListener) {
  tracing_.Enable(1, kUsbBit);
  int computed = 0;
  AtEachFlag(computed);
  EXPECT_EQ(computed, 1);
  EXPECT_THAT(tracing_.Numbers(), ElementsAre(19));
}

TEST_F(RegisteredTrace, AnArgumentOfAMessageThatIsFilteredOutIsNotComputed) {
  tracing_.Enable(5, kGeneralBit);
  int computed = 0;
  AtEachFlag(computed);
  EXPECT_EQ(computed, 0);
  EXPECT_THAT(tracing_.Numbers(), ElementsAre(14));
}

TEST_F(RegisteredTrace, ALevelLetsItselfAndTheGraverOnesThrough) {
  const std::vector<USHORT> atLevels = {14, 15, 16, 17, 18};
  for (UCHAR level = 0; level <= 5; ++level) {
    tracing_.messages.clear();
    tracing_.Enable(level, kGeneralBit);
    AtEachLevel();
    EXPECT_THAT(tracing_.Numbers(), ElementsAreArray(atLevels.data(), level)) << int{level};
  }
}

TEST_F(RegisteredTrace, TheHighestLevelByteLetsEverythingThrough) {
  tracing_.Enable(255, kGeneralBit);
  AtEachLevel();
  EXPECT_EQ(tracing_.messages.size(), 5u);
}

TEST_F(RegisteredTrace, AFlagThatNoMessageHasLetsNothingThrough) {
  tracing_.Enable(5, ~(kGeneralBit | kUsbBit));
  int computed = 0;
  AtEachFlag(computed);
  EXPECT_THAT(tracing_.messages, IsEmpty());
}

TEST_F(RegisteredTrace, BothFlagsTogetherLetBothThrough) {
  tracing_.Enable(5, kGeneralBit | kUsbBit);
  int computed = 0;
  AtEachFlag(computed);
  EXPECT_THAT(tracing_.Numbers(), ElementsAre(14, 19));
}

TEST_F(RegisteredTrace, EnableAndDisableAnswerSuccess) {
  EXPECT_EQ(tracing_.Enable(5, kAllBits), ULONG{ERROR_SUCCESS});
  EXPECT_EQ(tracing_.Request(WMI_DISABLE_EVENTS), ULONG{ERROR_SUCCESS});
}

TEST_F(RegisteredTrace, DisableSilencesAndForgetsTheSession) {
  tracing_.Enable(5, kAllBits);
  EXPECT_EQ(LoggerHandle(), tracing_.logger);
  tracing_.Request(WMI_DISABLE_EVENTS);
  AtEachLevel();
  EXPECT_THAT(tracing_.messages, IsEmpty());
  EXPECT_EQ(LoggerHandle(), 0u);
}

TEST_F(RegisteredTrace, ASecondEnableReplacesTheFirst) {
  tracing_.Enable(5, kAllBits);
  tracing_.logger = 7;
  tracing_.Enable(1, kGeneralBit);
  AtEachLevel();
  EXPECT_THAT(tracing_.Numbers(), ElementsAre(14));
  EXPECT_EQ(tracing_.messages[0].logger, 7u);
}

TEST_F(RegisteredTrace, OtherRequestsAreRefusedWithoutEffect) {
  tracing_.Enable(2, kGeneralBit);
  tracing_.level = 5;
  for (int code : {0, 1, 2, 3, 6, 7, 8, 9, 10, 11}) {
    EXPECT_EQ(tracing_.Request(code), 87u) << code;
  }
  AtEachLevel();
  EXPECT_THAT(tracing_.Numbers(), ElementsAre(14, 15));
}

TEST_F(RegisteredTrace, AMessageCarriesSessionGuidNumberAndHeaderItems) {
  tracing_.Enable(5, kAllBits);
  Enter();
  ASSERT_EQ(tracing_.messages.size(), 1u);
  const TracedMessage& message = tracing_.messages[0];
  constexpr GUID kGuid = {
      0x0b6f6f0a, 0x5c0b, 0x4b0e, {0x8a, 0x35, 0x4f, 0x0d, 0x7f, 0x0f, 0x2b, 0x11}};
  EXPECT_EQ(message.logger, tracing_.logger);
  EXPECT_EQ(message.flags, 0x2Bu);
  EXPECT_TRUE(IsEqualGUID(message.guid, kGuid));
  EXPECT_EQ(message.number, 10);
  EXPECT_THAT(message.bytes, IsEmpty());
}

TEST_F(RegisteredTrace, TheLargestNumberIsSentWhole) {
  tracing_.Enable(5, kAllBits);
  SendLast();
  EXPECT_THAT(tracing_.Numbers(), ElementsAre(65535));
}

TEST_F(RegisteredTrace, TextsGoWithTheirZeroAndNumbersInLittleEndianOrder) {
  tracing_.Enable(5, kAllBits);
  SendDates("Jun  3 2014", "16:24:48", 0x89056000);
  ASSERT_EQ(tracing_.messages.size(), 1u);
  EXPECT_THAT(tracing_.messages[0].bytes,
              ElementsAre(0x4a, 0x75, 0x6e, 0x20, 0x20, 0x33, 0x20, 0x32, 0x30, 0x31, 0x34, 0x00,
                          0x31, 0x36, 0x3a, 0x32, 0x34, 0x3a, 0x34, 0x38, 0x00,  //
                          0x00, 0x60, 0x05, 0x89));
}

TEST_F(RegisteredTrace, EveryArgumentTypeStandsInTheOrderOfTheCatalogue) {
  tracing_.Enable(5, kAllBits);
  const int place = 0;
  SendAll(E_FAIL, -2, 0xFFFFFFFF, 0x80000000, 0xFFFFFFFF00000001, "x", &place);
  Bytes expected = {0x05, 0x40, 0x00, 0x80, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00,
                    0x00, 0x00, 0x80, 0x01, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 'x',  0x00};
  Append(expected, &place);
  ASSERT_EQ(tracing_.messages.size(), 1u);
  EXPECT_EQ(tracing_.messages[0].bytes, expected);
}

TEST_F(RegisteredTrace, ANullTextIsSentAsWordAndANullPointerAsZeros) {
  tracing_.Enable(5, kAllBits);
  SendAll(S_OK, 0, 0, 0, 0, nullptr, nullptr);
  Bytes expected(24, 0);
  for (const char character : {'N', 'U', 'L', 'L', '\0'}) Append(expected, character);
  expected.resize(expected.size() + sizeof(void*));
  ASSERT_EQ(tracing_.messages.size(), 1u);
  EXPECT_EQ(tracing_.messages[0].bytes, expected);
}

TEST_F(RegisteredTrace, AnEmptyTextIsItsZeroAlone) {
  tracing_.Enable(5, kAllBits);
  SendDates("", "", 1);
  ASSERT_EQ(tracing_.messages.size(), 1u);
  EXPECT_THAT(tracing_.messages[0].bytes, ElementsAre(0, 0, 1, 0, 0, 0));
}

TEST_F(RegisteredTrace, ASuccessIsNeitherTracedNorReturned) {
  tracing_.Enable(5, kAllBits);
  for (const HRESULT success : {S_OK, S_FALSE, HRESULT{0x7FFFFFFF}}) {
    int evaluated = 0;
    EXPECT_EQ(OpenOrFail(success, evaluated), S_OK);
    EXPECT_EQ(evaluated, 1);
  }
  EXPECT_THAT(tracing_.messages, IsEmpty());
}

TEST_F(RegisteredTrace, AFailureIsEvaluatedOnceTracedAndReturned) {
  tracing_.Enable(2, kGeneralBit);
  int evaluated = 0;
  EXPECT_EQ(OpenOrFail(E_ACCESSDENIED, evaluated), E_ACCESSDENIED);
  EXPECT_EQ(evaluated, 1);
  ASSERT_THAT(tracing_.Numbers(), ElementsAre(11));
  EXPECT_THAT(tracing_.messages[0].bytes, ElementsAre(0x05, 0x00, 0x07, 0x80));
}

TEST_F(RegisteredTrace, AFailureIsReturnedWithoutAListenerToo) {
  int evaluated = 0;
  EXPECT_EQ(OpenOrFail(E_ACCESSDENIED, evaluated), E_ACCESSDENIED);
  EXPECT_EQ(evaluated, 1);
  EXPECT_THAT(tracing_.messages, IsEmpty());
}

}  // namespace
}  // namespace stelvane::trace
