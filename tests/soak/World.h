// One run: a driver with its modem, clients and host, to whom a plan's decisions happen.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "tests/soak/Decision.h"
#include "tests/soak/Visitor.h"
#include "tests/soak/Watch.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/rig/Rig.h"

namespace soak {

struct Result {
  Tally tally;
  std::vector<Breach> breaches;
};

/// Used once, on the thread that makes it.
class World {
 public:
  /// Throws std::runtime_error with one line for a person when the driver cannot be loaded.
  explicit World(const Plan& plan, bool show = false);
  ~World();

  Result Run();

 private:
  using Numbers = std::array<std::int64_t, 4>;

  void Do(const Decision& decision);
  bool DoAsClient(Deed deed, const Numbers& numbers);
  bool DoToModem(Deed deed, const Numbers& numbers);
  void DoToHost(Deed deed, const Numbers& numbers);

  void Write(Visitor& visitor, std::size_t index);
  void SendControl(const std::string& what, ULONG code, const std::string& input, Millis limit);
  void SwitchRadio(std::int64_t state);
  void Inject(bench::ModemAction action, std::int64_t amount = 0, std::string text = {});
  void React(const Numbers& numbers);
  void PowerDown();
  void PowerUp();
  void WriteConfig(std::int64_t which);

  void Calm();
  bool ReportsComeBack();
  void WaitForVisitors();
  void End(bool pulledOut);
  void LookBack();

  const Plan& plan_;
  bench::VirtualClock clock_;
  Watch watch_;
  std::unique_ptr<bench::Rig> rig_;
  Doors doors_{clock_};
  std::vector<std::unique_ptr<Visitor>> visitors_;
  std::array<std::unique_ptr<Errands>, 2> hosts_;  // who sends the host's own requests
  std::size_t nextHost_ = 0;
  bool asleep_ = false;
  bool ended_ = false;
};

}  // namespace soak
