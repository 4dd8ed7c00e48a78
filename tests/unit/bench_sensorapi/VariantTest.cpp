#include "workbench/sensorapi/Variant.h"

#include "tests/unit/bench_sensorapi/ApiTest.h"

namespace bench {
namespace {

constexpr GUID kAnyGuid = {0x12345678, 0x9abc, 0xdef0, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr BYTE kAnyBytes[] = {0, 255, 7};

std::vector<Variant> VariantOfEachType() {
  return {Variant(),
          Variant::Bool(true),
          Variant::I4(-5),
          Variant::Ui4(0xFFFFFFFF),
          Variant::I8(-1'000'000'000'000),
          Variant::Ui8(0xFFFFFFFFFFFFFFFF),
          Variant::R4(1.5F),
          Variant::R8(-48.25),
          Variant::Error(E_ACCESSDENIED),
          Variant::FileTime({.dwLowDateTime = 7, .dwHighDateTime = 9}),
          Variant::Guid(kAnyGuid),
          Variant::String("text"),
          Variant::Bytes(kAnyBytes)};
}

TEST(Variant, ACopyOfEachTypeIsEqualAndOfTheSameType) {
  for (const Variant& original : VariantOfEachType()) {
    const Variant copy = original;
    EXPECT_EQ(copy.Type(), original.Type());
    EXPECT_TRUE(copy == original) << original.Type();
  }
}

TEST(Variant, ValuesOfDifferentTypesAreNeverEqual) {
  const std::vector<Variant> all = VariantOfEachType();
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = 0; j < all.size(); ++j) EXPECT_EQ(all[i] == all[j], i == j);
  }
}

TEST(Variant, ACopySharesNoMemory) {
  const Variant text = Variant::String("text");
  const Variant guid = Variant::Guid(kAnyGuid);
  const Variant bytes = Variant::Bytes(kAnyBytes);
  EXPECT_NE(Variant(text).Get().pwszVal, text.Get().pwszVal);
  EXPECT_NE(Variant(guid).Get().puuid, guid.Get().puuid);
  EXPECT_NE(Variant(bytes).Get().caub.pElems, bytes.Get().caub.pElems);
}

TEST(Variant, ChangingTheCopyLeavesTheOriginal) {
  const Variant original = Variant::Bytes(kAnyBytes);
  const Variant copy = original;
  copy.Get().caub.pElems[0] = 99;
  EXPECT_EQ(original.Get().caub.pElems[0], 0);
}

TEST(Variant, AnEmptyByteVectorStaysAnEmptyByteVector) {
  const Variant empty = Variant::Bytes({});
  const Variant copy = empty;
  EXPECT_EQ(copy.Type(), VT_VECTOR | VT_UI1);
  EXPECT_EQ(copy.Get().caub.cElems, 0u);
}

TEST(Variant, AnUnknownTypeIsRefusedAndLeavesTheTargetEmpty) {
  PROPVARIANT currency{};
  currency.vt = VT_CY;
  PROPVARIANT target;
  EXPECT_EQ(CopyVariant(currency, &target), DISP_E_BADVARTYPE);
  EXPECT_EQ(target.vt, VT_EMPTY);
}

TEST(Variant, AGuidWithoutItsGuidIsRefused) {
  PROPVARIANT broken{};
  broken.vt = VT_CLSID;
  PROPVARIANT target;
  EXPECT_EQ(CopyVariant(broken, &target), E_INVALIDARG);
  EXPECT_EQ(target.vt, VT_EMPTY);
}

TEST(Variant, DetachGivesTheMemoryAway) {
  Variant text = Variant::String("text");
  const WCHAR* const memory = text.Get().pwszVal;
  PROPVARIANT taken = text.Detach();
  EXPECT_EQ(taken.pwszVal, memory);
  EXPECT_EQ(text.Type(), VT_EMPTY);
  PropVariantClear(&taken);
}

TEST(WideText, RoundTripsBeyondTheBasicPlane) {
  const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9B\xB0";
  const std::vector<WCHAR> wide = Wide(text);
  ASSERT_EQ(wide.size(), 6u);  // a surrogate pair and the terminator among them
  EXPECT_EQ(wide[3], 0xD83D);
  EXPECT_EQ(wide.back(), 0);
  EXPECT_EQ(Utf8(wide.data()), text);
}

TEST(WideText, MalformedBytesBecomeReplacementCharacters) {
  EXPECT_EQ(Wide("\xFF").at(0), 0xFFFD);
  EXPECT_EQ(Wide("\xC3").at(0), 0xFFFD);
  EXPECT_EQ(Wide("\x80z").at(1), 'z');
}

TEST(WideText, NullIsEmpty) {
  EXPECT_EQ(Utf8(nullptr), "");
}

TEST(KeyText, GivesSetAndNumber) {
  EXPECT_EQ(KeyText({keys::kLocationSet, 6}), "{055c74d8-ca6f-47d6-95c6-1ed3637a0ff4} 6");
}

}  // namespace
}  // namespace bench
