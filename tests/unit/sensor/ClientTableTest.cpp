// The table of connected clients and the interval that serves them all.

#include "modem/ClientTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace stelvane {
namespace {

using testing::ElementsAre;

class ClientTableTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(table_.Initialize(), S_OK); }

  ClientId Client(int number) const { return &places_[number]; }
  // A subscribed client with that report interval in milliseconds.
  ClientId Subscriber(int number, std::uint32_t milliseconds) {
    const ClientId client = Client(number);
    table_.Connect(client);
    table_.SetSubscribed(client, true);
    EXPECT_EQ(table_.SetReportInterval(client, milliseconds), S_OK);
    return client;
  }
  std::vector<ClientEntry> Entries() {
    std::vector<ClientEntry> entries;
    table_.Walk([&entries](const ClientEntry& entry) {
      entries.push_back(entry);
      return true;
    });
    return entries;
  }
  std::uint32_t StoredSeconds(std::uint32_t milliseconds) {
    table_.Connect(Client(0));
    EXPECT_EQ(table_.SetReportInterval(Client(0), milliseconds), S_OK);
    return Entries().front().reportInterval;
  }

  ClientTable table_;
  const char places_[8] = {};
};

TEST_F(ClientTableTest, AFreshEntryHasNoIntervalNoAccuracyAndNoSubscription) {
  table_.Connect(Client(0));
  const auto entries = Entries();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].client, Client(0));
  EXPECT_EQ(entries[0].reportInterval, 0xFFFFFFFFU);
  EXPECT_EQ(entries[0].desiredAccuracy, 0U);
  EXPECT_FALSE(entries[0].subscribed);
}

TEST_F(ClientTableTest, TheFirstConnectIsToldFromFurtherOnesAndFromRepeats) {
  EXPECT_EQ(table_.Connect(Client(0)), ClientTable::Connection::kFirst);
  EXPECT_EQ(table_.Connect(Client(0)), ClientTable::Connection::kKnown);
  EXPECT_EQ(table_.Connect(Client(1)), ClientTable::Connection::kFurther);
  EXPECT_EQ(table_.ConnectedCount(), 2U);
}

TEST_F(ClientTableTest, ARepeatedConnectKeepsTheEntry) {
  Subscriber(0, 5000);
  table_.Connect(Client(0));
  EXPECT_EQ(table_.RequiredInterval(), 5000U);
  EXPECT_EQ(table_.SubscribedCount(), 1U);
}

TEST_F(ClientTableTest, DisconnectTellsWhenTheTableIsEmpty) {
  table_.Connect(Client(0));
  table_.Connect(Client(1));
  EXPECT_FALSE(table_.Disconnect(Client(0)));
  EXPECT_TRUE(table_.Disconnect(Client(1)));
}

TEST_F(ClientTableTest, DisconnectOfAnUnknownClientRemovesNobody) {
  EXPECT_TRUE(table_.Disconnect(Client(3)));
  table_.Connect(Client(0));
  EXPECT_FALSE(table_.Disconnect(Client(3)));
  EXPECT_EQ(table_.ConnectedCount(), 1U);
}

TEST_F(ClientTableTest, AClientThatComesBackAfterTheLastOneLeftIsAFirstOne) {
  table_.Connect(Client(0));
  table_.Disconnect(Client(0));
  EXPECT_EQ(table_.Connect(Client(0)), ClientTable::Connection::kFirst);
}

TEST_F(ClientTableTest, SubscribingTwiceChangesOnce) {
  table_.Connect(Client(0));
  EXPECT_EQ(table_.SetSubscribed(Client(0), true).result, ClientTable::Subscription::kChanged);
  EXPECT_EQ(table_.SetSubscribed(Client(0), true).result, ClientTable::Subscription::kUnchanged);
  EXPECT_EQ(table_.SetSubscribed(Client(0), false).result, ClientTable::Subscription::kChanged);
  EXPECT_EQ(table_.SetSubscribed(Client(0), false).result, ClientTable::Subscription::kUnchanged);
}

TEST_F(ClientTableTest, UnsubscribingWhoNeverSubscribedChangesNothing) {
  table_.Connect(Client(0));
  EXPECT_EQ(table_.SetSubscribed(Client(0), false).result, ClientTable::Subscription::kUnchanged);
}

