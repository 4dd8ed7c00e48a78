// The whole dialogue with the simulated modem in both shapes of its reports, line by line.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <sstream>

#include "tests/driver/ModemTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps the lines of both sides in their order, a report or sentence by its beginning only.
class Dialogue final : public ModemObserver {
 public:
  void OnCommand(Millis, std::string_view line) override { Add("> " + std::string(line)); }
  void OnAnswer(Millis, std::string_view bytes) override {
    std::istringstream text{std::string(bytes)};
    for (std::string line; std::getline(text, line);) {
      if (line.ends_with('\r')) line.pop_back();
      if (line.starts_with("$")) line = "$";
      if (line.starts_with("+XLCSLSR: 0")) line = "+XLCSLSR: 0";
      if (!line.empty()) Add("< " + line);
    }
  }
  std::vector<std::string> Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(lines_, {});
  }

 private:
  void Add(std::string line) {
    const std::lock_guard lock(mutex_);
    // A report's sentences are as many as the track gives: one line stands for them.
    if (line == "< $" && !lines_.empty() && lines_.back() == line) return;
    lines_.push_back(std::move(line));
  }

  std::mutex mutex_;
  std::vector<std::string> lines_;
};

class ModemReportShape : public testing::Test {
 protected:
  /// From the first report to the end of a command that is not a stop.
  std::vector<std::string> FixAndCommand(ReportShape shape) {
    VirtualClock clock;
    Dialogue dialogue;
    RigOptions options;
    options.modem.reportShape = shape;
    options.observers = {&dialogue};
    Rig rig(clock, std::move(options));
    EXPECT_EQ(rig.Start(), S_OK);
    auto client = rig.NewClient();
    clock.SleepFor(100);
    EXPECT_EQ(client->Connect(), S_OK);
    EXPECT_EQ(client->Subscribe(), S_OK);
    clock.SleepFor(1000);
    dialogue.Take();
    EXPECT_TRUE(client->WaitForReports(1, 60'000));
    const std::string on(4, '\0');
    constexpr ULONG kWriteRadio = 0x8905A008;
    const ClientRequest request = rig.host().SendIoControl(kWriteRadio, on, 0);
    EXPECT_TRUE(request.Wait());
    EXPECT_EQ(request.Status(), S_OK);
    clock.SleepFor(10);
    auto lines = dialogue.Take();
    client.reset();
    rig.Shutdown();
    EXPECT_THAT(rig.Findings(), IsEmpty());
    return lines;
  }
};

TEST_F(ModemReportShape, WithAnOkOfItsOwnTheNextCommandIsWrittenOnce) {
  EXPECT_THAT(FixAndCommand(ReportShape::kOkThenSentences),
              ElementsAre("< +XLCSLSR: 0", "< OK", "< $", "< OK", "> AT+XLCSSWITCH=1",
                          "< AT+XLCSSWITCH=1", "< OK"));
}

TEST_F(ModemReportShape, WithSentencesOnlyTheNextCommandIsWrittenTwice) {
  EXPECT_THAT(FixAndCommand(ReportShape::kSentencesOnly),
              ElementsAre("< +XLCSLSR: 0", "< $", "< OK", "> AT+XLCSSWITCH=1", "< AT+XLCSSWITCH=1",
                          "< OK", "> AT+XLCSSWITCH=1", "< AT+XLCSSWITCH=1", "< OK"));
}

}  // namespace
}  // namespace bench
