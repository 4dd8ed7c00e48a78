#include "workbench/Options.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "workbench/modem/TextNumber.h"
#include "workbench/trace/TraceLevel.h"

namespace bench {

namespace {

constexpr unsigned long kDefaultInterval = 2000;
constexpr unsigned long kShortestInterval = 1000;
constexpr std::uint32_t kLongestRun = 7 * 24 * 3600;  // seconds
constexpr double kFastestPace = 10'000;

std::string Quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

std::optional<Millis> Seconds(std::string_view text, std::uint32_t least) {
  const auto seconds = ToNumber<std::uint32_t>(text);
  if (!seconds || *seconds < least || *seconds > kLongestRun) return std::nullopt;
  return Millis{*seconds} * 1000;
}

bool IsImsi(std::string_view text) {
  return text.size() >= 6 && text.size() <= 15 &&
         text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Each of these takes one option's value and returns what was expected instead, or nothing.
std::string ReadSeconds(DemoOptions& options, std::string_view value) {
  options.duration = Seconds(value, 1);
  return options.duration ? "" : "a number of seconds from 1 to 604800";
}

std::string ReadInterval(DemoOptions& options, std::string_view value) {
  const auto interval = ToNumber<std::uint32_t>(value);
  if (!interval || (*interval != 0 && *interval < kShortestInterval)) {
    return "0 or a number of milliseconds from 1000 on";
  }
  options.intervals.push_back(*interval);
  return {};
}

std::string ReadPace(DemoOptions& options, std::string_view value) {
  options.pace = ToNumber<double>(value);
  const bool good = options.pace && *options.pace >= 0 && *options.pace <= kFastestPace;
  return good ? "" : "a number from 0 to 10000";
}

std::string ReadForm(DemoOptions& options, std::string_view value) {
  const auto form = ToNumber<int>(value);
  if (!form || *form < 0 || *form >= kReportForms) return "a report form from 0 to 3";
  options.form = *form;
  return {};
}

std::string ReadShape(DemoOptions& options, std::string_view value) {
  if (value != "ok-first" && value != "sentences-first") return "ok-first or sentences-first";
  options.shape = value == "ok-first" ? ReportShape::kOkThenSentences : ReportShape::kSentencesOnly;
  return {};
}

std::string ReadSim(DemoOptions& options, std::string_view value) {
  options.sim = value;
  return IsImsi(value) ? "" : "an IMSI of 6 to 15 digits";
}

std::string ReadSimChange(DemoOptions& options, std::string_view value) {
  const auto at = std::min(value.find('@'), value.size());
  const std::string_view imsi = value.substr(0, at);
  const auto time = Seconds(value.substr(std::min(at + 1, value.size())), 0);
  if (!IsImsi(imsi) || !time) return "IMSI@SECONDS, as in 999990123456789@15";
  options.simChange = {.imsi = std::string(imsi), .at = *time};
  return {};
}

std::string ReadUnplug(DemoOptions& options, std::string_view value) {
  options.unplug = Seconds(value, 1);
  return options.unplug ? "" : "a number of seconds from 1 to 604800";
}

std::string ReadTrace(DemoOptions& options, std::string_view value) {
  options.trace = ToTraceLevel(value);
  return options.trace ? "" : kTraceLevelHelp;
}

template <std::string DemoOptions::*Name>
std::string ReadName(DemoOptions& options, std::string_view value) {
  options.*Name = value;
  return value.empty() ? "a file name" : "";
}

template <bool DemoOptions::*Flag>
std::string SetFlag(DemoOptions& options, std::string_view) {
  options.*Flag = true;
  return {};
}

struct Option {
  std::string_view name;
  std::string_view value;  // what stands for it in the help; empty: it takes none
  std::string_view help;
  std::string (*read)(DemoOptions& options, std::string_view value);
};

constexpr std::array<Option, 21> kOptions = {{
    {"--seconds", "N", "how long it drives (default 30, with --nmea the whole log)", ReadSeconds},
    {"--interval", "MS",
     "a client and its report interval, 0 or from 1000 on; may be\n"
     "repeated (default one client, 2000, with --nmea 1000)",
     ReadInterval},
    {"--nmea", "FILE", "drive along a receiver's NMEA log instead of the built-in route",
     ReadName<&DemoOptions::nmea>},
    {"--pace", "N",
     "simulated seconds in a real one: 1 is real time, 0 as fast as\n"
     "it goes (default 1, with --nmea 0)",
     ReadPace},
    {"--form", "N", "the form of the modem's location reports, 0 to 3 (default 0)", ReadForm},
    {"--shape", "SHAPE",
     "ok-first: a report, its own OK, the sentences, OK (default);\n"
     "sentences-first: a report, the sentences, OK",
     ReadShape},
    {"--script", "FILE", "what goes wrong with the modem, an entry a line",
     ReadName<&DemoOptions::script>},
    {"--sim", "IMSI", "the SIM in the modem (default 001010123456789)", ReadSim},
    {"--sim-change", "IMSI@SECONDS",
     "another SIM after that time; a client then has the assistance\n"
     "data cleared, and the request that is started anew reads it",
     ReadSimChange},
    {"--config", "FILE",
     "the SUPL configuration file (default: a small one with test\n"
     "networks in it)",
     ReadName<&DemoOptions::config>},
    {"--no-config", "", "no SUPL configuration file is installed", SetFlag<&DemoOptions::noConfig>},
    {"--no-at-port", "", "none of the device's USB interfaces is an AT port",
     SetFlag<&DemoOptions::noAtPort>},
    {"--unplug", "SECONDS", "the device is pulled out that long after the clients subscribed",
     ReadUnplug},
    {"--hand-over", "",
     "the registry hands the modem over to another GNSS solution:\n"
     "shows that dialogue, without clients",
     SetFlag<&DemoOptions::handOver>},
    {"--radio-off", "",
     "the GNSS radio is off at first; after a third of the time it\n"
     "is switched on",
     SetFlag<&DemoOptions::radioOff>},
    {"--dll", "FILE", "the driver (default Stelvane.dll beside this program)",
     ReadName<&DemoOptions::dll>},
    {"--transcript", "FILE", "write every line of the AT dialogue there, with its time",
     ReadName<&DemoOptions::transcript>},
    {"--trace", "LEVEL",
     "show and record the driver's trace: critical, error, warning,\n"
     "information or verbose (1 to 5)",
     ReadTrace},
    {"--run-folder", "FOLDER",
     "keep the run there: at.txt, the AT dialogue; with --trace also\n"
     "trace.bin, the recorded trace, and trace.txt, its text (default\n"
     "with --trace: run beside this program)",
     ReadName<&DemoOptions::runFolder>},
    {"--all", "", "show every line, report and state in a run of over two minutes, too",
     SetFlag<&DemoOptions::all>},
    {"--quiet", "", "show the summary only", SetFlag<&DemoOptions::quiet>},
}};

/// Reads arguments one after another; "--name value" and "--name=value" are the same.
class Reader {
 public:
  explicit Reader(const std::vector<std::string>& arguments) : arguments_(arguments) {}

  Outcome<CommandLine> Read() {
    if (arguments_.empty()) return Wrong("no command given; try --help");
    const std::string& command = arguments_[next_++];
    if (command == "--help" || command == "-h" || command == "help") return Only(Task::kHelp);
    if (command == "--version") return Only(Task::kVersion);
    if (command != "demo") return Wrong("no such command: " + Quoted(command) + "; try --help");
    return ReadDemo();
  }

 private:
  static Outcome<CommandLine> Wrong(std::string why) {
    return NoValue<CommandLine>(std::move(why));
  }

  static Outcome<CommandLine> Only(Task task) {
    return {.value = CommandLine{.task = task, .demo = {}}, .error = {}};
  }

  Outcome<CommandLine> ReadDemo() {
    DemoOptions options;
    while (next_ < arguments_.size()) {
      const std::string_view argument = arguments_[next_++];
      if (argument == "--help" || argument == "-h") return Only(Task::kDemoHelp);
      if (std::string wrong = ReadOption(argument, options); !wrong.empty()) {
        return Wrong(std::move(wrong));
      }
    }
    if (options.noConfig && !options.config.empty()) {
      return Wrong("--no-config and --config exclude each other");
    }
    if (options.handOver &&
        (!options.intervals.empty() || options.simChange || options.radioOff || options.unplug)) {
      return Wrong("--hand-over has no clients and no location requests");
    }
    if (options.intervals.empty()) {
      options.intervals = {options.nmea.empty() ? kDefaultInterval : kShortestInterval};
    }
    return {.value = CommandLine{.task = Task::kDemo, .demo = std::move(options)}, .error = {}};
  }

  std::string ReadOption(std::string_view argument, DemoOptions& options) {
    const auto equals = std::min(argument.find('='), argument.size());
    const std::string_view name = argument.substr(0, equals);
    const auto option = std::ranges::find(kOptions, name, &Option::name);
    if (option == kOptions.end()) {
      return "no such option: " + Quoted(argument) + "; try demo --help";
    }
    std::string_view value;
    if (equals < argument.size()) {
      if (option->value.empty()) return std::string(name) + " takes no value";
      value = argument.substr(equals + 1);
    } else if (!option->value.empty()) {
      if (next_ == arguments_.size()) return std::string(name) + " needs a value";
      value = arguments_[next_++];
    }
    const std::string expected = option->read(options, value);
    if (expected.empty()) return {};
    return std::string(name) + " takes " + expected + ", not " + Quoted(value);
  }

  const std::vector<std::string>& arguments_;
  std::size_t next_ = 0;
};

std::string OptionHelp(const Option& option) {
  constexpr std::size_t kColumn = 29;
  std::string text = "  " + std::string(option.name);
  if (!option.value.empty()) text += ' ' + std::string(option.value);
  text.resize(std::max(text.size() + 1, kColumn), ' ');
  for (const char c : option.help) {
    text += c;
    if (c == '\n') text.append(kColumn, ' ');
  }
  return text + '\n';
}

}  // namespace

Outcome<CommandLine> ReadCommandLine(const std::vector<std::string>& arguments) {
  return Reader(arguments).Read();
}

std::string HelpText() {
  return "Runs the Stelvane driver without Windows and without a modem: a simulated framework\n"
         "host, Sensor API and modem around the DLL as it ships.\n"
         "\n"
         "  workbench demo [options]     shows the way of the fixes from the modem to the clients\n"
         "  workbench demo --help        explains the options\n"
         "  workbench --version          prints the version\n"
         "  workbench --help             prints this text\n"
         "\n"
         "Exit code: 0 all went well, 1 the road broke, 2 a bad option or file.\n";
}

std::string DemoHelpText() {
  std::string text =
      "workbench demo [options]: starts the driver, connects clients, shows each AT command and\n"
      "answer, each state and each report, and holds what the clients got against what the modem\n"
      "sent.\n"
      "\n";
  for (const Option& option : kOptions) text += OptionHelp(option);
  text += OptionHelp({"--help", "", "print this text", nullptr});
  text +=
      "\n"
      "Exit code: 0 when every fix that falls on the interval arrived with the values that the\n"
      "modem sent and nothing was left behind, 1 when the road broke, 2 for a bad option or file.\n"
      "Colours are used on a terminal unless NO_COLOR is set.\n";
  return text;
}

}  // namespace bench
