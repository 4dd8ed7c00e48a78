// Each thing that can be made to go wrong with the modem.
#include <gtest/gtest.h>

#include "tests/unit/bench_modem/ModemHost.h"
#include "workbench/modem/ReportWriter.h"

namespace bench {
namespace {

ModemFaults Script(std::string_view text) {
  auto faults = ParseFaults(text, "script");
  EXPECT_EQ(faults.error, "");
  return faults ? std::move(*faults) : ModemFaults{};
}

/// A modem with these faults and its echo on.
ModemOptions With(std::string_view script) {
  ModemOptions options;
  options.latency = 0;
  options.echo = true;
  options.coldStart = 1000;
  options.faults = Script(script);
  return options;
}

std::string Echoed(const std::string& command, const std::string& answer) {
  return command + "\r\n" + answer;
}

TEST(ModemFault, SilenceToACommandTakesItsCountAndObeysNothing) {
  ModemHost host(With("on AT+XLCSSWITCH silence 2"));
  host.Send("AT+XLCSSWITCH=0,1\r\nAT+XLCSSWITCH?\r\n");
  EXPECT_EQ(host.ReadFor(1000), "");
  EXPECT_EQ(host.Ask("AT+XLCSSWITCH?"),
            Echoed("AT+XLCSSWITCH?", std::string("\r\n+XLCSSWITCH : 1\r\n") + kOk));
  EXPECT_EQ(host.modem.Snapshot().commands, 3u);
}

TEST(ModemFault, SilenceToEveryCommandForGood) {
  ModemHost host(With("on * silence always"));
  host.Send("AT\r\nAT+CIMI\r\n");
  EXPECT_EQ(host.ReadFor(100'000), "");
}

TEST(ModemFault, ErrorInsteadOfTheAnswer) {
  ModemHost host(With("on AT+XLCSLQOS error 1"));
  EXPECT_EQ(host.Ask("AT+XLCSLQOS=50"), Echoed("AT+XLCSLQOS=50", kError));
  EXPECT_EQ(host.modem.Snapshot().qos, "");
  EXPECT_EQ(host.Ask("AT+XLCSLQOS=50"), Echoed("AT+XLCSLQOS=50", kOk));
  EXPECT_EQ(host.modem.Snapshot().qos, "50");
}

TEST(ModemFault, OneCommandsFaultLeavesTheOthersAlone) {
  ModemHost host(With("on AT+XLCSLSR error always\non AT+XLCSLSRX silence"));
  EXPECT_EQ(host.Ask("AT+XLCSLQOS=50"), Echoed("AT+XLCSLQOS=50", kOk));
  EXPECT_EQ(host.Ask(kEverySecond), Echoed(kEverySecond, kError));
}

TEST(ModemFault, EntriesForOneCommandApplyInTurn) {
  ModemHost host(With("on AT error 1\non AT twice 1"));
  EXPECT_EQ(host.Ask("AT"), Echoed("AT", kError));
  host.Send("AT\r\n");
  EXPECT_EQ(host.ReadFor(10), Echoed("AT", std::string(kOk) + kOk));
  EXPECT_EQ(host.Ask("AT"), Echoed("AT", kOk));
}

TEST(ModemFault, LateAnswerFollowsItsEchoByTheDelay) {
  ModemHost host(With("on AT late 1500"));
  host.Ask("AT");
  const auto chunks = host.Chunks();
  ASSERT_EQ(chunks.size(), 2u);
  EXPECT_EQ(chunks[0], std::pair(Millis{0}, std::string("AT\r\n")));
  EXPECT_EQ(chunks[1], std::pair(Millis{1500}, std::string(kOk)));
}

TEST(ModemFault, CommandsWaitBehindALateAnswer) {
  ModemHost host(With("on AT late 1500"));
  host.Send("AT\r\n");
  host.ReadFor(1000);
  host.Send("AT\r\n");
  EXPECT_EQ(host.ReadFor(1000), kOk + Echoed("AT", kOk));
}

TEST(ModemFault, GarbageBeforeAnAnswerIsALineOfItsOwn) {
  ModemHost host(With("on AT garbage"));
  const std::string text = host.Ask("AT");
  ASSERT_EQ(text.size(), Echoed("AT", kOk).size() + 16 + 4);
  EXPECT_TRUE(text.starts_with("AT\r\n\r\n"));
  for (const char c : text.substr(6, 16)) EXPECT_GE(static_cast<unsigned char>(c), 0x80);
}

TEST(ModemFault, AnswerWithoutItsEcho) {
  ModemHost host(With("on AT no-echo"));
  EXPECT_EQ(host.Ask("AT"), kOk);
  EXPECT_EQ(host.Ask("AT"), Echoed("AT", kOk));
}

TEST(ModemFault, EchoOffResistsAte1UntilItIsLetGo) {
  ModemHost host(With("at 1 echo off\nat 2 echo on"));
  host.ReadFor(1500);
  EXPECT_EQ(host.Ask("ATE1"), kOk);
  EXPECT_EQ(host.Ask("ATE1"), kOk);
  host.ReadFor(1000);
  EXPECT_EQ(host.Ask("AT"), Echoed("AT", kOk));
}

TEST(ModemFault, TimedSilenceSwallowsCommandsAndReports) {
  ModemHost host(With("at 2.5 silent 2"));
  host.Ask(kEverySecond);
  host.ReadFor(2600);
  host.Send("AT\r\n");
  EXPECT_EQ(host.ReadFor(1800), "");
  EXPECT_EQ(host.modem.Snapshot().fixesSent, 2u);
  EXPECT_NE(host.ReadFor(1000), "");
  EXPECT_EQ(host.modem.Snapshot().fixesSent, 3u);
}

TEST(ModemFault, ReactionsThatAreLeftAreForgotten) {
  ModemHost host(With("on AT error always\nat 2 obey"));
  EXPECT_EQ(host.Ask("AT"), Echoed("AT", kError));
  host.ReadFor(2500);
  EXPECT_EQ(host.Ask("AT"), Echoed("AT", kOk));
}

TEST(ModemFault, FormAndShapeOfTheReportsChange) {
  ModemHost host(With("at 1.5 form 3\nat 1.5 shape sentences-first"));
  host.Ask(kEverySecond);
  const std::string text = host.ReadFor(2500);
  ASSERT_EQ(host.Fixes().size(), 2u);
  const std::string sentences = "$GPXXX,first*00\r\n$GPXXX,second*00\r\n" + std::string(kOk);
  EXPECT_EQ(text, "\r\n" + WriteReport(host.Fixes()[0].fix, 0) + "\r\n" + kOk + sentences + "\r\n" +
                      WriteReport(host.Fixes()[1].fix, 3) + "\r\n" + sentences);
}

TEST(ModemFault, LostFixComesBack) {
  ModemHost host(With("at 1.5 lose-fix 2"));
  host.Ask(kEverySecond);
  host.ReadFor(4500);
  std::vector<Millis> times;
  for (const SentFix& sent : host.Fixes()) times.push_back(sent.at);
  EXPECT_EQ(times, (std::vector<Millis>{1000, 4000}));
}

TEST(ModemFault, GarbageAndLinesOutOfNowhereComeAtTheirTime) {
  ModemHost host(With("at 1 garbage 5\nat 2 line OK"));
  host.ReadFor(5000);
  const auto chunks = host.Chunks();
  ASSERT_EQ(chunks.size(), 2u);
  EXPECT_EQ(chunks[0].first, 1000);
  EXPECT_EQ(chunks[0].second.size(), 5u + 4u);
  EXPECT_EQ(chunks[1], std::pair(Millis{2000}, std::string(kOk)));
}

TEST(ModemFault, SimIsExchangedAtItsTime) {
  ModemHost host(With("at 30 sim 310410123456789"));
  host.ReadFor(29'999);
  EXPECT_EQ(host.modem.Snapshot().imsi, "001010123456789");
  host.ReadFor(2);
  EXPECT_EQ(host.modem.Snapshot().imsi, "310410123456789");
}

TEST(ModemFault, RestartOutOfNowhere) {
  ModemHost host(With("at 5 restart"));
  host.Ask(kEverySecond);
  host.ReadFor(5001);
  EXPECT_EQ(host.modem.Snapshot().restarts, 1u);
  EXPECT_EQ(host.ReadFor(60'000), "");
}

TEST(ModemFault, OutputIsCutAtThatManyBytesAndNothingIsLost) {
  for (const std::size_t length : {1u, 3u, 7u}) {
    ModemHost host(With("at 0 cut " + std::to_string(length)));
    const std::string text = host.Ask("AT+CIMI");
    EXPECT_EQ(text, Echoed("AT+CIMI", std::string("\r\n001010123456789\r\n") + kOk));
    std::string joined;
    for (const auto& [at, chunk] : host.Chunks()) {
      EXPECT_LE(chunk.size(), length);
      joined += chunk;
    }
    EXPECT_EQ(joined, text);
  }
}

TEST(ModemFault, RandomCutsAreTheSameForTheSameSeed) {
  const auto chunksFor = [](const std::string& seed) {
    ModemHost host(With("at 0 cut random " + seed));
    host.Ask(kEverySecond);
    host.ReadFor(3500);
    return host.Chunks();
  };
  EXPECT_EQ(chunksFor("1"), chunksFor("1"));
  EXPECT_NE(chunksFor("1"), chunksFor("2"));
}

TEST(ModemFault, CutsEndWhenSwitchedOff) {
  ModemHost host(With("at 0 cut 1\nat 1 cut off"));
  host.ReadFor(1001);
  host.Ask("AT");
  EXPECT_EQ(host.Chunks().size(), 2u);
}

TEST(ModemFault, JoinedOutputComesInOneChunkAfterItsTime) {
  ModemHost host(With("at 0 join 50"));
  host.Send("AT\r\nAT+CIMI\r\n");
  host.ReadFor(100);
  const auto chunks = host.Chunks();
  ASSERT_EQ(chunks.size(), 1u);
  EXPECT_EQ(chunks[0].first, 50);
  EXPECT_EQ(chunks[0].second,
            Echoed("AT", kOk) + Echoed("AT+CIMI", std::string("\r\n001010123456789\r\n") + kOk));
}

TEST(ModemFault, OneChunkIsNeverLongerThanATransfer) {
  ModemHost host(With("at 0 join 100000"));
  host.Ask(kEverySecond);
  host.ReadFor(100'500);
  std::size_t total = 0;
  for (const auto& [at, chunk] : host.Chunks()) {
    EXPECT_LE(chunk.size(), 4096u);
    total += chunk.size();
  }
  EXPECT_GT(total, 4096u);
  EXPECT_EQ(total, host.modem.Snapshot().bytesOut);
}

TEST(ModemFault, StragglerComesAfterTheStop) {
  ModemHost host(With("on AT+XLSRSTOP straggle 300"));
  host.Ask(kEverySecond);
  host.ReadFor(1500);
  host.Ask("AT+XLSRSTOP=0,1");
  const std::string text = host.ReadFor(10'000);
  EXPECT_TRUE(text.starts_with("\r\n+XLCSLSR: 0,"));
  const auto fixes = host.Fixes();
  ASSERT_EQ(fixes.size(), 2u);
  EXPECT_FALSE(fixes[0].straggler);
  EXPECT_TRUE(fixes[1].straggler);
  EXPECT_EQ(fixes[1].at, 1800);
  EXPECT_EQ(host.modem.Snapshot().stragglersSent, 1u);
}

TEST(ModemFault, StalledControlRequestsReturnTheStatusSetUp) {
  ModemOptions options = With("at 0 stall-control 2");
  options.stallStatus = -17;
  ModemHost host(options);
  const ControlRequest lineState{.requestType = 0x21, .request = 0x22, .value = 3};
  EXPECT_EQ(host.modem.OnControlRequest(lineState), -17);
  EXPECT_EQ(host.modem.OnControlRequest(lineState), -17);
  EXPECT_EQ(host.modem.OnControlRequest(lineState), 0);
}

TEST(ModemFault, InjectedWhileRunningCountsFromThen) {
  ModemHost host(With(""));
  host.ReadFor(5000);
  host.modem.Inject(Script("on AT error\nat 1 line OK"));
  EXPECT_EQ(host.Ask("AT"), Echoed("AT", kError));
  host.ReadFor(2000);
  EXPECT_EQ(host.Chunks().back(), std::pair(Millis{6000}, std::string(kOk)));
}

}  // namespace
}  // namespace bench
