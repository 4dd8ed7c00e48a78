#include "tests/unit/bench_sensorapi/ApiTest.h"

namespace bench {
namespace {

class KeyCollectionTest : public ApiTest {
 protected:
  ComPtr<PortableDeviceKeyCollection> keyList = MakeApiObject<PortableDeviceKeyCollection>(world);
};

TEST_F(KeyCollectionTest, KeepsOrderAndRepeatedKeys) {
  for (const DWORD pid : {5u, 2u, 5u}) EXPECT_EQ(keyList->Add(Key(pid)), S_OK);
  DWORD count = 0;
  ASSERT_EQ(keyList->GetCount(&count), S_OK);
  ASSERT_EQ(count, 3u);
  for (const auto& [index, pid] : {std::pair{0u, 5u}, {1u, 2u}, {2u, 5u}}) {
    PROPERTYKEY key{};
    ASSERT_EQ(keyList->GetAt(index, &key), S_OK);
    EXPECT_EQ(key.pid, pid);
  }
}

TEST_F(KeyCollectionTest, AnIndexBeyondTheEndIsRefused) {
  PROPERTYKEY key{};
  EXPECT_EQ(keyList->GetAt(0, &key), E_INVALIDARG);
  EXPECT_EQ(keyList->RemoveAt(0), E_INVALIDARG);
}

TEST_F(KeyCollectionTest, RemoveAtClosesTheGapAndClearEmpties) {
  for (const DWORD pid : {1u, 2u, 3u}) keyList->Add(Key(pid));
  EXPECT_EQ(keyList->RemoveAt(1), S_OK);
  ASSERT_EQ(keyList->Content().size(), 2u);
  EXPECT_EQ(keyList->Content()[1].pid, 3u);
  EXPECT_EQ(keyList->Clear(), S_OK);
  EXPECT_TRUE(keyList->Content().empty());
}

TEST_F(KeyCollectionTest, NullPlacesAreRefused) {
  EXPECT_EQ(keyList->GetCount(nullptr), E_POINTER);
  EXPECT_EQ(keyList->GetAt(0, nullptr), E_POINTER);
}

TEST_F(KeyCollectionTest, ReadingOneOfOursIsNoCallOfItsInterface) {
  keyList->Add(Key(1));
  std::vector<PROPERTYKEY> content;
  EXPECT_EQ(ReadKeys(world, *keyList.Get(), &content), S_OK);
  EXPECT_EQ(content.size(), 1u);
  EXPECT_EQ(calls.Count("IPortableDeviceKeyCollection::GetAt"), 0u);
}

TEST_F(KeyCollectionTest, ReadingOneThatIsGoneIsReported) {
  PortableDeviceKeyCollection* const gone = keyList.Detach();
  gone->Release();
  std::vector<PROPERTYKEY> content;
  EXPECT_TRUE(FAILED(ReadKeys(world, *gone, &content)));
  EXPECT_EQ(ledger.Violations().size(), 1u);
}

class ValuesCollectionTest : public ApiTest {
 protected:
  ComPtr<PortableDeviceValuesCollection> list =
      MakeApiObject<PortableDeviceValuesCollection>(world);
  ComPtr<PortableDeviceValues> values = MakeApiObject<PortableDeviceValues>(world);
};

TEST_F(ValuesCollectionTest, HoldsAReferenceAndGivesOutTheSameObject) {
  ASSERT_EQ(list->Add(values.Get()), S_OK);
  EXPECT_EQ(values->References(), 2u);
  {
    ComPtr<IPortableDeviceValues> found;
    ASSERT_EQ(list->GetAt(0, found.Put()), S_OK);
    EXPECT_EQ(found.Get(), values.Get());
    EXPECT_EQ(values->References(), 3u);
  }
  EXPECT_EQ(list->RemoveAt(0), S_OK);
  EXPECT_EQ(values->References(), 1u);
}

TEST_F(ValuesCollectionTest, LetsGoOfItsSetsOnClearAndAtItsEnd) {
  list->Add(values.Get());
  EXPECT_EQ(list->Clear(), S_OK);
  EXPECT_EQ(values->References(), 1u);
  list->Add(values.Get());
  list.Reset();
  EXPECT_EQ(values->References(), 1u);
}

TEST_F(ValuesCollectionTest, CountsAndRefusesIndexesBeyondTheEnd) {
  list->Add(values.Get());
  list->Add(values.Get());
  DWORD count = 0;
  ASSERT_EQ(list->GetCount(&count), S_OK);
  EXPECT_EQ(count, 2u);
  ComPtr<IPortableDeviceValues> found;
  EXPECT_EQ(list->GetAt(2, found.Put()), E_INVALIDARG);
  EXPECT_FALSE(found);
  EXPECT_EQ(list->RemoveAt(2), E_INVALIDARG);
}

TEST_F(ValuesCollectionTest, NullIsRefused) {
  EXPECT_EQ(list->Add(nullptr), E_POINTER);
  EXPECT_EQ(list->GetAt(0, nullptr), E_POINTER);
  EXPECT_EQ(list->GetCount(nullptr), E_POINTER);
}

TEST_F(ValuesCollectionTest, ReadingGivesCopiesThatLaterChangesDoNotReach) {
  values->SetUnsignedIntegerValue(Key(1), 1);
  list->Add(values.Get());
  std::vector<KeyValues> content;
  ASSERT_EQ(ReadValueSets(world, *list.Get(), &content), S_OK);
  values->SetUnsignedIntegerValue(Key(1), 2);
  ASSERT_EQ(content.size(), 1u);
  EXPECT_TRUE(content[0][0].value == Variant::Ui4(1));
}

TEST_F(ValuesCollectionTest, AddFailsByCount) {
  calls.FailCall("IPortableDeviceValuesCollection::Add", 1, E_FAIL);
  EXPECT_EQ(list->Add(values.Get()), E_FAIL);
  EXPECT_EQ(values->References(), 1u);
  EXPECT_EQ(list->Add(values.Get()), S_OK);
}

}  // namespace
}  // namespace bench
