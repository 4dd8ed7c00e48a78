// The judging of results on made-up records: each row of the table can say yes and no.
#include "tests/sweep/Results.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/sweep/ResultTable.h"
#include "workbench/clock/VirtualClock.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr HRESULT kInjected = HRESULT_FROM_WIN32(ERROR_GEN_FAILURE);
constexpr HRESULT kOtherCode = HRESULT_FROM_WIN32(ERROR_BAD_UNIT);
constexpr HRESULT kShutdown = HRESULT_FROM_WIN32(ERROR_SHUTDOWN_IN_PROGRESS);

/// A record that is told as a driver's calls would be.
struct Story {
  VirtualClock clock;
  CallRecord calls{clock};

  template <class Body>
  void Operation(std::string_view name, HRESULT result, Body body) {
    calls.Run(kDriverCallee, name, [&] {
      body();
      return result;
    });
  }
  void Call(std::string_view name, HRESULT result = S_OK) {
    calls.Run("object", name, [&] { return result; });
  }
  void Fails(std::string_view name, HRESULT result = kInjected) {
    calls.NoteFailed("object", name, result);
  }
};

using Record = std::vector<CallEntry>;

/// The verdicts on all that was struck, in the order of the operations.
std::vector<Verdict> Verdicts(const Record& record) {
  std::vector<Verdict> verdicts;
  for (const Struck& struck : StruckOperations(record)) verdicts.push_back(Judge(record, struck));
  return verdicts;
}

std::vector<std::string> Findings(const Record& record) {
  std::vector<std::string> findings;
  for (const Verdict& verdict : Verdicts(record)) {
    if (!verdict.finding.empty()) findings.push_back(verdict.finding);
  }
  return findings;
}

bool IsAnyPrescribed(const Record& record) {
  return std::ranges::any_of(Verdicts(record), &Verdict::prescribed);
}

/// One operation in which one call fails.
Record OneFailure(std::string_view operation, std::string_view call, HRESULT result) {
  Story story;
  story.Operation(operation, result, [&] { story.Fails(call); });
  return story.calls.Calls();
}

constexpr std::string_view kD0Entry = "IPnpCallback::OnD0Entry";
constexpr std::string_view kReaderStart = "IWDFIoTargetStateManagement::Start";

TEST(Results, ACodeHasToBeReturnedUnchanged) {
  EXPECT_THAT(Findings(OneFailure(kD0Entry, kReaderStart, kInjected)), IsEmpty());
  EXPECT_THAT(Findings(OneFailure(kD0Entry, kReaderStart, kOtherCode)),
              ElementsAre("wrong result: IPnpCallback::OnD0Entry returned 0x80070014 instead of "
                          "0x8007001f for IWDFIoTargetStateManagement::Start"));
  EXPECT_THAT(Findings(OneFailure(kD0Entry, kReaderStart, S_OK)), SizeIs(1));
}

TEST(Results, WhatDoesNotMatterMustNotFailTheOperation) {
  constexpr std::string_view kInit = "IPnpCallbackSelfManagedIo::OnSelfManagedIoInit";
  constexpr std::string_view kIdle = "IWDFDevice3::AssignS0IdleSettingsEx";
  EXPECT_THAT(Findings(OneFailure(kInit, kIdle, S_OK)), IsEmpty());
  EXPECT_THAT(Findings(OneFailure(kInit, kIdle, kInjected)), SizeIs(1));
}

TEST(Results, WhereNothingIsPrescribedNothingIsFound) {
  const Record record = OneFailure(kD0Entry, "IWDFDevice::Unheard", kInjected);
  EXPECT_FALSE(IsAnyPrescribed(record));
  EXPECT_THAT(Findings(record), IsEmpty());
  EXPECT_TRUE(IsAnyPrescribed(OneFailure(kD0Entry, kReaderStart, kInjected)));
}

TEST(Results, AnOperationThatReturnsNothingIsNotJudged) {
  EXPECT_FALSE(IsAnyPrescribed(OneFailure("IDriverEntry::OnDeinitialize", "TraceMessage", S_OK)));
}

TEST(Results, TheFirstFailureThatMattersDecides) {
  const auto told = [](HRESULT result) {
    Story story;
    story.Operation("IPnpCallbackHardware::OnPrepareHardware", result, [&] {
      story.Fails("IWDFDevice::CreateIoQueue");
      story.Fails("IWDFNamedPropertyStore::GetNamedValue");
      story.Fails("IWDFUsbInterface::GetNumEndPoints");
    });
    return Findings(story.calls.Calls());
  };
  EXPECT_THAT(told(kInjected), IsEmpty());
  EXPECT_THAT(told(S_OK), ElementsAre(HasSubstr("GetNamedValue")));
}

TEST(Results, AFailureOfWhichNothingIsKnownLeavesTheRestOpen) {
  Story story;
  story.Operation(kD0Entry, S_OK, [&] {
    story.Fails("IWDFDevice::Unheard");
    story.Fails(kReaderStart);
  });
  EXPECT_FALSE(IsAnyPrescribed(story.calls.Calls()));
}

TEST(Results, ARetriedCallFailsTheOperationWhenItsRetriesAreUsedUp) {
  const auto told = [](int failures, HRESULT result) {
    Story story;
    story.Operation("InitializeEngine", result, [&] {
      for (int i = 0; i < failures; ++i) {
        story.Operation("SendCommand ATE1", kInjected, [&] { story.Fails("IWDFIoRequest::Send"); });
      }
    });
    return Findings(story.calls.Calls());
  };
  EXPECT_THAT(told(3, S_OK), IsEmpty());
  EXPECT_THAT(told(3, kInjected), SizeIs(1));
  EXPECT_THAT(told(4, kInjected), IsEmpty());
  EXPECT_THAT(told(4, S_OK), SizeIs(1));
}

