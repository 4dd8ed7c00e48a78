// Tracing from load to unload, through the DLL's exports.

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/driver/RigTest.h"

namespace bench {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr GUID kControlGuid = {
    0xf4acaab5, 0xc82f, 0x4f79, {0xbf, 0x37, 0xc0, 0x4f, 0x93, 0xc0, 0x13, 0x89}};
// The messages of driver/Driver.cpp.
constexpr GUID kDriverMessages = {
    0xb9f2a9b6, 0x26c8, 0x4f5e, {0x8d, 0x0c, 0x3d, 0x9f, 0x6a, 0x1c, 0x7e, 0x42}};
constexpr ULONG kAllFlags = 0xFFFFFFFF;

class ModuleTraceTest : public RigTest {
 protected:
  std::vector<USHORT> DriverMessageNumbers() {
    std::vector<USHORT> numbers;
    for (const TraceRecord& message : rig().redirector().Tracing().TakeMessages()) {
      if (IsEqualGUID(message.message, kDriverMessages)) numbers.push_back(message.number);
    }
    return numbers;
  }
};

TEST_F(ModuleTraceTest, LoadingRegistersTheControlGuidAndNothingElse) {
  const std::vector<GUID> providers = Load().redirector().Tracing().Providers();
  ASSERT_THAT(providers, SizeIs(1));
  EXPECT_TRUE(IsEqualGUID(providers[0], kControlGuid));
}

TEST_F(ModuleTraceTest, UnloadingUnregistersTheProvider) {
  Load();
  rig().Shutdown();
  EXPECT_THAT(rig().redirector().Tracing().Providers(), IsEmpty());
}

TEST_F(ModuleTraceTest, AFailedTraceRegistrationIsIgnoredAndEverySiteStaysSilent) {
  RigOptions options;
  options.beforeLoad = [](Redirector& redirector, CallRecord&) {
    redirector.Faults().FailImport("RegisterTraceGuidsW", 1);
  };
  Load(std::move(options));
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, kAllFlags);
  EXPECT_EQ(rig().Start(), S_OK);
  EXPECT_EQ(faults().CallCount("TraceMessage"), 0U);
}

TEST_F(ModuleTraceTest, WithoutAListenerNoTraceMessageIsCalled) {
  Start();
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(rig().sensors().WaitForState(SENSOR_STATE_READY, clock_.Now() + 60'000));
  client->Disconnect();
  EXPECT_EQ(faults().CallCount("TraceMessage"), 0U);
}

TEST_F(ModuleTraceTest, AListenerWithOtherFlagsOrNoLevelGetsNothing) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, 0x2);
  ASSERT_EQ(rig().Start(), S_OK);
  EXPECT_THAT(rig().redirector().Tracing().TakeMessages(), IsEmpty());
  rig().redirector().Tracing().Enable(0, kAllFlags);
  ASSERT_EQ(rig().host().Stop(), S_OK);
  EXPECT_THAT(rig().redirector().Tracing().TakeMessages(), IsEmpty());
}

TEST_F(ModuleTraceTest, TheControlCallbackRefusesOtherRequests) {
  Load();
  EXPECT_EQ(rig().redirector().Tracing().Control(10), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(rig().redirector().Tracing().Control(0), ERROR_INVALID_PARAMETER);
}

TEST_F(ModuleTraceTest, TheBannerComesFirstWhenADeviceIsAdded) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, kAllFlags);
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  // Nine banner messages and the callback's entry, then its exit; the initialisation comes before.
  EXPECT_THAT(DriverMessageNumbers(),
              ElementsAre(23, 25, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20));
}

TEST_F(ModuleTraceTest, SomeOfTheBannerIsSeenAtEachLevel) {
  struct Row {
    UCHAR level;
    std::size_t messages;
  };
  for (const Row& row : {Row{1, 5}, Row{2, 6}, Row{3, 7}, Row{4, 8 + 4}, Row{5, 9 + 4}}) {
    VirtualClock clock;
    Rig rig(clock);
    rig.redirector().Tracing().Enable(row.level, kAllFlags);
    ASSERT_EQ(rig.host().AddDevice(), S_OK);
    const auto messages = rig.redirector().Tracing().TakeMessages();
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(),
                            [](const TraceRecord& message) {
                              return IsEqualGUID(message.message, kDriverMessages);
                            }),
              static_cast<std::ptrdiff_t>(row.messages))
        << "level " << int{row.level};
    rig.Shutdown();
    EXPECT_THAT(rig.Findings(), testing::IsEmpty());
  }
}

TEST_F(ModuleTraceTest, TheBannerCarriesDateAndTimeAsTwoTexts) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_CRITICAL, kAllFlags);
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  const auto messages = rig().redirector().Tracing().TakeMessages();
  const auto built = std::find_if(messages.begin(), messages.end(), [](const TraceRecord& m) {
    return IsEqualGUID(m.message, kDriverMessages) && m.number == 13;
  });
  ASSERT_NE(built, messages.end());
  const std::string bytes(built->arguments.begin(), built->arguments.end());
  // "Jun  3 2014" and "16:24:48", each with its terminator.
  ASSERT_THAT(bytes, SizeIs(12 + 9));
  EXPECT_EQ(bytes[3], ' ');
  EXPECT_EQ(bytes[11], '\0');
  EXPECT_EQ(bytes[14], ':');
  EXPECT_EQ(bytes[17], ':');
}

TEST_F(ModuleTraceTest, EveryMessageCarriesItsGuidAndASequenceNumber) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, kAllFlags);
  ASSERT_EQ(rig().Start(), S_OK);
  clock_.SleepFor(1000);
  std::vector<ULONG> flags;
  for (const TraceRecord& message : rig().redirector().Tracing().TakeMessages()) {
    flags.push_back(message.flags & (TRACE_MESSAGE_GUID | TRACE_MESSAGE_SEQUENCE));
  }
  EXPECT_FALSE(flags.empty());
  EXPECT_THAT(flags, Each(ULONG{TRACE_MESSAGE_GUID | TRACE_MESSAGE_SEQUENCE}));
}

}  // namespace
}  // namespace bench
