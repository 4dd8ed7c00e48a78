// The AT port: which pipes are taken, how the command port is woken, and what each failure does.

#include "tests/driver/ModemTest.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {
namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr auto kNotFound = static_cast<HRESULT>(0x80070002);
constexpr auto kFault = static_cast<HRESULT>(0x8007AAAA);

constexpr EndpointPlan kBulkIn{0x82, EndpointType::kBulk};
constexpr EndpointPlan kBulkOut{0x02, EndpointType::kBulk};
constexpr EndpointPlan kInterruptIn{0x81, EndpointType::kInterrupt};

InterfacePlan Interface(std::vector<EndpointPlan> endpoints) {
  return {.endpoints = std::move(endpoints), .claimedEndpoints = {}};
}

class ModemPort : public ModemTest {
 protected:
  void BuildWith(std::vector<InterfacePlan> interfaces) {
    RigOptions options;
    options.device.usb.interfaces = std::move(interfaces);
    Build(std::move(options));
  }
  std::size_t Retrieved() { return Calls("IWDFUsbTargetDevice::RetrieveUsbInterface"); }
  std::size_t Readers() { return Calls("IWDFUsbTargetPipe2::ConfigureContinuousReader"); }
  /// The objects that a call was made on.
  std::vector<std::string> CalledOn(std::string_view call) {
    std::vector<std::string> objects;
    for (const CallEntry& entry : rig_->calls().Calls()) {
      if (entry.call == call) objects.push_back(entry.object);
    }
    return objects;
  }
};

TEST_F(ModemPort, AControlRequestOfExactlyTheseEightBytesWakesTheCommandPort) {
  Build();
  Start();
  const auto requests = modem_->ControlRequests();
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(requests[0].requestType, 0x21);
  EXPECT_EQ(requests[0].request, 0x22);
  EXPECT_EQ(requests[0].value, 0x0003);
  EXPECT_EQ(requests[0].index, 0x0000);
  EXPECT_EQ(requests[0].length, 0x0000);
}

TEST_F(ModemPort, OpeningCallsTheFrameworkInItsFixedOrder) {
  constexpr const char* kOrder[] = {
      "IUnknown::QueryInterface(IWDFUsbTargetFactory)",
      "IWDFUsbTargetFactory::CreateUsbTargetDevice",
      "IWDFUsbTargetDevice::GetNumInterfaces",
      "IWDFDevice::CreateRequest",
      "IWDFUsbTargetDevice::FormatRequestForControlTransfer",
      "IWDFIoRequest::Send",
      "IWDFIoRequest::GetCompletionParams",
      "IWDFRequestCompletionParams::GetCompletionStatus",
      "IWDFObject::DeleteWdfObject",
      "IWDFUsbTargetDevice::RetrieveUsbInterface",
      "IWDFUsbInterface::GetInterfaceDescriptor",
      "IWDFUsbInterface::GetNumEndPoints",
      "IWDFUsbInterface::RetrieveUsbPipeObject",
      "IWDFUsbTargetPipe::IsInEndPoint",
      "IWDFUsbTargetPipe::GetType",
      "IWDFUsbInterface::RetrieveUsbPipeObject",
      "IWDFUsbTargetPipe::IsInEndPoint",
      "IWDFUsbTargetPipe::IsOutEndPoint",
      "IWDFUsbTargetPipe::GetType",
      "IUnknown::QueryInterface(IWDFUsbTargetPipe2)",
      "IWDFUsbTargetPipe2::ConfigureContinuousReader",
  };
  BuildWith({Interface({kBulkIn, kBulkOut})});
  ASSERT_EQ(rig_->host().AddDevice(), S_OK);
  ASSERT_EQ(rig_->host().PrepareHardware(), S_OK);
  std::vector<std::string> made;
  for (const CallEntry& entry : rig_->calls().Calls()) {
    if (made.empty() && entry.call != kOrder[0]) continue;
    made.push_back(entry.call);
    if (entry.call == std::end(kOrder)[-1]) break;
  }
  EXPECT_THAT(made, ElementsAreArray(kOrder));
}

