// The audit: every kind of wrong use of an object is caught by its rule and the object's name.
#include <gmock/gmock.h>

#include "tests/unit/bench_framework/FakeDriver.h"

namespace bench {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

ComPtr<IWDFIoRequest> MakeRequest(Bench& bench) {
  ComPtr<IWDFIoRequest> request;
  bench.host->device()->CreateRequest(nullptr, nullptr, request.Put());
  return request;
}

TEST(Audit, ACleanRunLeavesNothingAliveAndBreaksNoRule) {
  Bench bench;
  ASSERT_EQ(bench.host->AddDevice(), S_OK);
  MakeRequest(bench)->DeleteWdfObject();
  bench.host->RemoveDevice();
  bench.host->Unload();
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
  EXPECT_THAT(bench.ledger.Alive(), IsEmpty());
}

TEST(Audit, AReferenceLeftAtUnloadIsALeakWithItsName) {
  Bench bench;
  bench.host->AddDevice();
  IWDFIoRequest* const leaked = MakeRequest(bench).Detach();
  bench.host->RemoveDevice();
  bench.host->Unload();
  EXPECT_THAT(bench.ledger.Violations(), ElementsAre("leaked reference: request 1: 1 left"));
  EXPECT_THAT(bench.ledger.Alive(), ElementsAre("request 1 (1 references)"));
  leaked->Release();
  EXPECT_THAT(bench.ledger.Alive(), IsEmpty());
}

TEST(Audit, AReleaseTooManyIsCaughtThoughTheTreeStillHoldsTheObject) {
  Bench bench;
  bench.host->AddDevice();
  IWDFIoRequest* const request = MakeRequest(bench).Detach();
  EXPECT_EQ(request->Release(), 1U);
  EXPECT_EQ(bench.ledger.Count(rule::kOverRelease), 0U);
  request->Release();
  EXPECT_THAT(bench.ledger.Violations(),
              ElementsAre("released too often: request 1: IUnknown::Release"));
}

TEST(Audit, ACallOnADeletedObjectIsCaughtWhileItIsStillReferenced) {
  Bench bench;
  bench.host->AddDevice();
  const ComPtr<IWDFIoRequest> request = MakeRequest(bench);
  EXPECT_EQ(request->DeleteWdfObject(), S_OK);
  EXPECT_EQ(request->Send(nullptr, WDF_REQUEST_SEND_OPTION_SYNCHRONOUS, 0), E_UNEXPECTED);
  EXPECT_THAT(bench.ledger.Violations(),
              ElementsAre("use of a deleted object: request 1: IWDFIoRequest::Send"));
}

TEST(Audit, ACallOnADestroyedObjectIsCaughtAndDoesNotCrash) {
  Bench bench;
  bench.host->AddDevice();
  ComPtr<IWDFIoRequest> request = MakeRequest(bench);
  IWDFIoRequest* const stale = request.Get();
  request->DeleteWdfObject();
  request.Reset();
  EXPECT_EQ(stale->AddRef(), 0U);
  stale->DeleteWdfObject();
  EXPECT_EQ(bench.ledger.Count(rule::kDeletedObject), 2U);
}

TEST(Audit, MemoryDiesWithTheRequestItBelongsTo) {
  Bench bench;
  bench.host->AddDevice();
  const ComPtr<IWDFIoRequest> request = MakeRequest(bench);
  ComPtr<IWDFDriver> driver;
  bench.host->device()->GetDriver(driver.Put());
  ComPtr<IWDFMemory> memory;
  ASSERT_EQ(driver->CreateWdfMemory(4, nullptr, request.Get(), memory.Put()), S_OK);
  EXPECT_EQ(memory->GetSize(), 4U);
  request->DeleteWdfObject();
  EXPECT_EQ(memory->GetSize(), 0U);
  EXPECT_THAT(bench.ledger.Violations(),
              ElementsAre("use of a deleted object: memory 1: IWDFMemory::GetSize"));
}

TEST(Audit, MemoryOfNoBytesIsRefused) {
  Bench bench;
  bench.host->AddDevice();
  ComPtr<IWDFMemory> memory;
  EXPECT_EQ(bench.host->driver().CreateWdfMemory(0, nullptr, nullptr, memory.Put()), E_INVALIDARG);
  EXPECT_EQ(bench.ledger.Count(rule::kBadArgument), 1U);
}

TEST(Audit, ACopyBeyondTheMemorysEndIsRefused) {
  Bench bench;
  bench.host->AddDevice();
  ComPtr<IWDFMemory> memory;
  bench.host->driver().CreateWdfMemory(4, nullptr, nullptr, memory.Put());
  char bytes[] = "abcd";
  EXPECT_EQ(memory->CopyFromBuffer(0, bytes, 4), S_OK);
  EXPECT_EQ(memory->CopyFromBuffer(1, bytes, 4), kInsufficientBuffer);
  char back[4] = {};
  EXPECT_EQ(memory->CopyToBuffer(2, back, 2), S_OK);
  EXPECT_EQ(std::string(back, 2), "cd");
  EXPECT_EQ(bench.ledger.Count(rule::kBadArgument), 1U);
}

TEST(Audit, ObjectsOfTheFrameworkCannotBeDeletedByTheDriver) {
  Bench bench;
  bench.host->AddDevice();
  EXPECT_TRUE(FAILED(bench.host->device()->DeleteWdfObject()));
  EXPECT_THAT(bench.ledger.Violations(),
              ElementsAre("delete of an object of the framework: device 1: device 1"));
}

TEST(Audit, AMethodThatNoDriverNeedsIsUnexpected) {
  Bench bench;
  bench.host->AddDevice();
  EXPECT_EQ(bench.host->device()->CreateSymbolicLink(nullptr), E_NOTIMPL);
  EXPECT_THAT(bench.ledger.Violations(),
              ElementsAre(HasSubstr("unexpected call: device 1: IWDFDevice::CreateSymbolicLink")));
}

TEST(Audit, AnotherDriversObjectAsAnArgumentIsRefused) {
  Bench bench;
  bench.host->AddDevice();
  Bench other;
  other.host->AddDevice();
  ComPtr<IWDFIoRequest> request;
  EXPECT_EQ(bench.host->device()->CreateRequest(nullptr, other.host->device(), request.Put()),
            E_INVALIDARG);
  EXPECT_EQ(bench.ledger.Count(rule::kForeignObject), 1U);
}

class NullAnswer final : public CountedObject<IPnpCallback> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE OnD0Entry(IWDFDevice*, WDF_POWER_DEVICE_STATE) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnD0Exit(IWDFDevice*, WDF_POWER_DEVICE_STATE) override { return S_OK; }
  void STDMETHODCALLTYPE OnSurpriseRemoval(IWDFDevice*) override {}
  HRESULT STDMETHODCALLTYPE OnQueryRemove(IWDFDevice*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnQueryStop(IWDFDevice*) override { return S_OK; }
};

TEST(Audit, ACallbackObjectThatSucceedsWithoutAPointerIsCaught) {
  Bench bench;
  bench.script.onDeviceAdd = [](IWDFDriver* driver, IWDFDeviceInitialize* init) {
    const ComPtr<IPnpCallback> callbacks(new NullAnswer);
    ComPtr<IWDFDevice> device;
    return driver->CreateDevice(init, callbacks.Get(), device.Put());
  };
  EXPECT_EQ(bench.host->AddDevice(), S_OK);
  EXPECT_GT(bench.ledger.Count(rule::kQueryInterface), 0U);
}

class CleanupCallback final : public CountedObject<IObjectCleanup> {
 public:
  explicit CleanupCallback(int& calls) : calls_(calls) {}
  void STDMETHODCALLTYPE OnCleanup(IWDFObject*) override { ++calls_; }

 private:
  int& calls_;
};

TEST(Audit, AContextIsKeptAndItsCleanupRunsOnceAtTheObjectsEnd) {
  Bench bench;
  bench.host->AddDevice();
  const ComPtr<IWDFIoRequest> request = MakeRequest(bench);
  int cleanups = 0;
  int context = 7;
  request->AssignContext(ComPtr<IObjectCleanup>(new CleanupCallback(cleanups)).Get(), &context);
  void* kept = nullptr;
  EXPECT_EQ(request->RetrieveContext(&kept), S_OK);
  EXPECT_EQ(kept, &context);
  EXPECT_EQ(cleanups, 0);
  request->DeleteWdfObject();
  EXPECT_EQ(cleanups, 1);
}

}  // namespace
}  // namespace bench
