#include "synchronize/TEventBase.h"

#include <gtest/gtest.h>

#include <string>

#include "base/SystemError_platform.h"
#include "support/CaughtAssertion.h"
#include "support/SystemError.h"

namespace {

using namespace std::chrono_literals;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::NumberOf;
using qilsys::test::ScopedAssertHook;
using qilsys::test::SystemError;

// This program is linked with FailingEvent.cpp.
class TEventBaseFailingTest : public testing::Test {
 protected:
  const std::string m_reason = qilsys::base::SystemErrorText(NumberOf(SystemError::InvalidHandle));
  TEventBase m_base{TEventBase::Kind::ManualReset};
};

TEST_F(TEventBaseFailingTest, SignalIsAnAssertionAndRunsNoCallback) {
  int calls = 0;
  m_base.AddOnSignalCallback(nullptr, [&] { ++calls; });
  const CaughtAssertion expected{"main/synchronize/TEventBase_win", 51, "SetEvent() failed with error: " + m_reason,
                                 0xF2C0F1A4, "LogicException_LogicAssert_0xF2C0F1A4"};
  EXPECT_EQ(CatchAssertion([&] { m_base.Signal(); }), expected);
  const ScopedAssertHook returning([](const char*, int, const char*, const QuillonError&) {});
  m_base.Signal();
  EXPECT_EQ(calls, 0);
}

TEST_F(TEventBaseFailingTest, ResetIsAnAssertion) {
  const CaughtAssertion expected{"main/synchronize/TEventBase_win", 25, "ResetEvent() failed with error: " + m_reason,
                                 0x6BBE359A, "LogicException_LogicAssert_0x6BBE359A"};
  EXPECT_EQ(CatchAssertion([&] { m_base.Reset(); }), expected);
}

TEST_F(TEventBaseFailingTest, WaitsAreFalse) {
  EXPECT_FALSE(m_base.IsSet());
  EXPECT_FALSE(m_base.Wait());
  EXPECT_FALSE(m_base.Wait(1000000ms));
}

TEST_F(TEventBaseFailingTest, WithoutAHookAFailureIsALogicException) {
  try {
    m_base.Signal();
    FAIL() << "must raise";
  } catch (const LogicException& e) {
    EXPECT_EQ(e.GetErrorCode(), 0xA2BCBC42u);
    EXPECT_EQ(e.GetInternalMessage().toStdString(),
              "LogicAssert failed (but no hook has been set) at main/synchronize/TEventBase_win line 51: "
              "SetEvent() failed with error: " +
                  m_reason);
  }
}

}  // namespace
