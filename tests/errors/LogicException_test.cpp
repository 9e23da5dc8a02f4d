#include "qilsys/LogicException.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <typeinfo>

#include "errors/LookupTStr.h"
#include "qilsys/TFormatStringCore.h"
#include "support/CaughtAssertion.h"
#include "support/DebugChannel.h"
#include "support/RowName.h"
#include "support/Utf8.h"

using qilsys::test::CaughtAssertion;
using qilsys::test::DebugChannelCapture;
using qilsys::test::RecordedAssertions;
using qilsys::test::ScopedAssertHook;
using qilsys::test::Utf8;
using qilsys::test::Utf8All;

namespace {

using Lines = std::vector<std::string>;

const char* const SourceFile = "main/thread/Cancel";

QuillonError SomeError() { return QuillonError::MakeError(0x5E7B883F, u"LogicException_LogicAssert_0x5E7B883F"); }

TError::ErrorInfo SomeInfo() {
  return TError::ErrorInfo(SomeError(), TError::Configuration, grpc::StatusCode::ABORTED);
}

TStringCore DefaultLookup(unsigned int) { return u"Internal error."; }

// Puts the default back, since the function belongs to the process.
class WithLookup : public testing::Test {
 protected:
  ~WithLookup() override { InjectLookupTStr(&DefaultLookup); }
};

// A hook that throws what is not even an exception class.
void Raise(char const*, int line, char const*, QuillonError const&) { throw line; }

// What is thrown, and what goes to the debug channel, when an assertion fails without a hook.
template <class Report>
LogicException CatchWithoutHook(Report report, std::string& channel) {
  DebugChannelCapture capture;
  try {
    report();
  } catch (const LogicException& exception) {
    channel = capture.Take();
    return exception;
  }
  ADD_FAILURE() << "returned";
  return LogicException(TStringCore(), TError::ErrorInfo::NoError());
}

// ---- Assertions without a hook

TEST(ThrowLogicException, WithoutHookRaisesTheReasonUnderOneCode) {
  std::string channel;
  const LogicException exception =
      CatchWithoutHook([] { ThrowLogicException(SourceFile, 91, "nullptr != ptr", SomeError()); }, channel);
  const std::string text =
      "LogicAssert failed (but no hook has been set) at main/thread/Cancel line 91: nullptr != ptr";
  EXPECT_EQ(Utf8(exception.GetInternalMessage()), text);
  EXPECT_EQ(exception.GetErrorCode(), 0xA2BCBC42u);
  EXPECT_EQ(Utf8(exception.GetErrorName()), "QuillonException_AutoGen_0xA2BCBC42");
  EXPECT_EQ(exception.GetErrorSource(), TError::Client);
  EXPECT_EQ(exception.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
  EXPECT_EQ(Utf8All(exception.GetMessages()), Lines{"Internal error."});
  EXPECT_EQ(channel, text + "\n");
}

TEST(ThrowLogicException, WithoutHookAndErrorIsTheSame) {
  std::string channel;
  const LogicException exception = CatchWithoutHook([] { ThrowLogicException("file", -1, "text"); }, channel);
  EXPECT_EQ(Utf8(exception.GetInternalMessage()),
            "LogicAssert failed (but no hook has been set) at file line -1: text");
  EXPECT_EQ(exception.GetErrorCode(), 0xA2BCBC42u);
}

TEST(ThrowLogicException, TextsAreUtf8) {
  std::string channel;
  const LogicException exception =
      CatchWithoutHook([] { ThrowLogicException("caf\xC3\xA9", 1, "\xE2\x82\xAC"); }, channel);
  EXPECT_EQ(exception.GetInternalMessage().length(),
            TStringCore(u"LogicAssert failed (but no hook has been set) at caf\u00E9 line 1: \u20AC").length());
}

TEST(ThrowLogicException, NullTextsCountAsEmpty) {
  std::string channel;
  const LogicException exception = CatchWithoutHook([] { ThrowLogicException(nullptr, 1, nullptr); }, channel);
  EXPECT_EQ(Utf8(exception.GetInternalMessage()), "LogicAssert failed (but no hook has been set) at  line 1: ");
}

// ---- Hooks

TEST(LogicAssertHook, IsNullAtStart) { EXPECT_EQ(AssertHooks::GetLogicAssertHook(), nullptr); }

TEST(LogicAssertHook, SeesTheSiteAndLetsTheCodeRunOn) {
  const RecordedAssertions asserts;
  ThrowLogicException(SourceFile, 91, "nullptr != ptr", SomeError());
  EXPECT_EQ(asserts.All(), (std::vector{CaughtAssertion{SourceFile, 91, "nullptr != ptr", 0x5E7B883F,
                                                        "LogicException_LogicAssert_0x5E7B883F"}}));
}

TEST(LogicAssertHook, SeesTheGeneralErrorWhereNoneIsNamed) {
  const RecordedAssertions asserts;
  ThrowLogicException("file", 7, "text");
  EXPECT_EQ(asserts.All(), (std::vector{CaughtAssertion{"file", 7, "text", 0x6EA18A9E, "LogicException_0x6EA18A9E"}}));
}

TEST(LogicAssertHook, MayThrowWhatItLikes) {
  const ScopedAssertHook hook(&Raise);
  EXPECT_THROW(ThrowLogicException("file", 7, "text", SomeError()), int);
  EXPECT_THROW(ThrowLogicException("file", 7, "text"), int);
}

TEST(LogicAssertHook, NullRestoresThePathWithoutHook) {
  const RecordedAssertions asserts;
  AssertHooks::SetLogicAssertHook(nullptr);
  EXPECT_EQ(AssertHooks::GetLogicAssertHook(), nullptr);
  std::string channel;
  CatchWithoutHook([] { ThrowLogicException("file", 7, "text", SomeError()); }, channel);
  EXPECT_TRUE(asserts.All().empty());
}

TEST(LogicAssertHook, ReplacesTheOneBefore) {
  const RecordedAssertions asserts;
  {
    const ScopedAssertHook throwing(&Raise);
    EXPECT_THROW(ThrowLogicException("file", 7, "text"), int);
  }
  EXPECT_TRUE(asserts.All().empty());
  ThrowLogicException("file", 7, "text");
  EXPECT_EQ(asserts.All().size(), 1u);
}

// ---- The macro

TEST(LogicAssertMacro, EvaluatesTheConditionOnceAndNothingElseWhenItHolds) {
  int conditions = 0;
  int texts = 0;
  const auto text = [&texts] {
    ++texts;
    return "text";
  };
  QILSYS_LOGIC_ASSERT(++conditions > 0, text(), "file", 1, 1, "name");
  EXPECT_EQ(conditions, 1);
  EXPECT_EQ(texts, 0);
}

TEST(LogicAssertMacro, ReportsAFalseConditionOnce) {
  const RecordedAssertions asserts;
  int conditions = 0;
  QILSYS_LOGIC_ASSERT(++conditions > 1, "++conditions > 1", "file", 12, 0xD0963F53, "a name");
  EXPECT_EQ(conditions, 1);
  EXPECT_EQ(asserts.All(), (std::vector{CaughtAssertion{"file", 12, "++conditions > 1", 0xD0963F53, "a name"}}));
}

TEST(LogicAssertMacro, IsOneStatement) {
  const RecordedAssertions asserts;
  if (asserts.All().empty())
    QILSYS_LOGIC_ASSERT(false, "text", "file", 1, 1, "name");
  else
    FAIL();
  EXPECT_EQ(asserts.All().size(), 1u);
}

// ---- The exception

struct ConstructorRow {
  const char* name;
  std::function<LogicException()> make;
  const char* internalMessage;
  unsigned int code;
  int source;
  int status;
};
void PrintTo(const ConstructorRow& row, std::ostream* out) { *out << row.name; }

class LogicExceptionConstructor : public testing::TestWithParam<ConstructorRow> {};

TEST_P(LogicExceptionConstructor, KeepsTheReasonFromTheMessages) {
  const LogicException exception = GetParam().make();
  EXPECT_EQ(Utf8(exception.GetInternalMessage()), GetParam().internalMessage);
  EXPECT_EQ(exception.GetErrorCode(), GetParam().code);
  EXPECT_EQ(exception.GetErrorSource(), GetParam().source);
  EXPECT_EQ(exception.GetErrorInfo().GetStatusCode(), GetParam().status);
  EXPECT_EQ(Utf8All(exception.GetMessages()), Lines{"Internal error."});
  EXPECT_EQ(Utf8All(exception.GetRedactedMessages()), Lines{});
  EXPECT_EQ(Utf8(exception.GetMessagesFront()), "Internal error.");
  EXPECT_EQ(Utf8(exception.GetConcatenatedMessages()), "Internal error.\n");
  EXPECT_EQ(Utf8(exception.CollateMessagesForLog()),
            std::string("Internal error.\n\nLogicException details: ") + GetParam().internalMessage + "\n");
}

const TFormatStringCore OneOfOne = TFormatStringCore(u"%1 of %1").arg(TStringCore(u"one"));

INSTANTIATE_TEST_SUITE_P(
    Table, LogicExceptionConstructor,
    testing::Values(ConstructorRow{"TextAndRecord", [] { return LogicException(u"reason", SomeInfo()); }, "reason",
                                   0x5E7B883F, 8, 10},
                    ConstructorRow{"TextAndError", [] { return LogicException(u"reason", SomeError()); }, "reason",
                                   0x5E7B883F, 4, 2},
                    ConstructorRow{"FormatAndRecord", [] { return LogicException(OneOfOne, SomeInfo()); }, "one of one",
                                   0x5E7B883F, 8, 10},
                    ConstructorRow{"FormatAndError", [] { return LogicException(OneOfOne, SomeError()); }, "one of one",
                                   0x5E7B883F, 4, 2},
                    ConstructorRow{"EmptyText", [] { return LogicException(u"", SomeInfo()); }, "No details given",
                                   0x5E7B883F, 8, 10},
                    ConstructorRow{"LineFeedsOnly", [] { return LogicException(u"\n\n\n", SomeInfo()); },
                                   "No details given", 0x5E7B883F, 8, 10},
                    ConstructorRow{"TrailingLineFeeds", [] { return LogicException(u"\na\nb\n\n", SomeInfo()); },
                                   "\na\nb", 0x5E7B883F, 8, 10},
                    ConstructorRow{"OtherWhiteSpaceStays", [] { return LogicException(u"a \r\n", SomeInfo()); }, "a \r",
                                   0x5E7B883F, 8, 10},
                    ConstructorRow{"PercentSigns", [] { return LogicException(u"100% %1", SomeInfo()); }, "100% %1",
                                   0x5E7B883F, 8, 10}),
    qilsys::test::RowName<ConstructorRow>);

TEST(LogicException, OfAListHasThePublicTextAtItsHead) {
  const LogicException exception(std::list<TStringCore>{u"one", u"", u"two"}, u"reason\n\n");
  EXPECT_EQ(Utf8All(exception.GetMessages()), (Lines{"Internal error.", "one", "", "two"}));
  EXPECT_EQ(Utf8All(exception.GetRedactedMessages()), Lines{});
  EXPECT_EQ(Utf8(exception.GetInternalMessage()), "reason");
  EXPECT_TRUE(exception.GetErrorInfo() == TError::ErrorInfo::NoError());
  EXPECT_EQ(Utf8(exception.GetMessagesFront()), "Internal error.");
}

TEST(LogicException, OfAListAnEmptyReasonStaysEmpty) {
  const LogicException exception(std::list<TStringCore>{}, u"\n");
  EXPECT_TRUE(exception.GetInternalMessage().empty());
  EXPECT_EQ(Utf8(exception.CollateMessagesForLog()), "Internal error.\n\nLogicException details: \n");
}

TEST(LogicException, LogHasTheMessagesStackedLater) {
  LogicException exception(u"reason", SomeInfo());
  exception.StackMessage(u"while working");
  EXPECT_EQ(Utf8(exception.CollateMessagesForLog()),
            "Internal error.\nwhile working\n\nLogicException details: reason\n");
}

TEST(LogicException, LogAsksTheVirtualMessages) {
  class Told : public LogicException {
   public:
    using LogicException::LogicException;
    TStringCore GetConcatenatedMessages() const override { return u"told"; }
  };
  EXPECT_EQ(Utf8(Told(u"reason", SomeInfo()).CollateMessagesForLog()), "told\nLogicException details: reason\n");
}

TEST(LogicException, CloneAndThrowKeepTypeAndReason) {
  const LogicException exception(u"reason", SomeInfo());
  const QuillonException& base = exception;
  const std::unique_ptr<QuillonException> clone(base.Clone());
  EXPECT_EQ(Utf8(dynamic_cast<const LogicException&>(*clone).GetInternalMessage()), "reason");
  EXPECT_EQ(&clone->GetErrorInfo(), &exception.GetErrorInfo());
  try {
    base.Throw();
  } catch (const LogicException& thrown) {
    EXPECT_EQ(Utf8(thrown.GetInternalMessage()), "reason");
    EXPECT_NE(&thrown, &exception);
  }
}

TEST(LogicException, AssignmentTakesTheReasonToo) {
  const LogicException source(u"reason", SomeInfo());
  LogicException target(u"old", SomeError());
  target = source;
  EXPECT_EQ(Utf8(target.GetInternalMessage()), "reason");
  EXPECT_EQ(&target.GetErrorInfo(), &source.GetErrorInfo());
}

// ---- The public text

using LookupTStrTest = WithLookup;

TEST_F(LookupTStrTest, DefaultIsOneTextForEveryId) {
  EXPECT_EQ(Utf8(LookupTStr(0)), "Internal error.");
  EXPECT_EQ(Utf8(LookupTStr(0xFFFFFFFF)), "Internal error.");
}

TEST_F(LookupTStrTest, IdIsZeroBeforeItIsSet) {
  InjectLookupTStr([](unsigned int id) { return TStringCore::number(id); });
  EXPECT_EQ(Utf8(LogicException(u"reason", SomeInfo()).GetMessagesFront()), "0");
}

TEST_F(LookupTStrTest, AnEmptyPublicTextAddsNoMessage) {
  InjectLookupTStr([](unsigned int) { return TStringCore(); });
  EXPECT_TRUE(LogicException(u"reason", SomeInfo()).GetMessages().empty());
  EXPECT_EQ(Utf8All(LogicException(std::list<TStringCore>{u"one"}, u"reason").GetMessages()), Lines{"one"});
}

TEST_F(LookupTStrTest, AnEmptyFunctionFailsTheNextLookup) {
  InjectLookupTStr(nullptr);
  EXPECT_THROW(LookupTStr(0), std::bad_function_call);
  EXPECT_THROW(LogicException(u"reason", SomeInfo()), std::bad_function_call);
}

}  // namespace
