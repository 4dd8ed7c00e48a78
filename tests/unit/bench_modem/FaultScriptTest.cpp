// The fault script's grammar and its messages.
#include <gtest/gtest.h>

#include "workbench/modem/ModemFaults.h"

namespace bench {
namespace {

std::string ErrorOf(std::string_view script) {
  return ParseFaults(script, "f").error;
}

TEST(FaultScript, EmptyLinesAndCommentsSayNothing) {
  const auto faults = ParseFaults("\n  # note\r\n\t\n#\n", "f");
  ASSERT_TRUE(faults);
  EXPECT_TRUE(faults.value->timed.empty());
  EXPECT_TRUE(faults.value->reactions.empty());
}

TEST(FaultScript, EveryActionIsRead) {
  const auto faults = ParseFaults(
      "at 0 silent 1.5\nat 0.25 lose-fix 20\nat 1 garbage\nat 1 garbage 3\n"
      "at 2 line OK then # more\nat 3 sim 310410123456789\nat 4 restart\nat 5 echo off\n"
      "at 5 echo on\nat 6 cut 7\nat 6 cut random 9\nat 6 cut off\nat 7 join 40\n"
      "at 8 stall-control 2\r\nat 9 form 3\nat 9 shape sentences-first\nat 9 shape ok-first\nat 9 "
      "obey\n",
      "f");
  ASSERT_EQ(faults.error, "");
  struct Expected {
    Millis at;
    ModemAction action;
    std::int64_t amount;
    std::string text;
  };
  const std::vector<Expected> expected = {
      {0, ModemAction::kSilent, 1500, ""},      {250, ModemAction::kLoseFix, 20'000, ""},
      {1000, ModemAction::kGarbage, 16, ""},    {1000, ModemAction::kGarbage, 3, ""},
      {2000, ModemAction::kLine, 0, "OK then"}, {3000, ModemAction::kSim, 0, "310410123456789"},
      {4000, ModemAction::kRestart, 0, ""},     {5000, ModemAction::kEchoOff, 0, ""},
      {5000, ModemAction::kEchoOn, 0, ""},      {6000, ModemAction::kCut, 7, ""},
      {6000, ModemAction::kCutRandom, 9, ""},   {6000, ModemAction::kCut, 0, ""},
      {7000, ModemAction::kJoin, 40, ""},       {8000, ModemAction::kStallControl, 2, ""},
      {9000, ModemAction::kForm, 3, ""},        {9000, ModemAction::kShape, 1, ""},
      {9000, ModemAction::kShape, 0, ""},       {9000, ModemAction::kObey, 0, ""}};
  const auto& timed = faults.value->timed;
  ASSERT_EQ(timed.size(), expected.size());
  for (std::size_t i = 0; i < timed.size(); ++i) {
    EXPECT_EQ(timed[i].at, expected[i].at) << i;
    EXPECT_EQ(timed[i].action, expected[i].action) << i;
    EXPECT_EQ(timed[i].amount, expected[i].amount) << i;
    EXPECT_EQ(timed[i].text, expected[i].text) << i;
  }
}

TEST(FaultScript, EveryReactionIsReadWithItsCountAndDelay) {
  const auto faults = ParseFaults(
      "on AT+XLCSLSR silence 3\non * error\non AT late 1500 2\non ATE1 twice always\n"
      "on AT garbage 0\non AT no-echo 1\non AT+XLSRSTOP straggle 20\n",
      "f");
  ASSERT_EQ(faults.error, "");
  struct Expected {
    std::string command;
    Reaction reaction;
    std::int64_t count;
    Millis delay;
  };
  const std::vector<Expected> expected = {
      {"AT+XLCSLSR", Reaction::kSilence, 3, 0},   {"*", Reaction::kError, 1, 0},
      {"AT", Reaction::kLate, 2, 1500},           {"ATE1", Reaction::kTwice, kAlways, 0},
      {"AT", Reaction::kGarbage, 0, 0},           {"AT", Reaction::kNoEcho, 1, 0},
      {"AT+XLSRSTOP", Reaction::kStraggle, 1, 20}};
  const auto& reactions = faults.value->reactions;
  ASSERT_EQ(reactions.size(), expected.size());
  for (std::size_t i = 0; i < reactions.size(); ++i) {
    EXPECT_EQ(reactions[i].command, expected[i].command) << i;
    EXPECT_EQ(reactions[i].reaction, expected[i].reaction) << i;
    EXPECT_EQ(reactions[i].count, expected[i].count) << i;
    EXPECT_EQ(reactions[i].delay, expected[i].delay) << i;
  }
}

TEST(FaultScript, MistakesNameTheirLineAndWhatIsWrong) {
  const std::vector<std::pair<std::string, std::string>> mistakes = {
      {"when 1 restart", "expected \"at\" or \"on\", not \"when\""},
      {"at soon restart", "expected a time in seconds, not \"soon\""},
      {"at -1 restart", "expected a time in seconds, not \"-1\""},
      {"at nan restart", "expected a time in seconds, not \"nan\""},
      {"at 1e300 restart", "expected a time in seconds, not \"1e300\""},
      {"at 1", "unknown action \"\""},
      {"at 1 explode", "unknown action \"explode\""},
      {"at 1 restart now", "unexpected \"now\""},
      {"at 1 silent", "expected a number of seconds, not \"\""},
      {"at 1 silent long", "expected a number of seconds, not \"long\""},
      {"at 1 garbage some", "expected a whole number, not \"some\""},
      {"at 1 line", "expected a text"},
      {"at 1 echo maybe", "expected \"on\" or \"off\", not \"maybe\""},
      {"at 1 cut", "expected a whole number, not \"\""},
      {"at 1 cut random", "expected a whole number, not \"\""},
      {"at 1 join -4", "expected a whole number, not \"-4\""},
      {"at 1 stall-control 1.5", "expected a whole number, not \"1.5\""},
      {"at 1 form 4", "expected a report form, not \"4\""},
      {"at 1 form", "expected a report form, not \"\""},
      {"at 1 shape round", "expected \"ok-first\" or \"sentences-first\", not \"round\""},
      {"on", "expected a command or \"*\", not \"\""},
      {"on OK error", "expected a command or \"*\", not \"OK\""},
      {"on AT", "unknown reaction \"\""},
      {"on AT explode", "unknown reaction \"explode\""},
      {"on AT late", "expected a whole number, not \"\""},
      {"on AT error often", "expected a whole number, not \"often\""},
      {"on AT error 1 2", "unexpected \"2\""}};
  for (const auto& [line, message] : mistakes) {
    EXPECT_EQ(ErrorOf("# first\n\n" + line + "\nat 1 restart"), "f:3: " + message);
  }
}

TEST(FaultScript, MissingFileIsNamed) {
  const auto faults = LoadFaults("no-such-script.txt");
  EXPECT_FALSE(faults);
  EXPECT_TRUE(faults.error.starts_with("no-such-script.txt: cannot be read")) << faults.error;
}

TEST(FaultScript, CommandIsNamedByItsWholeBeginning) {
  EXPECT_TRUE(CommandMatches("AT+XLCSLSR=1,1", "AT+XLCSLSR"));
  EXPECT_TRUE(CommandMatches("AT+XLCSSWITCH?", "AT+XLCSSWITCH"));
  EXPECT_TRUE(CommandMatches("AT+XLCSSWITCH?", "AT+XLCSSWITCH?"));
  EXPECT_TRUE(CommandMatches("AT+CIMI", "*"));
  EXPECT_FALSE(CommandMatches("AT+XLCSLSRX", "AT+XLCSLSR"));
  EXPECT_FALSE(CommandMatches("AT+XLCS", "AT+XLCSLSR"));
  EXPECT_FALSE(CommandMatches("ATE1", "AT"));
}

}  // namespace
}  // namespace bench
