#include "tests/soak/Generate.h"

#include <iterator>

#include "tests/soak/Random.h"
#include "tests/soak/Tables.h"

namespace soak {

namespace {

enum class Weather { kFair, kFoul };

struct Chance {
  Deed deed;
  int weight;
  bool foul;  // something of the modem's or the host's goes wrong
};
constexpr Chance kChances[] = {
    {Deed::kConnect, 14, false},   {Deed::kLeave, 3, false},       {Deed::kVanish, 2, false},
    {Deed::kSubscribe, 8, false},  {Deed::kUnsubscribe, 3, false}, {Deed::kInterval, 14, false},
    {Deed::kAccuracy, 2, false},   {Deed::kGet, 6, false},         {Deed::kSet, 5, false},
    {Deed::kRead, 10, false},      {Deed::kLists, 1, false},       {Deed::kRadio, 5, true},
    {Deed::kRadioQuery, 2, false}, {Deed::kRadioStore, 1, false},  {Deed::kOddRequest, 1, false},
    {Deed::kClear, 2, true},       {Deed::kInitAgain, 1, false},   {Deed::kSilent, 3, true},
    {Deed::kLoseFix, 4, true},     {Deed::kGarbage, 3, true},      {Deed::kStray, 3, true},
    {Deed::kSim, 2, false},        {Deed::kRestart, 1, true},      {Deed::kEcho, 1, true},
    {Deed::kCut, 2, false},        {Deed::kShred, 2, false},       {Deed::kJoin, 2, true},
    {Deed::kStall, 1, true},       {Deed::kReact, 10, true},       {Deed::kForm, 2, false},
    {Deed::kShape, 2, true},       {Deed::kSleep, 2, true},        {Deed::kWake, 5, true},
    {Deed::kConfig, 2, false},
};

int WeightOf(const Chance& chance, Weather weather) {
  return chance.foul && weather == Weather::kFair ? 0 : chance.weight;
}

Deed Choose(Random& random, Weather weather) {
  int sum = 0;
  for (const Chance& chance : kChances) sum += WeightOf(chance, weather);
  auto left = static_cast<int>(random.Below(sum));
  for (const Chance& chance : kChances) {
    left -= WeightOf(chance, weather);
    if (left < 0) return chance.deed;
  }
  return Deed::kRead;
}

template <class T>
std::int64_t Index(Random& random, const T& table) {
  return random.Below(static_cast<std::int64_t>(std::size(table)));
}

std::array<std::int64_t, 4> Numbers(Random& random, Deed deed) {
  static constexpr std::int64_t kDelays[] = {100, 500, 990, 1000, 1010, 1500, 2500, 6000, 9000};
  static constexpr std::int64_t kSilences[] = {200, 1500, 4000, 8000, 30'000};
  static constexpr std::int64_t kLosses[] = {900, 3000, 12'000, 60'000, 400'000};
  const std::int64_t client = random.Below(kClients);
  switch (deed) {
    case Deed::kInterval:
      return {client, random.Of(kIntervals)};
    case Deed::kAccuracy:
    case Deed::kClear:
      return {client, random.Below(2)};
    case Deed::kSet:
      return {client, Index(random, kWrites)};
    case Deed::kRadio:
      // Off half the time: a radio that is off stays so for a while.
      return {random.Percent(55) ? 0 : random.Between(1, 7)};
    case Deed::kRadioStore:
      return {random.Between(0, 7)};
    case Deed::kRadioQuery:
    case Deed::kShape:
      return {random.Below(2)};
    case Deed::kOddRequest:
      return {Index(random, kOddCodes)};
    case Deed::kSilent:
      return {random.Of(kSilences)};
    case Deed::kLoseFix:
      return {random.Of(kLosses)};
    case Deed::kGarbage:
      return {random.Between(1, 5000)};
    case Deed::kStray:
      return {Index(random, kStrayLines)};
    case Deed::kSim:
      return {Index(random, kSims)};
    case Deed::kEcho:
      return {random.Percent(70) ? 1 : 0};
    case Deed::kCut:
      return {random.Below(20)};
    case Deed::kShred:
      return {random.Below(1000)};
    case Deed::kJoin:
      return {random.Percent(50) ? 0 : random.Between(1, 1200)};
    case Deed::kStall:
      return {random.Between(1, 2)};
    case Deed::kReact:
      return {Index(random, kCommands), random.Below(7), random.Between(1, 8), random.Of(kDelays)};
    case Deed::kForm:
      return {random.Below(4)};
    case Deed::kConfig:
      return {Index(random, kConfigs)};
    case Deed::kRestart:
    case Deed::kSleep:
    case Deed::kWake:
      return {};
    default:
      return {client};
  }
}

// Storms of deeds, quiet minutes, and what lies between.
Millis Gap(Random& random) {
  const std::int64_t kind = random.Below(100);
  if (kind < 35) return random.Between(1, 1500);
  return kind < 75 ? random.Between(1500, 30'000) : random.Between(30'000, 300'000);
}

// Most who come do so for the reports.
void Settle(Random& random, Plan& plan, Decision arrival) {
  if (arrival.deed != Deed::kConnect || random.Percent(30)) return;
  const std::int64_t client = arrival.numbers[0];
  arrival.deed = Deed::kInterval;
  arrival.numbers = {client, random.Of(kIntervals)};
  plan.decisions.push_back(arrival);
  arrival.deed = Deed::kSubscribe;
  arrival.numbers = {client};
  plan.decisions.push_back(arrival);
}

}  // namespace

Plan MakePlan(std::uint64_t seed, Millis length) {
  Random random(seed);
  Plan plan{.seed = seed, .decisions = {}};
  const Weather weather = random.Percent(25) ? Weather::kFair : Weather::kFoul;
  const bool endsEarly = random.Percent(40);
  const Millis end = endsEarly ? random.Between(1, length) : length;
  plan.decisions.push_back({.at = 0, .deed = Deed::kConfig, .numbers = {random.Below(2)}});
  for (Millis at = random.Between(1, 4000); at < end; at += Gap(random)) {
    const Deed deed = Choose(random, weather);
    plan.decisions.push_back({.at = at, .deed = deed, .numbers = Numbers(random, deed)});
    Settle(random, plan, plan.decisions.back());
  }
  if (!endsEarly) plan.decisions.push_back({.at = end, .deed = Deed::kCalm});
  const bool pulledOut = endsEarly && random.Percent(60);
  plan.decisions.push_back({.at = end, .deed = pulledOut ? Deed::kUnplug : Deed::kStop});
  return plan;
}

bench::ModemOptions ModemOf(std::uint64_t seed) {
  Random random(seed ^ 0x6D6F64656D);
  static constexpr Millis kLatencies[] = {0, 1, 5, 5, 40, 300, 900};
  static constexpr Millis kColdStarts[] = {500, 2000, 9000, 35'000};
  bench::ModemOptions options;
  options.latency = random.Of(kLatencies);
  options.echo = random.Percent(75);
  options.engineOn = random.Percent(90);
  options.reportForm = static_cast<int>(random.Below(4));
  options.reportShape = random.Percent(70) ? bench::ReportShape::kOkThenSentences
                                           : bench::ReportShape::kSentencesOnly;
  options.blankBeforeHemisphere = random.Percent(50);
  options.coldStart = random.Of(kColdStarts);
  options.fixTimeout = random.Percent(80) ? 120'000 : 5000;
  options.unknownStopFails = random.Percent(50);
  return options;
}

std::uint64_t StartTicksOf(std::uint64_t seed) {
  Random random(seed ^ 0x7469636B73);
  constexpr std::int64_t kHour = 3'600'000;
  if (random.Percent(70)) return static_cast<std::uint64_t>(kHour);
  return (std::uint64_t{1} << 32) - static_cast<std::uint64_t>(random.Below(kHour));
}

}  // namespace soak
