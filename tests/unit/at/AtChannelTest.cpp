// What the AT channel answers to the framework, and how a command line is put together.

#include "at/AtChannel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "at/CommandEngine.h"
#include "tests/unit/platform/FrameworkRecorders.h"

namespace stelvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Sink final : public LineSink {
 public:
  void DispatchLine(std::string_view line) noexcept override { lines.emplace_back(line); }
  bool IsStopping() noexcept override { return stopping; }

  bool stopping = false;
  std::vector<std::string> lines;
};

class AtChannelCallbacks : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(CreateObject(channel_), S_OK); }
  void TearDown() override { channel_->Detach(); }

  ComPtr<AtChannel> channel_;
  Sink sink_;
};

TEST_F(AtChannelCallbacks, FailedReadersAreToBeRestarted) {
  channel_->Attach(sink_);
  EXPECT_EQ(channel_->OnReaderFailure(nullptr, E_FAIL), TRUE);
}

TEST_F(AtChannelCallbacks, FailedReadersStayDownWhileTheCoreStops) {
  channel_->Attach(sink_);
  sink_.stopping = true;
  EXPECT_EQ(channel_->OnReaderFailure(nullptr, E_FAIL), FALSE);
}

TEST_F(AtChannelCallbacks, FailedReadersStayDownWhenNobodyListens) {
  EXPECT_EQ(channel_->OnReaderFailure(nullptr, E_FAIL), FALSE);
}

TEST_F(AtChannelCallbacks, ACompletionWithoutAMemoryIsNothing) {
  channel_->Attach(sink_);
  channel_->OnReaderCompletion(nullptr, nullptr, 10, nullptr);
  EXPECT_THAT(sink_.lines, IsEmpty());
}

/// A block of bytes as the reader hands it on.
class Block final : public platform_test::WDFMemoryRecorder<> {
 public:
  void* STDMETHODCALLTYPE GetDataBuffer(SIZE_T* size) override {
    *size = text.size();
    return text.data();
  }

  std::string text = "OK\r\nmore\r\n";
};

TEST_F(AtChannelCallbacks, OfABlockOnlyTheBytesTransferredAreRead) {
  Block block;
  channel_->Attach(sink_);
  channel_->OnReaderCompletion(nullptr, &block, 4, nullptr);
  EXPECT_THAT(sink_.lines, ElementsAre("OK"));
}

TEST_F(AtChannelCallbacks, BytesThatNobodyListensToAreNotKept) {
  Block block;
  channel_->OnReaderCompletion(nullptr, &block, 2, nullptr);
  channel_->Attach(sink_);
  channel_->OnReaderCompletion(nullptr, &block, block.text.size(), nullptr);
  EXPECT_THAT(sink_.lines, ElementsAre("OK", "more"));
}

TEST_F(AtChannelCallbacks, ReadingCannotStartWithoutPipes) {
  EXPECT_EQ(channel_->StartReading(true), static_cast<HRESULT>(0x80070002));
  EXPECT_EQ(channel_->StartReading(false), static_cast<HRESULT>(0x80070002));
}

/// A device of which only the idle control is there.
class IdleDevice final : public platform_test::WDFDevice3Recorder<> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE StopIdle(BOOL waitForD0) override {
    stops.push_back(waitForD0);
    if (duringStop) std::exchange(duringStop, nullptr)();
    return result;
  }
  void STDMETHODCALLTYPE ResumeIdle() override { ++resumes; }

  HRESULT result = S_OK;
  std::function<void()> duringStop;  // called once
  std::vector<BOOL> stops;
  int resumes = 0;
};

class AtChannelUse : public AtChannelCallbacks {
 protected:
  void SetUp() override {
    AtChannelCallbacks::SetUp();
    ASSERT_EQ(channel_->Bind(&device_), S_OK);
  }
  void TearDown() override {
    AtChannelCallbacks::TearDown();
    channel_.Reset();  // lets go of the device
  }

  IdleDevice device_;
};

TEST_F(AtChannelUse, TheFirstAsksTheDeviceToStopIdlingAndTheLastLetsItIdle) {
  EXPECT_EQ(channel_->AcquireEngineUse(true), S_OK);
  EXPECT_EQ(channel_->AcquireEngineUse(true), S_OK);
  EXPECT_THAT(device_.stops, ElementsAre(TRUE));
  channel_->ReleaseEngineUse();
  EXPECT_EQ(device_.resumes, 0);
  channel_->ReleaseEngineUse();
  EXPECT_EQ(device_.resumes, 1);
  channel_->ReleaseEngineUse();
  EXPECT_EQ(device_.resumes, 1) << "nothing is held any more";
}

TEST_F(AtChannelUse, TwoThatComeFirstAtOnceHoldTheDeviceOnce) {
  device_.duringStop = [this] { EXPECT_EQ(channel_->AcquireEngineUse(true), S_OK); };
  EXPECT_EQ(channel_->AcquireEngineUse(true), S_OK);
  EXPECT_EQ(device_.stops.size(), 2U);
  EXPECT_EQ(device_.resumes, 1) << "one of the two holds is given back at once";
  EXPECT_EQ(channel_->EngineUseCount(), 2);
  channel_->ReleaseEngineUse();
  channel_->ReleaseEngineUse();
  EXPECT_EQ(device_.resumes, 2);
}

TEST_F(AtChannelUse, AskedNotToWaitPassesThatOn) {
  EXPECT_EQ(channel_->AcquireEngineUse(false), S_OK);
  EXPECT_THAT(device_.stops, ElementsAre(FALSE));
  channel_->ReleaseEngineUse();
}

TEST_F(AtChannelUse, ThatTheDeviceRefusesGivesItsResultAndCountsAllTheSame) {
  device_.result = E_ABORT;
  EXPECT_EQ(channel_->AcquireEngineUse(true), E_ABORT);
  EXPECT_EQ(channel_->EngineUseCount(), 1);
  EXPECT_EQ(channel_->AcquireEngineUse(true), S_OK) << "no call was made";
  channel_->ReleaseEngineUse();
  channel_->ReleaseEngineUse();
  EXPECT_EQ(channel_->EngineUseCount(), 0);
  EXPECT_EQ(device_.resumes, 1);
}

TEST_F(AtChannelCallbacks, AReleaseAtCountZeroDoesNothing) {
  channel_->ReleaseEngineUse();
  EXPECT_EQ(channel_->EngineUseCount(), 0);
}

TEST(AtCommandLine, APrefixAloneIsTheLine) {
  EXPECT_EQ(BuildCommandLine("AT+CIMI", std::nullopt, std::nullopt), "AT+CIMI");
}

TEST(AtCommandLine, ANameFollowsAPlusSign) {
  EXPECT_EQ(BuildCommandLine("AT", "XLCSSWITCH", std::nullopt), "AT+XLCSSWITCH");
}

TEST(AtCommandLine, ArgumentsFollowAnEqualSign) {
  EXPECT_EQ(BuildCommandLine("AT", "XLCSLQOS", "50"), "AT+XLCSLQOS=50");
}

TEST(AtCommandLine, EmptyArgumentsLeaveTheEqualSign) {
  EXPECT_EQ(BuildCommandLine("AT", "XLCSSUPLVER", ""), "AT+XLCSSUPLVER=");
}

TEST(AtCommandLine, ArgumentsWithoutANameAreNotUsed) {
  EXPECT_EQ(BuildCommandLine("ATE1", std::nullopt, "50"), "ATE1");
}

}  // namespace
}  // namespace stelvane
