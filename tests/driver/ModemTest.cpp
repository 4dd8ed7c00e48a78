#include "tests/driver/ModemTest.h"

#include <cstring>

#include "tests/driver/TraceAll.h"
#include "workbench/framework/FxDevice.h"

namespace bench {

namespace {

constexpr ULONG kReadRadio = 0x89056000;
constexpr ULONG kWriteRadio = 0x8905A008;
constexpr GUID kDriverSet = {
    0xaf4d65c7, 0xc7a2, 0x4e3b, {0xb4, 0x49, 0xbb, 0xb1, 0x12, 0x3b, 0x65, 0xbf}};

}  // namespace

PROPERTYKEY DriverKey(DWORD id) {
  return {kDriverSet, id};
}

PROPERTYKEY CommonKey(DWORD id) {
  return {keys::kSensorCommonSet, id};
}

void ModemTest::TearDown() {
  if (!rig_) return;
  clients_.clear();
  rig_->Shutdown();
  EXPECT_THAT(rig_->Findings(), testing::IsEmpty());
}

void ModemTest::Build(RigOptions options) {
  auto script = std::make_unique<ModemScript>(clock_);
  modem_ = script.get();
  options.link = std::move(script);
  if (!options.startUtc) {
    options.startUtc = SYSTEMTIME{.wYear = 2014,
                                  .wMonth = 7,
                                  .wDayOfWeek = 6,
                                  .wDay = 5,
                                  .wHour = 9,
                                  .wMinute = 3,
                                  .wSecond = 7,
                                  .wMilliseconds = 0};
  }
  TraceIfAsked(options);
  rig_ = std::make_unique<Rig>(clock_, std::move(options));
}

void ModemTest::Start() {
  ASSERT_EQ(rig_->Start(), S_OK);
  Settle();
}

HRESULT ModemTest::StartAndLose() {
  const HRESULT result = rig_->Start();
  if (FAILED(result)) rig_->host().RemoveDevice();
  return result;
}

void ModemTest::StartQuietly() {
  Build();
  Start();
  ASSERT_EQ(Commands(), BringUp());
  modem_->Forget();
}

HRESULT ModemTest::SwitchRadio(ULONG state) {
  const std::string input(reinterpret_cast<const char*>(&state), sizeof state);
  const ClientRequest request = rig_->host().SendIoControl(kWriteRadio, input, 0);
  EXPECT_TRUE(request.Wait());
  return request.Status();
}

ULONG ModemTest::RadioState() {
  const ClientRequest request = rig_->host().SendIoControl(kReadRadio, {}, sizeof(ULONG));
  EXPECT_TRUE(request.Wait());
  EXPECT_EQ(request.Status(), S_OK);
  ULONG state = 0;
  const std::string output = request.Output();
  if (output.size() == sizeof state) std::memcpy(&state, output.data(), sizeof state);
  return state;
}

ClientSession& ModemTest::Connect() {
  clients_.push_back(rig_->NewClient());
  EXPECT_EQ(clients_.back()->Connect(), S_OK);
  Settle();
  return *clients_.back();
}

ClientSession& ModemTest::SubscribeEvery(ULONG milliseconds) {
  ClientSession& client = Connect();
  EXPECT_TRUE(client.SetReportInterval(milliseconds).Accepted());
  EXPECT_EQ(client.Subscribe(), S_OK);
  Settle();
  return client;
}

ULONG ModemTest::Number(ClientSession& client, const PROPERTYKEY& key) {
  Variant value;
  EXPECT_EQ(client.GetProperty(key, &value), S_OK);
  EXPECT_EQ(value.Type(), VT_UI4);
  return value.Get().ulVal;
}

int ModemTest::IdleHolds() {
  return rig_->host().device()->IdleHolds();
}

std::vector<std::string> ModemTest::BringUp() {
  return {"ATE1", "AT+XLCSSWITCH?", "AT+XLCSLQOS=50", "AT+CCLK=\"14/7/5,9:3:7\"", "AT+CIMI"};
}

std::string ReportLine(std::string_view latitude, std::string_view time) {
  // Form 0: position, error radius, date and time; the satellite count is field 59.
  std::string line = "+XLCSLSR: 0," + std::string(latitude) + ",11.5 E,12,2014/7/5," +
                     std::string(time) + std::string(54, ',');
  return line + "1,45,120,38,,,,,7";
}

std::string ReportThenOkThenSentence(std::string_view latitude, std::string_view time) {
  return ReportLine(latitude, time) + "\r\nOK\r\n$GPGGA,1\r\nOK\r\n";
}

}  // namespace bench