TEST_F(ModemPort, NoInterfaceWithTwoEndpointsFailsTheStartWithFileNotFound) {
  BuildWith({Interface({kInterruptIn}), Interface({kBulkIn, kBulkOut, kInterruptIn}), Interface({}),
             Interface({kBulkOut})});
  EXPECT_EQ(StartAndLose(), kNotFound);
  EXPECT_EQ(Retrieved(), 4U);
  EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(ModemPort, NoInterfaceAtAllFailsTheStartWithFileNotFound) {
  BuildWith({});
  EXPECT_EQ(StartAndLose(), kNotFound);
}

TEST_F(ModemPort, OneDirectionOnlyFailsTheStartWithFileNotFound) {
  BuildWith({Interface({kBulkOut, {0x03, EndpointType::kBulk}})});
  EXPECT_EQ(StartAndLose(), kNotFound);
}

TEST_F(ModemPort, IsochronousAndControlEndpointsAreIgnored) {
  BuildWith({Interface({{0x84, EndpointType::kIsochronous}, {0x04, EndpointType::kIsochronous}}),
             Interface({{0x85, EndpointType::kControl}, {0x05, EndpointType::kControl}})});
  EXPECT_EQ(StartAndLose(), kNotFound);
}

TEST_F(ModemPort, AnInterruptInAndABulkOutKeepTheBulkPipeAndTheSearchGoesOn) {
  BuildWith({Interface({kInterruptIn, kBulkOut}),
             Interface({kBulkIn, {0x03, EndpointType::kInterrupt}})});
  Start();
  EXPECT_EQ(Commands(), BringUp()) << "written to the first interface, read from the second";
  EXPECT_EQ(Retrieved(), 2U);
}

TEST_F(ModemPort, OfTwoQualifyingInterfacesTheLowestIsUsedAndTheOtherNotLookedAt) {
  BuildWith({Interface({kInterruptIn}), Interface({kBulkIn, kBulkOut}),
             Interface({{0x84, EndpointType::kBulk}, {0x04, EndpointType::kBulk}})});
  Start();
  EXPECT_EQ(Commands(), BringUp());
  EXPECT_EQ(Retrieved(), 2U);
  EXPECT_EQ(Readers(), 1U);
}

TEST_F(ModemPort, OutBeforeInIsFoundAsWell) {
  BuildWith({Interface({kBulkOut, kBulkIn})});
  Start();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(ModemPort, ADescriptorThatClaimsTwoOfThreeEndpointsIsBelieved) {
  BuildWith({{.endpoints = {kInterruptIn, kBulkIn, kBulkOut}, .claimedEndpoints = 2}});
  Start();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(ModemPort, ADescriptorThatClaimsThreeOfTwoEndpointsIsBelieved) {
  BuildWith({{.endpoints = {kBulkIn, kBulkOut}, .claimedEndpoints = 3}});
  EXPECT_EQ(StartAndLose(), kNotFound);
}

TEST_F(ModemPort, AFurtherPipeOfADirectionThatIsHeldIsNotUsed) {
  BuildWith({Interface({kBulkIn, {0x83, EndpointType::kBulk}}),
             Interface({kBulkOut, {0x84, EndpointType::kBulk}})});
  Start();
  EXPECT_EQ(Commands(), BringUp());
  // The first pipe is the first of the first interface.
  EXPECT_THAT(CalledOn("IWDFUsbTargetPipe2::ConfigureContinuousReader"),
              testing::ElementsAre(CalledOn("IWDFUsbTargetPipe::IsInEndPoint").front()));
}

TEST_F(ModemPort, TheReaderStartsWithTheWorkingStateAndNotBefore) {
  Build();
  ASSERT_EQ(rig_->host().AddDevice(), S_OK);
  ASSERT_EQ(rig_->host().PrepareHardware(), S_OK);
  EXPECT_EQ(Readers(), 1U);
  EXPECT_EQ(Calls("IWDFIoTargetStateManagement::Start"), 0U);
  ASSERT_EQ(rig_->host().D0Entry(WdfPowerDeviceD3Final), S_OK);
  EXPECT_EQ(Calls("IWDFIoTargetStateManagement::Start"), 1U);
}

TEST_F(ModemPort, AReadTakesAtMost4096Bytes) {
  StartQuietly();
  const char* const completion =
      "IUsbTargetPipeContinuousReaderCallbackReadComplete::OnReaderCompletion";
  const std::size_t before = Calls(completion);
  modem_->Say(std::string(2 * 4096 + 1, '\n'));
  Settle();
  EXPECT_EQ(Calls(completion) - before, 3U);
  EXPECT_EQ(rig_->host().usb().WaitingBytes(), 0U);
}

TEST_F(ModemPort, AStalledControlRequestFailsTheStartWithItsStatus) {
  Build();
  modem_->RefuseControl(1, kStalled);
  EXPECT_EQ(StartAndLose(), kStalled);
  EXPECT_EQ(Retrieved(), 0U) << "the interfaces are not looked at";
  EXPECT_THAT(Commands(), IsEmpty());
}

/// One call of the framework that fails the start with its own result.
class ModemPortCall : public ModemTest, public testing::WithParamInterface<const char*> {};

TEST_P(ModemPortCall, FailingFailsTheStartWithThatResultAndTheDeviceReleasesCleanly) {
  Build();
  rig_->calls().FailCall(GetParam(), 1, kFault);
  EXPECT_EQ(StartAndLose(), kFault);
  EXPECT_THAT(Commands(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Calls, ModemPortCall,
    testing::Values("IUnknown::QueryInterface(IWDFUsbTargetFactory)",
                    "IWDFUsbTargetFactory::CreateUsbTargetDevice", "IWDFDevice::CreateRequest",
                    "IWDFUsbTargetDevice::FormatRequestForControlTransfer", "IWDFIoRequest::Send",
                    "IWDFRequestCompletionParams::GetCompletionStatus",
                    "IWDFUsbTargetDevice::RetrieveUsbInterface",
                    "IWDFUsbInterface::RetrieveUsbPipeObject",
                    "IUnknown::QueryInterface(IWDFUsbTargetPipe2)",
                    "IWDFUsbTargetPipe2::ConfigureContinuousReader"),
    [](const auto& test) {
      std::string name = test.param;
      name = name.substr(name.find("::") + 2);
      std::erase_if(name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
      return name;
    });

}  // namespace
}  // namespace bench
