#include "workbench/sensorapi/ComRegistration.h"

#include <objbase.h>

#include "platform/SensorClassExtension.h"
#include "tests/unit/bench_sensorapi/ApiTest.h"

namespace bench {
namespace {

class ComRegistrationTest : public ApiTest {
 protected:
  template <class Interface>
  HRESULT Create(const GUID& classId, ComPtr<Interface>* object) {
    return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iidOf<Interface>,
                            reinterpret_cast<void**>(object->Put()));
  }
  HRESULT CreateValues() {
    ComPtr<IPortableDeviceValues> values;
    return Create(clsid::kPortableDeviceValues, &values);
  }

  SensorService service{world};
};

TEST_F(ComRegistrationTest, AllFourClassesAreCreatedAndWork) {
  const ComRegistration registration(service);
  ComPtr<IPortableDeviceValues> values;
  ComPtr<IPortableDeviceKeyCollection> keyList;
  ComPtr<IPortableDeviceValuesCollection> list;
  ComPtr<ISensorClassExtension> extension;
  ASSERT_EQ(Create(clsid::kPortableDeviceValues, &values), S_OK);
  ASSERT_EQ(Create(clsid::kPortableDeviceKeyCollection, &keyList), S_OK);
  ASSERT_EQ(Create(clsid::kPortableDeviceValuesCollection, &list), S_OK);
  ASSERT_EQ(Create(clsid::kSensorClassExtension, &extension), S_OK);
  EXPECT_EQ(values->SetBoolValue(Key(1), TRUE), S_OK);
  EXPECT_EQ(keyList->Add(Key(1)), S_OK);
  EXPECT_EQ(list->Add(values.Get()), S_OK);
  EXPECT_EQ(extension->Initialize(nullptr, nullptr), E_POINTER);
}

TEST_F(ComRegistrationTest, EachObjectIsNewAndEndsWithItsLastReference) {
  const ComRegistration registration(service);
  {
    ComPtr<IPortableDeviceValues> first;
    ComPtr<IPortableDeviceValues> second;
    Create(clsid::kPortableDeviceValues, &first);
    Create(clsid::kPortableDeviceValues, &second);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(ledger.Alive().size(), 2u);
  }
  EXPECT_THAT(ledger.Alive(), testing::IsEmpty());
}

TEST_F(ComRegistrationTest, AnInterfaceThatTheClassLacksIsRefusedAndLeavesNothing) {
  const ComRegistration registration(service);
  ComPtr<IPortableDeviceValues> values;
  EXPECT_EQ(Create(clsid::kPortableDeviceKeyCollection, &values), E_NOINTERFACE);
  EXPECT_FALSE(values);
  EXPECT_THAT(ledger.Alive(), testing::IsEmpty());
}

TEST_F(ComRegistrationTest, ItsEndTakesTheClassesAway) {
  { const ComRegistration registration(service); }
  const HRESULT entered = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  ASSERT_GE(entered, 0);
  EXPECT_EQ(CreateValues(), REGDB_E_CLASSNOTREG);
  CoUninitialize();
}

TEST_F(ComRegistrationTest, AWithheldClassIsNotRegisteredAndTheOthersAre) {
  const ComRegistration registration(service, {ApiClass::kClassExtension});
  ComPtr<ISensorClassExtension> extension;
  EXPECT_EQ(Create(clsid::kSensorClassExtension, &extension), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(CreateValues(), S_OK);
}

TEST_F(ComRegistrationTest, AClassGoesAndComesBack) {
  ComRegistration registration(service);
  registration.Withhold(ApiClass::kValues);
  EXPECT_EQ(CreateValues(), REGDB_E_CLASSNOTREG);
  registration.Restore(ApiClass::kValues);
  EXPECT_EQ(CreateValues(), S_OK);
}

TEST_F(ComRegistrationTest, CreationFailsByNameAndCount) {
  const ComRegistration registration(service);
  calls.FailCall("CoCreateInstance(PortableDeviceValues)", 2, E_OUTOFMEMORY);
  ComPtr<IPortableDeviceKeyCollection> keyList;
  EXPECT_EQ(CreateValues(), S_OK);
  EXPECT_EQ(Create(clsid::kPortableDeviceKeyCollection, &keyList), S_OK);
  EXPECT_EQ(CreateValues(), E_OUTOFMEMORY);
  EXPECT_EQ(CreateValues(), S_OK);
  EXPECT_EQ(calls.Count("CoCreateInstance(PortableDeviceValues)"), 3u);
}

TEST_F(ComRegistrationTest, ClassesAreCreatableOnAThreadThatDidNotEnterCom) {
  const ComRegistration registration(service);
  HRESULT result = E_PENDING;
  {
    const Thread other(clock, [&] { result = CreateValues(); });
  }
  EXPECT_EQ(result, S_OK);
}

}  // namespace
}  // namespace bench
