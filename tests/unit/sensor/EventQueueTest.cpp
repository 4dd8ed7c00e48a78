// The queue before the state machine and its collapsing rules.

#include "sensor/EventQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "sensor/Events.h"

namespace stelvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EventQueueTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(queue_.Initialize(), S_OK); }

  // What is dispatched when these events wait.
  std::vector<std::uint32_t> Dispatched(std::initializer_list<std::uint32_t> posted) {
    for (const std::uint32_t event : posted) queue_.Post(event);
    std::vector<std::uint32_t> events;
    for (std::uint32_t event = queue_.Pop(); event != EV_INVALID; event = queue_.Pop()) {
      events.push_back(event);
    }
    return events;
  }
  bool IsSignalled() { return WaitForSingleObject(queue_.WakeHandle(), 0) == WAIT_OBJECT_0; }

  EventQueue queue_;
};

TEST_F(EventQueueTest, AnEmptyQueueGivesNothing) {
  EXPECT_EQ(queue_.Pop(), EV_INVALID);
}

TEST_F(EventQueueTest, FirstInFirstOutWithoutDeduplication) {
  EXPECT_THAT(Dispatched({EV_REFRESH_REPORTING, EV_DATA_REQUESTED, EV_REFRESH_REPORTING,
                          EV_LAST_CLIENT_DISCONNECTED, EV_DATA_ARRIVED, EV_DATA_ARRIVED}),
              ElementsAre(EV_REFRESH_REPORTING, EV_DATA_REQUESTED, EV_REFRESH_REPORTING,
                          EV_LAST_CLIENT_DISCONNECTED, EV_DATA_ARRIVED, EV_DATA_ARRIVED));
}

TEST_F(EventQueueTest, ALossIsDroppedWhenAFixWaitsBehindIt) {
  EXPECT_THAT(Dispatched({EV_FIX_LOST, EV_DATA_ARRIVED}), ElementsAre(EV_DATA_ARRIVED));
}

TEST_F(EventQueueTest, ALossIsDroppedWhenAFixWaitsFurtherBehind) {
  EXPECT_THAT(Dispatched({EV_FIX_LOST, EV_DATA_REQUESTED, EV_DATA_ARRIVED}),
              ElementsAre(EV_DATA_REQUESTED, EV_DATA_ARRIVED));
}

TEST_F(EventQueueTest, AllLossesThatWaitBehindAFixAreRemoved) {
  EXPECT_THAT(Dispatched({EV_DATA_ARRIVED, EV_FIX_LOST, EV_FIX_LOST}),
              ElementsAre(EV_DATA_ARRIVED));
}

TEST_F(EventQueueTest, WhatStandsBetweenRemovedLossesKeepsItsOrder) {
  EXPECT_THAT(Dispatched({EV_DATA_ARRIVED, EV_FIX_LOST, EV_REFRESH_REPORTING, EV_FIX_LOST,
                          EV_DATA_REQUESTED}),
              ElementsAre(EV_DATA_ARRIVED, EV_REFRESH_REPORTING, EV_DATA_REQUESTED));
}

TEST_F(EventQueueTest, ALossWithoutAFixStays) {
  EXPECT_THAT(Dispatched({EV_FIX_LOST, EV_FIX_LOST}), ElementsAre(EV_FIX_LOST, EV_FIX_LOST));
}

TEST_F(EventQueueTest, ALossAfterTheFixHasBeenTakenStays) {
  EXPECT_THAT(Dispatched({EV_DATA_ARRIVED}), ElementsAre(EV_DATA_ARRIVED));
  EXPECT_THAT(Dispatched({EV_FIX_LOST}), ElementsAre(EV_FIX_LOST));
}

TEST_F(EventQueueTest, ThreeSuplRequestsLeadToOne) {
  EXPECT_THAT(Dispatched({EV_INIT_SUPL, EV_INIT_SUPL, EV_REFRESH_REPORTING, EV_INIT_SUPL}),
              ElementsAre(EV_INIT_SUPL, EV_REFRESH_REPORTING));
}

TEST_F(EventQueueTest, EachPostSignalsAndTheWaitThatSeesItResets) {
  EXPECT_FALSE(IsSignalled());
  queue_.Post(EV_INIT);
  EXPECT_TRUE(IsSignalled());
  EXPECT_FALSE(IsSignalled());
  queue_.Post(EV_INIT);
  EXPECT_TRUE(IsSignalled());
}

TEST_F(EventQueueTest, EventsWithoutANameArePassedOn) {
  EXPECT_THAT(Dispatched({7, 14}), ElementsAre(7U, 14U));
  EXPECT_THAT(Dispatched({}), IsEmpty());
}

}  // namespace
}  // namespace stelvane
