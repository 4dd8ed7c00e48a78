#include "workbench/modem/NmeaTrack.h"

#include <algorithm>
#include <utility>

#include "workbench/modem/NmeaEpoch.h"
#include "workbench/modem/TextFile.h"

namespace bench {

namespace {

constexpr Millis kDay = 24 * 60 * 60 * 1000;
constexpr Millis kLongestGap = 60'000;
constexpr Millis kUsualPace = 1000;
// For a log that has no date at all.
constexpr std::chrono::sys_days kUndated = std::chrono::year{2000} / 1 / 1;

/// Puts the sentences of one time of day together. A sentence without a time belongs to the epoch
/// that it follows; before the first time, to the first.
class EpochGrouper {
 public:
  void Add(NmeaSentence sentence) {
    if (const auto field = TimeField(sentence)) {
      const auto time = sentence.TimeOfDay(*field);
      if (keyed_ && (time != epochs_.back().timeOfDay || (!time && Repeats(sentence)))) {
        epochs_.emplace_back();
      }
      if (epochs_.empty()) epochs_.emplace_back();
      epochs_.back().timeOfDay = time;
      keyed_ = true;
    }
    if (epochs_.empty()) epochs_.emplace_back();
    epochs_.back().sentences.push_back(std::move(sentence));
  }

  std::vector<NmeaEpoch> Epochs() && { return std::move(epochs_); }

 private:
  // A receiver that does not know the time begins its next epoch with a type that it had already.
  bool Repeats(const NmeaSentence& sentence) const {
    const auto& sentences = epochs_.back().sentences;
    return std::any_of(sentences.begin(), sentences.end(), [&](const NmeaSentence& earlier) {
      return earlier.fields.front() == sentence.fields.front();
    });
  }

