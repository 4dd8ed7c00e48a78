// Deliberately wrong drivers: each breaks one rule, and is caught by that rule's name alone.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <set>

#include "tests/unit/bench_rules/DriverLife.h"
#include "tests/unit/bench_rules/OddObject.h"

namespace bench {
namespace {

using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct WrongDriver {
  std::string_view rule;
  const char* what;  // what it does wrong
  void (*spoil)(DriverLife& life);
};

// What outlives its request, for a driver that keeps it too long.
IWDFIoRequest* kept = nullptr;
IWDFDriver* keptDriver = nullptr;

void KeepTheRequest(DriverLife& life) {
  life.script.onIoControl = [](IWDFIoRequest* request, ULONG) { kept = request; };
  life.script.onSuspend = {};
}

void MakeARequestWith(DriverLife& life, void (*spoil)(OddObject& object)) {
  life.AtFlush([&life, spoil](IWDFDevice*) {
    auto* const odd = new OddObject;
    spoil(*odd);
    const ComPtr<IUnknown> callback(odd->AsUnknown());
    ComPtr<IWDFIoRequest> request;
    life.device().CreateRequest(callback.Get(), nullptr, request.Put());
    request->DeleteWdfObject();
  });
}

// The reader's callback holds the stop up while a start comes.
void StartDuringAStop(DriverLife& life) {
  life.script.onBytes = [&life](const std::string&) { life.clock.SleepFor(10); };
  life.Reader()->Start();
  life.modem.Say("x");
  Thread stopper(life.clock, [&life] {
    life.clock.SleepFor(1);
    life.Reader()->Stop(WdfIoTargetCancelSentIo);
  });
  life.clock.SleepFor(5);
  life.Reader()->Start();
  stopper.Join();
  life.Reader()->Stop(WdfIoTargetCancelSentIo);
}

void ThrowOnAThread(const ModuleCalls& imports) {
  const HANDLE thread = imports.createThread([](void*) -> DWORD { throw 1; }, nullptr, 0);
  imports.waitOne(thread, INFINITE);
  imports.closeHandle(thread);
}

void WithTwoLocks(DriverLife& life, void (*use)(DriverLife& life, const ModuleCalls& imports)) {
  life.AtFlush([&life, use](IWDFDevice*) {
    const ModuleCalls& imports = life.Imports();
    imports.initSection(&life.first);
    imports.initSection(&life.second);
    use(life, imports);
    imports.deleteSection(&life.second);
    imports.deleteSection(&life.first);
  });
}

const WrongDriver kWrongDrivers[] = {
    {rule::kLeak, "keeps a reference to its device",
     [](DriverLife& life) { life.AtFlush([](IWDFDevice* device) { device->AddRef(); }); }},
    {rule::kOverRelease, "releases a request twice",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) {
         IWDFIoRequest* const request = life.MakeRequest().Detach();
         request->Release();
         request->Release();
       });
     }},
    {rule::kModuleInUse, "leaves one of its own objects alive",
     [](DriverLife& life) { life.AtFlush([&life](IWDFDevice*) { life.Imports().keepLoaded(); }); }},
    {rule::kDeletedObject, "sends a request that it has deleted",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) {
         const auto request = life.MakeRequest();
         request->DeleteWdfObject();
         request->Send(nullptr, WDF_REQUEST_SEND_OPTION_SYNCHRONOUS, 0);
       });
     }},
    {rule::kForeignObject, "passes an object of its own as a parent",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice* device) {
         ComPtr<IWDFIoRequest> request;
         device->CreateRequest(nullptr, reinterpret_cast<IWDFObject*>(&life), request.Put());
       });
     }},
    {rule::kFrameworkOwned, "deletes its device",
     [](DriverLife& life) { life.AtFlush([](IWDFDevice* device) { device->DeleteWdfObject(); }); }},
    {rule::kUnexpectedCall, "makes a symbolic link",
     [](DriverLife& life) {
       life.AtFlush([](IWDFDevice* device) { device->CreateSymbolicLink(nullptr); });
     }},
    {rule::kBadArgument, "makes memory of no bytes",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) {
         ComPtr<IWDFMemory> memory;
         life.host->driver().CreateWdfMemory(0, nullptr, nullptr, memory.Put());
       });
     }},
    {rule::kBadFormat, "sends a request without a format",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) {
         const auto out = life.Pipe(1, 1);
         life.MakeRequest()->Send(out.Get(), WDF_REQUEST_SEND_OPTION_SYNCHRONOUS, 0);
       });
     }},
    {rule::kCallFromDllMain, "calls its driver object when it is unloaded",
     [](DriverLife& life) {
       keptDriver = &life.host->driver();
       life.Imports().setHook(ModuleHook::kUnload,
                              [] { keptDriver->RetrieveVersionString(nullptr, nullptr); });
     }},
    {rule::kCompletedTwice, "completes a request twice",
     [](DriverLife& life) {
       life.script.onIoControl = [](IWDFIoRequest* request, ULONG) {
         request->Complete(S_OK);
         request->Complete(S_OK);
       };
     }},
    {rule::kTouchedAfterCompletion, "sets a request's information when it is completed",
     [](DriverLife& life) {
       life.script.onIoControl = [](IWDFIoRequest* request, ULONG) {
         request->Complete(S_OK);
         request->SetInformation(4);
       };
     }},
    {rule::kNeverCompleted, "forgets a request", [](DriverLife& life) { KeepTheRequest(life); }},
    {rule::kSlowAnswer, "answers two seconds after the suspension",
     [](DriverLife& life) {
       KeepTheRequest(life);
       life.script.onSuspend = [&life](IWDFDevice*) {
         life.clock.SleepFor(2000);
         if (kept != nullptr) std::exchange(kept, nullptr)->Complete(S_OK);
         return S_OK;
       };
     }},
    {rule::kPowerManagedQueue, "has the framework manage its queue's power",
     [](DriverLife& life) { life.powerManaged = TRUE; }},
    {rule::kQueryInterface, "succeeds with a null pointer",
     [](DriverLife& life) {
       MakeARequestWith(life, [](OddObject& object) { object.nullSuccess = true; });
     }},
    {rule::kNotReflexive, "has an interface that does not give itself",
     [](DriverLife& life) {
       MakeARequestWith(life, [](OddObject& object) {
         object.gives[OddObject::kFileCleanup][OddObject::kFileCleanup] = false;
       });
     }},
    {rule::kNotSymmetric, "has an interface that does not give the one that gives it",
     [](DriverLife& life) {
       MakeARequestWith(life, [](OddObject& object) {
         object.gives[OddObject::kFileCleanup][OddObject::kObjectCleanup] = false;
       });
     }},
    {rule::kNotTransitive, "has two interfaces that do not give each other",
     [](DriverLife& life) {
       MakeARequestWith(life, [](OddObject& object) {
         object.gives[OddObject::kFileCleanup][OddObject::kObjectCleanup] = false;
         object.gives[OddObject::kObjectCleanup][OddObject::kFileCleanup] = false;
       });
     }},
    {rule::kIdentity, "gives a second IUnknown",
     [](DriverLife& life) {
       MakeARequestWith(life, [](OddObject& object) { object.secondIdentity = true; });
     }},
    {rule::kReaderReentered, "stops the pipe in its reader's failure callback",
     [](DriverLife& life) {
       life.script.onReaderFailure = [&life](IWDFUsbTargetPipe*, HRESULT) {
         life.Reader()->Stop(WdfIoTargetCancelSentIo);
         return TRUE;
       };
     }},
    {rule::kReaderOverlap, "starts the pipe while another thread stops it",
     [](DriverLife& life) { life.AtFlush([&life](IWDFDevice*) { StartDuringAStop(life); }); }},
    {rule::kPendingReads, "asks for two reads at a time",
     [](DriverLife& life) { life.pendingReads = 2; }},
    {rule::kIdleBalance, "stops idling once more than it resumes",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) { life.device().StopIdle(FALSE); });
     }},
    {rule::kFailedWayDown, "fails its release",
     [](DriverLife& life) {
       life.script.onRelease = [release = life.script.onRelease](IWDFDevice* device) {
         release(device);
         return E_FAIL;
       };
     }},
    {rule::kEscapedException, "throws in its flush",
     [](DriverLife& life) { life.AtFlush([](IWDFDevice*) { throw 1; }); }},
    {rule::kExceptionFromExport, "throws in DllGetClassObject",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) {
         life.Imports().setHook(ModuleHook::kGetClassObject, [] { throw 1; });
         void* object = nullptr;
         life.module().GetClassObject(CLSID{}, iidOf<IClassFactory>, &object);
       });
     }},
    {rule::kExceptionFromThread, "throws on a thread of its own",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) { ThrowOnAThread(life.Imports()); });
     }},
    {rule::kThreadLeft, "leaves a thread running",
     [](DriverLife& life) { life.AtFlush([&life](IWDFDevice*) { life.LeaveAThread(); }); }},
    {rule::kHandleLeft, "leaves an event open",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) { life.Imports().createEvent(FALSE); });
     }},
    {rule::kMemoryLeft, "forgets a heap block",
     [](DriverLife& life) { life.AtFlush([&life](IWDFDevice*) { life.Imports().allocate(16); }); }},
    {rule::kSectionLeft, "forgets a critical section",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) { life.Imports().initSection(&life.first); });
     }},
    {rule::kComLeft, "leaves COM initialised",
     [](DriverLife& life) { life.AtFlush([&life](IWDFDevice*) { life.Imports().comInit(); }); }},
    {rule::kNotTaken, "deletes a critical section that it never made",
     [](DriverLife& life) {
       life.AtFlush([&life](IWDFDevice*) { life.Imports().deleteSection(&life.first); });
     }},
    {rule::kLockOrder, "takes two locks in either order",
     [](DriverLife& life) {
       WithTwoLocks(life, [](DriverLife& locks, const ModuleCalls& imports) {
         imports.enter(&locks.first);
         imports.enter(&locks.second);
         imports.leave(&locks.second);
         imports.leave(&locks.first);
         imports.enter(&locks.second);
         imports.enter(&locks.first);
         imports.leave(&locks.first);
         imports.leave(&locks.second);
       });
     }},
    {rule::kLockHeld, "asks its device for the driver under a lock",
     [](DriverLife& life) {
       WithTwoLocks(life, [](DriverLife& locks, const ModuleCalls& imports) {
         imports.enter(&locks.first);
         ComPtr<IWDFDriver> driver;
         locks.device().GetDriver(driver.Put());
         imports.leave(&locks.first);
       });
     }},
};

