#include "qilsys/Cancel.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <thread>
#include <type_traits>

#include "CancelEvents.h"
#include "qilsys/AsyncTaskTls.h"
#include "qilsys/CancelException.h"
#include "support/CaughtAssertion.h"
#include "support/System.h"

namespace {

using AsyncTask::Cancel;
using AsyncTask::CancelException;
using qilsys::test::CancelPtr;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::MakeCancel;
using qilsys::test::NullDereference;
using qilsys::test::RecordedAssertions;

const CaughtAssertion CreateAsserts{"main/thread/Cancel", 52, "TLS::Get().GetCancelEvent() == nullptr", 0xCC8BF328,
                                    "LogicException_LogicAssert_0xCC8BF328"};
const CaughtAssertion SetAsserts{"main/thread/Cancel", 75, "!newCancelEvent", 0x77EEF7F7,
                                 "LogicException_LogicAssert_0x77EEF7F7"};

// Begins and ends without an event.
class CancelTest : public testing::Test {
 protected:
  CancelTest() { Cancel::Set(nullptr); }
  ~CancelTest() override { Cancel::Set(nullptr); }
};

// ---- The thread's event ----

TEST_F(CancelTest, ANewThreadHasNone) {
  Cancel::Create();
  std::thread([] { EXPECT_EQ(Cancel::Get(), nullptr); }).join();
}

TEST_F(CancelTest, CreateMakesOneThatTheThreadOwns) {
  Cancel::Create();
  const CancelPtr event = Cancel::Get();
  ASSERT_NE(event, nullptr);
  EXPECT_FALSE(event->IsSet());
  EXPECT_EQ(event->UseCount(), 2);
  EXPECT_EQ(&Cancel::GetNonNull(), event.get());
  Cancel::Set(nullptr);
  EXPECT_EQ(event->UseCount(), 1);
}

TEST_F(CancelTest, CreateTwiceIsAnAssertionAndLeavesTheFirst) {
  Cancel::Create();
  const CancelPtr first = Cancel::Get();
  EXPECT_EQ(CatchAssertion([] { Cancel::Create(); }), CreateAsserts);
  EXPECT_EQ(Cancel::Get(), first);
}

TEST_F(CancelTest, CreateTwiceReplacesWhereTheHookReturns) {
  Cancel::Create();
  const CancelPtr first = Cancel::Get();
  const RecordedAssertions recorded;
  Cancel::Create();
  EXPECT_EQ(recorded.All(), (std::vector<CaughtAssertion>{CreateAsserts, SetAsserts}));
  EXPECT_NE(Cancel::Get(), first);
  EXPECT_EQ(first->UseCount(), 1);
}

TEST_F(CancelTest, SetTakesAReferenceAndClearingGivesItBack) {
  const CancelPtr event = MakeCancel();
  Cancel::Set(event);
  EXPECT_EQ(event->UseCount(), 2);
  EXPECT_EQ(Cancel::Get(), event);
  EXPECT_EQ(CatchAssertion([] { Cancel::Set(nullptr); }), CaughtAssertion{});
  EXPECT_EQ(event->UseCount(), 1);
  EXPECT_EQ(Cancel::Get(), nullptr);
  EXPECT_EQ(CatchAssertion([] { Cancel::Set(nullptr); }), CaughtAssertion{}) << "clearing twice";
}

TEST_F(CancelTest, SetInPlaceOfAnotherIsAnAssertionThatComesAfterTheChange) {
  const CancelPtr first = MakeCancel();
  const CancelPtr second = MakeCancel();
  Cancel::Set(first);
  EXPECT_EQ(CatchAssertion([&] { Cancel::Set(second); }), SetAsserts);
  EXPECT_EQ(Cancel::Get(), second);
  EXPECT_EQ(second->UseCount(), 2);
  EXPECT_EQ(first->UseCount(), 1) << "nobody would drop the reference any more";
}

TEST_F(CancelTest, SetToTheSameEventIsAnAssertionToo) {
  const CancelPtr event = MakeCancel();
  Cancel::Set(event);
  EXPECT_EQ(CatchAssertion([&] { Cancel::Set(event); }), SetAsserts);
  EXPECT_EQ(event->UseCount(), 2);
}

TEST_F(CancelTest, WhatGoesWithAnEventFindsTheThreadInOrder) {
  struct Asking {
    ~Asking() { *m_seen = Cancel::Get() == nullptr; }
    bool* m_seen;
  };
  bool seen = false;
  Cancel::Create();
  Cancel::GetNonNull().AddOnSignalCallback(&seen, [asking = std::make_shared<Asking>(Asking{&seen})] {});
  seen = false;
  Cancel::Set(nullptr);
  EXPECT_TRUE(seen);
}

TEST_F(CancelTest, GetNonNullWithoutAnEventIsAnAssertion) {
  EXPECT_EQ(CatchAssertion([] { Cancel::GetNonNull(); }),
            (CaughtAssertion{"main/thread/Cancel", 91, "nullptr != ptr", 0x5E7B883F,
                             "LogicException_LogicAssert_0x5E7B883F"}));
}

TEST(CancelDeathTest, GetNonNullEndsTheProcessWhereTheHookReturns) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const RecordedAssertions recorded;
        Cancel::GetNonNull();
      },
      qilsys::test::EndedByAbort, "");
}

