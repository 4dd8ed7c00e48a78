#include "tests/driver/SensorTest.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace bench {

namespace {

// Where the core traces its work: the message file's id and the number in it.
struct TracePoint {
  GUID message;
  USHORT number;
  Doing what;
};
constexpr GUID kQueueMessages = {
    0x09fc53bc, 0xd2ad, 0x4cd3, {0xb1, 0x22, 0xe0, 0x32, 0x12, 0xb7, 0xc9, 0xf1}};
constexpr GUID kCoreMessages = {
    0x144badba, 0x9576, 0x456f, {0xb9, 0x9f, 0x61, 0xff, 0xb7, 0xa1, 0x63, 0xb2}};
constexpr GUID kMachineMessages = {
    0x00e09126, 0xccfd, 0x4506, {0x86, 0xe5, 0x30, 0xb1, 0xc6, 0xc6, 0x92, 0x3d}};
constexpr GUID kTimerMessages = {
    0x8a4b39ee, 0x392a, 0x4df0, {0x97, 0x2c, 0x1e, 0x49, 0xe9, 0x6d, 0x3f, 0xd2}};
constexpr TracePoint kTracePoints[] = {
    {kQueueMessages, 10, Doing::kPosted},    {kCoreMessages, 18, Doing::kDropped},
    {kMachineMessages, 10, Doing::kHandled}, {kMachineMessages, 22, Doing::kTimer},
    {kTimerMessages, 10, Doing::kArmed},     {kTimerMessages, 11, Doing::kTurnedOff},
};
constexpr UCHAR kEverything = 5;

constexpr SYSTEMTIME kStart = {.wYear = 2014,
                               .wMonth = 7,
                               .wDayOfWeek = 4,
                               .wDay = 3,
                               .wHour = 12,
                               .wMinute = 0,
                               .wSecond = 0,
                               .wMilliseconds = 0};
constexpr std::chrono::year_month_day kStartDay(std::chrono::year(2014), std::chrono::July,
                                                std::chrono::day(3));
constexpr ULONG kSwitchRadioCode = 0x8905A008;

// The texts that stand one after another, each with its zero.
std::string Texts(const std::vector<BYTE>& arguments) {
  std::string text;
  for (const BYTE byte : arguments) text.append(byte != 0 ? std::string(1, char(byte)) : " in ");
  return text.substr(0, text.size() - std::min<std::size_t>(text.size(), 4));
}

// A timer's name, its zero, and the milliseconds.
std::string Armed(const std::vector<BYTE>& arguments) {
  ULONG milliseconds = 0;
  const std::size_t name = arguments.size() - sizeof(milliseconds);
  std::memcpy(&milliseconds, arguments.data() + name, sizeof(milliseconds));
  return Texts({arguments.begin(), arguments.begin() + static_cast<std::ptrdiff_t>(name)}) + " " +
         std::to_string(milliseconds);
}

bool IsAboutRequests(const std::string& line) {
  return line.starts_with("AT+XLCSLSR=") || line.starts_with("AT+XLSRSTOP=") ||
         line.starts_with("AT+XLGNVRAM=");
}

}  // namespace

std::string Periodic(unsigned seconds) {
  return "AT+XLCSLSR=1,1,,,,," + std::to_string(seconds) + ",,,2,,";
}

void SensorTest::LoadSensor(RigOptions options) {
  auto modem = std::make_unique<SensorModem>(clock_);
  modem_ = modem.get();
  options.link = std::move(modem);
  options.startUtc = kStart;
  TraceSession& tracing = Load(std::move(options)).redirector().Tracing();
  tracing.SetListener([this](const TraceRecord& record) { OnTrace(record); });
  tracing.Enable(kEverything, ~ULONG{0});
}

void SensorTest::StartLoaded() {
  ASSERT_EQ(rig().Start(), S_OK);
  Settle();
}

SensorTest::Client SensorTest::Connect() {
  Client client = rig().NewClient();
  EXPECT_EQ(client->Connect(), S_OK);
  Settle();
  return client;
}

