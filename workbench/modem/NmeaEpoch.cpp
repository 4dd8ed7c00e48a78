#include "workbench/modem/NmeaEpoch.h"

#include <algorithm>
#include <string_view>

namespace bench {

namespace {

constexpr Millis kHolds = 10'000;
constexpr double kMetresPerHdop = 4;
constexpr double kMetresPerVdop = 5;

struct TimedType {
  std::string_view type;
  std::size_t field;
};
constexpr std::array<TimedType, 7> kTimedTypes = {{
    {"GGA", 1},
    {"RMC", 1},
    {"GLL", 5},
    {"GNS", 1},
    {"ZDA", 1},
    {"GST", 1},
    {"GBS", 1},
}};

struct Talker {
  std::string_view name;
  Constellation constellation;
};
constexpr std::array<Talker, 7> kTalkers = {{
    {"GP", Constellation::kGps},
    {"GL", Constellation::kGlonass},
    {"GA", Constellation::kGalileo},
    {"GB", Constellation::kBeidou},
    {"BD", Constellation::kBeidou},
    {"GQ", Constellation::kQzss},
    {"QZ", Constellation::kQzss},
}};

// The numbers that a talker for several systems uses, when it does not name the system.
Constellation OfNumber(int number) {
  if (number >= 65 && number <= 96) return Constellation::kGlonass;
  if (number >= 193 && number <= 200) return Constellation::kQzss;
  if (number >= 301 && number <= 336) return Constellation::kGalileo;
  if (number >= 201) return Constellation::kBeidou;
  return Constellation::kGps;
}

// The system field of GSA counts the constellations in their order, from 1.
Constellation Of(const NmeaSentence& sentence, std::optional<int> system, int number) {
  for (const Talker& talker : kTalkers) {
    if (talker.name == sentence.Talker()) return talker.constellation;
  }
  if (system && *system >= 1 && *system <= static_cast<int>(kConstellations)) {
    return static_cast<Constellation>(*system - 1);
  }
  return OfNumber(number);
}

const NmeaSentence* Find(const NmeaEpoch& epoch, std::string_view type) {
  const auto found =
      std::find_if(epoch.sentences.begin(), epoch.sentences.end(),
                   [type](const NmeaSentence& sentence) { return sentence.Type() == type; });
  return found == epoch.sentences.end() ? nullptr : &*found;
}

void ReadPosition(const NmeaSentence& sentence, std::size_t index, GnssFix& fix, bool& known) {
  const auto latitude = sentence.Coordinate(index, 90);
  const auto longitude = sentence.Coordinate(index + 2, 180);
  if (known || !latitude || !longitude) return;
  fix.latitude = *latitude;
  fix.longitude = *longitude;
  known = true;
}

// Signals of one satellite on several frequencies come in sentences of their own.
void AddSatellite(std::vector<Satellite>& satellites, const Satellite& satellite) {
  for (Satellite& known : satellites) {
    if (known.number != satellite.number) continue;
    known.snr = std::max(known.snr, satellite.snr);
    return;
  }
  satellites.push_back(satellite);
}

}  // namespace

std::optional<std::size_t> TimeField(const NmeaSentence& sentence) {
  for (const TimedType& timed : kTimedTypes) {
    if (timed.type == sentence.Type()) return timed.field;
  }
  return std::nullopt;
}

NmeaEpochReader::Reading NmeaEpochReader::Read(const NmeaEpoch& epoch) {
  ReadSatellites(epoch);
  ReadSolution(epoch);
  Reading reading;
  GnssFix fix;
  bool known = false;
  bool isVoid = false;
  if (const NmeaSentence* gga = Find(epoch, "GGA")) {
    isVoid = gga->Integer(6).value_or(0) < 1;
    ReadPosition(*gga, 2, fix, known);
    fix.hdop = gga->Number(8);
    const auto seaLevel = gga->Number(9);
    const auto separation = gga->Number(11);
    if (seaLevel && separation) fix.altitudeEllipsoid = *seaLevel + *separation;
  }
  if (const NmeaSentence* rmc = Find(epoch, "RMC")) {
    isVoid = isVoid || rmc->Field(2) != "A";
    ReadPosition(*rmc, 3, fix, known);
    fix.speedKnots = rmc->Number(7);
    fix.trueHeading = rmc->Number(8);
    reading.date = rmc->Date(9);
  }
  if (!known || isVoid || !epoch.timeOfDay) return reading;
  fix.time = Utc(std::chrono::milliseconds(*epoch.timeOfDay));
  AddSky(epoch.due, fix);
  for (const NmeaSentence& sentence : epoch.sentences) fix.sentences.emplace_back(sentence.text);
  reading.fix = std::move(fix);
  return reading;
}

void NmeaEpochReader::ReadSatellites(const NmeaEpoch& epoch) {
  std::array<bool, kConstellations> begun{};
  for (const NmeaSentence& sentence : epoch.sentences) {
    if (sentence.Type() != "GSV") continue;
    for (std::size_t i = 4; i + 3 < sentence.fields.size(); i += 4) {
      const auto number = sentence.Integer(i);
      if (!number) continue;
      Satellite satellite;
      satellite.constellation = Of(sentence, std::nullopt, *number);
      satellite.number = *number;
      satellite.elevation = sentence.Number(i + 1);
      satellite.azimuth = sentence.Number(i + 2);
      satellite.snr = sentence.Number(i + 3);
      const auto place = static_cast<std::size_t>(satellite.constellation);
      if (!begun[place]) skies_[place] = {.seen = epoch.due, .satellites = {}};
      begun[place] = true;
      AddSatellite(skies_[place].satellites, satellite);
    }
  }
}

void NmeaEpochReader::ReadSolution(const NmeaEpoch& epoch) {
  bool begun = false;
  for (const NmeaSentence& sentence : epoch.sentences) {
    if (sentence.Type() != "GSA") continue;
    if (!begun) solution_ = {};
    begun = true;
    solution_.seen = epoch.due;
    solution_.pdop = sentence.Number(15);
    solution_.hdop = sentence.Number(16);
    solution_.vdop = sentence.Number(17);
    for (std::size_t i = 3; i < 15; ++i) {
      const auto number = sentence.Integer(i);
      if (!number) continue;
      solution_.used.emplace_back(Of(sentence, sentence.Integer(18), *number), *number);
    }
  }
}

void NmeaEpochReader::AddSky(Millis due, GnssFix& fix) const {
  Solution solution;
  if (due - solution_.seen <= kHolds) solution = solution_;
  fix.pdop = solution.pdop;
  fix.vdop = solution.vdop;
  if (!fix.hdop) fix.hdop = solution.hdop;
  if (fix.hdop) fix.errorRadius = *fix.hdop * kMetresPerHdop;
  if (fix.vdop) fix.altitudeEllipsoidError = *fix.vdop * kMetresPerVdop;
  for (const Sky& sky : skies_) {
    if (due - sky.seen > kHolds) continue;
    for (Satellite satellite : sky.satellites) {
      const std::pair id(satellite.constellation, satellite.number);
      satellite.used =
          std::find(solution.used.begin(), solution.used.end(), id) != solution.used.end();
      fix.satellites.push_back(satellite);
    }
  }
}

}  // namespace bench
