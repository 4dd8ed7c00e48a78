// The whole state table, written out by hand, and the events that it knows.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "modem/ClientTable.h"
#include "sensor/Events.h"
#include "sensor/StateTable.h"

namespace stelvane {
namespace {

// One row an event: the next state for each of the states 0 to 5.
struct Row {
  std::uint32_t event;
  std::array<std::uint32_t, 6> next;
};

// Without the engine error, whose row depends on more than the state.
constexpr std::array<Row, 18> kTable = {{
    // event                        0  1  2  3  4  5
    {0, {0, 1, 2, 3, 4, 5}},
    {EV_FIRST_CLIENT_CONNECTED, {0, 1, 3, 3, 4, 3}},
    {EV_LAST_CLIENT_DISCONNECTED, {0, 1, 2, 2, 4, 5}},
    {EV_DATA_ARRIVED, {0, 1, 0, 0, 4, 5}},
    {EV_RADIO_ON, {0, 2, 2, 3, 4, 5}},
    {EV_RADIO_OFF, {1, 1, 1, 1, 1, 1}},
    {7, {0, 1, 2, 3, 4, 5}},
    {EV_DATA_REQUESTED, {0, 1, 3, 3, 4, 3}},
    {EV_REFRESH_REPORTING, {0, 1, 2, 3, 4, 5}},
    {EV_INIT, {0, 1, 2, 3, 4, 5}},
    {EV_FIX_LOST, {3, 1, 2, 3, 4, 5}},
    {EV_INIT_SUPL, {0, 1, 2, 3, 4, 5}},
    {EV_CLEAR_ASSISTANCE_DATA, {0, 1, 2, 3, 4, 5}},
    {14, {0, 1, 2, 3, 4, 5}},
    {15, {0, 1, 2, 3, 4, 5}},
    {31, {0, 1, 2, 3, 4, 5}},
    {32, {0, 1, 2, 3, 4, 5}},
    {0xFFFFFFFF, {0, 1, 2, 3, 4, 5}},
}};

constexpr std::array<std::uint32_t, 5> kIntervals = {1000, 7999, 8000, 8001, kNoInterval};

TEST(NextState, EveryEventButTheEngineErrorFollowsTheTableWhateverRuns) {
  for (const Row& row : kTable) {
    for (std::uint32_t state = 0; state < row.next.size(); ++state) {
      for (const std::uint32_t interval : kIntervals) {
        for (const bool fixRequestActive : {false, true}) {
          EXPECT_EQ(NextState(state, row.event, fixRequestActive, interval), row.next[state])
              << EventName(row.event) << " (" << row.event << ") in " << SensorStateName(state)
              << ", interval " << interval << ", single fix " << fixRequestActive;
        }
      }
    }
  }
}

TEST(NextState, AnEngineErrorDuringASingleFixMeansNoDataAtAnyIntervalAndInAnyState) {
  for (std::uint32_t state = 0; state <= 5; ++state) {
    for (const std::uint32_t interval : kIntervals) {
      EXPECT_EQ(NextState(state, EV_SINGLE_SHOT_ERROR_RECEIVED, true, interval), 2U)
          << SensorStateName(state) << ", interval " << interval;
    }
  }
}

TEST(NextState, AnEngineErrorBelowEightSecondsMeansNoDataInAnyState) {
  for (std::uint32_t state = 0; state <= 5; ++state) {
    EXPECT_EQ(NextState(state, EV_SINGLE_SHOT_ERROR_RECEIVED, false, 0), 2U);
    EXPECT_EQ(NextState(state, EV_SINGLE_SHOT_ERROR_RECEIVED, false, 7999), 2U);
  }
}

TEST(NextState, AnEngineErrorAtEightSecondsAndAboveWithoutASingleFixChangesNothing) {
  for (std::uint32_t state = 0; state <= 5; ++state) {
    for (const std::uint32_t interval : {8000U, 8001U, kNoInterval}) {
      EXPECT_EQ(NextState(state, EV_SINGLE_SHOT_ERROR_RECEIVED, false, interval), state)
          << SensorStateName(state) << ", interval " << interval;
    }
  }
}

TEST(ExpectedEvents, AllButTheSuplRequestTheUnnamedOneAndThoseOutsideTheTable) {
  for (const std::uint32_t event : {1U, 2U, 3U, 4U, 5U, 6U, 8U, 9U, 10U, 11U, 13U}) {
    EXPECT_TRUE(IsExpectedEvent(event)) << EventName(event);
  }
  for (const std::uint32_t event : {0U, 7U, 12U, 14U, 0xFFFFFFFFU}) {
    EXPECT_FALSE(IsExpectedEvent(event)) << event;
  }
}

}  // namespace
}  // namespace stelvane
