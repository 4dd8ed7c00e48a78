#include "workbench/imports/LockBook.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/unit/bench_imports/ModuleFixture.h"
#include "workbench/framework/Rules.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class LockBookTest : public LoadedModuleTest {
 protected:
  void SetUp() override {
    Load();
    for (CRITICAL_SECTION& section : sections_) ASSERT_TRUE(Dll().initSection(&section));
  }
  void TearDown() override {
    for (CRITICAL_SECTION& section : sections_) Dll().deleteSection(&section);
  }

  void TakeUnder(CRITICAL_SECTION& outer, CRITICAL_SECTION& inner) {
    Dll().enter(&outer);
    Dll().enter(&inner);
    Dll().leave(&inner);
    Dll().leave(&outer);
  }
  std::vector<std::string> Breaches() { return redirector_.Broken().Lines(); }
  std::string Held() { return redirector_.Locks().HeldHere(); }

  std::array<CRITICAL_SECTION, 3> sections_ = {};
  CRITICAL_SECTION& a_ = sections_[0];
  CRITICAL_SECTION& b_ = sections_[1];
  CRITICAL_SECTION& c_ = sections_[2];
};

TEST_F(LockBookTest, OneOrderIsNoBreachHoweverOften) {
  for (int i = 0; i < 3; ++i) {
    TakeUnder(a_, b_);
    TakeUnder(b_, c_);
    TakeUnder(a_, c_);
  }
  EXPECT_THAT(Breaches(), IsEmpty());
}

TEST_F(LockBookTest, TwoLocksInEitherOrderAreABreachOnce) {
  TakeUnder(a_, b_);
  TakeUnder(b_, a_);
  TakeUnder(b_, a_);
  EXPECT_THAT(Breaches(), ElementsAre(StartsWith(std::string(rule::kLockOrder) + ": ")));
}

TEST_F(LockBookTest, ACycleByWayOfAThirdLockOnAnotherThreadIsABreach) {
  TakeUnder(a_, b_);
  TakeUnder(b_, c_);
  Thread other(clock_, [this] { TakeUnder(c_, a_); });
  other.Join();
  EXPECT_THAT(Breaches(), testing::SizeIs(1));
}

TEST_F(LockBookTest, ASlimLockCountsLikewise) {
  SRWLOCK slim = SRWLOCK_INIT;
  Dll().acquireSlim(&slim);
  Dll().enter(&a_);
  Dll().leave(&a_);
  Dll().releaseSlim(&slim);
  Dll().enter(&a_);
  Dll().acquireSlim(&slim);
  Dll().releaseSlim(&slim);
  Dll().leave(&a_);
  EXPECT_THAT(Breaches(), testing::SizeIs(1));
}

TEST_F(LockBookTest, EnteringALockOnceMoreIsNoOrder) {
  Dll().enter(&a_);
  TakeUnder(b_, a_);
  EXPECT_NE(Held(), "");
  Dll().leave(&a_);
  EXPECT_EQ(Held(), "");
  TakeUnder(a_, b_);
  EXPECT_THAT(Breaches(), IsEmpty());
}

TEST_F(LockBookTest, ALockThatIsTriedCannotDeadlockButIsHeld) {
  TakeUnder(a_, b_);
  Dll().enter(&b_);
  EXPECT_TRUE(Dll().tryEnter(&a_));
  char text[32];
  std::snprintf(text, sizeof text, "%p", static_cast<void*>(&a_));
  EXPECT_THAT(Held(), HasSubstr(text));
  Dll().leave(&a_);
  Dll().leave(&b_);
  EXPECT_THAT(Breaches(), IsEmpty());
}

TEST_F(LockBookTest, ANewLockAtTheAddressOfADeletedOneHasNoPast) {
  TakeUnder(a_, b_);
  Dll().deleteSection(&a_);
  ASSERT_TRUE(Dll().initSection(&a_));
  TakeUnder(b_, a_);
  EXPECT_THAT(Breaches(), IsEmpty());
}

TEST_F(LockBookTest, AnotherThreadsLocksAreNotHeldHere) {
  Dll().enter(&a_);
  std::string held = "unknown";
  Thread other(clock_, [&] { held = Held(); });
  other.Join();
  Dll().leave(&a_);
  EXPECT_EQ(held, "");
}

}  // namespace
}  // namespace bench
