#include "tests/bench/DriveText.h"

#include "workbench/modem/DriveTrack.h"
#include "workbench/modem/ReportWriter.h"

namespace bench {

GnssFix DriveFix(int second) {
  static const DriveTrack track({.tunnel = false});
  return track.At(Millis{second} * 1000).value();
}

std::string FixText(const GnssFix& fix, int form) {
  std::string text = WriteReport(AsReported(fix, form), form) + "\r\n\r\nOK\r\n";
  for (const std::string& sentence : fix.sentences) text.append(sentence).append("\r\n");
  return text + "\r\nOK";
}

std::string DriveText(int seconds) {
  std::string text;
  for (int second = 0; second < seconds; ++second) {
    text.append("\r\n").append(FixText(DriveFix(second))).append("\r\n");
  }
  return text;
}

}  // namespace bench
