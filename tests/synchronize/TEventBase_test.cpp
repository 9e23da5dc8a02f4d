#include "synchronize/TEventBase.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "RefusedWaits.h"
#include "support/Eventually.h"
#include "support/RowName.h"
#include "synchronize/NoLimit.h"

namespace {

using qilsys::synchronize::NoLimit;
using qilsys::synchronize::TPlatformEvent;
using qilsys::test::Eventually;
using qilsys::test::RefusedWaits;
using qilsys::test::RowName;
using Kind = TPlatformEvent::Kind;

struct KindCase {
  const char* name;
  Kind kind;
};

class TPlatformEventTest : public testing::TestWithParam<KindCase> {};

INSTANTIATE_TEST_SUITE_P(Kinds, TPlatformEventTest,
                         testing::Values(KindCase{"ManualReset", Kind::ManualReset},
                                         KindCase{"AutoReset", Kind::AutoReset}),
                         RowName<KindCase>);

TEST_P(TPlatformEventTest, IsUnsetAtFirst) {
  TPlatformEvent event(GetParam().kind);
  EXPECT_FALSE(event.Wait(0));
}

TEST_P(TPlatformEventTest, AutoResetTakesTheSignalWithAPollToo) {
  TPlatformEvent event(GetParam().kind);
  EXPECT_TRUE(event.Set());
  EXPECT_TRUE(event.Wait(0));
  EXPECT_EQ(event.Wait(0), GetParam().kind == Kind::ManualReset);
}

TEST_P(TPlatformEventTest, ResetTakesAStoredSignalBack) {
  TPlatformEvent event(GetParam().kind);
  EXPECT_TRUE(event.Set());
  EXPECT_TRUE(event.Reset());
  EXPECT_FALSE(event.Wait(1));
}

// Under a memory or thread checker this is what shows that a set touches nothing after it has released the waiter.
TEST_P(TPlatformEventTest, TheWaiterThatASetHasReleasedMayDestroyTheEvent) {
  for (int round = 0; round < 200; ++round) {
    auto owned = std::make_unique<TPlatformEvent>(GetParam().kind);
    TPlatformEvent* const event = owned.get();
    std::jthread waiter([mine = std::move(owned)]() mutable {
      mine->Wait(NoLimit);
      mine.reset();
    });
    if (round % 2 == 0) {
      EXPECT_TRUE(Eventually([&] { return event->WaitersForTest() == 1; }));
    }
    EXPECT_TRUE(event->Set());
  }
}

TEST_P(TPlatformEventTest, AWaitThatTheSystemRefusesIsFalse) {
  TPlatformEvent event(GetParam().kind);
  const RefusedWaits refused;
  EXPECT_FALSE(event.Wait(1000000));
  EXPECT_FALSE(event.Wait(NoLimit));
  EXPECT_EQ(event.WaitersForTest(), 0u);
}

TEST(TEventBase, AWaitWithoutLimitIsFalseAndRaisesNothingWhereTheSystemRefuses) {
  TEventBase base(Kind::ManualReset);
  const RefusedWaits refused;
  EXPECT_FALSE(base.Wait());
}

}  // namespace
