#include "tests/driver/SensorModem.h"

#include <algorithm>
#include <utility>

#include "workbench/modem/ReportWriter.h"

namespace bench {

namespace {

constexpr std::string_view kSentence =
    "$GPGGA,120000.00,4807.0380,N,01131.0000,E,1,08,0.9,545.4,M,46.9,M,,*40\r\n";

std::string Line(std::string_view text) {
  return std::string("\r\n").append(text).append("\r\n");
}

// What a command is told before its "OK".
std::string Information(std::string_view line, bool engineOn, std::uint32_t& requestId) {
  constexpr std::string_view kStop = "AT+XLSRSTOP=0,";
  if (line == "AT+CIMI") return Line("001010123456789");
  if (line == "AT+XLCSSWITCH?") return Line(engineOn ? "+XLCSSWITCH : 1" : "+XLCSSWITCH : 0");
  if (line.starts_with("AT+XLCSLSR=")) {
    return Line("+XLCSLSR: request id " + std::to_string(++requestId));
  }
  if (line.starts_with(kStop)) {
    return Line(std::string("+XLSRSTOP: ").append(line.substr(kStop.size())));
  }
  return {};
}

}  // namespace

std::int32_t SensorModem::OnHostWrite(std::string_view bytes) {
  std::string line(bytes);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  std::string answer;
  {
    const std::lock_guard lock(mutex_);
    commands_.push_back({.at = clock_.Now(), .line = line});
    answer = Answer(line);
  }
  Send(answer);
  return 0;
}

std::string SensorModem::Answer(const std::string& line) {
  const auto wish = std::find_if(wishes_.rbegin(), wishes_.rend(), [&line](const Wish& candidate) {
    return candidate.count != 0 && line.starts_with(candidate.beginning);
  });
  const bool spoilt = wish != wishes_.rend();
  if (spoilt && wish->count > 0) --wish->count;
  if (spoilt && wish->mood == Mood::kIgnore) return {};
  std::string text = echo_ ? line + "\r\n" : std::string();
  if (spoilt && wish->mood == Mood::kWithhold) return text;
  if (spoilt) return text + Line("ERROR");
  if (line == "ATE1") echo_ = true;
  return text + Information(line, engineOn_, requestId_) + Line("OK");
}

void SensorModem::SetSink(ByteSink sink) {
  const std::lock_guard lock(mutex_);
  sink_ = std::move(sink);
}

void SensorModem::Send(const std::string& text) {
  ByteSink sink;
  {
    const std::lock_guard lock(mutex_);
    sink = sink_;
  }
  if (sink) sink(text);
}

void SensorModem::Add(std::string_view beginning, Mood mood, int count) {
  const std::lock_guard lock(mutex_);
  wishes_.push_back({.beginning = std::string(beginning), .mood = mood, .count = count});
}

void SensorModem::Refuse(std::string_view beginning, int count) {
  Add(beginning, Mood::kRefuse, count);
}
void SensorModem::Ignore(std::string_view beginning, int count) {
  Add(beginning, Mood::kIgnore, count);
}
void SensorModem::Withhold(std::string_view beginning, int count) {
  Add(beginning, Mood::kWithhold, count);
}

void SensorModem::ObeyAll() {
  const std::lock_guard lock(mutex_);
  wishes_.clear();
}

void SensorModem::SetEngineSwitch(bool on) {
  const std::lock_guard lock(mutex_);
  engineOn_ = on;
}

void SensorModem::Say(std::string_view line) {
  Send(Line(line));
}

void SensorModem::SayReport(std::string_view report) {
  Send(Line(report) + Line("OK") + std::string(kSentence) + Line("OK"));
}

void SensorModem::SayReport(const GnssFix& fix, int form) {
  SayReport(WriteReport(fix, form));
}

void SensorModem::SayReportOfTheOtherShape(const GnssFix& fix) {
  Send(Line(WriteReport(fix, 2)) + std::string(kSentence) + Line("OK"));
}

std::vector<SensorModem::Command> SensorModem::Commands() const {
  const std::lock_guard lock(mutex_);
  return commands_;
}

}  // namespace bench
