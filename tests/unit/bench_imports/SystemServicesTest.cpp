// The registry, the devices and the trace session that the module sees.
#include <string>
#include <vector>

#include "tests/unit/bench_imports/ModuleFixture.h"

namespace bench {
namespace {

constexpr const wchar_t* kKey = L"SOFTWARE\\Maker\\Thing";

class RegistryTest : public LoadedModuleTest {
 protected:
  LSTATUS Read(const wchar_t* value, DWORD flags, DWORD size = sizeof(DWORD)) {
    size_ = size;
    type_ = 0;
    data_ = 0;
    return Dll().regGet(HKEY_LOCAL_MACHINE, kKey, value, flags, &type_, &data_, &size_);
  }
  DWORD type_ = 0;
  DWORD data_ = 0;
  DWORD size_ = 0;
};

TEST_F(RegistryTest, AnAbsentValueIsNotFoundAndTheReadIsRecorded) {
  EXPECT_EQ(Read(L"Switch", RRF_RT_ANY), ERROR_FILE_NOT_FOUND);
  const std::vector<RegistryRead> reads = redirector_.Registry().Reads();
  ASSERT_EQ(reads.size(), 1u);
  EXPECT_EQ(reads[0].root, HKEY_LOCAL_MACHINE);
  EXPECT_EQ(reads[0].key, kKey);
  EXPECT_EQ(reads[0].value, L"Switch");
  EXPECT_EQ(reads[0].result, ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, ANumberIsReadWhateverTheCaseOfItsName) {
  redirector_.Registry().SetDword(HKEY_LOCAL_MACHINE, L"software\\MAKER\\thing", L"switch", 7);
  EXPECT_EQ(Read(L"Switch", RRF_RT_REG_DWORD), ERROR_SUCCESS);
  EXPECT_EQ(data_, 7u);
  EXPECT_EQ(type_, DWORD{REG_DWORD});
  redirector_.Registry().Remove(HKEY_LOCAL_MACHINE, kKey, L"Switch");
  EXPECT_EQ(Read(L"Switch", RRF_RT_REG_DWORD), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, ATypeThatIsNotAdmittedIsNamedAndNotRead) {
  redirector_.Registry().SetText(HKEY_LOCAL_MACHINE, kKey, L"Switch", L"1");
  EXPECT_EQ(Read(L"Switch", RRF_RT_REG_DWORD), ERROR_UNSUPPORTED_TYPE);
  EXPECT_EQ(type_, DWORD{REG_SZ});
  EXPECT_EQ(data_, 0u);
}

TEST_F(RegistryTest, AValueLargerThanTheBufferGivesItsSize) {
  redirector_.Registry().Set(HKEY_LOCAL_MACHINE, kKey, L"Switch", REG_QWORD,
                             std::vector<BYTE>(8, 1));
  EXPECT_EQ(Read(L"Switch", RRF_RT_ANY), ERROR_MORE_DATA);
  EXPECT_EQ(size_, 8u);
  EXPECT_EQ(data_, 0u);
}

TEST_F(RegistryTest, ATextIsReadWithItsTerminator) {
  redirector_.Registry().SetText(HKEY_LOCAL_MACHINE, kKey, L"Switch", L"1");
  EXPECT_EQ(Read(L"Switch", RRF_RT_REG_SZ), ERROR_SUCCESS);
  EXPECT_EQ(size_, 4u);
  EXPECT_EQ(data_, DWORD{L'1'});
}

class DevicesTest : public LoadedModuleTest {
 protected:
  void SetUp() override {
    Load();
    redirector_.Devices().Add(L"USB\\VID_1\\A", L"A modem");
    redirector_.Devices().Add(L"USB\\VID_1\\B", std::nullopt);
    list_ = Dll().createList();
    data_.cbSize = sizeof data_;
  }
  void TearDown() override { Dll().destroyList(list_); }

  HDEVINFO list_ = nullptr;
  SP_DEVINFO_DATA data_ = {};
  wchar_t text_[16] = {};
  DWORD required_ = 0;
};

TEST_F(DevicesTest, TheDescriptionOfADeviceIsRead) {
  ASSERT_TRUE(Dll().openDevice(list_, L"usb\\vid_1\\a", &data_));
  EXPECT_TRUE(Dll().readDescription(list_, &data_, text_, sizeof text_, &required_));
  EXPECT_STREQ(text_, L"A modem");
  EXPECT_EQ(required_, 16u);
}

TEST_F(DevicesTest, AShortBufferGivesTheSizeNeeded) {
  ASSERT_TRUE(Dll().openDevice(list_, L"USB\\VID_1\\A", &data_));
  EXPECT_FALSE(Dll().readDescription(list_, &data_, text_, 15, &required_));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(required_, 16u);
}

TEST_F(DevicesTest, ADeviceWithoutDescriptionOpensButCannotBeRead) {
  ASSERT_TRUE(Dll().openDevice(list_, L"USB\\VID_1\\B", &data_));
  EXPECT_FALSE(Dll().readDescription(list_, &data_, text_, sizeof text_, &required_));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_FOUND});
}

TEST_F(DevicesTest, AnUnknownDeviceDoesNotOpenAndTheListStaysOpen) {
  EXPECT_FALSE(Dll().openDevice(list_, L"USB\\VID_1\\C", &data_));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_SUCH_DEVINST));
  EXPECT_EQ(redirector_.Books().Alive(Resource::kDeviceInfoList), 1u);
}

