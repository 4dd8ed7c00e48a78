#include "tests/sweep/Options.h"

#include <algorithm>

#include "tests/sweep/Scenarios.h"

namespace bench {

namespace {

bool IsScenario(const std::string& name) {
  return std::ranges::find(Scenarios(), name, &Scenario::name) != Scenarios().end();
}

}  // namespace

Outcome<SweepOptions> ReadSweepOptions(const std::vector<std::string>& arguments) {
  SweepOptions options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    if (name == "--help") {
      options.help = true;
    } else if (name == "--list") {
      options.list = true;
    } else if (name == "--unprescribed") {
      options.unprescribed = true;
    } else if (name == "--scenario" || name == "--mishap") {
      if (++i == arguments.size()) return NoValue<SweepOptions>(name + " needs a value");
      const std::string& value = arguments[i];
      if (name == "--mishap") {
        options.mishap = value;
      } else if (IsScenario(value)) {
        options.scenarios.push_back(value);
      } else {
        return NoValue<SweepOptions>("there is no scenario \"" + value + "\"; --list names them");
      }
    } else {
      return NoValue<SweepOptions>("no such option: \"" + name + "\"; try --help");
    }
  }
  return {.value = options, .error = {}};
}

std::string SweepHelpText() {
  return
      R"(sweep [options]: runs each scenario once for each call in it that can fail, with that call
failing, and once with it and all later ones of its kind failing; then the device is pulled
out, and stopped, at each call of the framework. Every run has to end with the device stopped,
nothing left behind and no rule broken, and what a call failed in has to return what is
prescribed.

  --scenario NAME     this one only (may be repeated)
  --mishap TEXT       this mishap only, as a finding names it, and say what happens
  --unprescribed      say which failing calls have no prescribed result
  --list              print the scenarios and how many runs each takes
  --help              print this text

Exit code: 0 no findings, 1 findings, 2 a bad option, 3 a run that did not end or crashed.
)";
}

}  // namespace bench
