// A second driver, unrelated to the sensor, on the same framework through the same loader.
#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <string>

#include "tests/echo/EchoDriver.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/console/Program.h"
#include "workbench/framework/Host.h"
#include "workbench/framework/UsbFunction.h"
#include "workbench/imports/DriverModule.h"
#include "workbench/rig/Verifier.h"

namespace bench {
namespace {

using testing::IsEmpty;

// A device that says back what is written to it.
class EchoLink final : public UsbLink {
 public:
  std::int32_t OnControlRequest(const ControlRequest&) override { return E_NOTIMPL; }
  std::int32_t OnHostWrite(std::string_view bytes) override {
    if (!silent) sink_(bytes);
    return S_OK;
  }
  void SetSink(ByteSink sink) override { sink_ = std::move(sink); }

  std::atomic<bool> silent{false};

 private:
  ByteSink sink_;
};

class EchoTest : public testing::Test {
 protected:
  void SetUp() override {
    WatchCalls(ledger_, redirector_, {});
    module_ = std::make_unique<DriverModule>(ProgramFolder() / ECHO_DRIVER, &redirector_);
    redirector_.Books().Mark();
    stelvane::ComPtr<IClassFactory> factory;
    HRESULT result = module_->GetClassObject(echo::kDriverClass, iidOf<IClassFactory>,
                                             reinterpret_cast<void**>(factory.Put()));
    ASSERT_EQ(result, S_OK);
    const auto driver = LoadDriver(*factory.Get(), {clock_, ledger_, calls_}, result);
    ASSERT_TRUE(driver);
    host_ = std::make_unique<Host>(clock_, ledger_, calls_, link_, driver.Get());
    ASSERT_EQ(host_->AddDevice(), S_OK);
    ASSERT_EQ(host_->Start(), S_OK);
  }
  void TearDown() override {
    EXPECT_EQ(host_->Stop(), S_OK);
    host_->RemoveDevice();
    host_->Unload();
    const HRESULT canUnload = module_->CanUnloadNow();
    module_.reset();
    EXPECT_THAT(FindingsOf(ledger_, redirector_, canUnload), IsEmpty());
    EXPECT_THAT(ledger_.Alive(), IsEmpty());
  }

  ClientRequest Send(std::string_view text, ULONG code = echo::kEcho) {
    return host_->SendIoControl(code, text, 16);
  }
  void ExpectEcho(std::string_view text) {
    const ClientRequest request = Send(text);
    ASSERT_TRUE(request.Wait(1000));
    EXPECT_EQ(request.Status(), S_OK);
    EXPECT_EQ(request.Output().substr(0, request.Information()), text);
  }
  void ExpectEnd(const ClientRequest& request, HRESULT status) {
    ASSERT_TRUE(request.Wait(1000));
    EXPECT_EQ(request.Status(), status);
  }

  VirtualClock clock_;
  Ledger ledger_;
  CallRecord calls_{clock_};
  Redirector redirector_{clock_};
  EchoLink link_;
  std::unique_ptr<DriverModule> module_;
  std::unique_ptr<Host> host_;
};

TEST_F(EchoTest, WhatAClientSendsComesBack) {
  ExpectEcho("one");
  ExpectEcho("two");
  EXPECT_EQ(calls_.Count("IWDFDevice2::StopIdle"), 2U);
  EXPECT_EQ(calls_.Count("IWDFDevice2::ResumeIdle"), 2U);
}

TEST_F(EchoTest, ItComesBackAfterASleep) {
  ExpectEcho("before");
  ASSERT_EQ(host_->PowerDown(), S_OK);
  ASSERT_EQ(host_->PowerUp(), S_OK);
  ExpectEcho("after");
}

TEST_F(EchoTest, ASecondRequestIsRefusedWhileOneIsOpen) {
  link_.silent = true;
  const ClientRequest open = Send("one");
  clock_.SleepFor(1);
  ExpectEnd(Send("two"), echo::kBusy);
  EXPECT_FALSE(open.IsCompleted());
}

TEST_F(EchoTest, AnOpenRequestIsAbortedByASleep) {
  link_.silent = true;
  const ClientRequest open = Send("one");
  clock_.SleepFor(1);
  ASSERT_EQ(host_->PowerDown(), S_OK);
  ExpectEnd(open, echo::kAborted);
}

TEST_F(EchoTest, AnOpenRequestIsAbortedByAReaderThatFails) {
  link_.silent = true;
  const ClientRequest open = Send("one");
  clock_.SleepFor(1);
  host_->usb().FailRead(E_ABORT);
  ExpectEnd(open, E_ABORT);
  link_.silent = false;
  ExpectEcho("two");
}

TEST_F(EchoTest, ADeviceThatIsPulledOutFailsItsRequests) {
  link_.silent = true;
  const ClientRequest open = Send("one");
  clock_.SleepFor(1);
  host_->SurpriseRemoval();
  ASSERT_TRUE(open.Wait(1000));
  EXPECT_TRUE(FAILED(open.Status()));
}

TEST_F(EchoTest, AnotherCodeIsNotSupported) {
  ExpectEnd(Send("one", 1), echo::kUnknownCode);
}

TEST_F(EchoTest, TheClassOfAnotherDriverIsNotServed) {
  void* object = this;
  EXPECT_EQ(module_->GetClassObject(CLSID{}, iidOf<IClassFactory>, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
}

}  // namespace
}  // namespace bench
