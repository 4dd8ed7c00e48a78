#include "workbench/sensorapi/PortableDeviceValues.h"

#include <propsys.h>

#include <cstring>

#include "tests/unit/bench_sensorapi/ApiTest.h"

namespace bench {
namespace {

constexpr GUID kGuid = {0x12345678, 0x9abc, 0xdef0, {1, 2, 3, 4, 5, 6, 7, 8}};

class PortableDeviceValuesTest : public ApiTest {
 protected:
  DWORD Count() {
    DWORD count = 99;
    EXPECT_EQ(values->GetCount(&count), S_OK);
    return count;
  }
  VARTYPE TypeOf(const PROPERTYKEY& key) {
    Variant value;
    EXPECT_EQ(values->GetValue(key, value.Put()), S_OK);
    return value.Type();
  }

  ComPtr<PortableDeviceValues> values = MakeApiObject<PortableDeviceValues>(world);
};

TEST_F(PortableDeviceValuesTest, KeepsTheOrderInWhichKeysCame) {
  for (const DWORD pid : {9u, 3u, 7u}) values->SetUnsignedIntegerValue(Key(pid), pid);
  for (const auto& [index, pid] : {std::pair{0u, 9u}, {1u, 3u}, {2u, 7u}}) {
    PROPERTYKEY key{};
    Variant value;
    ASSERT_EQ(values->GetAt(index, &key, value.Put()), S_OK);
    EXPECT_EQ(key.pid, pid);
    EXPECT_EQ(value.Get().ulVal, pid);
  }
}

TEST_F(PortableDeviceValuesTest, AKeySetAgainKeepsItsPlaceAndTakesTheNewTypeToo) {
  values->SetUnsignedIntegerValue(Key(1), 1);
  values->SetUnsignedIntegerValue(Key(2), 2);
  values->SetBoolValue(Key(1), TRUE);
  EXPECT_EQ(Count(), 2u);
  PROPERTYKEY key{};
  Variant value;
  ASSERT_EQ(values->GetAt(0, &key, value.Put()), S_OK);
  EXPECT_EQ(key.pid, 1u);
  EXPECT_EQ(value.Type(), VT_BOOL);
}

TEST_F(PortableDeviceValuesTest, KeysThatDifferInTheSetOnlyAreDifferent) {
  values->SetUnsignedIntegerValue({keys::kLocationSet, 2}, 1);
  values->SetUnsignedIntegerValue({keys::kSensorCommonSet, 2}, 2);
  EXPECT_EQ(Count(), 2u);
}

TEST_F(PortableDeviceValuesTest, GetAtTakesNullForWhatIsNotWanted) {
  values->SetUnsignedIntegerValue(Key(1), 5);
  PROPERTYKEY key{};
  Variant value;
  EXPECT_EQ(values->GetAt(0, &key, nullptr), S_OK);
  EXPECT_EQ(values->GetAt(0, nullptr, value.Put()), S_OK);
  EXPECT_EQ(key.pid, 1u);
  EXPECT_EQ(value.Get().ulVal, 5u);
}

TEST_F(PortableDeviceValuesTest, GetAtBeyondTheEndIsRefused) {
  values->SetUnsignedIntegerValue(Key(1), 5);
  EXPECT_EQ(values->GetAt(1, nullptr, nullptr), E_INVALIDARG);
}

TEST_F(PortableDeviceValuesTest, SetValueAndGetValueShareNoMemory) {
  const Variant original = Variant::String("before");
  ASSERT_EQ(values->SetValue(Key(1), &original.Get()), S_OK);
  original.Get().pwszVal[0] = L'X';
  Variant first;
  Variant second;
  ASSERT_EQ(values->GetValue(Key(1), first.Put()), S_OK);
  ASSERT_EQ(values->GetValue(Key(1), second.Put()), S_OK);
  EXPECT_EQ(Utf8(first.Get().pwszVal), "before");
  EXPECT_NE(first.Get().pwszVal, second.Get().pwszVal);
}

TEST_F(PortableDeviceValuesTest, AnEmptyVariantIsAValue) {
  const Variant empty;
  ASSERT_EQ(values->SetValue(Key(1), &empty.Get()), S_OK);
  EXPECT_EQ(Count(), 1u);
  EXPECT_EQ(TypeOf(Key(1)), VT_EMPTY);
}

TEST_F(PortableDeviceValuesTest, AMissingKeyIsNotFoundByEveryGetter) {
  const PROPERTYKEY key = Key(77);
  Variant value;
  LPWSTR text = nullptr;
  ULONG number = 0;
  PROPERTYKEY keyValue{};
  IUnknown* object = nullptr;
  BYTE* bytes = nullptr;
  EXPECT_EQ(values->GetValue(key, value.Put()), kNotFound);
  EXPECT_EQ(values->GetStringValue(key, &text), kNotFound);
  EXPECT_EQ(values->GetUnsignedIntegerValue(key, &number), kNotFound);
  EXPECT_EQ(values->GetKeyValue(key, &keyValue), kNotFound);
  EXPECT_EQ(values->GetIUnknownValue(key, &object), kNotFound);
  EXPECT_EQ(values->GetBufferValue(key, &bytes, &number), kNotFound);
  EXPECT_EQ(values->RemoveValue(key), kNotFound);
}

TEST_F(PortableDeviceValuesTest, AnotherTypeIsAMismatchForEveryGetter) {
  const PROPERTYKEY key = Key(1);
  const Variant real = Variant::R8(1);
  values->SetValue(key, &real.Get());
  LPWSTR text = nullptr;
  ULONG number = 0;
  LONG signedNumber = 0;
  ULONGLONG large = 0;
  LONGLONG signedLarge = 0;
  FLOAT single = 0;
  HRESULT error = 0;
  PROPERTYKEY keyValue{};
  BOOL flag = FALSE;
  IUnknown* object = nullptr;
  GUID guid{};
  BYTE* bytes = nullptr;
  IPortableDeviceValues* set = nullptr;
  EXPECT_EQ(values->GetStringValue(key, &text), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetUnsignedIntegerValue(key, &number), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetSignedIntegerValue(key, &signedNumber), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetUnsignedLargeIntegerValue(key, &large), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetSignedLargeIntegerValue(key, &signedLarge), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetFloatValue(key, &single), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetErrorValue(key, &error), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetKeyValue(key, &keyValue), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetBoolValue(key, &flag), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetIUnknownValue(key, &object), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetGuidValue(key, &guid), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetBufferValue(key, &bytes, &number), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetIPortableDeviceValuesValue(key, &set), DISP_E_TYPEMISMATCH);
}

TEST_F(PortableDeviceValuesTest, NumbersRoundTripWithTheirVariantTypes) {
  ULONG ui4 = 0;
  LONG i4 = 0;
  ULONGLONG ui8 = 0;
  LONGLONG i8 = 0;
  FLOAT r4 = 0;
  HRESULT error = S_OK;
  EXPECT_EQ(values->SetUnsignedIntegerValue(Key(1), 0xFFFFFFFF), S_OK);
  EXPECT_EQ(values->SetSignedIntegerValue(Key(2), -7), S_OK);
  EXPECT_EQ(values->SetUnsignedLargeIntegerValue(Key(3), 0xFFFFFFFFFFFFFFFF), S_OK);
  EXPECT_EQ(values->SetSignedLargeIntegerValue(Key(4), -8), S_OK);
  EXPECT_EQ(values->SetFloatValue(Key(5), 1.5F), S_OK);
  EXPECT_EQ(values->SetErrorValue(Key(6), E_ACCESSDENIED), S_OK);
  EXPECT_EQ(values->GetUnsignedIntegerValue(Key(1), &ui4), S_OK);
  EXPECT_EQ(values->GetSignedIntegerValue(Key(2), &i4), S_OK);
  EXPECT_EQ(values->GetUnsignedLargeIntegerValue(Key(3), &ui8), S_OK);
  EXPECT_EQ(values->GetSignedLargeIntegerValue(Key(4), &i8), S_OK);
  EXPECT_EQ(values->GetFloatValue(Key(5), &r4), S_OK);
  EXPECT_EQ(values->GetErrorValue(Key(6), &error), S_OK);
  EXPECT_EQ(ui4, 0xFFFFFFFF);
  EXPECT_EQ(i4, -7);
  EXPECT_EQ(ui8, 0xFFFFFFFFFFFFFFFF);
  EXPECT_EQ(i8, -8);
  EXPECT_EQ(r4, 1.5F);
  EXPECT_EQ(error, E_ACCESSDENIED);
  EXPECT_EQ(TypeOf(Key(1)), VT_UI4);
  EXPECT_EQ(TypeOf(Key(2)), VT_I4);
  EXPECT_EQ(TypeOf(Key(3)), VT_UI8);
  EXPECT_EQ(TypeOf(Key(4)), VT_I8);
  EXPECT_EQ(TypeOf(Key(5)), VT_R4);
  EXPECT_EQ(TypeOf(Key(6)), VT_ERROR);
}

TEST_F(PortableDeviceValuesTest, AnyNonZeroFlagIsVariantTrue) {
  BOOL flag = FALSE;
  ASSERT_EQ(values->SetBoolValue(Key(1), 2), S_OK);
  ASSERT_EQ(values->GetBoolValue(Key(1), &flag), S_OK);
  EXPECT_EQ(flag, TRUE);
  Variant raw;
  values->GetValue(Key(1), raw.Put());
  EXPECT_EQ(raw.Get().boolVal, VARIANT_TRUE);
  values->SetBoolValue(Key(1), FALSE);
  ASSERT_EQ(values->GetBoolValue(Key(1), &flag), S_OK);
  EXPECT_EQ(flag, FALSE);
}

TEST_F(PortableDeviceValuesTest, AStringIsGivenOutAsACopyOfTheCallers) {
  ASSERT_EQ(values->SetStringValue(Key(1), Wide("text").data()), S_OK);
  LPWSTR first = nullptr;
  LPWSTR second = nullptr;
  ASSERT_EQ(values->GetStringValue(Key(1), &first), S_OK);
  ASSERT_EQ(values->GetStringValue(Key(1), &second), S_OK);
  EXPECT_EQ(Utf8(first), "text");
  EXPECT_NE(first, second);
  CoTaskMemFree(first);
  CoTaskMemFree(second);
  EXPECT_EQ(values->SetStringValue(Key(1), nullptr), E_POINTER);
}

TEST_F(PortableDeviceValuesTest, GuidsAndKeysRoundTrip) {
  GUID guid{};
  PROPERTYKEY key{};
  ASSERT_EQ(values->SetGuidValue(Key(1), kGuid), S_OK);
  ASSERT_EQ(values->SetKeyValue(Key(2), LocationKey(39)), S_OK);
  ASSERT_EQ(values->GetGuidValue(Key(1), &guid), S_OK);
  ASSERT_EQ(values->GetKeyValue(Key(2), &key), S_OK);
  EXPECT_TRUE(SameGuid(guid, kGuid));
  EXPECT_TRUE(SameKey(key, LocationKey(39)));
}

TEST_F(PortableDeviceValuesTest, ABufferOfAnotherSizeIsNoKey) {
  BYTE one = 1;
  PROPERTYKEY key{};
  values->SetBufferValue(Key(1), &one, 1);
  EXPECT_EQ(values->GetKeyValue(Key(1), &key), DISP_E_TYPEMISMATCH);
}

TEST_F(PortableDeviceValuesTest, BuffersAreCopiedInAndOut) {
  BYTE source[] = {1, 2, 3};
  ASSERT_EQ(values->SetBufferValue(Key(1), source, 3), S_OK);
  source[0] = 99;
  BYTE* bytes = nullptr;
  DWORD count = 0;
  ASSERT_EQ(values->GetBufferValue(Key(1), &bytes, &count), S_OK);
  ASSERT_EQ(count, 3u);
  EXPECT_EQ(bytes[0], 1);
  CoTaskMemFree(bytes);
}

TEST_F(PortableDeviceValuesTest, AnEmptyBufferNeedsNoPointer) {
  BYTE* bytes = nullptr;
  DWORD count = 99;
  EXPECT_EQ(values->SetBufferValue(Key(1), nullptr, 0), S_OK);
  EXPECT_EQ(values->SetBufferValue(Key(2), nullptr, 1), E_POINTER);
  EXPECT_EQ(values->GetBufferValue(Key(1), &bytes, &count), S_OK);
  EXPECT_EQ(count, 0u);
}

TEST_F(PortableDeviceValuesTest, AnObjectIsCountedForTheSetAndForTheCaller) {
  auto object = MakeApiObject<PortableDeviceKeyCollection>(world);
  ASSERT_EQ(values->SetIUnknownValue(Key(1), object.Get()), S_OK);
  EXPECT_EQ(object->References(), 2u);
  {
    ComPtr<IUnknown> found;
    ASSERT_EQ(values->GetIUnknownValue(Key(1), found.Put()), S_OK);
    EXPECT_EQ(object->References(), 3u);
  }
  EXPECT_EQ(values->RemoveValue(Key(1)), S_OK);
  EXPECT_EQ(object->References(), 1u);
}

TEST_F(PortableDeviceValuesTest, ContainersAreFoundByTheirOwnInterfaceOnly) {
  auto keySet = MakeApiObject<PortableDeviceKeyCollection>(world);
  auto inner = MakeApiObject<PortableDeviceValues>(world);
  auto list = MakeApiObject<PortableDeviceValuesCollection>(world);
  ASSERT_EQ(values->SetIPortableDeviceKeyCollectionValue(Key(1), keySet.Get()), S_OK);
  ASSERT_EQ(values->SetIPortableDeviceValuesValue(Key(2), inner.Get()), S_OK);
  ASSERT_EQ(values->SetIPortableDeviceValuesCollectionValue(Key(3), list.Get()), S_OK);
  ASSERT_EQ(values->SetIPortableDevicePropVariantCollectionValue(Key(4), nullptr), S_OK);
  ComPtr<IPortableDeviceKeyCollection> foundKeys;
  ComPtr<IPortableDeviceValues> foundInner;
  ComPtr<IPortableDeviceValuesCollection> foundList;
  ComPtr<IPortableDevicePropVariantCollection> foundVariants;
  EXPECT_EQ(values->GetIPortableDeviceKeyCollectionValue(Key(1), foundKeys.Put()), S_OK);
  EXPECT_EQ(values->GetIPortableDeviceValuesValue(Key(2), foundInner.Put()), S_OK);
  EXPECT_EQ(values->GetIPortableDeviceValuesCollectionValue(Key(3), foundList.Put()), S_OK);
  EXPECT_EQ(values->GetIPortableDevicePropVariantCollectionValue(Key(4), foundVariants.Put()),
            S_OK);
  EXPECT_EQ(foundKeys.Get(), keySet.Get());
  EXPECT_EQ(foundInner.Get(), inner.Get());
  EXPECT_EQ(foundList.Get(), list.Get());
  EXPECT_FALSE(foundVariants);
  EXPECT_EQ(values->GetIPortableDeviceValuesValue(Key(1), foundInner.Put()), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(values->GetIPortableDevicePropVariantCollectionValue(Key(1), foundVariants.Put()),
            DISP_E_TYPEMISMATCH);
}

TEST_F(PortableDeviceValuesTest, RemoveAndClearTakeValuesAway) {
  values->SetUnsignedIntegerValue(Key(1), 1);
  values->SetUnsignedIntegerValue(Key(2), 2);
  values->SetUnsignedIntegerValue(Key(3), 3);
  EXPECT_EQ(values->RemoveValue(Key(2)), S_OK);
  EXPECT_EQ(Count(), 2u);
  PROPERTYKEY second{};
  values->GetAt(1, &second, nullptr);
  EXPECT_EQ(second.pid, 3u);
  EXPECT_EQ(values->Clear(), S_OK);
  EXPECT_EQ(Count(), 0u);
}

/// A property store with two properties that takes what it is given.
class TwoPropertyStore final : public IPropertyStore {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override {
    *count = 2;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) override {
    *key = Key(index + 1);
    return index == failAt ? E_ACCESSDENIED : S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) override {
    return CopyVariant(Variant::Ui4(key.pid * 10).Get(), value);
  }
  HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, REFPROPVARIANT value) override {
    taken.push_back({key, Variant(value)});
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Commit() override { return S_OK; }

  DWORD failAt = 99;
  KeyValues taken;
};

TEST_F(PortableDeviceValuesTest, CopiesFromAndToAPropertyStore) {
  TwoPropertyStore store;
  ASSERT_EQ(values->CopyValuesFromPropertyStore(&store), S_OK);
  ULONG second = 0;
  ASSERT_EQ(values->GetUnsignedIntegerValue(Key(2), &second), S_OK);
  EXPECT_EQ(second, 20u);
  ASSERT_EQ(values->CopyValuesToPropertyStore(&store), S_OK);
  ASSERT_EQ(store.taken.size(), 2u);
  EXPECT_TRUE(store.taken[0].value == Variant::Ui4(10));
}

TEST_F(PortableDeviceValuesTest, AFailingPropertyStoreEndsTheCopy) {
  TwoPropertyStore store;
  store.failAt = 1;
  EXPECT_EQ(values->CopyValuesFromPropertyStore(&store), E_ACCESSDENIED);
  EXPECT_EQ(Count(), 1u);
  EXPECT_EQ(values->CopyValuesFromPropertyStore(nullptr), E_POINTER);
}

TEST_F(PortableDeviceValuesTest, NullPlacesAreRefused) {
  EXPECT_EQ(values->GetCount(nullptr), E_POINTER);
  EXPECT_EQ(values->SetValue(Key(1), nullptr), E_POINTER);
  EXPECT_EQ(values->GetValue(Key(1), nullptr), E_POINTER);
  EXPECT_EQ(values->GetStringValue(Key(1), nullptr), E_POINTER);
  EXPECT_EQ(values->GetGuidValue(Key(1), nullptr), E_POINTER);
  EXPECT_EQ(values->GetKeyValue(Key(1), nullptr), E_POINTER);
  EXPECT_EQ(values->GetBufferValue(Key(1), nullptr, nullptr), E_POINTER);
  EXPECT_EQ(values->GetIUnknownValue(Key(1), nullptr), E_POINTER);
}

TEST_F(PortableDeviceValuesTest, AnUnsupportedVariantIsRefusedAndNotStored) {
  PROPVARIANT currency{};
  currency.vt = VT_CY;
  EXPECT_EQ(values->SetValue(Key(1), &currency), DISP_E_BADVARTYPE);
  EXPECT_EQ(Count(), 0u);
}

TEST_F(PortableDeviceValuesTest, HasIdentityAndItsOneInterface) {
  ComPtr<IUnknown> unknown;
  ComPtr<IPortableDeviceValues> again;
  void* other = &other;
  ASSERT_EQ(values->QueryInterface(iidOf<IUnknown>, reinterpret_cast<void**>(unknown.Put())), S_OK);
  ASSERT_EQ(unknown.As(again), S_OK);
  EXPECT_EQ(again.Get(), values.Get());
  EXPECT_EQ(values->QueryInterface(iidOf<IPortableDeviceKeyCollection>, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
}

TEST_F(PortableDeviceValuesTest, ACallFailsByNameAndCountAndDoesNothing) {
  calls.FailCall("IPortableDeviceValues::SetValue", 2, E_OUTOFMEMORY);
  const Variant one = Variant::Ui4(1);
  EXPECT_EQ(values->SetValue(Key(1), &one.Get()), S_OK);
  EXPECT_EQ(values->SetValue(Key(2), &one.Get()), E_OUTOFMEMORY);
  EXPECT_EQ(values->SetValue(Key(3), &one.Get()), S_OK);
  EXPECT_EQ(values->Content().size(), 2u);
  EXPECT_EQ(calls.Count("IPortableDeviceValues::SetValue"), 3u);
}

TEST_F(PortableDeviceValuesTest, AForgottenReferenceIsReportedByName) {
  PortableDeviceValues* const leaked = MakeApiObject<PortableDeviceValues>(world).Detach();
  values.Reset();
  ledger.ReportLeaks();
  ASSERT_EQ(ledger.Violations().size(), 1u);
  EXPECT_THAT(ledger.Violations()[0], testing::HasSubstr(leaked->name()));
}

TEST_F(PortableDeviceValuesTest, AReleaseTooManyIsReported) {
  PortableDeviceValues* const object = values.Detach();
  object->Release();
  object->Release();
  EXPECT_EQ(ledger.Count(rule::kOverRelease), 1u);
}

TEST_F(PortableDeviceValuesTest, AUseAfterTheLastReleaseIsReportedAndFails) {
  PortableDeviceValues* const object = values.Detach();
  object->Release();
  DWORD count = 0;
  EXPECT_TRUE(FAILED(object->GetCount(&count)));
  EXPECT_EQ(ledger.Violations().size(), 1u);
}

}  // namespace
}  // namespace bench
