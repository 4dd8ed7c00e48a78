#include "sensor/FixStore.h"

#include <utility>

namespace stelvane {

namespace {

constexpr std::uint32_t kGpsStatusWithoutFix = 2;

void MarkInvalid(StoredFix& fix) {
  fix.valid = false;
  fix.record.gpsStatus = kGpsStatusWithoutFix;
}

void FreeSatelliteArrays(FixRecord& record) {
  record.azimuth = {};
  record.elevation = {};
  record.satelliteIds = {};
  record.prns = {};
  record.snRatios = {};
}

}  // namespace

void FixStore::StoreReport(FixRecord record) {
  const ScopedLock lock(lock_);
  if (sessionActive_ && lastFixTicks_ == 0) FreeSatelliteArrays(lastFix_.record);
  lastFix_.record = std::move(record);
  if (periodicRuns_) sessionActive_ = true;
}

void FixStore::Publish(std::string sentences) {
  // Cleared first: the event that follows may start the next request on the worker at once.
  sessionActive_ = false;
  const ScopedLock lock(lock_);
  lastFix_.record.nmeaSentence = std::move(sentences);
  publishedFix_.record = lastFix_.record;
  publishedFix_.valid = true;
  lastFix_.valid = true;
  lastFixTicks_ = GetTickCount64();
}

void FixStore::Invalidate() {
  const ScopedLock lock(lock_);
  MarkInvalid(lastFix_);
  MarkInvalid(publishedFix_);
}

StoredFix FixStore::LastFix() {
  const ScopedLock lock(lock_);
  return lastFix_;
}

StoredFix FixStore::PublishedFix() {
  const ScopedLock lock(lock_);
  return publishedFix_;
}

}  // namespace stelvane
