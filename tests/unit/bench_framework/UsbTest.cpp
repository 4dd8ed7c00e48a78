// USB: the planned function, control transfers, writes, and the checks of formats and targets.
#include <gmock/gmock.h>

#include <cstring>

#include "tests/unit/bench_framework/FakeDriver.h"

namespace bench {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ULONG kSync = WDF_REQUEST_SEND_OPTION_SYNCHRONOUS;

struct UsbBench : Bench {
  explicit UsbBench(DevicePlan plan = {}) : Bench(std::move(plan)) {
    host->AddDevice();
    OpenUsb();
    host->device()->CreateRequest(nullptr, usb.Get(), request.Put());
  }
  ComPtr<IWDFMemory> Memory(std::string text) {
    ComPtr<IWDFMemory> memory;
    host->driver().CreateWdfMemory(text.size(), nullptr, request.Get(), memory.Put());
    memory->CopyFromBuffer(0, text.data(), text.size());
    return memory;
  }
  HRESULT CompletionStatus() {
    ComPtr<IWDFRequestCompletionParams> params;
    request->GetCompletionParams(params.Put());
    return params ? params->GetCompletionStatus() : E_POINTER;
  }
  HRESULT FormatControl() {
    WINUSB_SETUP_PACKET setup{};
    setup.RequestType = 0x21;
    setup.Request = 0x22;
    setup.Value = 3;
    return usb->FormatRequestForControlTransfer(request.Get(), &setup, nullptr, nullptr);
  }
  ComPtr<IWDFIoRequest> request;
};

TEST(Usb, TheDefaultFunctionHasAnInterruptInterfaceAndABulkPair) {
  UsbBench bench;
  EXPECT_EQ(bench.usb->GetNumInterfaces(), 2);
  ComPtr<IWDFUsbInterface> first;
  bench.usb->RetrieveUsbInterface(0, first.Put());
  EXPECT_EQ(first->GetNumEndPoints(), 1);
  EXPECT_EQ(bench.Pipe(0, 0)->GetType(), UsbdPipeTypeInterrupt);
  const auto in = bench.Pipe(1, 0);
  const auto out = bench.Pipe(1, 1);
  EXPECT_TRUE(in->IsInEndPoint());
  EXPECT_FALSE(in->IsOutEndPoint());
  EXPECT_EQ(in->GetType(), UsbdPipeTypeBulk);
  EXPECT_TRUE(out->IsOutEndPoint());
  EXPECT_EQ(out->GetType(), UsbdPipeTypeBulk);
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Usb, ADescriptorMayClaimAnotherNumberOfEndpoints) {
  DevicePlan plan;
  plan.usb.interfaces = {{.endpoints = {{0x82, EndpointType::kBulk}}, .claimedEndpoints = 2}};
  UsbBench bench(plan);
  ComPtr<IWDFUsbInterface> lying;
  bench.usb->RetrieveUsbInterface(0, lying.Put());
  USB_INTERFACE_DESCRIPTOR descriptor{};
  lying->GetInterfaceDescriptor(&descriptor);
  EXPECT_EQ(descriptor.bNumEndpoints, 2);
  EXPECT_EQ(descriptor.bLength, 9);
  EXPECT_EQ(lying->GetNumEndPoints(), 1);
}

TEST(Usb, AnInterfaceBeyondTheLastIsRefused) {
  UsbBench bench;
  ComPtr<IWDFUsbInterface> none;
  EXPECT_EQ(bench.usb->RetrieveUsbInterface(2, none.Put()), E_INVALIDARG);
  EXPECT_FALSE(none);
}

TEST(Usb, AControlTransferReachesTheModemWithItsFields) {
  UsbBench bench;
  EXPECT_EQ(bench.FormatControl(), S_OK);
  EXPECT_EQ(bench.request->Send(bench.usb.Get(), kSync, 0), S_OK);
  EXPECT_EQ(bench.CompletionStatus(), S_OK);
  ASSERT_EQ(bench.modem.controls.size(), 1U);
  EXPECT_EQ(bench.modem.controls[0].requestType, 0x21);
  EXPECT_EQ(bench.modem.controls[0].request, 0x22);
  EXPECT_EQ(bench.modem.controls[0].value, 3);
}

TEST(Usb, ASentRequestThatTheModemRefusesWasSentAndCompletesWithTheRefusal) {
  UsbBench bench;
  bench.modem.answer = E_ABORT;
  bench.FormatControl();
  EXPECT_EQ(bench.request->Send(bench.usb.Get(), kSync, 0), S_OK);
  EXPECT_EQ(bench.CompletionStatus(), E_ABORT);
}

TEST(Usb, AWriteSendsThePartOfTheMemoryThatTheOffsetSelects) {
  UsbBench bench;
  const auto out = bench.Pipe(1, 1);
  const auto memory = bench.Memory("AT+CIMI\r\n");
  ComPtr<IWDFFile> file;
  out->GetTargetFile(file.Put());
  EXPECT_EQ(
      out->FormatRequestForWrite(bench.request.Get(), file.Get(), memory.Get(), nullptr, nullptr),
      S_OK);
  EXPECT_EQ(bench.request->Send(out.Get(), kSync, 0), S_OK);
  WDFMEMORY_OFFSET part{.BufferOffset = 3, .BufferLength = 4};
  out->FormatRequestForWrite(bench.request.Get(), nullptr, memory.Get(), &part, nullptr);
  bench.request->Send(out.Get(), kSync, 0);
  EXPECT_THAT(bench.modem.writes, ElementsAre("AT+CIMI\r\n", "CIMI"));
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Usb, AnOffsetBeyondTheMemoryIsABadFormat) {
  UsbBench bench;
  const auto out = bench.Pipe(1, 1);
  const auto memory = bench.Memory("ABCD");
  WDFMEMORY_OFFSET part{.BufferOffset = 3, .BufferLength = 2};
  EXPECT_EQ(out->FormatRequestForWrite(bench.request.Get(), nullptr, memory.Get(), &part, nullptr),
            E_INVALIDARG);
  EXPECT_EQ(bench.ledger.Count(rule::kBadFormat), 1U);
}

TEST(Usb, SendWithoutAFormatIsRefused) {
  UsbBench bench;
  EXPECT_TRUE(FAILED(bench.request->Send(bench.usb.Get(), kSync, 0)));
  EXPECT_EQ(bench.ledger.Count(rule::kBadFormat), 1U);
}

TEST(Usb, AFormatServesOneSendOnly) {
  UsbBench bench;
  bench.FormatControl();
  EXPECT_EQ(bench.request->Send(bench.usb.Get(), kSync, 0), S_OK);
  EXPECT_TRUE(FAILED(bench.request->Send(bench.usb.Get(), kSync, 0)));
  EXPECT_EQ(bench.modem.controls.size(), 1U);
}

TEST(Usb, SendToAnotherTargetThanFormattedForIsRefused) {
  UsbBench bench;
  bench.FormatControl();
  EXPECT_EQ(bench.request->Send(bench.Pipe(1, 1).Get(), kSync, 0), E_INVALIDARG);
  EXPECT_EQ(bench.ledger.Count(rule::kBadFormat), 1U);
  EXPECT_THAT(bench.modem.writes, IsEmpty());
}

TEST(Usb, AWriteToAPipeThatReadsIsABadFormat) {
  UsbBench bench;
  const auto memory = bench.Memory("x");
  EXPECT_TRUE(FAILED(bench.Pipe(1, 0)->FormatRequestForWrite(bench.request.Get(), nullptr,
                                                             memory.Get(), nullptr, nullptr)));
  EXPECT_EQ(bench.ledger.Count(rule::kBadFormat), 1U);
}

TEST(Usb, AWriteWithTheFileOfAnotherTargetIsABadFormat) {
  UsbBench bench;
  const auto memory = bench.Memory("x");
  ComPtr<IWDFFile> file;
  bench.usb->GetTargetFile(file.Put());
  EXPECT_TRUE(FAILED(bench.Pipe(1, 1)->FormatRequestForWrite(bench.request.Get(), file.Get(),
                                                             memory.Get(), nullptr, nullptr)));
  EXPECT_EQ(bench.ledger.Count(rule::kBadFormat), 1U);
}

TEST(Usb, AnAsynchronousSendIsUnexpected) {
  UsbBench bench;
  bench.FormatControl();
  EXPECT_EQ(bench.request->Send(bench.usb.Get(), 0, 0), E_NOTIMPL);
  EXPECT_EQ(bench.ledger.Count(rule::kUnexpectedCall), 1U);
}

TEST(Usb, CompletionParamsOfARequestNeverSentAreNull) {
  UsbBench bench;
  ComPtr<IWDFRequestCompletionParams> params;
  bench.request->GetCompletionParams(params.Put());
  EXPECT_FALSE(params);
  EXPECT_EQ(bench.ledger.Count(rule::kBadFormat), 1U);
}

TEST(Usb, CompletionParamsOutliveTheirRequest) {
  UsbBench bench;
  bench.FormatControl();
  bench.request->Send(bench.usb.Get(), kSync, 0);
  ComPtr<IWDFRequestCompletionParams> params;
  bench.request->GetCompletionParams(params.Put());
  bench.request->DeleteWdfObject();
  EXPECT_EQ(params->GetCompletionStatus(), S_OK);
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Usb, CompletingADriversOwnRequestIsUnexpected) {
  UsbBench bench;
  bench.request->Complete(S_OK);
  EXPECT_EQ(bench.ledger.Count(rule::kUnexpectedCall), 1U);
}

TEST(Usb, TheTargetLivesOnInTheTreeWhenTheDriverReleasesIt) {
  UsbBench bench;
  IWDFUsbTargetDevice* const borrowed = bench.usb.Get();
  bench.usb.Reset();
  EXPECT_EQ(borrowed->GetNumInterfaces(), 2);
  EXPECT_EQ(borrowed->DeleteWdfObject(), S_OK);
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
  borrowed->GetNumInterfaces();
  EXPECT_EQ(bench.ledger.Count(rule::kDeletedObject), 1U);
}

TEST(Usb, ASecondTargetIsDeniedUntilTheFirstIsDeleted) {
  UsbBench bench;
  const ComPtr<IWDFDevice> device(bench.host->device());
  ComPtr<IWDFUsbTargetFactory> factory;
  device.As(factory);
  ComPtr<IWDFUsbTargetDevice> second;
  EXPECT_EQ(factory->CreateUsbTargetDevice(second.Put()), E_ACCESSDENIED);
  bench.CloseUsb();
  EXPECT_EQ(factory->CreateUsbTargetDevice(second.Put()), S_OK);
}

TEST(Usb, DeletingTheTargetDeletesPipesAndRequestsBelowIt) {
  UsbBench bench;
  const auto out = bench.Pipe(1, 1);
  bench.CloseUsb();
  out->IsOutEndPoint();
  bench.request->Send(nullptr, kSync, 0);
  EXPECT_EQ(bench.ledger.Count(rule::kDeletedObject), 2U);
}

TEST(Usb, AStoppedOutPipeRefusesToSend) {
  UsbBench bench;
  const auto out = bench.Pipe(1, 1);
  const auto memory = bench.Memory("x");
  StateOf(out)->Stop(WdfIoTargetCancelSentIo);
  out->FormatRequestForWrite(bench.request.Get(), nullptr, memory.Get(), nullptr, nullptr);
  EXPECT_EQ(bench.request->Send(out.Get(), kSync, 0), kInvalidDeviceState);
  EXPECT_THAT(bench.modem.writes, IsEmpty());
}

TEST(Usb, AnUnpluggedDeviceCompletesTransfersWithAFailure) {
  UsbBench bench;
  bench.host->SurpriseRemoval();
  bench.FormatControl();
  EXPECT_EQ(bench.request->Send(bench.usb.Get(), kSync, 0), S_OK);
  EXPECT_EQ(bench.CompletionStatus(), kNoSuchDevice);
  EXPECT_THAT(bench.modem.controls, IsEmpty());
}

}  // namespace
}  // namespace bench
