// The command line of workbench.exe.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/modem/ModemOptions.h"
#include "workbench/modem/Outcome.h"
#include "workbench/modem/ReportWriter.h"

namespace bench {

struct SimChange {
  std::string imsi;
  Millis at = 0;  // after the clients have subscribed
};

/// File names are UTF-8, as given; empty when not given.
struct DemoOptions {
  std::optional<Millis> duration;        // nothing: the whole log, or the drive's half minute
  std::vector<unsigned long> intervals;  // milliseconds, one a client; never empty
  std::string nmea;
  std::optional<double> pace;  // simulated milliseconds per real one, 0 as fast as possible
  int form = 0;
  ReportShape shape = ReportShape::kOkThenSentences;
  std::string script;
  std::string sim;
  std::optional<SimChange> simChange;
  std::string config;
  bool handOver = false;
  bool radioOff = false;
  bool noConfig = false;
  bool noAtPort = false;
  std::optional<Millis> unplug;        // after the clients have subscribed
  std::optional<unsigned char> trace;  // the least grave level that is recorded
  std::string runFolder;
  std::string dll;
  std::string transcript;
  bool all = false;
  bool quiet = false;
};

enum class Task { kDemo, kHelp, kDemoHelp, kVersion };

struct CommandLine {
  Task task = Task::kDemo;
  DemoOptions demo;
};

/// `arguments` without the program's name. Fails with one line that names what is wrong.
Outcome<CommandLine> ReadCommandLine(const std::vector<std::string>& arguments);

std::string HelpText();
std::string DemoHelpText();

}  // namespace bench
