#include "workbench/imports/FaultPlan.h"

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>

#include "tests/unit/bench_imports/ModuleFixture.h"

namespace bench {
namespace {

class FaultPlanTest : public LoadedModuleTest {
 protected:
  FaultPlan& Plan() { return redirector_.Faults(); }
};

TEST_F(FaultPlanTest, OnlyTheNthCallFails) {
  Plan().FailImport("CreateEventW", 2);
  const HANDLE first = Dll().createEvent(FALSE);
  SetLastError(0);
  const HANDLE second = Dll().createEvent(FALSE);
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
  const HANDLE third = Dll().createEvent(FALSE);
  EXPECT_NE(first, nullptr);
  EXPECT_NE(third, nullptr);
  EXPECT_EQ(Plan().CallCount("CreateEventW"), 3u);
  EXPECT_EQ(Plan().Failed(), 1u);
  Dll().closeHandle(first);
  Dll().closeHandle(third);
  EXPECT_EQ(redirector_.Books().Report(), "");
}

TEST_F(FaultPlanTest, AllLaterCallsOfTheFunctionFailIfWanted) {
  Plan().FailImport("malloc", 2, Extent::kSameFunction);
  void* const first = Dll().allocate(8);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(Dll().allocate(8), nullptr);
  EXPECT_EQ(Dll().allocate(8), nullptr);
  const HANDLE event = Dll().createEvent(FALSE);
  EXPECT_NE(event, nullptr) << "another function goes on working";
  Dll().closeHandle(event);
  Dll().release(first);
}

TEST_F(FaultPlanTest, EverythingThatCanFailFailsAfterTheCallIfWanted) {
  Plan().FailImport("CreateEventW", 1, Extent::kEverything);
  void* const before = Dll().allocate(8);
  EXPECT_NE(before, nullptr);
  EXPECT_EQ(Dll().createEvent(FALSE), nullptr);
  EXPECT_EQ(Dll().allocate(8), nullptr);
  EXPECT_EQ(Dll().comInit(), RPC_E_CHANGED_MODE);
  Dll().release(before);  // what cannot fail does not
  EXPECT_EQ(redirector_.Books().Report(), "");
}

TEST_F(FaultPlanTest, TheObserverIsToldOfEachFailureAndLeavesTheLastErrorAlone) {
  std::vector<std::string> told;
  Plan().SetObserver([&told](std::string_view name, const Failure& failure) {
    told.push_back(std::string(name) + " " + std::to_string(failure.lastError));
    SetLastError(1);
  });
  Plan().FailImport("CreateEventW", 2);
  Dll().closeHandle(Dll().createEvent(FALSE));
  EXPECT_EQ(Dll().createEvent(FALSE), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
  EXPECT_EQ(told, std::vector<std::string>{"CreateEventW 8"});
}

TEST_F(FaultPlanTest, AnAllocationThatFailsThrowsInsideTheModule) {
  Plan().FailImport("malloc", 1);
  EXPECT_FALSE(Dll().newSucceeds());
  EXPECT_TRUE(Dll().newSucceeds());
}

TEST_F(FaultPlanTest, AThreadThatCannotBeCreatedDoesNotHoldTimeUp) {
  Plan().FailImport("CreateThread", 1);
  auto body = [] {};
  EXPECT_EQ(StartInModule(Dll(), body), nullptr);
  Dll().sleep(10);
  EXPECT_EQ(clock_.Now(), 10);
}

TEST_F(FaultPlanTest, AFailureCanBeOfTheTestsChoice) {
  Plan().FailImport("CoCreateInstance", 1,
                    Failure{static_cast<std::uint32_t>(REGDB_E_CLASSNOTREG), 0});
  void* object = nullptr;
  EXPECT_EQ(Dll().createInstance(kTestMessages, kTestMessages, &object), REGDB_E_CLASSNOTREG);
  Plan().FailImport("WaitForSingleObject", 1, Failure{WAIT_FAILED, ERROR_ACCESS_DENIED});
  EXPECT_EQ(Dll().waitOne(nullptr, INFINITE), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(FaultPlanTest, CountsStartAgainWithClear) {
  Plan().FailImport("malloc", 1, Extent::kEverything);
  EXPECT_EQ(Dll().allocate(8), nullptr);
  Plan().Clear();
  EXPECT_EQ(Plan().CallCount("malloc"), 0u);
  EXPECT_EQ(Plan().Failed(), 0u);
  void* const block = Dll().allocate(8);
  EXPECT_NE(block, nullptr);
  Dll().release(block);
}

TEST_F(FaultPlanTest, UnknownFunctionsAndThoseThatCannotFailAreRefused) {
  EXPECT_THROW(Plan().FailImport("CreateEventX", 1), std::invalid_argument);
  EXPECT_THROW(Plan().FailImport("CloseHandle", 1), std::invalid_argument);
  EXPECT_THROW(Plan().FailImport("free", 1, Failure{0, 0}), std::invalid_argument);
  EXPECT_THROW(Plan().CallCount("CreateEventX"), std::invalid_argument);
}

TEST_F(FaultPlanTest, ASweepEnumeratesEveryCallAndFailsEachOnce) {
  redirector_.Devices().Add(L"USB\\X", L"A device");
  const auto scenario = [&] {
    int failures = 0;
    const auto check = [&failures](bool good) {
      failures += good ? 0 : 1;
      return good;
    };
    const HANDLE event = Dll().createEvent(FALSE);
    if (check(event != nullptr)) Dll().closeHandle(event);
    CRITICAL_SECTION section = {};
    if (check(Dll().initSection(&section))) Dll().deleteSection(&section);
    auto body = [] {};
    const HANDLE thread = StartInModule(Dll(), body);
    if (check(thread != nullptr)) {
      Dll().waitOne(thread, INFINITE);
      Dll().closeHandle(thread);
    }
    if (check(SUCCEEDED(Dll().comInit()))) Dll().comUninit();
    wchar_t* text = nullptr;
    if (check(SUCCEEDED(Dll().classText(kTestProvider, &text)))) Dll().freeTask(text);
    ULONG64 registration = 0;
    if (check(Dll().registerProvider(&registration) == ERROR_SUCCESS)) {
      Dll().unregisterProvider(registration);
    }
    const SYSTEMTIME date = {.wYear = 2014,
                             .wMonth = 6,
                             .wDayOfWeek = 0,
                             .wDay = 1,
                             .wHour = 0,
                             .wMinute = 0,
                             .wSecond = 0,
                             .wMilliseconds = 0};
    FILETIME time = {};
    check(Dll().toFileTime(&date, &time));
    const HDEVINFO list = Dll().createList();
    if (check(list != INVALID_HANDLE_VALUE)) {
      SP_DEVINFO_DATA data = {};
      data.cbSize = sizeof data;
      wchar_t description[16] = {};
      if (check(Dll().openDevice(list, L"USB\\X", &data))) {
        check(Dll().readDescription(list, &data, description, sizeof description, nullptr));
      }
      Dll().destroyList(list);
    }
    check(Dll().newSucceeds());
    return failures;
  };
  // The module's language runtime keeps some blocks for a thread once it has thrown there.
  Plan().FailImport("malloc", 1);
  EXPECT_FALSE(Dll().newSucceeds());
  Plan().Clear();
  redirector_.Books().Mark();

  EXPECT_EQ(scenario(), 0);
  const std::vector<ImportCalls> recorded = redirector_.Calls();
  int swept = 0;
  for (const ImportCalls& import : recorded) {
    if (!import.canFail) continue;
    for (std::uint64_t nth = 1; nth <= import.calls; ++nth) {
      Plan().Clear();
      Plan().FailImport(import.name, nth);
      EXPECT_EQ(scenario(), 1) << import.name << " call " << nth;
      EXPECT_EQ(Plan().Failed(), 1u) << import.name << " call " << nth;
      EXPECT_EQ(redirector_.Books().Report(), "") << import.name << " call " << nth;
      ++swept;
    }
  }
  EXPECT_GE(swept, 11);
}

}  // namespace
}  // namespace bench
