#include "tests/soak/Watch.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "workbench/sensorapi/Report.h"

namespace soak {

namespace {

constexpr Millis kAttempt = 1000;
constexpr std::int64_t kFileTimeSecond = 10'000'000;
constexpr std::int64_t kFileTimeOf1970 = 11'644'473'600;  // seconds since 1601

std::int64_t Seconds(const std::optional<FILETIME>& time) {
  if (!time) return 0;
  const auto ticks = (std::int64_t{time->dwHighDateTime} << 32) | time->dwLowDateTime;
  return ticks / kFileTimeSecond - kFileTimeOf1970;
}

}  // namespace

void Tally::Add(const Tally& other) {
  seeds += other.seeds;
  simulated += other.simulated;
  decisions += other.decisions;
  commands += other.commands;
  fixes += other.fixes;
  reports += other.reports;
  states += other.states;
  requests += other.requests;
  breaches += other.breaches;
  for (const auto& [what, time] : other.longest) longest[what] = std::max(longest[what], time);
}

void Watch::Show(Millis at, const std::string& what) const {
  if (show_) std::printf("%10.3f %s\n", static_cast<double>(at) / 1000, what.c_str());
}

void Watch::OnCall(const bench::CallEntry& entry) {
  const bool stop = entry.call == "IWDFDevice2::StopIdle";
  const bool resume = entry.call == "IWDFDevice2::ResumeIdle";
  const bool open = entry.call == "IWDFUsbTargetFactory::CreateUsbTargetDevice";
  if (!stop && !resume && !open) return;
  const std::lock_guard lock(mutex_);
  Show(entry.time, entry.call);
  if (stop) uses.StopIdle(entry.time);
  if (resume) uses.ResumeIdle(entry.time, spacing.ShortForCertain(entry.time));
  if (!open) return;
  wire.Opened(entry.time);
  uses.Opened(entry.time);
}

void Watch::OnLine(const bench::AtLine& line) {
  const std::lock_guard lock(mutex_);
  Show(line.at, (line.toModem ? "> " : "< ") + line.text);
  if (line.toModem) return OnCommandLine(line);
  wire.Said(line.at, line.text);
  uses.Said(line.at, line.text);
  spacing.Said(line.text);
}

void Watch::OnCommandLine(const bench::AtLine& line) {
  ++tally_.commands;
  if (line.text == lastCommand_.text && line.at - lastCommand_.at >= kAttempt) uses.Fault();
  lastCommand_ = line;
  uses.Quiet(line.at);
  wire.Written(line.at, line.text);
  uses.Written(line.at, line.text, spacing.ShortForCertain(line.at));
  spacing.Written(line.at, line.text);
}

void Watch::OnFixSent(const bench::SentFix& sent) {
  const std::lock_guard lock(mutex_);
  ++tally_.fixes;
  const auto seconds = std::chrono::floor<std::chrono::seconds>(sent.fix.time);
  reports.Sent({.latitude = sent.fix.latitude,
                .longitude = sent.fix.longitude,
                .time = seconds.time_since_epoch().count()});
}

void Watch::OnReport(const bench::PostedEvent& event) {
  const std::lock_guard lock(mutex_);
  ++tally_.reports;
  const bench::Report& report = event.report;
  Show(report.time, "report " + bench::ReportText(report));
  const std::int64_t fixTime = Seconds(report.timestamp);
  reports.Reported(report.time,
                   {.latitude = report.latitude, .longitude = report.longitude, .time = fixTime});
  spacing.Reported(report.time, fixTime);
}

void Watch::OnState(const bench::StateChange& change) {
  const std::lock_guard lock(mutex_);
  ++tally_.states;
  Show(change.time, "state " + std::to_string(static_cast<int>(change.state)));
  states.Posted(change.time, static_cast<int>(change.state));
  spacing.StatePosted(change.time, static_cast<int>(change.state));
}

int Watch::Asked(const std::string& what, Millis limit) {
  const std::lock_guard lock(mutex_);
  const Millis now = clock_.Now();
  Show(now, what);
  ++tally_.requests;
  since_[++lastId_] = now;
  answers.Asked(now, lastId_, what, limit);
  return lastId_;
}

void Watch::Answered(int id, const std::string& what) {
  const std::lock_guard lock(mutex_);
  const Millis now = clock_.Now();
  Show(now, what + ": answered");
  answers.Answered(now, id);
  Millis& longest = tally_.longest[what];
  longest = std::max(longest, now - since_[id]);
  since_.erase(id);
}

std::size_t Watch::Reports() const {
  const std::lock_guard lock(mutex_);
  return tally_.reports;
}

Tally Watch::Sum() const {
  const std::lock_guard lock(mutex_);
  Tally sum = tally_;
  sum.seeds = 1;
  sum.simulated = clock_.Now();
  sum.breaches = breaches.All().size();
  return sum;
}

std::vector<Breach> Watch::Found() const {
  const std::lock_guard lock(mutex_);
  return breaches.All();
}

}  // namespace soak
