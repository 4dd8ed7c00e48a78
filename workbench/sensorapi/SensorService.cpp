#include "workbench/sensorapi/SensorService.h"

#include <algorithm>
#include <utility>

namespace bench {

void Inbox::Add(const Report& report) {
  const std::lock_guard lock(mutex_);
  reports_.push_back(report);
}

void Inbox::Add(const StateChange& change) {
  const std::lock_guard lock(mutex_);
  states_.push_back(change);
}

std::vector<Report> Inbox::Reports() const {
  const std::lock_guard lock(mutex_);
  return reports_;
}

std::size_t Inbox::ReportCount() const {
  const std::lock_guard lock(mutex_);
  return reports_.size();
}

std::vector<StateChange> Inbox::States() const {
  const std::lock_guard lock(mutex_);
  return states_;
}

std::optional<SensorState> Inbox::LastState() const {
  const std::lock_guard lock(mutex_);
  if (states_.empty()) return std::nullopt;
  return states_.back().state;
}

SensorService::SensorService(const World& world, Options options)
    : world_(world), options_(options) {}

std::vector<StateChange> SensorService::StateHistory() const {
  const std::lock_guard lock(mutex_);
  return states_;
}

std::vector<PostedEvent> SensorService::EventHistory() const {
  const std::lock_guard lock(mutex_);
  return events_;
}

bool SensorService::WaitForState(SensorState state, Millis deadline) const {
  return world_.clock.WaitUntil(deadline, [&] {
    const std::lock_guard lock(mutex_);
    return !states_.empty() && states_.back().state == state;
  });
}

bool SensorService::WaitForEvents(std::size_t count, Millis deadline) const {
  return world_.clock.WaitUntil(deadline, [&] {
    const std::lock_guard lock(mutex_);
    return events_.size() >= count;
  });
}

ClassExtension* SensorService::Extension() const {
  const std::lock_guard lock(mutex_);
  return extension_;
}

void SensorService::SetExtension(ClassExtension* extension) {
  const std::lock_guard lock(mutex_);
  extension_ = extension;
}

void SensorService::DropExtension(const ClassExtension* extension) {
  const std::lock_guard lock(mutex_);
  if (extension_ == extension) extension_ = nullptr;
}

void SensorService::Join(IWDFFile* file, std::shared_ptr<Inbox> inbox) {
  const std::lock_guard lock(mutex_);
  sessions_.push_back({file, std::move(inbox)});
}

void SensorService::Leave(IWDFFile* file) {
  const std::lock_guard lock(mutex_);
  std::erase_if(sessions_, [&](const Session& session) { return session.file == file; });
}

void SensorService::Deliver(const Report& report, const std::vector<IWDFFile*>& files) {
  {
    const std::lock_guard lock(mutex_);
    for (const Session& session : sessions_) {
      if (std::ranges::find(files, session.file) != files.end()) session.inbox->Add(report);
    }
    events_.push_back({files.size(), report});
  }
  if (SensorListener* const listener = listener_) listener->OnReport({files.size(), report});
  world_.clock.Notify();
}

void SensorService::Deliver(SensorState state) {
  // Asked before the lock is taken: the clock calls waiting conditions under its own.
  const StateChange change{world_.clock.Now(), state};
  {
    const std::lock_guard lock(mutex_);
    for (const Session& session : sessions_) session.inbox->Add(change);
    states_.push_back(change);
  }
  if (SensorListener* const listener = listener_) listener->OnState(change);
  world_.clock.Notify();
}

}  // namespace bench