// ---- Asking ----

TEST_F(CancelTest, AskingWithoutAnEventIsAnAssertion) {
  EXPECT_EQ(CatchAssertion([] { Cancel::ThrowIfCancelled(); }), NullDereference);
}

TEST_F(CancelTest, AskingThrowsOnceTheEventIsSet) {
  Cancel::Create();
  EXPECT_NO_THROW(Cancel::ThrowIfCancelled());
  std::jthread([event = Cancel::Get()] { event->Signal(); }).join();
  EXPECT_THROW(Cancel::ThrowIfCancelled(), CancelException);
  EXPECT_THROW(Cancel::ThrowIfCancelled(), CancelException) << "each time";
  EXPECT_EQ(Cancel::GetNonNull().UseCount(), 1) << "the reference was dropped";
  Cancel::GetNonNull().Reset();
  EXPECT_NO_THROW(Cancel::ThrowIfCancelled());
}

TEST_F(CancelTest, TheExceptionSaysCanceledUnderOneCode) {
  Cancel::Create();
  Cancel::GetNonNull().Signal();
  try {
    Cancel::ThrowIfCancelled();
    FAIL();
  } catch (const CancelException& exception) {
    EXPECT_EQ(exception.GetMessagesVector(), std::vector<TStringCore>{"Canceled"});
    EXPECT_EQ(exception.GetErrorCode(), 0x94A93C32u);
    EXPECT_EQ(exception.GetErrorName(), TStringCore("QuillonException_AutoGen_0x94A93C32"));
    EXPECT_EQ(exception.GetErrorSource(), TError::Client);
    EXPECT_EQ(exception.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
    EXPECT_FALSE(exception.IsOrphanQuery());
  }
}

TEST_F(CancelTest, ASignalOfAnEventAboveIsSeen) {
  const CancelPtr parent = MakeCancel();
  Cancel::Create();
  parent->Add(Cancel::Get());
  parent->Signal();
  EXPECT_THROW(Cancel::ThrowIfCancelled(), CancelException);
}

// ---- CancelEventSetter ----

using CancelEventSetterTest = CancelTest;

TEST_F(CancelEventSetterTest, PutsTheEarlierEventBack) {
  Cancel::Create();
  const CancelPtr before = Cancel::Get();
  const CancelPtr inside = MakeCancel();
  {
    const Cancel::CancelEventSetter setter(inside);
    EXPECT_EQ(Cancel::Get(), inside);
    EXPECT_EQ(inside->UseCount(), 2);
    EXPECT_EQ(before->UseCount(), 2) << "the scope's own reference";
  }
  EXPECT_EQ(Cancel::Get(), before);
  EXPECT_EQ(before->UseCount(), 2);
  EXPECT_EQ(inside->UseCount(), 1);
}

TEST_F(CancelEventSetterTest, NestsAndTakesNullEitherWay) {
  const CancelPtr event = MakeCancel();
  {
    const Cancel::CancelEventSetter outer(event);
    {
      const Cancel::CancelEventSetter inner(nullptr);
      EXPECT_EQ(Cancel::Get(), nullptr);
    }
    EXPECT_EQ(Cancel::Get(), event);
  }
  EXPECT_EQ(Cancel::Get(), nullptr);
  EXPECT_EQ(event->UseCount(), 1);
}

TEST_F(CancelEventSetterTest, CopiesTouchThePreviousEventOnly) {
  Cancel::Create();
  const CancelPtr before = Cancel::Get();
  const CancelPtr inside = MakeCancel();
  {
    const Cancel::CancelEventSetter setter(inside);
    EXPECT_EQ(before->UseCount(), 2);
    std::optional<Cancel::CancelEventSetter> copy(setter);
    EXPECT_EQ(before->UseCount(), 3);
    EXPECT_EQ(Cancel::Get(), inside);
    *copy = setter;
    EXPECT_EQ(before->UseCount(), 3);
    copy.reset();
    EXPECT_EQ(Cancel::Get(), before);
  }
  EXPECT_EQ(Cancel::Get(), before);
  EXPECT_EQ(before->UseCount(), 2);
  EXPECT_EQ(inside->UseCount(), 1);
}

TEST_F(CancelEventSetterTest, AssignmentTakesThePreviousEventOfTheOther) {
  const CancelPtr first = MakeCancel();
  const CancelPtr second = MakeCancel();
  {
    Cancel::CancelEventSetter overNone(first);
    const Cancel::CancelEventSetter overFirst(second);
    overNone = overFirst;
    EXPECT_EQ(Cancel::Get(), second);
  }
  EXPECT_EQ(Cancel::Get(), first) << "what it was given by the assignment";
}

// ---- SuppressParentCancel ----

using SuppressParentCancelTest = CancelTest;

TEST_F(SuppressParentCancelTest, ACancellationAroundItIsSeenAfterItOnly) {
  Cancel::Create();
  const CancelPtr around = Cancel::Get();
  {
    const Cancel::SuppressParentCancel suppressing;
    EXPECT_NE(Cancel::Get(), around);
    around->Signal();
    EXPECT_NO_THROW(Cancel::ThrowIfCancelled());
  }
  EXPECT_EQ(Cancel::Get(), around);
  EXPECT_THROW(Cancel::ThrowIfCancelled(), CancelException);
}

TEST_F(SuppressParentCancelTest, WorkThatGoesOnSeesItAfterwards) {
  Cancel::Create();
  CancelPtr inside;
  {
    const Cancel::SuppressParentCancel suppressing;
    inside = Cancel::Get();
  }
  EXPECT_FALSE(inside->IsSet());
  EXPECT_EQ(inside->UseCount(), 2) << "it stays beneath the event around it";
  Cancel::GetNonNull().Signal();
  EXPECT_TRUE(inside->IsSet());
}

TEST_F(SuppressParentCancelTest, WorkThatGoesOnSeesAnEarlierCancellationAtOnce) {
  Cancel::Create();
  Cancel::GetNonNull().Signal();
  CancelPtr inside;
  {
    const Cancel::SuppressParentCancel suppressing;
    inside = Cancel::Get();
    EXPECT_FALSE(inside->IsSet());
  }
  EXPECT_TRUE(inside->IsSet());
}

TEST_F(SuppressParentCancelTest, ClearingForgetsWhatHasArrived) {
  Cancel::Create();
  const CancelPtr child = MakeCancel();
  Cancel::GetNonNull().Add(child);
  Cancel::GetNonNull().Signal();
  {
    Cancel::SuppressParentCancel suppressing;
    suppressing.ClearPendingCancel();
  }
  EXPECT_NO_THROW(Cancel::ThrowIfCancelled());
  EXPECT_TRUE(child->IsSet()) << "events beneath it stay as they are";
  Cancel::GetNonNull().Remove(child);
}

TEST_F(SuppressParentCancelTest, WithoutAnEventAroundItEndsInAnAssertion) {
  CancelPtr inside;
  EXPECT_EQ(CatchAssertion([&] {
              Cancel::SuppressParentCancel suppressing;
              suppressing.ClearPendingCancel();
              inside = Cancel::Get();
            }),
            NullDereference);
  EXPECT_EQ(Cancel::Get(), nullptr) << "the thread is as before all the same";
  EXPECT_EQ(inside->UseCount(), 1);
}

TEST_F(SuppressParentCancelTest, ACopyMakesNoEventItsOwnChild) {
  Cancel::Create();
  const CancelPtr around = Cancel::Get();
  {
    const Cancel::SuppressParentCancel suppressing;
    const Cancel::SuppressParentCancel copy(suppressing);
  }
  EXPECT_EQ(Cancel::Get(), around);
  EXPECT_EQ(around->UseCount(), 2);
  around->Signal();
}

TEST_F(SuppressParentCancelTest, SaysThatItsEndCanThrow) {
  EXPECT_FALSE(std::is_nothrow_destructible_v<Cancel::SuppressParentCancel>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Cancel::CancelEventSetter>);
}

}  // namespace
