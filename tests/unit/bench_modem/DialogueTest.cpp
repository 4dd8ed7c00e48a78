// Each command's dialogue, and the rules of the echo.
#include <gtest/gtest.h>

#include "tests/unit/bench_modem/ModemHost.h"

namespace bench {
namespace {

TEST(ModemDialogue, FirstAte1IsNotEchoedAndTheNextOneIs) {
  ModemHost host;
  EXPECT_EQ(host.Ask("ATE1"), "\r\nOK\r\n");
  EXPECT_EQ(host.Ask("ATE1"), "ATE1\r\n\r\nOK\r\n");
}

TEST(ModemDialogue, BringUpAndSingleFix) {
  ModemHost host;
  host.Ask("ATE1");
  EXPECT_EQ(host.Ask("AT+XLCSSWITCH?"), "AT+XLCSSWITCH?\r\n\r\n+XLCSSWITCH : 1\r\n\r\nOK\r\n");
  EXPECT_EQ(host.Ask("AT+XLCSLQOS=50"), "AT+XLCSLQOS=50\r\n\r\nOK\r\n");
  EXPECT_EQ(host.Ask("AT+XLCSLSR=1,1,,,,,,,,2,,"),
            "AT+XLCSLSR=1,1,,,,,,,,2,,\r\n\r\n+XLCSLSR: request id 1\r\n\r\nOK\r\n");
  const std::string report = host.ReadUntil("second*00\r\n\r\nOK\r\n");
  EXPECT_TRUE(report.starts_with("\r\n+XLCSLSR: 0,48.2500000 N,11.5000000 W,,2014/7/3,00:00:02,"))
      << report;
  EXPECT_EQ(host.modem.Snapshot().fixesSent, 1u);
  EXPECT_EQ(host.modem.Snapshot().running, std::nullopt);
}

}  // namespace
}  // namespace bench
