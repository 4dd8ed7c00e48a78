// Memory that runs out in the sensor core at one certain place.

#include <objbase.h>

#include <string_view>
#include <utility>
#include <vector>

#include "tests/driver/SensorFaceTest.h"

namespace bench {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

constexpr int kEventsOfOneBlock = 128;  // the queue asks for memory once for so many
constexpr PROPERTYKEY kFirstRequestField = {kDriverSettings, 4};

// A trace message: its file's, by the first part of the identifier, and its number there.
using TracedMessage = std::pair<ULONG, USHORT>;
constexpr TracedMessage kStartFailed = {0xd958871d, 10};
constexpr ULONG kCommandEngineMessages = 0xb03fb04c;
constexpr TracedMessage kCommandEnds = {kCommandEngineMessages, 11};

class SensorMemory : public SensorFaceTest {
 protected:
  void FailNext(std::string_view function) {
    faults().FailImport(function, faults().CallCount(function) + 1);
  }
  // The SIM is read before every request, and the request's fields come next: keeps the messages
  // that follow that command until the start has failed.
  void Watch(const TracedMessage& message) {
    if (!simRead_) {
      if (message != kCommandEnds) return;
      simRead_ = true;
      FailNext("malloc");
    } else if (start_.empty() || start_.back() != kStartFailed) {
      start_.push_back(message);
    }
  }

  bool simRead_ = false;
  std::vector<TracedMessage> start_;
};

TEST_F(SensorMemory, TheListOfEventsThatCannotBeMadeIsNotGiven) {
  StartWithFace();
  GUID* events = nullptr;
  ULONG count = 5;
  FailNext("CoTaskMemAlloc");
  EXPECT_EQ(Face()->OnGetSupportedEvents(sensorId_, &events, &count), E_OUTOFMEMORY);
  EXPECT_EQ(events, nullptr);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(faults().Failed(), 1U);
  EXPECT_EQ(Face()->OnGetSupportedEvents(sensorId_, &events, &count), S_OK);
  EXPECT_EQ(count, 2U);
  CoTaskMemFree(events);
}

TEST_F(SensorMemory, AnEventThatTheQueueHasNoPlaceForIsLostAndTheOthersAreNot) {
  StartWithFace();
  Mark();
  FailNext("malloc");
  // Each of these posts two events.
  for (int i = 0; i < kEventsOfOneBlock / 2; ++i) {
    EXPECT_EQ(Face()->OnClientDisconnect(nullptr, sensorId_), S_OK);
    Settle();
  }
  EXPECT_EQ(faults().Failed(), 1U);
  EXPECT_EQ(Log(Doing::kPosted).size(), std::size_t{kEventsOfOneBlock});
  EXPECT_EQ(Log(Doing::kHandled).size(), std::size_t{kEventsOfOneBlock - 1});
}

TEST_F(SensorMemory, WithoutAListenerWhatCannotBeMadeIsGivenUpAllTheSame) {
  StartWithFace();
  rig().redirector().Tracing().Disable();
  GUID* events = nullptr;
  ULONG count = 5;
  FailNext("CoTaskMemAlloc");
  EXPECT_EQ(Face()->OnGetSupportedEvents(sensorId_, &events, &count), E_OUTOFMEMORY);
  FailNext("malloc");
  for (int i = 0; i < kEventsOfOneBlock / 2; ++i) {
    EXPECT_EQ(Face()->OnClientDisconnect(nullptr, sensorId_), S_OK);
    Settle();
  }
  EXPECT_EQ(faults().Failed(), 2U);
  EXPECT_EQ(Face()->OnGetSupportedEvents(sensorId_, &events, &count), S_OK);
  CoTaskMemFree(events);
}

TEST_F(SensorMemory, ALocationRequestThatCannotBePutTogetherIsRefusedWithoutACommand) {
  StartSensor();
  const auto client = Connect();
  SayFix();  // ends its single fix
  // With it the request's fields are too long to be kept without memory.
  ASSERT_TRUE(client->SetProperty(kFirstRequestField, Variant::Ui4(4'294'967'295U)).Accepted());
  modem().Refuse("AT+CIMI");  // so that there is nothing to do with the SIM's network
  Mark();
  rig().redirector().Tracing().SetListener([this](const TraceRecord& record) {
    Watch({record.message.Data1, record.number});
  });
  ASSERT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_EQ(faults().Failed(), 1U);
  ASSERT_THAT(start_, Not(IsEmpty()));
  EXPECT_EQ(start_.back(), kStartFailed);
  EXPECT_THAT(start_, Not(Contains(Pair(kCommandEngineMessages, testing::_))));
  EXPECT_THAT(Requests(), IsEmpty());
  EXPECT_EQ(EngineUses(), 0);

  EXPECT_EQ(client->Unsubscribe(), S_OK);
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_THAT(Requests(), ElementsAre("AT+XLCSLSR=4294967295,1,,,,,,,,2,,"));
}

}  // namespace
}  // namespace bench