TEST(WellBehavedDriver, LivesWithoutAFinding) {
  DriverLife life;
  EXPECT_THAT(life.Run(), IsEmpty());
}

class WrongDriverTest : public testing::TestWithParam<WrongDriver> {};

TEST_P(WrongDriverTest, IsCaughtByThatRuleAlone) {
  DriverLife life;
  GetParam().spoil(life);
  const std::vector<std::string> findings = life.Run();
  EXPECT_THAT(findings, Not(IsEmpty()));
  EXPECT_THAT(findings, Each(StartsWith(std::string(GetParam().rule) + ": ")));
}

std::string CaseName(const testing::TestParamInfo<WrongDriver>& info) {
  std::string name(info.param.what);
  std::ranges::replace_if(
      name, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Every, WrongDriverTest, testing::ValuesIn(kWrongDrivers), CaseName);

TEST(Rules, EachHasAWrongDriver) {
  const std::set<std::string_view> rules(std::begin(rule::kAll), std::end(rule::kAll));
  std::set<std::string_view> proved;
  for (const WrongDriver& driver : kWrongDrivers) proved.insert(driver.rule);
  EXPECT_EQ(proved, rules);
  EXPECT_EQ(rules.size(), std::size(rule::kAll)) << "two rules of one name";
}

}  // namespace
}  // namespace bench
