// The two Fix records of the core, their marks, and the mark of an outstanding request.

#include "sensor/FixStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace stelvane {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

FixRecord Record(double latitude) {
  FixRecord record;
  record.latitude = latitude;
  record.gpsStatus = 1;
  record.satellitesInView = 1;
  record.azimuth = {1.0};
  record.elevation = {2.0};
  record.satelliteIds = {3};
  record.prns = {3};
  record.snRatios = {4.0};
  return record;
}

class FixStoreTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(store_.Initialize(), S_OK); }
  FixStore store_;
};

TEST_F(FixStoreTest, AtFirstNeitherRecordIsAFix) {
  EXPECT_FALSE(store_.LastFix().valid);
  EXPECT_FALSE(store_.PublishedFix().valid);
  EXPECT_FALSE(store_.IsRequestOutstanding());
}

TEST_F(FixStoreTest, AParsedReportIsTheLastFixButNoneThatCounts) {
  store_.StoreReport(Record(48));
  EXPECT_EQ(store_.LastFix().record.latitude, 48);
  EXPECT_FALSE(store_.LastFix().valid);
  EXPECT_EQ(store_.PublishedFix().record.latitude, 0);
}

TEST_F(FixStoreTest, PublishingGivesBothRecordsTheSentencesAndTheMark) {
  store_.StoreReport(Record(48));
  store_.Publish("$GPGGA\n");
  for (const StoredFix& fix : {store_.LastFix(), store_.PublishedFix()}) {
    EXPECT_TRUE(fix.valid);
    EXPECT_EQ(fix.record.latitude, 48);
    EXPECT_EQ(fix.record.nmeaSentence, "$GPGGA\n");
    EXPECT_THAT(fix.record.azimuth, SizeIs(1));
  }
}

TEST_F(FixStoreTest, ALaterReportLeavesThePublishedFixAlone) {
  store_.StoreReport(Record(48));
  store_.Publish("$1\n");
  store_.StoreReport(Record(49));
  EXPECT_EQ(store_.LastFix().record.latitude, 49);
  EXPECT_EQ(store_.PublishedFix().record.latitude, 48);
  EXPECT_TRUE(store_.LastFix().valid);
}

TEST_F(FixStoreTest, InvalidatingTakesTheMarkAndTheStatusOfBothAndNothingElse) {
  store_.StoreReport(Record(48));
  store_.Publish("$1\n");
  store_.Invalidate();
  for (const StoredFix& fix : {store_.LastFix(), store_.PublishedFix()}) {
    EXPECT_FALSE(fix.valid);
    EXPECT_EQ(fix.record.gpsStatus, 2U);
    EXPECT_EQ(fix.record.latitude, 48);
  }
}

TEST_F(FixStoreTest, ARequestIsOutstandingUntilItIsRefused) {
  store_.RequestStarts();
  EXPECT_TRUE(store_.IsRequestOutstanding());
  store_.RequestRefused();
  EXPECT_FALSE(store_.IsRequestOutstanding());
}

TEST_F(FixStoreTest, ASingleFixEndsItsRequest) {
  store_.RequestStarts();
  store_.RequestAccepted(false);
  store_.StoreReport(Record(48));
  EXPECT_TRUE(store_.IsRequestOutstanding());
  store_.Publish("$1\n");
  EXPECT_FALSE(store_.IsRequestOutstanding());
  store_.StoreReport(Record(49));
  EXPECT_FALSE(store_.IsRequestOutstanding());
}

TEST_F(FixStoreTest, EveryReportOfAPeriodicRequestMakesItOutstandingAgain) {
  store_.RequestStarts();
  store_.RequestAccepted(true);
  store_.StoreReport(Record(48));
  store_.Publish("$1\n");
  EXPECT_FALSE(store_.IsRequestOutstanding());
  store_.StoreReport(Record(49));
  EXPECT_TRUE(store_.IsRequestOutstanding());
}

TEST_F(FixStoreTest, AReportThatStragglesInAfterAStopMakesNothingOutstanding) {
  store_.RequestStarts();
  store_.RequestAccepted(true);
  store_.RequestStopped();
  EXPECT_FALSE(store_.IsRequestOutstanding());
  store_.StoreReport(Record(48));
  EXPECT_FALSE(store_.IsRequestOutstanding());
}

TEST_F(FixStoreTest, TheFirstReportsOfARequestReplaceEachOtherWhole) {
  store_.RequestStarts();
  store_.StoreReport(Record(48));
  FixRecord empty = Record(49);
  empty.azimuth.clear();
  store_.StoreReport(empty);
  EXPECT_EQ(store_.LastFix().record.latitude, 49);
  EXPECT_THAT(store_.LastFix().record.azimuth, IsEmpty());
}

}  // namespace
}  // namespace stelvane
