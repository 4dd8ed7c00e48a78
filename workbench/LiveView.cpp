#include "workbench/LiveView.h"

#include <algorithm>
#include <utility>

namespace bench {

namespace {

constexpr std::size_t kWidth = 84;

std::string Shortened(const std::string& text) {
  if (text.size() <= kWidth) return text;
  return text.substr(0, kWidth) + "... (" + std::to_string(text.size()) + " characters)";
}

}  // namespace

void LiveView::OnLine(const AtLine& line) {
  const std::lock_guard lock(mutex_);
  arrivals_.emplace_back(line);
}

void LiveView::OnTrace(Millis at, const std::string& line) {
  const std::lock_guard lock(mutex_);
  arrivals_.emplace_back(Item{at, Tone::kTrace, "trace    " + line});
}

void LiveView::AddLine(const AtLine& line) {
  if (line.toModem) {
    EndSentences();
    lastCommand_ = line.text;
    items_.push_back({line.at, Tone::kToModem, "modem  > " + line.text});
  } else if (line.text.starts_with('$')) {
    ++sentences_;
    sentencesAt_ = line.at;
  } else if (line.text != lastCommand_) {  // not the echo
    EndSentences();
    items_.push_back({line.at, Tone::kFromModem, "modem  < " + Shortened(line.text)});
  }
}

void LiveView::EndSentences() {
  if (const std::size_t count = std::exchange(sentences_, 0); count > 0) {
    items_.push_back(
        {sentencesAt_, Tone::kFromModem, "modem  < " + std::to_string(count) + " NMEA sentences"});
  }
}

void LiveView::Show(const SensorService& sensors) {
  std::vector<std::variant<AtLine, Item>> arrivals;
  {
    const std::lock_guard lock(mutex_);
    arrivals.swap(arrivals_);
  }
  for (auto& arrival : arrivals) {
    if (const auto* const line = std::get_if<AtLine>(&arrival)) {
      AddLine(*line);
    } else {
      items_.push_back(std::move(std::get<Item>(arrival)));
    }
  }
  EndSentences();

  const auto states = sensors.StateHistory();
  for (; statesShown_ < states.size(); ++statesShown_) {
    const StateChange& change = states[statesShown_];
    items_.push_back({change.time, Tone::kState, "state    " + StateText(change.state)});
  }
  if (sensors.WaitForEvents(eventsShown_ + 1, 0)) {
    const auto events = sensors.EventHistory();
    for (; eventsShown_ < events.size(); ++eventsShown_) {
      const PostedEvent& event = events[eventsShown_];
      const std::string clients =
          event.subscribers == 1 ? "" : "  to " + std::to_string(event.subscribers) + " clients";
      items_.push_back(
          {event.report.time, Tone::kReport, "report   " + ReportText(event.report) + clients});
    }
  }

  std::ranges::stable_sort(items_, {}, &Item::at);
  for (const Item& item : items_) console_.Line(item.at, item.text, item.tone);
  items_.clear();
}

std::string StateText(SensorState state) {
  switch (state) {
    case SENSOR_STATE_READY:
      return "ready";
    case SENSOR_STATE_NOT_AVAILABLE:
      return "not available";
    case SENSOR_STATE_NO_DATA:
      return "no data";
    case SENSOR_STATE_INITIALIZING:
      return "initializing";
    case SENSOR_STATE_ACCESS_DENIED:
      return "access denied";
    default:
      return "error";
  }
}

}  // namespace bench
