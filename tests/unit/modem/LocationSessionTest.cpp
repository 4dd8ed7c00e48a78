// What a location session does without a word to the modem. The modem control object has no device
// here: a command sent would be a crash.

#include "modem/LocationSession.h"

#include <gtest/gtest.h>

#include "modem/ModemControl.h"
#include "tests/unit/modem/IdleListener.h"

namespace stelvane {
namespace {

class FreshSession : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ModemControl::Create(listener_, modem_), S_OK); }

  IdleListener listener_;
  ComPtr<ModemControl> modem_;
};

TEST_F(FreshSession, UpdateOfTheQualityOfServiceSendsNothingAndReturns0) {
  EXPECT_EQ(modem_->Session().UpdateQos(), S_OK);
  EXPECT_EQ(modem_->Session().GetHighAccuracy(), 0);
}

TEST_F(FreshSession, UpdateOfTheQualityOfServiceSendsNothingWhateverAClientWants) {
  const int client = 0;
  modem_->Clients().Connect(&client);
  ASSERT_EQ(modem_->Clients().SetDesiredAccuracy(&client, 1), S_OK);
  EXPECT_EQ(modem_->Session().UpdateQos(), S_OK);
  EXPECT_EQ(modem_->Session().GetHighAccuracy(), 0);
}

TEST_F(FreshSession, RequestFieldsAre1UntilSetAndKeptWhole) {
  EXPECT_EQ(modem_->Session().GetLsrField1(), 1U);
  EXPECT_EQ(modem_->Session().GetLsrField2(), 1U);
  modem_->Session().SetLsrField1(0);
  modem_->Session().SetLsrField2(4294967295U);
  EXPECT_EQ(modem_->Session().GetLsrField1(), 0U);
  EXPECT_EQ(modem_->Session().GetLsrField2(), 4294967295U);
}

TEST_F(FreshSession, ClosingForgetsTheClientsAndReturns0) {
  const int client = 0;
  modem_->Clients().Connect(&client);
  EXPECT_EQ(modem_->CloseModemControl(), S_OK);
  EXPECT_EQ(modem_->Clients().ConnectedCount(), 0U);
}

}  // namespace
}  // namespace stelvane
