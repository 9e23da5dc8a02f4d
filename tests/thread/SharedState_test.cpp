#include "qilsys/SharedState.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

#include "CancelEvents.h"
#include "PlainState.h"
#include "qilsys/AsyncTaskHooks.h"
#include "qilsys/CancelException.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "synchronize/SynchronizeForTest.h"

namespace {

using namespace std::chrono_literals;
using AsyncTask::WhenCanceled;
using qilsys::test::CancelPtr;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using qilsys::test::MakeCancel;
using qilsys::test::NullDereference;
using qilsys::test::PlainState;
using qilsys::test::RecordedAssertions;

const CaughtAssertion SetTwice{"main/thread/SharedState", 56, "!m_cancel", 0xAE2A193B,
                               "LogicException_LogicAssert_0xAE2A193B"};
const CaughtAssertion NotReady{"main/thread/SharedState", 125, "m_ready->IsSet()", 0xFCC690FC,
                               "LogicException_LogicAssert_FCC690FC"};

std::exception_ptr Failure(const char* text) { return std::make_exception_ptr(std::runtime_error(text)); }

std::string TextOf(const PlainState& state) {
  try {
    state.CheckForException();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "nothing";
}

// ---- Readiness ----

TEST(SharedState, BecomesReadyOnceAndForAll) {
  PlainState state;
  EXPECT_FALSE(state.IsReady());
  EXPECT_FALSE(state.WaitFor(0ms));
  state.MarkAsReady();
  EXPECT_TRUE(state.IsReady());
  EXPECT_TRUE(state.WaitFor(0ms));
  state.Wait();
  EXPECT_TRUE(state.GetRawReadyEvent().IsSet());
}

TEST(SharedState, ReadyWakesThoseThatWait) {
  PlainState state;
  std::jthread waiter([&] { state.Wait(); });
  std::jthread timed([&] { EXPECT_TRUE(state.WaitFor(qilsys::test::Patience)); });
  ASSERT_TRUE(Eventually(
      [&] { return SynchronizeForTest::Waiters(static_cast<const TEvent&>(state.GetRawReadyEvent())) == 2; }));
  state.MarkAsReady();
}

TEST(SharedState, RunsReadyCallbacksOnTheThreadThatMarksTwiceIfItMarksTwice) {
  PlainState state;
  int kept = 0;
  int removed = 0;
  state.AddOnReadyCallback(&kept, [&, thread = std::this_thread::get_id()] {
    EXPECT_EQ(std::this_thread::get_id(), thread);
    EXPECT_TRUE(state.IsReady());
    ++kept;
  });
  state.AddOnReadyCallback(&removed, [&] { ++removed; });
  state.RemoveOnReadyCallback(&removed);
  state.MarkAsReady();
  EXPECT_EQ(kept, 1);
  state.MarkAsReady();
  EXPECT_EQ(kept, 2);
  EXPECT_EQ(removed, 0);
}

TEST(SharedState, ACallbackAddedAfterReadyNeverRuns) {
  PlainState state;
  int calls = 0;
  state.MarkAsReady();
  state.AddOnReadyCallback(&calls, [&] { ++calls; });
  EXPECT_EQ(calls, 0);
}

TEST(SharedState, AssertIsReadyBeforeReadyIsAnAssertionWhoseNameLacksThePrefix) {
  PlainState state;
  EXPECT_EQ(CatchAssertion([&] { state.AssertIsReady(); }), NotReady);
  state.MarkAsReady();
  EXPECT_EQ(CatchAssertion([&] { state.AssertIsReady(); }), CaughtAssertion{});
}

// ---- Exceptions ----

TEST(SharedState, WithoutAnExceptionCheckingDoesNothing) {
  PlainState state;
  EXPECT_FALSE(state.HasException());
  EXPECT_NO_THROW(state.CheckForException());
  state.SetException(nullptr);
  EXPECT_FALSE(state.HasException());
}

TEST(SharedState, KeepsTheFirstException) {
  PlainState state;
  state.SetException(Failure("first"));
  state.SetException(Failure("second"));
  state.SetException(nullptr);
  EXPECT_TRUE(state.HasException());
  EXPECT_FALSE(state.IsReady()) << "that is a step of its own";
  EXPECT_EQ(TextOf(state), "first");
  EXPECT_EQ(TextOf(state), "first") << "each time";
}

TEST(SharedState, RethrowsTheSameObject) {
  PlainState state;
  const QuillonException* thrown = nullptr;
  try {
    throw AsyncTask::CancelException(TError::ErrorInfo::TestError());
  } catch (const QuillonException& exception) {
    thrown = &exception;
    state.SetException(std::current_exception());
  }
  try {
    state.CheckForException();
  } catch (const AsyncTask::CancelException& exception) {
    // Windows' own runtime copies what it rethrows.
    EXPECT_EQ(exception.GetMessagesFront(), thrown->GetMessagesFront());
  }
}

TEST(SharedState, TheHookOfExceptionsIsAskedEachTime) {
  struct HookOff {
    ~HookOff() { AsyncTask::SetExceptionHook(nullptr); }
  } const off;
  int calls = 0;
  AsyncTask::SetExceptionHook([&](std::exception_ptr) { return Failure(++calls == 1 ? "one" : "two"); });
  PlainState state;
  EXPECT_NO_THROW(state.CheckForException());
  EXPECT_EQ(calls, 0);
  state.SetException(Failure("own"));
  EXPECT_EQ(TextOf(state), "one");
  EXPECT_EQ(TextOf(state), "two");
}

// ---- Cancellation ----

TEST(SharedState, OwnsAReferenceToItsCancelEvent) {
  const CancelPtr event = MakeCancel();
  {
    PlainState state;
    state.SetCancelEvent(event);
    EXPECT_EQ(event->UseCount(), 2);
    EXPECT_EQ(state.GetCancelEvent(), event);
    state.SignalCancelEventIfSet();
    EXPECT_TRUE(event->IsSet());
  }
  EXPECT_EQ(event->UseCount(), 1);
}

TEST(SharedState, ASecondCancelEventIsAnAssertion) {
  const CancelPtr first = MakeCancel();
  const CancelPtr second = MakeCancel();
  PlainState state;
  state.SetCancelEvent(first);
  EXPECT_EQ(CatchAssertion([&] { state.SetCancelEvent(second); }), SetTwice);
  EXPECT_EQ(state.GetCancelEvent(), first);
  EXPECT_EQ(second->UseCount(), 1);
  std::jthread([&] { EXPECT_EQ(CatchAssertion([&] { state.SetCancelEvent(second); }), SetTwice); }).join();
}

TEST(SharedState, ASecondCancelEventReplacesWhereTheHookReturns) {
  const CancelPtr first = MakeCancel();
  const CancelPtr second = MakeCancel();
  PlainState state;
  state.SetCancelEvent(first);
  const RecordedAssertions recorded;
  state.SetCancelEvent(second);
  EXPECT_EQ(recorded.All(), std::vector<CaughtAssertion>{SetTwice});
  EXPECT_EQ(state.GetCancelEvent(), second);
  EXPECT_EQ(first->UseCount(), 1);
}

TEST(SharedState, WithoutAnEventSignallingDoesNothingAndRemovingIsAnAssertion) {
  PlainState state;
  EXPECT_EQ(CatchAssertion([&] { state.SignalCancelEventIfSet(); }), CaughtAssertion{});
  EXPECT_EQ(CatchAssertion([&] { state.RemoveCancelOnSignalCallback(); }), NullDereference);
}

TEST(SharedState, ANullEventCountsAsNone) {
  PlainState state;
  state.SetCancelEvent(nullptr);
  EXPECT_EQ(CatchAssertion([&] { state.RemoveCancelOnSignalCallback(); }), NullDereference);
  state.SetOnCancelFunction(std::make_unique<std::function<void()>>([] {}));
  EXPECT_EQ(CatchAssertion([&] { state.SetCancelEvent(nullptr); }), NullDereference);
  state.SetCancelEvent(MakeCancel());
  state.RemoveCancelOnSignalCallback();
}

TEST(SharedState, TheEventRunsACopyOfTheFunctionUntilItIsTakenOff) {
  const CancelPtr event = MakeCancel();
  PlainState state;
  int calls = 0;
  state.SetOnCancelFunction(std::make_unique<std::function<void()>>([&] { calls += 100; }));
  state.SetOnCancelFunction(std::make_unique<std::function<void()>>([&] { ++calls; }));
  state.SetCancelEvent(event);
  state.SetOnCancelFunction(nullptr);
  event->Signal();
  EXPECT_EQ(calls, 1);
  state.RemoveCancelOnSignalCallback();
  event->Signal();
  EXPECT_EQ(calls, 1);
}

TEST(SharedState, ATaskCancelledBeforeItHasAnEventIsCancelledWhenItGetsOne) {
  const CancelPtr event = MakeCancel();
  PlainState state;
  int calls = 0;
  EXPECT_FALSE(state.IsCancelled());
  EXPECT_TRUE(state.MarkAsCancelled());
  EXPECT_FALSE(state.MarkAsCancelled()) << "the first only";
  EXPECT_TRUE(state.IsCancelled());
  state.SetOnCancelFunction(std::make_unique<std::function<void()>>([&] { ++calls; }));
  state.SetCancelEvent(event);
  EXPECT_TRUE(event->IsSet());
  EXPECT_EQ(calls, 1);
  state.RemoveCancelOnSignalCallback();
}

TEST(SharedState, KeepsHowItIsToBeCancelled) {
  PlainState state;
  EXPECT_EQ(static_cast<unsigned int>(state.GetWhenCanceled()), 0u);
  EXPECT_FALSE(state.IgnoresCancelBeforeStart());
  state.SetWhenCanceled(WhenCanceled::Abandon);
  state.SetIgnoreCancelBeforeStart(true);
  EXPECT_EQ(state.GetWhenCanceled(), WhenCanceled::Abandon);
  EXPECT_TRUE(state.IgnoresCancelBeforeStart());
}

// ---- Deferred tasks ----

TEST(SharedState, OneThatWasNeverDeferredCantBeTaken) {
  PlainState state;
  EXPECT_FALSE(state.IsDeferred());
  EXPECT_FALSE(state.TryTakingDeferredOwnership());
}

TEST(SharedState, ADeferredTaskIsTakenOnce) {
  PlainState state;
  state.SetDeferred();
  state.SetDeferred();
  EXPECT_TRUE(state.IsDeferred());
  EXPECT_TRUE(state.TryTakingDeferredOwnership());
  EXPECT_FALSE(state.IsDeferred());
  EXPECT_FALSE(state.TryTakingDeferredOwnership());
  state.SetDeferred();
  EXPECT_TRUE(state.TryTakingDeferredOwnership()) << "deferred anew";
}

}  // namespace