TEST_F(DevicesTest, ARecordOfTheWrongSizeIsRefused) {
  data_.cbSize = 31;
  EXPECT_FALSE(Dll().openDevice(list_, L"USB\\VID_1\\A", &data_));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_USER_BUFFER});
}

TEST_F(DevicesTest, EachCallFailsWithAChosenError) {
  FaultPlan& faults = redirector_.Faults();
  faults.Clear();
  faults.FailImport("SetupDiOpenDeviceInfoW", 1, Failure{FALSE, ERROR_ACCESS_DENIED});
  faults.FailImport("SetupDiGetDevicePropertyW", 1, Failure{FALSE, ERROR_INVALID_DATA});
  EXPECT_FALSE(Dll().openDevice(list_, L"USB\\VID_1\\A", &data_));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
  ASSERT_TRUE(Dll().openDevice(list_, L"USB\\VID_1\\A", &data_));
  EXPECT_FALSE(Dll().readDescription(list_, &data_, text_, sizeof text_, &required_));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_DATA});
}

using TracingTest = ModuleTest;

TEST_F(TracingTest, ASessionTellsTheModuleItsLevelAndFlags) {
  Load();
  EXPECT_EQ(redirector_.Tracing().Enable(4, 0x5), DWORD{ERROR_SUCCESS});
  EXPECT_NE(Dll().traceControl().logger, 0u);
  EXPECT_EQ(Dll().traceControl().level, 4u);
  EXPECT_EQ(Dll().traceControl().flags, 0x5u);
  EXPECT_EQ(redirector_.Tracing().Disable(), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(Dll().traceControl().logger, 0u);
}

TEST_F(TracingTest, ASessionThatListensAlreadyIsToldDuringTheLoad) {
  redirector_.Tracing().Enable(5, 0x1);
  Load();
  EXPECT_EQ(Dll().traceControl().level, 5u);
}

TEST_F(TracingTest, OtherRequestCodesReachTheModuleAndItsAnswerComesBack) {
  Load();
  redirector_.Tracing().Enable(3, 0x1);
  EXPECT_EQ(redirector_.Tracing().Control(10), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(Dll().traceControl().level, 3u);
}

TEST_F(TracingTest, AMessageIsKeptWithItsArgumentsBytes) {
  Load();
  redirector_.Tracing().Enable(5, 0x1);
  clock_.SleepFor(1'234);
  EXPECT_EQ(Dll().emit(17, -2, "ab"), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(Dll().emitBare(0xffff), DWORD{ERROR_SUCCESS});
  const std::vector<TraceRecord> messages = redirector_.Tracing().TakeMessages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0].time, 1'234);
  EXPECT_EQ(messages[0].thread, GetCurrentThreadId());
  EXPECT_TRUE(IsEqualGUID(messages[0].message, kTestMessages));
  EXPECT_EQ(messages[0].number, 17);
  EXPECT_EQ(messages[0].arguments, (std::vector<BYTE>{0xfe, 0xff, 0xff, 0xff, 'a', 'b', 0}));
  EXPECT_EQ(messages[1].number, 0xffff);
  EXPECT_TRUE(messages[1].arguments.empty());
  EXPECT_TRUE(redirector_.Tracing().TakeMessages().empty());
}

TEST_F(TracingTest, AListenerGetsTheMessagesInsteadOfTheStore) {
  Load();
  redirector_.Tracing().Enable(5, 0x1);
  std::vector<USHORT> numbers;
  redirector_.Tracing().SetListener(
      [&](const TraceRecord& record) { numbers.push_back(record.number); });
  Dll().emitBare(10);
  Dll().emitBare(11);
  EXPECT_EQ(numbers, (std::vector<USHORT>{10, 11}));
  EXPECT_TRUE(redirector_.Tracing().TakeMessages().empty());
}

TEST_F(TracingTest, AMessageWithoutASessionIsRefusedButCounted) {
  Load();
  EXPECT_EQ(Dll().emitBare(10), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(redirector_.Faults().CallCount("TraceMessage"), 1u);
  EXPECT_TRUE(redirector_.Tracing().TakeMessages().empty());
}

TEST_F(TracingTest, AMessageLargerThanAnEventIsRefused) {
  Load();
  redirector_.Tracing().Enable(5, 0x1);
  EXPECT_EQ(Dll().emit(10, 0, std::string(70'000, 'x').c_str()), DWORD{ERROR_MORE_DATA});
  EXPECT_TRUE(redirector_.Tracing().TakeMessages().empty());
}

TEST_F(TracingTest, ARegistrationThatFailsLeavesTheModuleUnregistered) {
  redirector_.Faults().FailImport("RegisterTraceGuidsW", 1);
  module_ = std::make_unique<DriverModule>(TestModulePath(), &redirector_);
  EXPECT_TRUE(redirector_.Tracing().Providers().empty());
  module_.reset();
  EXPECT_EQ(redirector_.Faults().CallCount("UnregisterTraceGuids"), 0u);
}

}  // namespace
}  // namespace bench