SensorTest::Client SensorTest::Subscriber(ULONG milliseconds) {
  Client client = Connect();
  EXPECT_TRUE(client->SetReportInterval(milliseconds).Accepted());
  Settle();
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  return client;
}

SensorTest::Client SensorTest::PlainSubscriber() {
  Client client = Connect();
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  return client;
}

GnssFix SensorTest::FixNow() const {
  GnssFix fix;
  fix.time = std::chrono::sys_days(kStartDay) + std::chrono::hours(12) +
             std::chrono::milliseconds(clock_.Now());
  fix.latitude = 48.125;
  fix.longitude = 11.5;
  fix.errorRadius = 5;
  fix.hdop = 0.9;
  fix.pdop = 1.5;
  return fix;
}

HRESULT SensorTest::SwitchRadio(bool on) {
  const ULONG state = on ? 0 : 1;
  const std::string_view input(reinterpret_cast<const char*>(&state), sizeof(state));
  const ClientRequest request = rig().host().SendIoControl(kSwitchRadioCode, input, 0);
  EXPECT_TRUE(request.Wait());
  Settle();
  return request.Status();
}

void SensorTest::PostInit(ClientSession& client) {
  EXPECT_TRUE(client.SetProperty(kInitializeAgain, Variant::Bool(true)).Accepted());
  Settle();
}

void SensorTest::PostClear(ClientSession& client) {
  EXPECT_TRUE(client.SetProperty(kClearAssistance, Variant::Ui4(1)).Accepted());
  Settle();
}

void SensorTest::Mark() {
  commandMark_ = modem_->Commands().size();
  const std::lock_guard lock(mutex_);
  log_.clear();
}

std::vector<SensorModem::Command> SensorTest::Commands() const {
  const auto all = modem_->Commands();
  return {all.begin() + static_cast<std::ptrdiff_t>(commandMark_), all.end()};
}

std::vector<std::string> SensorTest::Requests() const {
  std::vector<std::string> requests;
  for (const auto& command : Commands()) {
    if (IsAboutRequests(command.line)) requests.push_back(command.line);
  }
  return requests;
}

std::vector<Millis> SensorTest::TimesOf(const std::string& command) const {
  std::vector<Millis> times;
  for (const auto& written : Commands()) {
    if (written.line == command) times.push_back(written.at);
  }
  return times;
}

void SensorTest::OnTrace(const TraceRecord& record) {
  for (const TracePoint& point : kTracePoints) {
    if (point.number != record.number || !IsEqualGUID(point.message, record.message)) continue;
    const std::string text =
        point.what == Doing::kArmed ? Armed(record.arguments) : Texts(record.arguments);
    const std::lock_guard lock(mutex_);
    log_.push_back({.what = point.what, .time = record.time, .text = text});
  }
}

std::vector<std::string> SensorTest::Log(Doing what) const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> texts;
  for (const Entry& entry : log_) {
    if (entry.what == what) texts.push_back(entry.text);
  }
  return texts;
}

std::vector<Millis> SensorTest::TimesOfTimer(const std::string& timer) const {
  const std::lock_guard lock(mutex_);
  std::vector<Millis> times;
  for (const Entry& entry : log_) {
    if (entry.what == Doing::kTimer && entry.text == timer) times.push_back(entry.time);
  }
  return times;
}

std::size_t SensorTest::Posted(const std::string& event) const {
  const auto posted = Log(Doing::kPosted);
  return static_cast<std::size_t>(std::ranges::count(posted, event));
}

std::optional<SensorState> SensorTest::State() {
  const auto history = rig().sensors().StateHistory();
  if (history.empty()) return std::nullopt;
  return history.back().state;
}

std::vector<Millis> SensorTest::ReportTimes() {
  std::vector<Millis> times;
  for (const PostedEvent& event : rig().sensors().EventHistory()) {
    times.push_back(event.report.time);
  }
  return times;
}

int SensorTest::EngineUses() {
  const CallRecord& calls = rig().calls();
  return static_cast<int>(calls.Count("IWDFDevice2::StopIdle")) -
         static_cast<int>(calls.Count("IWDFDevice2::ResumeIdle"));
}

}  // namespace bench
