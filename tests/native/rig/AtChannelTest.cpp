// The AT channel and the command engine on a device whose sensor nobody has started.
#include "at/AtChannel.h"

#include "at/CommandEngine.h"
#include "tests/native/rig/ListenedTest.h"
#include "tests/unit/platform/Recorder.h"
#include "workbench/framework/FxMemory.h"

namespace bench {
namespace {

using stelvane::ComPtr;

constexpr const char* kStopIdle = "IWDFDevice2::StopIdle";
constexpr const char* kResumeIdle = "IWDFDevice2::ResumeIdle";
constexpr HRESULT kStopping = static_cast<HRESULT>(0xA0000002);

/// A core that stops: no command is sent.
struct StoppingListener final : stelvane::ModemListener {
  bool IsStopping() override { return true; }
  bool IsLocationRequestOutstanding() override { return false; }
  void OnLocationRequestStarting() override {}
  void OnLocationRequestAccepted(bool) override {}
  void OnLocationRequestRefused() override {}
  void OnLocationRequestStopped() override {}
  void OnReportParsed(stelvane::FixRecord) override {}
  void OnFixComplete(std::string) override {}
  void OnLocationError() override {}
  void OnEngineSwitchRead(bool) override {}
};

class AtChannelTest : public ListenedTest {
 protected:
  void Bind() {
    Add();
    ASSERT_EQ(stelvane::CreateObject(channel_), S_OK);
    ASSERT_EQ(channel_->Bind(device()), S_OK);
  }
  void TearDown() override {
    channel_.Reset();
    ListenedTest::TearDown();
  }

  ComPtr<stelvane::AtChannel> channel_;
};

TEST_P(AtChannelTest, TwoFirstUsesAtTheSameTimeHoldTheDeviceOnce) {
  Bind();
  ASSERT_EQ(rig().host().Start(), S_OK);
  clock_.SleepFor(5000);  // the driver's own commands are over
  const std::size_t held = rig().calls().Count(kStopIdle);
  const std::size_t released = rig().calls().Count(kResumeIdle);
  bool second = false;
  rig().calls().SetHook([&](const CallEntry& entry) {
    // The second user comes while the first one waits for the device.
    if (entry.call != kStopIdle || std::exchange(second, true)) return;
    EXPECT_EQ(channel_->AcquireEngineUse(true), S_OK);
  });
  EXPECT_EQ(channel_->AcquireEngineUse(true), S_OK);
  rig().calls().SetHook(nullptr);
  EXPECT_EQ(channel_->EngineUseCount(), 2);
  EXPECT_EQ(rig().calls().Count(kStopIdle) - held, 2U);
  EXPECT_EQ(rig().calls().Count(kResumeIdle) - released, 1U);
  channel_->ReleaseEngineUse();
  channel_->ReleaseEngineUse();
  EXPECT_EQ(rig().calls().Count(kResumeIdle) - released, 2U);
}

TEST_P(AtChannelTest, ACommandThatNeedsNoPowerHoldsNone) {
  Bind();
  StoppingListener listener;
  stelvane::CommandEngine engine(*channel_.Get(), listener);
  ASSERT_EQ(engine.Initialize(), S_OK);
  EXPECT_EQ(engine.SendCommand("AT", std::nullopt, std::nullopt, false), kStopping);
  EXPECT_EQ(rig().calls().Count(kStopIdle), 0U);
  channel_->ClosePort();
}

TEST_P(AtChannelTest, NothingIsWrittenToAClosedPort) {
  Bind();
  stelvane::Event answered;
  ASSERT_EQ(answered.Create(stelvane::Event::Reset::kManual, true), S_OK);
  EXPECT_EQ(channel_->WriteLine("AT\r\n", answered), E_FAIL);
  EXPECT_TRUE(answered.IsSet());
}

TEST_P(AtChannelTest, BytesThatNobodyListensToAreNotKept) {
  Bind();
  struct Lines final : stelvane::LineSink {
    void DispatchLine(std::string_view line) noexcept override { last = line; }
    bool IsStopping() noexcept override { return false; }
    std::string last;
  } lines;
  const auto receive = [this](std::string_view bytes) {
    auto& memory =
        Make<FxMemory>(rig().host().world(), nullptr, "bytes", DeletedBy::kDriver, bytes);
    channel_->OnReaderCompletion(nullptr, &memory, bytes.size(), nullptr);
    memory.DeleteWdfObject();
  };
  receive("lost");
  channel_->Attach(lines);
  receive("heard\r\n");
  EXPECT_EQ(lines.last, "heard");
  channel_->Detach();
}

/// Answers a number of interfaces, whichever they are.
struct Readers : platform_test::UnknownRecorder<> {
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = answers > 0 ? this : nullptr;
    return answers-- > 0 ? S_OK : E_NOINTERFACE;
  }
  int answers = 0;
};

TEST_P(AtChannelTest, ThePortStaysClosedForReadersThatLackACallback) {
  Add();
  stelvane::ModemPort port;
  ASSERT_EQ(port.Initialize(), S_OK);
  for (int answers = 0; answers < 2; ++answers) {
    Readers readers;
    readers.answers = answers;
    EXPECT_EQ(port.Open(device(), &readers), E_NOINTERFACE);
    EXPECT_FALSE(port.InPipe());
    EXPECT_FALSE(port.OutPipe());
  }
}

LISTENED(AtChannelTest);

}  // namespace
}  // namespace bench
