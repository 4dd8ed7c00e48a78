// Calls that reach the sensor core after its stop, from somebody who kept its face.

#include "tests/driver/SensorFaceTest.h"

namespace bench {
namespace {

using stelvane::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

class SensorStopped : public SensorFaceTest {
 protected:
  void SetUp() override {
    StartWithFace();
    kept_ = ComPtr<ISensorDriver>(Face());
    rig().ReleaseDriver();
    Mark();
  }
  void TearDown() override {
    kept_.Reset();
    SensorFaceTest::TearDown();
  }
  template <class Container>
  static ComPtr<Container> NewContainer(const CLSID& classId) {
    ComPtr<Container> container;
    EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iidOf<Container>,
                               reinterpret_cast<void**>(container.Put())),
              S_OK);
    return container;
  }

  ComPtr<ISensorDriver> kept_;
};

TEST_F(SensorStopped, ReadingPropertiesFails) {
  const auto wanted =
      NewContainer<IPortableDeviceKeyCollection>(clsid::kPortableDeviceKeyCollection);
  ComPtr<IPortableDeviceValues> values;
  EXPECT_EQ(kept_->OnGetProperties(nullptr, sensorId_, wanted.Get(), values.Put()), E_FAIL);
  EXPECT_FALSE(values);
}

TEST_F(SensorStopped, WritingPropertiesFails) {
  const auto wanted = NewContainer<IPortableDeviceValues>(clsid::kPortableDeviceValues);
  ComPtr<IPortableDeviceValues> results;
  EXPECT_EQ(kept_->OnSetProperties(nullptr, sensorId_, wanted.Get(), results.Put()), E_FAIL);
  EXPECT_FALSE(results);
}

TEST_F(SensorStopped, AClientThatConnectsIsAcceptedAndPostsNothing) {
  EXPECT_EQ(kept_->OnClientConnect(nullptr, sensorId_), S_OK);
  EXPECT_EQ(kept_->OnClientSubscribeToEvents(nullptr, sensorId_), S_OK);
  EXPECT_EQ(kept_->OnClientUnsubscribeFromEvents(nullptr, sensorId_), S_OK);
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorStopped, AClientThatDisconnectsCountsAsTheLastOne) {
  EXPECT_EQ(kept_->OnClientDisconnect(nullptr, sensorId_), S_OK);
  EXPECT_THAT(Log(Doing::kPosted),
              ElementsAre("EV_REFRESH_REPORTING", "EV_LAST_CLIENT_DISCONNECTED"));
  EXPECT_THAT(Log(Doing::kHandled), IsEmpty());
}

}  // namespace
}  // namespace bench
