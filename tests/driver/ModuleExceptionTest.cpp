// Memory that has run out is an error like any other, on every thread and for as long as it lasts.

#include <atomic>
#include <future>
#include <thread>
#include <vector>

#include "platform/WdfCallbacks.h"
#include "tests/driver/RigTest.h"

namespace bench {
namespace {

constexpr int kManyThreads = 200;  // more than the DLL has places for at one time

class ModuleExceptionTest : public RigTest {
 protected:
  /// An object that cannot be made: inside the DLL an exception is thrown and caught.
  HRESULT MakeDriverObject() {
    void* object = this;
    const HRESULT result = rig().factory().CreateInstance(nullptr, iidOf<IDriverEntry>, &object);
    EXPECT_EQ(object, nullptr);
    return result;
  }
  void FailForGood(std::string_view function) {
    faults().FailImport(function, faults().CallCount(function) + 1, Extent::kSameFunction);
  }
  HRESULT MakeDriverObjectOnAnotherThread() {
    HRESULT result = S_OK;
    std::thread([&] { result = MakeDriverObject(); }).join();
    return result;
  }
};

TEST_F(ModuleExceptionTest, NoMemoryForGoodIsSaidEachTime) {
  Load();
  FailForGood("malloc");
  FailForGood("calloc");
  for (int i = 0; i < 100; ++i) ASSERT_EQ(MakeDriverObject(), E_OUTOFMEMORY);
  faults().Clear();
}

TEST_F(ModuleExceptionTest, ThreadsThatComeAndGoLeaveNothing) {
  Load();
  FailForGood("malloc");
  FailForGood("calloc");
  for (int i = 0; i < kManyThreads; ++i) {
    ASSERT_EQ(MakeDriverObjectOnAnotherThread(), E_OUTOFMEMORY) << i;
  }
  faults().Clear();
}

TEST_F(ModuleExceptionTest, ThreadsAtTheSameTimeDoNotMeet) {
  Load();
  FailForGood("malloc");
  std::atomic<int> refused{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 32; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 50; ++k) {
        if (MakeDriverObject() == E_OUTOFMEMORY) ++refused;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(refused, 32 * 50);
  faults().Clear();
}

TEST_F(ModuleExceptionTest, ThreadsBeyondThePlacesGetTheirsFromTheHeap) {
  Load();
  FailForGood("malloc");
  std::atomic<int> refused{0};
  std::atomic<int> threw{0};
  std::promise<void> last;
  const std::shared_future<void> allThrew = last.get_future().share();
  std::vector<std::thread> threads;
  for (int i = 0; i < kManyThreads; ++i) {
    threads.emplace_back([&] {
      if (MakeDriverObject() == E_OUTOFMEMORY) ++refused;
      if (++threw == kManyThreads) last.set_value();
      allThrew.wait();  // nobody's place is free before all have one
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(refused, kManyThreads);
  faults().Clear();
}

TEST_F(ModuleExceptionTest, AThreadThatThrewMayOutliveTheModule) {
  Load();
  std::promise<HRESULT> threw;
  std::promise<void> unloaded;
  std::thread thread([&] {
    FailForGood("malloc");
    const HRESULT result = MakeDriverObject();
    faults().Clear();
    threw.set_value(result);
    unloaded.get_future().wait();
  });
  EXPECT_EQ(threw.get_future().get(), E_OUTOFMEMORY);
  rig().Shutdown();
  unloaded.set_value();
  thread.join();  // its end calls nothing of the module's any more
}

TEST_F(ModuleExceptionTest, WindowsMayRefuseToKeepAThreadsValue) {
  Load();
  FailForGood("malloc");
  FailForGood("FlsAlloc");
  EXPECT_EQ(MakeDriverObject(), E_OUTOFMEMORY);
  faults().Clear();
  FailForGood("malloc");
  EXPECT_EQ(MakeDriverObject(), E_OUTOFMEMORY);  // the same place, though there is a slot now
  FailForGood("FlsSetValue");
  EXPECT_EQ(MakeDriverObjectOnAnotherThread(), E_OUTOFMEMORY);
  EXPECT_EQ(MakeDriverObjectOnAnotherThread(), E_OUTOFMEMORY);
  EXPECT_EQ(faults().Failed(), 5U);  // malloc three times, FlsSetValue twice
  faults().Clear();
}

}  // namespace
}  // namespace bench
