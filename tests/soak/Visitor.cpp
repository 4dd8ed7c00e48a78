#include "tests/soak/Visitor.h"

#include <utility>

#include "tests/soak/Limits.h"
#include "tests/soak/Tables.h"
#include "workbench/sensorapi/QueuePath.h"

namespace soak {

namespace {

constexpr PROPERTYKEY kState = {keys::kSensorCommonSet, 3};

std::vector<PROPERTYKEY> Everything() {
  std::vector<PROPERTYKEY> all;
  for (const DWORD pid : {2u, 3u, 4u, 5u, 6u, 7u, 26u}) all.push_back({keys::kObjectSet, pid});
  all.push_back({keys::kFunctionalObjectSet, 2});
  for (const DWORD pid : {2u, 3u, 5u, 6u, 7u, 8u, 9u, 12u, 13u, 19u, 23u, 24u}) {
    all.push_back({keys::kSensorCommonSet, pid});
  }
  for (const DWORD pid : {2u, 3u, 4u, 5u, 6u}) all.push_back({kDriverSet, pid});
  all.push_back({kAssistanceSet, 2});
  all.push_back({kAssistanceSet, 77});  // there is none
  return all;
}

}  // namespace

void Doors::Through(const std::function<void()>& pass) {
  {
    const std::lock_guard lock(mutex_);
    if (closed_) return;
    ++passing_;
  }
  pass();
  {
    const std::lock_guard lock(mutex_);
    --passing_;
  }
  clock_.Notify();
}

void Doors::Close() {
  clock_.WaitUntil(bench::kForever, [this] {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    return passing_ == 0;
  });
}

Visitor::Visitor(bench::Rig& rig, Watch& watch, Doors& doors, int number)
    : rig_(rig), watch_(watch), doors_(doors), number_(number), errands_(rig.clock()) {}

template <class Send>
auto Visitor::Ask(const std::string& what, Millis limit, Send send) {
  const int id = watch_.Asked(what, limit);
  auto answer = send(id);
  watch_.Answered(id, what);
  return answer;
}

void Visitor::WhenConnected(std::function<void()> errand) {
  errands_.Do([this, errand = std::move(errand)] {
    if (session_) errand();
  });
}

void Visitor::Connect() {
  errands_.Do([this] {
    doors_.Through([this] {
      if (session_) return;
      session_ = std::make_unique<bench::ClientSession>(
          rig_.sensors(), std::make_unique<bench::QueuePath>(rig_.host()));
      watch_.Note([this](Millis now, Watch& watch) {
        watch.spacing.Connected(number_);
        watch.uses.Clients(now, +1);
      });
      const HRESULT result =
          Ask("connect", limit::kQuick, [this](int) { return session_->Connect(); });
      if (SUCCEEDED(result)) return;
      session_.reset();
      watch_.Note([](Millis now, Watch& watch) { watch.uses.Clients(now, -1); });
    });
  });
}

void Visitor::Leave(bool politely) {
  if (politely) Subscribe(false);
  WhenConnected([this] {
    doors_.Through([this] {
      watch_.Note([this](Millis now, Watch& watch) { watch.spacing.Left(now, number_); });
      Ask("leave", limit::kQuick, [this](int) {
        session_.reset();
        return S_OK;
      });
      watch_.Note([](Millis now, Watch& watch) {
        watch.spacing.Done(now);
        watch.uses.Clients(now, -1);
      });
    });
  });
}

void Visitor::Subscribe(bool subscribe) {
  WhenConnected([this, subscribe] {
    watch_.Note(
        [&](Millis now, Watch& watch) { watch.spacing.Subscribed(now, number_, subscribe); });
    Ask(subscribe ? "subscribe" : "unsubscribe", limit::kQuick,
        [&](int) { return subscribe ? session_->Subscribe() : session_->Unsubscribe(); });
    watch_.Note([](Millis now, Watch& watch) { watch.spacing.Done(now); });
  });
}

void Visitor::SetInterval(std::int64_t milliseconds) {
  WhenConnected([this, milliseconds] {
    const bool acceptable = IsAcceptable(milliseconds);
    watch_.Note([&](Millis now, Watch& watch) {
      if (acceptable) watch.spacing.IntervalSet(now, number_, milliseconds);
    });
    const auto result = Ask("set the interval", limit::kQuick, [&](int) {
      return session_->SetReportInterval(static_cast<ULONG>(milliseconds));
    });
    watch_.Note([&](Millis now, Watch& watch) {
      if (acceptable) watch.spacing.Done(now);
      if (FAILED(result.call)) return;  // the device is gone
      watch.answers.IntervalAnswered(now, milliseconds, result.Accepted());
    });
  });
}

void Visitor::Write(const PROPERTYKEY& key, const bench::Variant& value) {
  WhenConnected([this, key, value] {
    Ask("set a property", limit::kBehindAStart,
        [&](int) { return session_->SetProperty(key, value); });
  });
}

void Visitor::GetEverything() {
  WhenConnected([this] {
    Ask("get properties", limit::kBehindAStart, [this](int id) {
      watch_.Note([id](Millis now, Watch& watch) { watch.states.Asked(now, id); });
      const auto answer = session_->GetProperties(Everything());
      const bench::Variant* const state =
          answer.values ? bench::FindValue(*answer.values, kState) : nullptr;
      watch_.Note([&](Millis now, Watch& watch) {
        if (state == nullptr) return watch.states.NotTold(id);
        watch.states.Told(now, id, static_cast<int>(state->Get().ulVal));
      });
      return answer.result;
    });
  });
}

void Visitor::Read() {
  WhenConnected([this] {
    watch_.Note([](Millis now, Watch& watch) { watch.spacing.DataRequested(now); });
    Ask("read data", limit::kRead,
        [this](int) { return session_->ReadData(bench::ReportKeys()).result; });
    watch_.Note([](Millis now, Watch& watch) { watch.spacing.Done(now); });
  });
}

void Visitor::AskForLists() {
  WhenConnected([this] {
    Ask("ask for lists", limit::kQuick, [this](int) {
      session_->SupportedProperties();
      session_->SupportedDataFields();
      return session_->SupportedEvents().result;
    });
  });
}

}  // namespace soak