  std::vector<NmeaEpoch> epochs_;
  bool keyed_ = false;  // the last epoch has had a sentence of a timed type
};

/// From one epoch to the next by the log's own times, over midnight too; nothing when one of them
/// has no time, zero or less when time went back.
std::optional<Millis> Step(const NmeaEpoch& from, const NmeaEpoch& to) {
  if (!from.timeOfDay || !to.timeOfDay) return std::nullopt;
  const Millis step = *to.timeOfDay - *from.timeOfDay;
  return step < -kDay / 2 ? step + kDay : step;
}

// Undated epochs are told apart from those of the next day by this alone.
bool PassesMidnight(const NmeaEpoch& from, const NmeaEpoch& to) {
  return from.timeOfDay && to.timeOfDay && *to.timeOfDay - *from.timeOfDay < -kDay / 2;
}

bool IsSteady(const std::optional<Millis>& step) {
  return step && *step > 0 && *step <= kLongestGap;
}

Millis UsualStep(const std::vector<NmeaEpoch>& epochs) {
  std::vector<Millis> steps;
  for (std::size_t i = 1; i < epochs.size(); ++i) {
    const auto step = Step(epochs[i - 1], epochs[i]);
    if (IsSteady(step)) steps.push_back(*step);
  }
  if (steps.empty()) return kUsualPace;
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
  std::nth_element(steps.begin(), middle, steps.end());
  return *middle;
}

/// Gives every epoch its place in time; returns how many jumped.
std::size_t PlaceInTime(std::vector<NmeaEpoch>& epochs, Millis pace) {
  std::size_t jumps = 0;
  for (std::size_t i = 1; i < epochs.size(); ++i) {
    const auto step = Step(epochs[i - 1], epochs[i]);
    if (step && !IsSteady(step)) ++jumps;
    epochs[i].due = epochs[i - 1].due + (IsSteady(step) ? *step : pace);
  }
  return jumps;
}

}  // namespace

Outcome<std::unique_ptr<NmeaTrack>> NmeaTrack::Load(const std::string& path) {
  auto text = ReadWholeFile(path);
  if (!text) return NoValue<std::unique_ptr<NmeaTrack>>(std::move(text.error));
  return Parse(*text, path);
}

Outcome<std::unique_ptr<NmeaTrack>> NmeaTrack::Parse(std::string_view log,
                                                     const std::string& name) {
  std::unique_ptr<NmeaTrack> track(new NmeaTrack);
  NmeaLogSummary& summary = track->summary_;
  EpochGrouper grouper;
  while (!log.empty()) {
    const auto end = std::min(log.find_first_of("\r\n"), log.size());
    const std::string_view line = log.substr(0, end);
    log.remove_prefix(std::min(end + 1, log.size()));
    if (line.empty()) continue;
    ++summary.lines;
    NmeaSentence sentence;
    switch (ReadNmeaLine(line, sentence)) {
      case LineKind::kGarbage:
        ++summary.garbage;
        break;
      case LineKind::kBadChecksum:
        ++summary.badChecksums;
        break;
      case LineKind::kSentence:
        ++summary.sentences;
        grouper.Add(std::move(sentence));
        break;
    }
  }
  auto epochs = std::move(grouper).Epochs();
  track->pace_ = UsualStep(epochs);
  summary.epochs = epochs.size();
  summary.jumps = PlaceInTime(epochs, track->pace_);
  track->ReadEpochs(epochs);
  if (summary.fixes == 0) {
    return NoValue<std::unique_ptr<NmeaTrack>>(name + ": no valid fix: " + track->Describe());
  }
  return {.value = std::move(track), .error = {}};
}

void NmeaTrack::ReadEpochs(const std::vector<NmeaEpoch>& epochs) {
  NmeaEpochReader reader;
  std::vector<NmeaEpochReader::Reading> readings;
  for (const NmeaEpoch& epoch : epochs) readings.push_back(reader.Read(epoch));

  // Epochs before the first date are of that date, or of the day before when midnight lies
  // between.
  const auto firstDated = std::find_if(readings.begin(), readings.end(),
                                       [](const auto& reading) { return reading.date; });
  std::chrono::sys_days date = kUndated;
  if (firstDated != readings.end()) {
    date = *firstDated->date;
    const auto first = static_cast<std::size_t>(firstDated - readings.begin());
    for (std::size_t i = 1; i <= first; ++i) {
      if (PassesMidnight(epochs[i - 1], epochs[i])) date -= std::chrono::days(1);
    }
  }
  for (std::size_t i = 0; i < epochs.size(); ++i) {
    if (readings[i].date) {
      date = *readings[i].date;
    } else if (i > 0 && PassesMidnight(epochs[i - 1], epochs[i])) {
      date += std::chrono::days(1);
    }
    Epoch epoch{.due = epochs[i].due, .fix = std::move(readings[i].fix)};
    if (epoch.fix) {
      epoch.fix->time += date.time_since_epoch();
      if (summary_.fixes++ == 0) start_ = epoch.fix->time - std::chrono::milliseconds(epoch.due);
    }
    epochs_.push_back(std::move(epoch));
  }
}

std::optional<GnssFix> NmeaTrack::At(Millis t) const {
  const auto after = std::upper_bound(epochs_.begin(), epochs_.end(), t,
                                      [](Millis at, const Epoch& epoch) { return at < epoch.due; });
  if (after == epochs_.begin()) return std::nullopt;
  const Epoch& newest = *std::prev(after);
  return t - newest.due < 2 * pace_ ? newest.fix : std::nullopt;
}

Millis NmeaTrack::Length() const {
  return epochs_.back().due + pace_;
}

std::string NmeaTrack::Describe() const {
  const auto count = [](std::size_t number) { return std::to_string(number); };
  std::string text = count(summary_.fixes) + " fixes in " + count(summary_.epochs) + " epochs, " +
                     count(summary_.sentences) + " sentences in " + count(summary_.lines) +
                     " lines";
  const auto addUnlessZero = [&](const char* what, std::size_t number) {
    if (number > 0) text.append(what).append(count(number));
  };
  addUnlessZero("; bad checksums: ", summary_.badChecksums);
  addUnlessZero("; lines of garbage: ", summary_.garbage);
  addUnlessZero("; jumps in time: ", summary_.jumps);
  return text;
}

}  // namespace bench