TEST_F(ClientTableTest, ASubscriptionTellsOfTheIntervalAndOfCompany) {
  table_.Connect(Client(0));
  auto change = table_.SetSubscribed(Client(0), true);
  EXPECT_FALSE(change.hasInterval);
  EXPECT_TRUE(change.isOnlyClient);
  table_.Connect(Client(1));
  table_.SetReportInterval(Client(1), 0);
  change = table_.SetSubscribed(Client(1), true);
  EXPECT_TRUE(change.hasInterval);
  EXPECT_FALSE(change.isOnlyClient);
}

TEST_F(ClientTableTest, AnUnknownClientIsRefused) {
  EXPECT_EQ(table_.SetSubscribed(Client(0), true).result,
            ClientTable::Subscription::kUnknownClient);
  EXPECT_EQ(table_.SetReportInterval(Client(0), 1000), E_UNEXPECTED);
  EXPECT_EQ(table_.SetDesiredAccuracy(Client(0), 1), E_UNEXPECTED);
  EXPECT_EQ(table_.ConnectedCount(), 0U);
}

TEST_F(ClientTableTest, IntervalsAreStoredInWholeSecondsOfAtLeastOne) {
  EXPECT_EQ(StoredSeconds(1), 1U);
  EXPECT_EQ(StoredSeconds(500), 1U);
  EXPECT_EQ(StoredSeconds(1000), 1U);
  EXPECT_EQ(StoredSeconds(1999), 1U);
  EXPECT_EQ(StoredSeconds(2000), 2U);
  EXPECT_EQ(StoredSeconds(8001), 8U);
  EXPECT_EQ(StoredSeconds(0xFFFFFFFF), 4294967U);
}

TEST_F(ClientTableTest, AnIntervalOfZeroStaysZero) {
  EXPECT_EQ(StoredSeconds(0), 0U);
}

TEST_F(ClientTableTest, TheAccuracyIsKeptAsWritten) {
  table_.Connect(Client(0));
  EXPECT_EQ(table_.SetDesiredAccuracy(Client(0), 1), S_OK);
  EXPECT_EQ(Entries().front().desiredAccuracy, 1U);
}

TEST_F(ClientTableTest, NobodyRequiresNoInterval) {
  EXPECT_EQ(table_.RequiredInterval(), kNoInterval);
  table_.Connect(Client(0));
  EXPECT_EQ(table_.RequiredInterval(), kNoInterval);
}

TEST_F(ClientTableTest, AnIntervalWithoutASubscriptionDoesNotCount) {
  table_.Connect(Client(0));
  table_.SetReportInterval(Client(0), 2000);
  EXPECT_EQ(table_.RequiredInterval(), kNoInterval);
}

TEST_F(ClientTableTest, ASubscriptionWithoutAnIntervalDoesNotCount) {
  table_.Connect(Client(0));
  table_.SetSubscribed(Client(0), true);
  EXPECT_EQ(table_.RequiredInterval(), kNoInterval);
  EXPECT_EQ(table_.SubscribedCount(), 1U);
}

TEST_F(ClientTableTest, TheFastestSubscriberWins) {
  Subscriber(0, 9000);
  Subscriber(1, 3000);
  Subscriber(2, 60000);
  EXPECT_EQ(table_.RequiredInterval(), 3000U);
  table_.SetSubscribed(Client(1), false);
  EXPECT_EQ(table_.RequiredInterval(), 9000U);
  table_.Disconnect(Client(0));
  EXPECT_EQ(table_.RequiredInterval(), 60000U);
}

TEST_F(ClientTableTest, OnlyZerosMeanOneSecond) {
  Subscriber(0, 0);
  Subscriber(1, 0);
  EXPECT_EQ(table_.RequiredInterval(), 1000U);
}

TEST_F(ClientTableTest, AZeroBesideAnotherIntervalIsPassedOver) {
  Subscriber(0, 0);
  Subscriber(1, 5000);
  EXPECT_EQ(table_.RequiredInterval(), 5000U);
}

TEST_F(ClientTableTest, ClearForgetsEverybody) {
  Subscriber(0, 5000);
  table_.Clear();
  EXPECT_EQ(table_.ConnectedCount(), 0U);
  EXPECT_EQ(table_.SubscribedCount(), 0U);
  EXPECT_EQ(table_.RequiredInterval(), kNoInterval);
}

TEST_F(ClientTableTest, AWalkEndsWhereItsVisitorSaysSo) {
  table_.Connect(Client(0));
  table_.Connect(Client(1));
  table_.Connect(Client(2));
  std::vector<ClientId> seen;
  table_.Walk([&](const ClientEntry& entry) {
    seen.push_back(entry.client);
    return seen.size() < 2;
  });
  EXPECT_THAT(seen, ElementsAre(Client(0), Client(1)));
}

}  // namespace
}  // namespace stelvane
