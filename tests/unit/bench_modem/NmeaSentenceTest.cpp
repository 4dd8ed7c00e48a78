// One line of a log: its checksum and its fields.
#include <gtest/gtest.h>

#include "workbench/modem/NmeaSentence.h"
#include "workbench/modem/NmeaWriter.h"

namespace bench {
namespace {

/// Views into `line`, which the caller keeps.
NmeaSentence Read(const std::string& line) {
  NmeaSentence sentence;
  EXPECT_EQ(ReadNmeaLine(line, sentence), LineKind::kSentence) << line;
  return sentence;
}

LineKind KindOf(std::string_view line) {
  NmeaSentence sentence;
  return ReadNmeaLine(line, sentence);
}

TEST(NmeaSentence, IsCutAtItsCommas) {
  const std::string line = WithChecksum("GNGGA,,1,x,");
  const NmeaSentence sentence = Read(line);
  EXPECT_EQ(sentence.text, line);
  EXPECT_EQ(sentence.Talker(), "GN");
  EXPECT_EQ(sentence.Type(), "GGA");
  EXPECT_EQ(sentence.fields, (std::vector<std::string_view>{"GNGGA", "", "1", "x", ""}));
  EXPECT_EQ(sentence.Field(9), "");
}

TEST(NmeaSentence, MakersOwnHasNeitherTalkerNorType) {
  const std::string line = WithChecksum("PMAKE,1");
  EXPECT_EQ(Read(line).Talker(), "");
  EXPECT_EQ(Read(line).Type(), "");
}

TEST(NmeaSentence, ChecksumMayBeInSmallLettersAndBlanksMayFollow) {
  EXPECT_EQ(KindOf("$GPRMC,083559.00,A,4717.11437,N,00833.91522,E,0.004,77.52,091202,,,A*57  \r"),
            LineKind::kSentence);
  const std::string upper = WithChecksum("GNZZZ,8");
  std::string lower = upper;
  for (char& c : lower) c = c >= 'A' && c <= 'F' && &c > &lower[lower.find('*')] ? c + 32 : c;
  EXPECT_EQ(KindOf(lower), LineKind::kSentence);
}

TEST(NmeaSentence, GarbageBeforeTheDollarIsPassedOver) {
  EXPECT_EQ(Read("\x01\x7f$GPGS" + WithChecksum("GPVTG,")).Type(), "VTG");
}

TEST(NmeaSentence, WrongCutOrAbsentChecksumIsBad) {
  EXPECT_EQ(KindOf("$GPVTG,1*00"), LineKind::kBadChecksum);
  EXPECT_EQ(KindOf("$GPVTG,1*4"), LineKind::kBadChecksum);
  EXPECT_EQ(KindOf("$GPVTG,1*"), LineKind::kBadChecksum);
  EXPECT_EQ(KindOf("$GPVTG,1*0G"), LineKind::kBadChecksum);
  EXPECT_EQ(KindOf("$GPVTG,1"), LineKind::kBadChecksum);
  EXPECT_EQ(KindOf("$"), LineKind::kBadChecksum);
}

TEST(NmeaSentence, LineWithoutADollarIsGarbage) {
  EXPECT_EQ(KindOf("# a comment"), LineKind::kGarbage);
  EXPECT_EQ(KindOf("!AIVDM,1*00"), LineKind::kGarbage);
}

TEST(NmeaSentence, TimesOfDayAreReadToTheMillisecond) {
  const std::string line = WithChecksum(
      "X,235959.999,000000,1234,246000.0,126000.0,120061.0,12a456,-10000,120001e9,120000.");
  const NmeaSentence sentence = Read(line);
  EXPECT_EQ(sentence.TimeOfDay(1), 86'399'999);
  EXPECT_EQ(sentence.TimeOfDay(2), 0);
  for (std::size_t i = 3; i <= 9; ++i) EXPECT_EQ(sentence.TimeOfDay(i), std::nullopt) << i;
  EXPECT_EQ(sentence.TimeOfDay(10), 43'200'000);
}

TEST(NmeaSentence, DatesAreOfThisCenturyUpToSeventyNine) {
  const std::string line = WithChecksum("X,290224,060180,300224,,1,0102xx");
  const NmeaSentence sentence = Read(line);
  using namespace std::chrono;
  EXPECT_EQ(sentence.Date(1), sys_days{year{2024} / 2 / 29});
  EXPECT_EQ(sentence.Date(2), sys_days{year{1980} / 1 / 6});
  for (std::size_t i = 3; i <= 6; ++i) EXPECT_EQ(sentence.Date(i), std::nullopt) << i;
}

TEST(NmeaSentence, CoordinatesNeedTheirHemisphereAndMustBePossible) {
  const std::string line = WithChecksum(
      "X,4807.038,N,01131.5,W,4807.038,,,N,9000.1,S,4860.0,N,-100.0,N,1234.5,NN,nan,N,1234.5,Q");
  const NmeaSentence sentence = Read(line);
  EXPECT_DOUBLE_EQ(*sentence.Coordinate(1, 90), 48 + 7.038 / 60);
  EXPECT_DOUBLE_EQ(*sentence.Coordinate(3, 180), -(11 + 31.5 / 60));
  for (std::size_t i = 5; i <= 19; i += 2) {
    EXPECT_EQ(sentence.Coordinate(i, 90), std::nullopt) << i;
  }
}

TEST(NmeaSentence, NumbersAreReadWholeOrNotAtAll) {
  const std::string line = WithChecksum("X,1.5,,1.5x,inf,07");
  const NmeaSentence sentence = Read(line);
  EXPECT_EQ(sentence.Number(1), 1.5);
  for (std::size_t i = 2; i <= 4; ++i) EXPECT_EQ(sentence.Number(i), std::nullopt) << i;
  EXPECT_EQ(sentence.Integer(5), 7);
  EXPECT_EQ(sentence.Integer(1), std::nullopt);
}

}  // namespace
}  // namespace bench