TEST(Results, AFailureIsFollowedThroughTheFrameworkToTheOuterOperation) {
  const auto told = [](HRESULT inner, HRESULT outer) {
    Story story;
    story.Operation("IPnpCallbackHardware::OnPrepareHardware", outer, [&] {
      story.calls.Run("extension", "ISensorClassExtension::Initialize", [&] {
        story.Operation("ISensorDriver::OnGetSupportedSensorObjects", inner,
                        [&] { story.Fails("IPortableDeviceValuesCollection::Add"); });
        return inner;
      });
    });
    return Findings(story.calls.Calls());
  };
  EXPECT_THAT(told(kInjected, kInjected), IsEmpty());
  EXPECT_THAT(told(kInjected, S_OK), ElementsAre(HasSubstr("OnPrepareHardware")));
  EXPECT_THAT(told(S_OK, S_OK), ElementsAre(HasSubstr("OnGetSupportedSensorObjects")));
}

TEST(Results, AFailureThatTheFrameworkKeepsToItselfStrikesNobody) {
  Story story;
  story.Operation(kD0Entry, kOtherCode, [&] {
    story.calls.Run("target", kReaderStart, [&] {
      story.Fails("something of its own");
      return S_OK;
    });
  });
  EXPECT_THAT(Verdicts(story.calls.Calls()), IsEmpty());
}

TEST(Results, ACommandThatFailsForItsOwnReasonDecidesToo) {
  Story story;  // the stop comes while bring-up goes on without the modem's clock
  story.Operation("InitializeEngine", kOtherCode, [&] {
    story.Operation("SendCommand AT+CCLK=1", kInjected,
                    [&] { story.Fails("IWDFIoRequest::Send"); });
    story.Operation("SendCommand AT+XLCSSWITCH?", kOtherCode, [] {});
  });
  EXPECT_THAT(Findings(story.calls.Calls()), IsEmpty());
}

/// A name that the pattern stands for.
std::string Example(std::string_view pattern) {
  if (pattern == "*") return "OnD0Entry";
  std::string name(pattern);
  if (name.ends_with('*')) name.back() = 'X';
  return name;
}

std::string RowName(const PrescribedResult& row) {
  return std::string(row.operation) + ": " + std::string(row.call) + " after " +
         std::string(row.after);
}

TEST(ResultTable, EveryRowAcceptsItsOwnCodeAndRefusesEveryOther) {
  for (const PrescribedResult& row : PrescribedResults()) {
    const auto told = [&row](HRESULT result) {
      Story story;
      story.Operation("I::" + Example(row.operation), result, [&] {
        if (row.after != "*" && !row.after.empty()) story.Call(row.after);
        for (int i = 0; i <= row.retries; ++i) story.Fails(Example(row.call));
      });
      return Findings(story.calls.Calls());
    };
    const auto meant = [](HRESULT code) { return code == kSameCode ? kInjected : code; };
    EXPECT_THAT(told(meant(row.result)), IsEmpty()) << RowName(row);
    EXPECT_THAT(told(meant(row.other)), IsEmpty()) << RowName(row);
    EXPECT_THAT(told(kOtherCode), SizeIs(1)) << RowName(row);
    if (row.result != kNoMatter) {
      EXPECT_THAT(told(S_OK), SizeIs(1)) << RowName(row);
    }
  }
}

std::vector<std::string> AfterRemoval(HRESULT result) {
  Story story;
  story.Operation(kD0Entry, S_OK, [] {});
  story.Operation("IPnpCallback::OnSurpriseRemoval", S_OK, [] {});
  story.Operation("IPnpCallbackSelfManagedIo::OnSelfManagedIoSuspend", result, [] {});
  return JudgeAfterRemoval(story.calls.Calls());
}

TEST(Results, AfterARemovalACallbackSaysThatAShutdownIsInProgress) {
  EXPECT_THAT(AfterRemoval(kShutdown), IsEmpty());
  EXPECT_THAT(AfterRemoval(S_OK), ElementsAre(HasSubstr("OnSelfManagedIoSuspend")));
}

TEST(Results, ACallbackThatBeganBeforeTheRemovalWasOverIsFree) {
  Story story;
  story.Operation("IPnpCallback::OnSurpriseRemoval", S_OK,
                  [&] { story.Operation(kD0Entry, S_OK, [] {}); });
  EXPECT_THAT(JudgeAfterRemoval(story.calls.Calls()), IsEmpty());
}

TEST(Results, AFailureThatDoesNotMatterAfterTheRemovalLeavesTheShutdownsAnswer) {
  const auto told = [](HRESULT result) {
    Story story;
    story.Operation("IPnpCallback::OnSurpriseRemoval", S_OK, [] {});
    story.Operation("IPnpCallbackSelfManagedIo::OnSelfManagedIoSuspend", result,
                    [&] { story.Fails("IWDFIoQueue::StopSynchronously"); });
    return Findings(story.calls.Calls());
  };
  EXPECT_THAT(told(kShutdown), IsEmpty());
  EXPECT_THAT(told(S_OK), SizeIs(1));
}

TEST(Results, WhereACallFailedIsSaidWithoutTheCommandsText) {
  Story story;
  story.Operation("SendCommand AT+CIMI", S_OK, [&] { story.Fails("I::M"); });
  EXPECT_EQ(WhereItFailed(story.calls.Calls()), "I::M in SendCommand");
  Story alone;
  EXPECT_EQ(WhereItFailed(alone.calls.Calls()), "");
  alone.Fails("I::M");
  EXPECT_EQ(WhereItFailed(alone.calls.Calls()), "I::M in no operation");
}

}  // namespace
}  // namespace bench
