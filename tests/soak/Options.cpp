#include "tests/soak/Options.h"

#include <cmath>
#include <optional>

#include "workbench/modem/TextNumber.h"

namespace soak {

namespace {

constexpr double kHour = 3'600'000;
constexpr double kMostHours = 10'000;

std::optional<double> Positive(const std::string& text, double most) {
  const auto number = bench::ToNumber<double>(text);
  return number && *number > 0 && *number <= most ? number : std::nullopt;
}

// Sets what an option with a value says; returns what was expected instead, or nothing.
std::string Set(Options& options, const std::string& name, const std::string& value) {
  if (name == "--replay") {
    options.replay = value;
    return value.empty() ? "a file" : "";
  }
  if (name == "--seed" || name == "--seeds") {
    const auto number = bench::ToNumber<std::uint64_t>(value);
    if (!number || (name == "--seeds" && *number == 0)) return "a whole number";
    (name == "--seed" ? options.firstSeed : options.seeds) = *number;
    return {};
  }
  const auto number = Positive(value, kMostHours);
  if (!number) return "a positive number";
  if (name == "--hours") {
    options.length = std::llround(*number * kHour);
  } else {
    options.total = std::llround(*number * 24 * kHour);
  }
  return {};
}

}  // namespace

bench::Outcome<Options> ReadOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    if (name == "--help") {
      options.help = true;
    } else if (name == "--list") {
      options.list = true;
    } else if (name == "--show") {
      options.show = true;
    } else if (name == "--no-reduce") {
      options.reduce = false;
    } else if (name == "--seed" || name == "--seeds" || name == "--hours" || name == "--days" ||
               name == "--replay") {
      const std::string value = i + 1 < arguments.size() ? arguments[++i] : std::string();
      const std::string expected = Set(options, name, value);
      if (!expected.empty()) {
        return bench::NoValue<Options>(name + ": expected " + expected + ", not \"" + value + '"');
      }
    } else {
      return bench::NoValue<Options>("no such option: \"" + name + "\"; try --help");
    }
  }
  return {.value = options, .error = {}};
}

std::string HelpText() {
  return R"(soak [options]: lets random things happen to the driver and holds it to the rules.

  --seed N       the first seed (default 1)
  --seeds COUNT  so many seeds, one run each (default 1)
  --hours H      the simulated length of a run (default 2)
  --days D       go on to the next seed until the runs make up D simulated days
  --replay FILE  run a plan as a failing seed printed it
  --list         print the plans and run nothing
  --show         print everything that happens in the runs
  --no-reduce    print a failing plan whole
  --help         print this text

Exit code: 0 when every rule was kept, 1 when one was broken, 2 for a bad option or file, 3 when a
run hung. docs/soak.md tells what happens in a run and which rules there are.
)";
}

}  // namespace soak
