#include "qilsys/AsyncTaskTls.h"

#include <gtest/gtest.h>

#include <thread>
#include <type_traits>

#include "qilsys/TEvent.h"
#include "support/CaughtAssertion.h"

namespace {

using AsyncTask::IWaitHandler;
using AsyncTask::TLS;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::RecordedAssertions;

void Nothing() {}

// On a thread of its own, whose state is new.
template <class Action>
void OnNewThread(Action action) {
  std::thread(action).join();
}

TEST(TLS, OfANewThreadIsEmpty) {
  OnNewThread([] {
    const TLS tls = TLS::Get();
    EXPECT_EQ(tls.GetDepth(), 0u);
    EXPECT_EQ(tls.GetCancelEvent(), nullptr);
    EXPECT_EQ(tls.GetWaitHandler(), nullptr);
    EXPECT_EQ(tls.GetThreadCleanupFunc(), nullptr);
  });
}

TEST(TLS, EveryValueOfAThreadIsForTheSameState) {
  OnNewThread([] {
    TLS first = TLS::Get();
    first.SetDepth(0x123456789ABCDEFULL);
    first.SetThreadCleanupFunc(&Nothing);
    EXPECT_EQ(TLS::Get().GetDepth(), 0x123456789ABCDEFULL);
    EXPECT_EQ(TLS::Get().GetThreadCleanupFunc(), &Nothing);
    OnNewThread([] {
      EXPECT_EQ(TLS::Get().GetDepth(), 0u) << "of another thread";
      EXPECT_EQ(TLS::Get().GetThreadCleanupFunc(), nullptr);
    });
    first.SetThreadCleanupFunc(nullptr);
    EXPECT_EQ(TLS::Get().GetThreadCleanupFunc(), nullptr);
  });
}

TEST(TLS, CountsItsDepth) {
  OnNewThread([] {
    TLS tls = TLS::Get();
    tls.IncrementDepth();
    tls.IncrementDepth();
    tls.DecrementDepth();
    EXPECT_EQ(tls.GetDepth(), 1u);
  });
}

TEST(TLS, DecrementAtDepthZeroIsAnAssertion) {
  TLS::Get().SetDepth(0);
  EXPECT_EQ(CatchAssertion([] { TLS::Get().DecrementDepth(); }),
            (CaughtAssertion{"main/thread/AsyncTaskTls", 87, "depth > 0", 0x0C2FD434,
                             "LogicException_LogicAssert_0x0C2FD434"}));
  EXPECT_EQ(TLS::Get().GetDepth(), 0u) << "an assertion that throws leaves the depth";
}

TEST(TLS, DecrementAtDepthZeroWrapsWhereTheHookReturns) {
  OnNewThread([] {
    const RecordedAssertions recorded;
    TLS::Get().DecrementDepth();
    EXPECT_EQ(recorded.All().size(), 1u);
    EXPECT_EQ(TLS::Get().GetDepth(), ~0ULL);
  });
}

TEST(TLS, KeepsTheEventAsARawPointer) {
  OnNewThread([] {
    const RefCntPtr<TCancelEvent> event(new TCancelEvent);
    TLS::Get().SetCancelEvent(event.get());
    EXPECT_EQ(TLS::Get().GetCancelEvent(), event.get());
    EXPECT_EQ(event->UseCount(), 1);
    TLS::Get().SetCancelEvent(nullptr);
    EXPECT_EQ(event->UseCount(), 1);
  });
}

TEST(TLS, KeepsTheHandlerAsARawPointer) {
  OnNewThread([] {
    int somewhere = 0;
    const auto* const handler = reinterpret_cast<const IWaitHandler*>(&somewhere);
    TLS::Get().SetWaitHandler(handler);
    EXPECT_EQ(TLS::Get().GetWaitHandler(), handler);
    TLS::Get().SetWaitHandler(nullptr);
    EXPECT_EQ(TLS::Get().GetWaitHandler(), nullptr);
  });
}

TEST(TLS, IsMadeByGetAlone) {
  EXPECT_FALSE(std::is_default_constructible_v<TLS>);
  EXPECT_EQ(sizeof(TLS), sizeof(void*));
}

}  // namespace
