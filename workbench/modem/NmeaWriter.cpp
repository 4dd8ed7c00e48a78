#include "workbench/modem/NmeaWriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "workbench/modem/TextNumber.h"

namespace bench {

namespace {

struct System {
  Constellation constellation;
  std::string_view talker;
  int id;  // as the last field of GSA gives it
};
constexpr std::array<System, 5> kSystems = {{
    {Constellation::kGps, "GP", 1},
    {Constellation::kGlonass, "GL", 2},
    {Constellation::kGalileo, "GA", 3},
    {Constellation::kBeidou, "GB", 4},
    {Constellation::kQzss, "GQ", 5},
}};
constexpr std::size_t kUsedPerSentence = 12;
constexpr std::size_t kInViewPerSentence = 4;
constexpr double kGeoidSeparation = 46.9;  // metres

std::string Padded(long long number, int digits) {
  std::string text = std::to_string(number);
  const auto width = static_cast<std::size_t>(digits);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

std::string Decimal(const std::optional<double>& value, int decimals) {
  return value ? Fixed(*value, decimals) : std::string();
}

std::string Whole(const std::optional<double>& value, int digits) {
  return value ? Padded(std::llround(*value), digits) : std::string();
}

// "hhmmss.ss"
std::string TimeField(Utc time) {
  const std::chrono::hh_mm_ss day(time - std::chrono::floor<std::chrono::days>(time));
  return Padded(day.hours().count(), 2) + Padded(day.minutes().count(), 2) +
         Padded(day.seconds().count(), 2) + '.' + Padded(day.subseconds().count() / 10, 2);
}

// "ddmmyy"
std::string DateField(Utc time) {
  const std::chrono::year_month_day date(std::chrono::floor<std::chrono::days>(time));
  return Padded(static_cast<unsigned>(date.day()), 2) +
         Padded(static_cast<unsigned>(date.month()), 2) +
         Padded(static_cast<int>(date.year()) % 100, 2);
}

// "ddmm.mmmmm,N"
std::string CoordinateFields(double degrees, int degreeDigits, char positive, char negative) {
  constexpr long long kPerMinute = 100'000;
  constexpr long long kPerDegree = 60 * kPerMinute;
  const long long units = std::llround(std::abs(degrees) * static_cast<double>(kPerDegree));
  const long long minutes = units % kPerDegree;
  return Padded(units / kPerDegree, degreeDigits) + Padded(minutes / kPerMinute, 2) + '.' +
         Padded(minutes % kPerMinute, 5) + ',' + (std::signbit(degrees) ? negative : positive);
}

std::string Position(const GnssFix& fix) {
  return CoordinateFields(fix.latitude, 2, 'N', 'S') + ',' +
         CoordinateFields(fix.longitude, 3, 'E', 'W');
}

std::vector<const Satellite*> Of(const GnssFix& fix, Constellation constellation, bool usedOnly) {
  std::vector<const Satellite*> chosen;
  for (const Satellite& satellite : fix.satellites) {
    if (satellite.constellation == constellation && (satellite.used || !usedOnly)) {
      chosen.push_back(&satellite);
    }
  }
  return chosen;
}

std::string Gga(const GnssFix& fix) {
  const auto used = std::count_if(fix.satellites.begin(), fix.satellites.end(),
                                  [](const Satellite& satellite) { return satellite.used; });
  std::optional<double> seaLevel = fix.altitudeEllipsoid;
  if (seaLevel) *seaLevel -= kGeoidSeparation;
  return "GNGGA," + TimeField(fix.time) + ',' + Position(fix) + ",1," + Padded(used, 2) + ',' +
         Decimal(fix.hdop, 2) + ',' + Decimal(seaLevel, 1) + ",M," + Fixed(kGeoidSeparation, 1) +
         ",M,,";
}

std::string Rmc(const GnssFix& fix) {
  return "GNRMC," + TimeField(fix.time) + ",A," + Position(fix) + ',' + Decimal(fix.speedKnots, 2) +
         ',' + Decimal(fix.trueHeading, 2) + ',' + DateField(fix.time) + ",,,A";
}

std::string Gsa(const GnssFix& fix, const System& system,
                const std::vector<const Satellite*>& used) {
  std::string body = "GNGSA,A,3";
  for (std::size_t i = 0; i < kUsedPerSentence; ++i) {
    body += ',';
    if (i < used.size()) body += Padded(used[i]->number, 2);
  }
  return body + ',' + Decimal(fix.pdop, 2) + ',' + Decimal(fix.hdop, 2) + ',' +
         Decimal(fix.vdop, 2) + ',' + std::to_string(system.id);
}

void AddGsv(const System& system, const std::vector<const Satellite*>& inView,
            std::vector<std::string>& sentences) {
  const std::size_t total = (inView.size() + kInViewPerSentence - 1) / kInViewPerSentence;
  for (std::size_t i = 0; i < total; ++i) {
    std::string body = std::string(system.talker) + "GSV," + std::to_string(total) + ',' +
                       std::to_string(i + 1) + ',' + Padded(static_cast<int>(inView.size()), 2);
    const std::size_t end = std::min((i + 1) * kInViewPerSentence, inView.size());
    for (std::size_t k = i * kInViewPerSentence; k < end; ++k) {
      const Satellite& satellite = *inView[k];
      body += ',' + Padded(satellite.number, 2) + ',' + Whole(satellite.elevation, 2) + ',' +
              Whole(satellite.azimuth, 3) + ',' + Whole(satellite.snr, 2);
    }
    sentences.push_back(WithChecksum(body));
  }
}

}  // namespace

std::string WithChecksum(std::string_view body) {
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return '$' + std::string(body) + '*' + kDigits[sum >> 4] + kDigits[sum & 15];
}

std::vector<std::string> WriteSentences(const GnssFix& fix) {
  std::vector<std::string> sentences = {WithChecksum(Gga(fix)), WithChecksum(Rmc(fix))};
  for (const System& system : kSystems) {
    const auto used = Of(fix, system.constellation, true);
    if (!used.empty()) sentences.push_back(WithChecksum(Gsa(fix, system, used)));
  }
  for (const System& system : kSystems) {
    AddGsv(system, Of(fix, system.constellation, false), sentences);
  }
  return sentences;
}

}  // namespace bench
