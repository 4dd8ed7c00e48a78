// What a run of the shipping DLL leaves in the record for the judges.
#include "tests/sweep/Trial.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/sweep/Results.h"
#include "workbench/clock/VirtualClock.h"

namespace bench {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// Starts a device, lets it be brought up and stops it, with one call failing.
std::vector<CallEntry> BroughtUp(const Mishap& mishap) {
  VirtualClock clock;
  CallRecord calls(clock);
  Trial trial(clock, calls, {}, mishap);
  static_cast<void>(trial.Start() && trial.Pass(200));
  trial.End();
  return calls.Calls();
}

const CallEntry* Find(const std::vector<CallEntry>& calls, std::string_view name) {
  const auto found = std::ranges::find(calls, name, &CallEntry::call);
  return found == calls.end() ? nullptr : &*found;
}

TEST(SweepTrial, TheTraceTellsOfBringUpAndItsCommands) {
  const auto calls = BroughtUp({MishapKind::kCall, "no call's name", 1, false});
  const CallEntry* const bringUp = Find(calls, "InitializeEngine");
  const CallEntry* const echo = Find(calls, "SendCommand ATE1");
  ASSERT_NE(bringUp, nullptr);
  ASSERT_NE(echo, nullptr);
  EXPECT_EQ(bringUp->result, S_OK);
  EXPECT_EQ(echo->within, static_cast<std::size_t>(bringUp - calls.data()));
  EXPECT_NE(bringUp->ended, 0U);
}

TEST(SweepTrial, AFailingWriteStrikesItsCommandAndBringUp) {
  const auto calls = BroughtUp({MishapKind::kCall, "IWDFIoRequest::Send", 3, false});
  const auto struck = StruckOperations(calls);
  ASSERT_THAT(struck, SizeIs(2));
  EXPECT_EQ(calls[struck[0].operation].call, "InitializeEngine");
  EXPECT_EQ(calls[struck[1].operation].call, "SendCommand AT+XLCSSWITCH?");
  EXPECT_TRUE(Judge(calls, struck[0]).prescribed);
  EXPECT_THAT(Judge(calls, struck[0]).finding, IsEmpty());
  EXPECT_NE(calls[struck[0].operation].result, S_OK);
}

TEST(SweepTrial, AFailingFunctionIsNotedWithTheCodeThatItStandsFor) {
  const auto calls = BroughtUp({MishapKind::kImport, "StringFromCLSID", 1, false});
  const CallEntry* const failed = Find(calls, "StringFromCLSID");
  ASSERT_NE(failed, nullptr);
  EXPECT_TRUE(failed->planned);
  EXPECT_EQ(failed->result, E_OUTOFMEMORY);
  ASSERT_TRUE(failed->within);
  EXPECT_EQ(calls[*failed->within].call, "IPnpCallbackHardware::OnPrepareHardware");
}

TEST(SweepTrial, ALoadThatIsRefusedStaysInTheRecord) {
  VirtualClock clock;
  CallRecord calls(clock);
  const Mishap mishap = {MishapKind::kImport, "InitializeCriticalSectionAndSpinCount", 1, false};
  EXPECT_THROW(Trial(clock, calls, {}, mishap), std::runtime_error);
  const auto record = calls.Calls();
  const CallEntry* const load = Find(record, "DllMain");
  ASSERT_NE(load, nullptr);
  EXPECT_EQ(load->result, E_FAIL);
}

}  // namespace
}  // namespace bench
