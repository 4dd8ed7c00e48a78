#include "workbench/sensorapi/SensorRequest.h"

#include <stdexcept>

#include "tests/unit/bench_sensorapi/ApiTest.h"

namespace bench {
namespace {

constexpr GUID kGuid = {0x12345678, 0x9abc, 0xdef0, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr BYTE kSomeBytes[] = {0, 255, 7};

KeyValues OneOfEachType() {
  return {{Key(1), Variant()},
          {Key(2), Variant::Bool(true)},
          {Key(3), Variant::I4(-5)},
          {Key(4), Variant::Ui8(0xFFFFFFFFFFFFFFFF)},
          {Key(5), Variant::R8(-48.25)},
          {Key(6), Variant::Error(E_ACCESSDENIED)},
          {Key(7), Variant::FileTime({.dwLowDateTime = 7, .dwHighDateTime = 9})},
          {Key(8), Variant::Guid(kGuid)},
          {Key(9), Variant::String("gr\xC3\xBC\xC3\x9F")},
          {Key(10), Variant::Bytes(kSomeBytes)},
          {Key(11), Variant::Bytes({})}};
}

void ExpectEqual(const KeyValues& left, const KeyValues& right) {
  ASSERT_EQ(left.size(), right.size());
  for (std::size_t i = 0; i < left.size(); ++i) {
    EXPECT_TRUE(SameKey(left[i].key, right[i].key));
    EXPECT_TRUE(left[i].value == right[i].value) << KeyText(left[i].key);
  }
}

TEST(SensorRequest, ARequestSurvivesTheJourney) {
  const SensorRequest sent{.operation = SensorOperation::kSetProperties,
                           .keys = {Key(3), LocationKey(2)},
                           .values = OneOfEachType()};
  const auto got = DecodeRequest(Encode(sent));
  ASSERT_TRUE(got);
  EXPECT_EQ(got->operation, sent.operation);
  ASSERT_EQ(got->keys.size(), 2u);
  EXPECT_TRUE(SameKey(got->keys[1], LocationKey(2)));
  ExpectEqual(got->values, sent.values);
}

TEST(SensorRequest, AnAnswerSurvivesTheJourney) {
  const SensorAnswer sent{
      .result = S_FALSE, .values = OneOfEachType(), .keys = {Key(3)}, .events = {kGuid}};
  const auto got = DecodeAnswer(Encode(sent));
  ASSERT_TRUE(got);
  EXPECT_EQ(got->result, S_FALSE);
  ASSERT_TRUE(got->values);
  ExpectEqual(*got->values, *sent.values);
  EXPECT_EQ(got->keys.size(), 1u);
  ASSERT_EQ(got->events.size(), 1u);
  EXPECT_TRUE(SameGuid(got->events[0], kGuid));
}

TEST(SensorRequest, NoValueSetIsNotAnEmptyOne) {
  EXPECT_FALSE(DecodeAnswer(Encode(SensorAnswer{.result = E_FAIL}))->values);
  EXPECT_TRUE(DecodeAnswer(Encode(SensorAnswer{.values = KeyValues()}))->values);
}

TEST(SensorRequest, EveryTruncationIsRefused) {
  const std::string whole = Encode(SensorRequest{
      .operation = SensorOperation::kGetProperties, .keys = {Key(1)}, .values = OneOfEachType()});
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(DecodeRequest(whole.substr(0, size))) << size;
  }
}

TEST(SensorRequest, BytesTooManyAreRefused) {
  EXPECT_FALSE(DecodeRequest(Encode(SensorRequest{}) + '\0'));
}

TEST(SensorRequest, AnUnknownOperationIsRefused) {
  std::string bytes = Encode(SensorRequest{});
  bytes[0] = '\x7F';
  EXPECT_FALSE(DecodeRequest(bytes));
}

TEST(SensorRequest, AnObjectDoesNotTravel) {
  const SensorRequest request{.values = {{Key(1), Variant::Object(nullptr)}}};
  EXPECT_THROW(Encode(request), std::invalid_argument);
}

}  // namespace
}  // namespace bench
