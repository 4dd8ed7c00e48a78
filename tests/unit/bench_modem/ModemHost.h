// A host at the simulated modem's port: what it sent and what came back.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/clock/VirtualClock.h"
#include "workbench/modem/Modem.h"

namespace bench {

inline constexpr const char* kOk = "\r\nOK\r\n";
inline constexpr const char* kError = "\r\nERROR\r\n";
inline constexpr const char* kEverySecond = "AT+XLCSLSR=1,1,,,,,1,,,2,,";

/// A track with a fix at every moment but those of one gap.
class SteadyTrack final : public TrackSource {
 public:
  explicit SteadyTrack(Millis gapFrom = 0, Millis gapTo = 0) : gapFrom_(gapFrom), gapTo_(gapTo) {}

  std::optional<GnssFix> At(Millis t) const override {
    if (t >= gapFrom_ && t < gapTo_) return std::nullopt;
    GnssFix fix;
    fix.time = Start() + std::chrono::milliseconds(t);
    fix.latitude = 48.25;
    fix.longitude = -11.5;
    fix.sentences = {"$GPXXX,first*00", "$GPXXX,second*00"};
    return fix;
  }
  Utc Start() const override { return std::chrono::sys_days{std::chrono::year{2014} / 7 / 3}; }
  Millis Length() const override { return kForever; }

 private:
  const Millis gapFrom_;
  const Millis gapTo_;
};

class ModemHost : public ModemObserver {
 public:
  explicit ModemHost(ModemOptions options = {},
                     std::unique_ptr<TrackSource> track = std::make_unique<SteadyTrack>())
      : modem(clock, std::move(options), std::move(track), {this}) {
    modem.SetSink([this](std::string_view bytes) {
      {
        const Millis now = clock.Now();
        const std::lock_guard lock(mutex_);
        received_ += bytes;
        chunks_.emplace_back(now, bytes);
      }
      clock.Notify();
    });
  }

  void Send(std::string_view bytes) { modem.OnHostWrite(bytes); }

  /// What was received by the time that it ends with `end`, or in `patience` when it never does.
  std::string ReadUntil(std::string_view end, Millis patience = 600'000) {
    return ReadUntilAny({end}, patience);
  }

  /// What comes within `duration`.
  std::string ReadFor(Millis duration) {
    clock.SleepFor(duration);
    return Taken();
  }

  /// Sends one command and gives its echo and answer, up to the final result.
  std::string Ask(const std::string& command) {
    Send(command + "\r\n");
    return ReadUntilAny({"\r\nOK\r\n", "\r\nERROR\r\n"}, 600'000);
  }

  /// When each chunk came, and what it was.
  std::vector<std::pair<Millis, std::string>> Chunks() {
    const std::lock_guard lock(mutex_);
    return chunks_;
  }
  std::vector<SentFix> Fixes() {
    const std::lock_guard lock(mutex_);
    return fixes_;
  }
  std::vector<std::string> Commands() {
    const std::lock_guard lock(mutex_);
    return commands_;
  }
  std::string Answers() {
    const std::lock_guard lock(mutex_);
    return answers_;
  }

  void OnCommand(Millis, std::string_view line) override {
    const std::lock_guard lock(mutex_);
    commands_.emplace_back(line);
  }
  void OnAnswer(Millis, std::string_view bytes) override {
    const std::lock_guard lock(mutex_);
    answers_ += bytes;
  }
  void OnFixSent(const SentFix& sent) override {
    const std::lock_guard lock(mutex_);
    fixes_.push_back(sent);
  }

 private:
  std::string ReadUntilAny(std::vector<std::string_view> ends, Millis patience) {
    clock.WaitUntil(clock.Now() + patience, [&] {
      const std::lock_guard lock(mutex_);
      for (const std::string_view end : ends) {
        if (received_.ends_with(end)) return true;
      }
      return false;
    });
    return Taken();
  }

  std::string Taken() {
    const std::lock_guard lock(mutex_);
    return std::exchange(received_, {});
  }

  std::mutex mutex_;
  std::string received_;
  std::string answers_;
  std::vector<std::pair<Millis, std::string>> chunks_;
  std::vector<SentFix> fixes_;
  std::vector<std::string> commands_;

 public:
  VirtualClock clock;
  Modem modem;
};

}  // namespace bench
