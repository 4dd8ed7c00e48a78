#include "workbench/imports/Audit.h"

#include <algorithm>
#include <atomic>

#include "tests/unit/bench_imports/ModuleFixture.h"

namespace bench {
namespace {

class AuditTest : public LoadedModuleTest {
 protected:
  /// Exactly one leak, of this kind and thing, taken by this thread from inside the module.
  void ExpectOneLeak(Resource kind, std::uintptr_t value) {
    const std::vector<Leak> leaks = redirector_.Books().Leaks();
    ASSERT_EQ(leaks.size(), 1u) << redirector_.Books().Report();
    EXPECT_EQ(leaks[0].kind, kind);
    EXPECT_EQ(leaks[0].value, value);
    EXPECT_EQ(leaks[0].thread, GetCurrentThreadId());
    EXPECT_GT(leaks[0].site, 0u);
    EXPECT_LT(leaks[0].site, ImageSize());
    EXPECT_NE(redirector_.Books().Report().find(NameOf(kind)), std::string::npos);
  }
  void ExpectBalance() { EXPECT_EQ(redirector_.Books().Report(), ""); }

  std::uintptr_t ImageSize() const {
    const auto* const base = reinterpret_cast<const BYTE*>(module_->Base());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    return reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew)
        ->OptionalHeader.SizeOfImage;
  }
  static std::uintptr_t Key(const void* thing) { return reinterpret_cast<std::uintptr_t>(thing); }
};

TEST_F(AuditTest, AFreshlyLoadedModuleHasNoLeak) {
  ExpectBalance();
}

TEST_F(AuditTest, AnEventThatIsNotClosedIsFound) {
  const HANDLE event = Dll().createEvent(FALSE);
  ExpectOneLeak(Resource::kEvent, Key(event));
  Dll().closeHandle(event);
  ExpectBalance();
}

TEST_F(AuditTest, AThreadHandleThatIsNotClosedIsFound) {
  auto body = [] {};
  const HANDLE thread = StartInModule(Dll(), body);
  Dll().waitOne(thread, INFINITE);
  ExpectOneLeak(Resource::kThread, Key(thread));
  Dll().closeHandle(thread);
  ExpectBalance();
}

TEST_F(AuditTest, AThreadThatStillRunsIsFoundEvenWithItsHandleClosed) {
  const HANDLE stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  auto body = [&] { Dll().waitOne(stop, INFINITE); };
  Dll().closeHandle(StartInModule(Dll(), body));
  const std::vector<Leak> leaks = redirector_.Books().Leaks();
  ASSERT_EQ(leaks.size(), 1u) << redirector_.Books().Report();
  EXPECT_EQ(leaks[0].kind, Resource::kRunningThread);
  const HANDLE thread = OpenThread(SYNCHRONIZE, FALSE, static_cast<DWORD>(leaks[0].value));
  SetEvent(stop);
  redirector_.Time().Signalled();
  clock_.WaitUntil(kForever,
                   [&] { return redirector_.Books().Alive(Resource::kRunningThread) == 0; });
  WaitForSingleObject(thread, INFINITE);
  ExpectBalance();
  CloseHandle(thread);
  CloseHandle(stop);
}

TEST_F(AuditTest, ACriticalSectionThatIsNotDeletedIsFound) {
  CRITICAL_SECTION section = {};
  Dll().initSection(&section);
  ExpectOneLeak(Resource::kCriticalSection, Key(&section));
  Dll().deleteSection(&section);
  ExpectBalance();
}

TEST_F(AuditTest, ComThatIsInitialisedOnceMoreThanEndedIsFound) {
  EXPECT_EQ(Dll().comInit(), S_OK);
  EXPECT_EQ(Dll().comInit(), S_FALSE);
  Dll().comUninit();
  ExpectOneLeak(Resource::kComInitialization, GetCurrentThreadId());
  Dll().comUninit();
  ExpectBalance();
}

TEST_F(AuditTest, AClassTextThatIsNotFreedIsFound) {
  wchar_t* text = nullptr;
  ASSERT_EQ(Dll().classText(kTestProvider, &text), S_OK);
  ExpectOneLeak(Resource::kTaskMemory, Key(text));
  Dll().freeTask(text);
  ExpectBalance();
}

TEST_F(AuditTest, AHeapBlockThatIsNotFreedIsFoundWithItsSize) {
  void* const block = Dll().allocate(48);
  ExpectOneLeak(Resource::kHeapBlock, Key(block));
  EXPECT_EQ(redirector_.Books().Leaks().at(0).quantity, 48u);
  void* const moved = Dll().reallocate(block, 1'000'000);
  ExpectOneLeak(Resource::kHeapBlock, Key(moved));
  Dll().release(moved);
  EXPECT_TRUE(Dll().newSucceeds());
  ExpectBalance();
}

TEST_F(AuditTest, ADeviceListThatIsLeftOpenIsFound) {
  const HDEVINFO list = Dll().createList();
  ExpectOneLeak(Resource::kDeviceInfoList, Key(list));
  Dll().destroyList(list);
  ExpectBalance();
}

TEST_F(AuditTest, ATraceRegistrationThatStaysIsFound) {
  ULONG64 registration = 0;
  ASSERT_EQ(Dll().registerProvider(&registration), DWORD{ERROR_SUCCESS});
  ExpectOneLeak(Resource::kTraceRegistration, registration);
  Dll().unregisterProvider(registration);
  ExpectBalance();
}

TEST_F(AuditTest, LeaksComeInTheOrderOfCreation) {
  void* const block = Dll().allocate(1);
  const HANDLE event = Dll().createEvent(FALSE);
  const std::vector<Leak> leaks = redirector_.Books().Leaks();
  ASSERT_EQ(leaks.size(), 2u);
  EXPECT_EQ(leaks[0].kind, Resource::kHeapBlock);
  EXPECT_EQ(leaks[1].kind, Resource::kEvent);
  Dll().closeHandle(event);
  Dll().release(block);
}

TEST_F(AuditTest, WhatWasAliveAtTheMarkIsNoLeakOfThePeriod) {
  const HANDLE event = Dll().createEvent(FALSE);
  redirector_.Books().Mark();
  ExpectBalance();
  EXPECT_EQ(redirector_.Books().Alive(Resource::kEvent), 1u);
  Dll().closeHandle(event);
  EXPECT_EQ(redirector_.Books().Alive(Resource::kEvent), 0u);
}

TEST_F(AuditTest, ThingsGivenBackThatWereNotTakenAreMisuses) {
  CRITICAL_SECTION section = {};
  Dll().initSection(&section);
  Dll().initSection(&section);
  Dll().deleteSection(&section);
  Dll().deleteSection(&section);
  Dll().comUninit();
  EXPECT_FALSE(Dll().closeHandle(nullptr));
  EXPECT_FALSE(Dll().destroyList(nullptr));
  EXPECT_NE(Dll().unregisterProvider(1), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(redirector_.Books().Misuses().size(), 6u) << redirector_.Books().Report();
}

}  // namespace
}  // namespace bench
