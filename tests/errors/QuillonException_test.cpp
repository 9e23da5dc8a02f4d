#include "qilsys/QuillonException.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <typeinfo>

#include "qilsys/TFormatStringCore.h"
#include "support/RowName.h"
#include "support/Utf8.h"

using qilsys::test::Utf8;
using qilsys::test::Utf8All;

namespace {

using Lines = std::vector<std::string>;
using List = std::list<TStringCore>;

static_assert(!std::is_base_of_v<std::exception, QuillonException>);

TError::ErrorInfo SomeInfo() {
  return TError::ErrorInfo(QuillonError::MakeError(0x0D655B98, u"QuillonException_AutoGen_0x0D655B98"), TError::System,
                           grpc::StatusCode::UNKNOWN);
}

TFormatStringCore Format(const char* text) { return TFormatStringCore("%1").arg(TStringCore(text)); }

// A format whose result() fails.
TFormatStringCore BadFormat() { return TFormatStringCore("needs %1"); }

Lines MessagesOf(const QuillonException& exception) { return Utf8All(exception.GetMessages()); }
Lines RedactedOf(const QuillonException& exception) { return Utf8All(exception.GetRedactedMessages()); }

// ---- Construction

struct ConstructorRow {
  const char* name;
  QuillonException exception;
  Lines messages;
  Lines redacted;
  TError::ErrorInfo info;
};
void PrintTo(const ConstructorRow& row, std::ostream* out) { *out << row.name; }

class QuillonExceptionConstructor : public testing::TestWithParam<ConstructorRow> {};

TEST_P(QuillonExceptionConstructor, FillsListsAndRecord) {
  EXPECT_EQ(MessagesOf(GetParam().exception), GetParam().messages);
  EXPECT_EQ(RedactedOf(GetParam().exception), GetParam().redacted);
  EXPECT_TRUE(GetParam().exception.GetErrorInfo() == GetParam().info);
  EXPECT_EQ(Utf8(GetParam().exception.GetErrorName()), Utf8(GetParam().info.GetQuillonError().GetCodeName()));
}

const TError::ErrorInfo NoErrorInfo = TError::ErrorInfo::NoError();
const List ThreeMessages = {u"one", u"", u"two"};

INSTANTIATE_TEST_SUITE_P(
    Table, QuillonExceptionConstructor,
    testing::Values(
        ConstructorRow{"Nothing", QuillonException(), {}, {}, NoErrorInfo},
        ConstructorRow{"Record", QuillonException(SomeInfo()), {}, {}, SomeInfo()},
        ConstructorRow{"Text", QuillonException(TStringCore(u"text")), {"text"}, {}, NoErrorInfo},
        ConstructorRow{"LiteralText", QuillonException(u"100%"), {"100%"}, {}, NoErrorInfo},
        ConstructorRow{"EmptyText", QuillonException(TStringCore()), {}, {}, NoErrorInfo},
        ConstructorRow{"TextAndRecord", QuillonException(u"text", SomeInfo()), {"text"}, {}, SomeInfo()},
        ConstructorRow{"EmptyTextAndRecord", QuillonException(u"", SomeInfo()), {}, {}, SomeInfo()},
        ConstructorRow{"Format", QuillonException(Format("text")), {"text"}, {"text"}, NoErrorInfo},
        ConstructorRow{"EmptyFormat", QuillonException(Format("")), {}, {}, NoErrorInfo},
        ConstructorRow{"FormatAndRecord", QuillonException(Format("text"), SomeInfo()), {"text"}, {"text"}, SomeInfo()},
        ConstructorRow{"EmptyFormatAndRecord", QuillonException(Format(""), SomeInfo()), {}, {}, SomeInfo()},
        ConstructorRow{"List", QuillonException(ThreeMessages), {"one", "", "two"}, {}, NoErrorInfo},
        ConstructorRow{
            "ListAndRecord", QuillonException(ThreeMessages, SomeInfo()), {"one", "", "two"}, {}, SomeInfo()},
        ConstructorRow{"Foreign",
                       QuillonException(std::runtime_error(TStringCore("caf\xC3\xA9").toLocal8Bit())),
                       {"caf\xC3\xA9"},
                       {},
                       NoErrorInfo},
        ConstructorRow{"ForeignEmpty", QuillonException(std::runtime_error("")), {}, {}, NoErrorInfo},
        ConstructorRow{
            "ForeignAndRecord", QuillonException(std::runtime_error("text"), SomeInfo()), {"text"}, {}, SomeInfo()}),
    qilsys::test::RowName<ConstructorRow>);

TEST(QuillonException, ConstructorPassesOnABadFormat) {
  EXPECT_THROW(QuillonException exception(BadFormat()), TFormatStringCore::Exception);
}

TEST(QuillonException, TakesACopyOfTheRecord) {
  TError::ErrorInfo info = SomeInfo();
  info.SetAuxDatum(u"key", u"before");
  const QuillonException exception(info);
  info.SetAuxDatum(u"key", u"after");
  EXPECT_EQ(Utf8(exception.GetErrorInfo().GetAuxDatum(u"key")), "before");
}

TEST(QuillonException, AccessorsReadTheRecord) {
  const QuillonException exception(SomeInfo());
  EXPECT_EQ(exception.GetErrorCode(), 0x0D655B98u);
  EXPECT_EQ(exception.GetError().GetCode(), 0x0D655B98u);
  EXPECT_EQ(Utf8(exception.GetErrorName()), "QuillonException_AutoGen_0x0D655B98");
  EXPECT_EQ(exception.GetErrorSource(), TError::System);
}

TEST(QuillonException, ToStringTakesTheTextOfWhat) {
  TStringCore out(u"before");
  QuillonException::ToString(std::runtime_error("line\n"), out);
  EXPECT_EQ(Utf8(out), "line\n");
}

TEST(QuillonException, ToStringOfAnExceptionWithoutTextIsTheDefault) {
  TStringCore out;
  QuillonException::ToString(std::exception(), out);
  EXPECT_EQ(Utf8(out), "Unknown exception");
}

struct WithoutText : std::exception {};
struct WithNullText : std::exception {
  const char* what() const noexcept override { return nullptr; }
};

TEST(QuillonException, AnyExceptionWithoutTextOfItsOwnIsTheDefault) {
  const auto expectDefault = [](const std::exception& exception) {
    TStringCore out;
    QuillonException::ToString(exception, out);
    EXPECT_EQ(Utf8(out), "Unknown exception");
    EXPECT_EQ(MessagesOf(QuillonException(exception)), Lines{"Unknown exception"});
  };
  expectDefault(WithoutText());
  expectDefault(WithNullText());
  try {
    std::throw_with_nested(std::exception());
  } catch (const std::exception& exception) {
    expectDefault(exception);
  }
}

// ---- Copying

TEST(QuillonException, CopySharesTheRecordAndOwnsItsLists) {
  QuillonException source(Format("one"), SomeInfo());
  const QuillonException copy(source);
  source.StackMessage(Format("two"));
  EXPECT_EQ(MessagesOf(copy), Lines{"one"});
  EXPECT_EQ(RedactedOf(copy), Lines{"one"});
  EXPECT_EQ(&copy.GetErrorInfo(), &source.GetErrorInfo());
}

TEST(QuillonException, AssignmentSharesTheRecordAndCopiesTheLists) {
  QuillonException source(Format("one"), SomeInfo());
  QuillonException target(u"old");
  target = source;
  source.StackMessage(u"two");
  EXPECT_EQ(MessagesOf(target), Lines{"one"});
  EXPECT_EQ(RedactedOf(target), Lines{"one"});
  EXPECT_EQ(&target.GetErrorInfo(), &source.GetErrorInfo());
}

TEST(QuillonException, SelfAssignmentChangesNothing) {
  QuillonException exception(Format("one"), SomeInfo());
  const QuillonException& same = exception;
  exception = same;
  EXPECT_EQ(MessagesOf(exception), Lines{"one"});
  EXPECT_EQ(RedactedOf(exception), Lines{"one"});
}

TEST(QuillonException, MovingACopyLeavesTheSourceUsable) {
  QuillonException source(u"one", SomeInfo());
  const QuillonException target(std::move(source));
  EXPECT_EQ(MessagesOf(source), Lines{"one"});
  EXPECT_EQ(MessagesOf(target), Lines{"one"});
}

// ---- Messages

TEST(QuillonExceptionMessages, StackAppends) {
  QuillonException exception(u"one");
  exception.StackMessage(u"two");
  exception.StackMessage(Format("three"));
  EXPECT_EQ(MessagesOf(exception), (Lines{"one", "two", "three"}));
  EXPECT_EQ(RedactedOf(exception), Lines{"three"});
}

TEST(QuillonExceptionMessages, StackingNothingChangesNothing) {
  QuillonException exception(Format("one"));
  exception.StackMessage(TStringCore());
  exception.StackMessage(Format(""));
  exception.StackMessageFront(TStringCore());
  exception.StackMessageFront(Format(""));
  EXPECT_EQ(MessagesOf(exception), Lines{"one"});
  EXPECT_EQ(RedactedOf(exception), Lines{"one"});
}

TEST(QuillonExceptionMessages, FrontOfAFormatGoesToBothLists) {
  QuillonException exception(Format("one"));
  exception.StackMessageFront(Format("zero"));
  EXPECT_EQ(MessagesOf(exception), (Lines{"zero", "one"}));
  EXPECT_EQ(RedactedOf(exception), (Lines{"zero", "one"}));
}

TEST(QuillonExceptionMessages, FrontOfPlainTextMakesTheListsDisagree) {
  QuillonException exception(Format("one"));
  exception.StackMessageFront(u"zero");
  EXPECT_EQ(MessagesOf(exception), (Lines{"zero", "one"}));
  EXPECT_EQ(RedactedOf(exception), Lines{"one"});
  EXPECT_EQ(Utf8(exception.GetMessagesFront()), "zero");
}

TEST(QuillonExceptionMessages, SetReplacesBothLists) {
  QuillonException exception(Format("one"));
  exception.SetMessage(u"plain");
  EXPECT_EQ(MessagesOf(exception), Lines{"plain"});
  EXPECT_EQ(RedactedOf(exception), Lines{});
  exception.SetMessage(Format("format"));
  EXPECT_EQ(MessagesOf(exception), Lines{"format"});
  EXPECT_EQ(RedactedOf(exception), Lines{"format"});
}

TEST(QuillonExceptionMessages, SetOfAnEmptyTextLeavesNone) {
  QuillonException exception(Format("one"));
  exception.SetMessage(TStringCore());
  EXPECT_EQ(MessagesOf(exception), Lines{});
  EXPECT_EQ(RedactedOf(exception), Lines{});
  exception.StackMessage(Format("one"));
  exception.SetMessage(Format(""));
  EXPECT_EQ(MessagesOf(exception), Lines{});
  EXPECT_EQ(RedactedOf(exception), Lines{});
}

TEST(QuillonExceptionMessages, ArgumentsMayLiveInTheListsThemselves) {
  const char* longText = "a text that is too long for inline storage";
  QuillonException exception(Format(longText));
  exception.StackMessage(exception.GetMessages().front());
  exception.StackMessageFront(exception.GetRedactedMessages().front());
  EXPECT_EQ(MessagesOf(exception), (Lines{longText, longText, longText}));
  exception.SetMessage(exception.GetMessages().back());
  EXPECT_EQ(MessagesOf(exception), Lines{longText});
  exception.SetMessage(Format(longText));
  exception.SetMessage(exception.GetRedactedMessages().front());
  EXPECT_EQ(MessagesOf(exception), Lines{longText});
}

TEST(QuillonExceptionMessages, ClearKeepsTheRedactedList) {
  QuillonException exception(Format("one"));
  exception.StackMessage(u"two");
  exception.ClearMessages();
  EXPECT_EQ(MessagesOf(exception), Lines{});
  EXPECT_EQ(RedactedOf(exception), Lines{"one"});
}

TEST(QuillonExceptionMessages, ABadFormatLeavesTheListsAsTheyWere) {
  QuillonException exception(Format("one"));
  EXPECT_THROW(exception.StackMessage(BadFormat()), TFormatStringCore::Exception);
  EXPECT_THROW(exception.StackMessageFront(BadFormat()), TFormatStringCore::Exception);
  EXPECT_THROW(exception.SetMessage(BadFormat()), TFormatStringCore::Exception);
  EXPECT_EQ(MessagesOf(exception), Lines{"one"});
  EXPECT_EQ(RedactedOf(exception), Lines{"one"});
}

TEST(QuillonExceptionMessages, VectorIsACopyInOrder) {
  EXPECT_EQ(Utf8All(QuillonException(ThreeMessages).GetMessagesVector()), (Lines{"one", "", "two"}));
  EXPECT_TRUE(QuillonException().GetMessagesVector().empty());
}

TEST(QuillonExceptionMessages, FrontOfNoneIsEmpty) { EXPECT_TRUE(QuillonException().GetMessagesFront().empty()); }

struct ConcatenationRow {
  const char* name;
  List messages;
  const char* text;
};
void PrintTo(const ConcatenationRow& row, std::ostream* out) { *out << row.name; }

class QuillonExceptionConcatenation : public testing::TestWithParam<ConcatenationRow> {};

TEST_P(QuillonExceptionConcatenation, EndsEachMessageOnce) {
  const QuillonException exception(GetParam().messages);
  EXPECT_EQ(Utf8(exception.GetConcatenatedMessages()), GetParam().text);
  EXPECT_EQ(Utf8(exception.CollateMessagesForLog()), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, QuillonExceptionConcatenation,
                         testing::Values(ConcatenationRow{"None", {}, ""}, ConcatenationRow{"One", {u"a"}, "a\n"},
                                         ConcatenationRow{"OwnLineFeedIsNotDoubled", {u"a", u"b\n", u"c"}, "a\nb\nc\n"},
                                         ConcatenationRow{"EmptyMessageIsALine", {u"a", u"", u"b"}, "a\n\nb\n"},
                                         ConcatenationRow{"OnlyEmpty", {u"", u""}, "\n\n"},
                                         ConcatenationRow{"OwnLineFeedsStay", {u"a\n\n"}, "a\n\n"},
                                         ConcatenationRow{"CarriageReturnIsNoLineFeed", {u"a\r"}, "a\r\n"}),
                         qilsys::test::RowName<ConcatenationRow>);

TEST(QuillonExceptionVirtuals, MessagesAreVirtual) {
  class Told : public QuillonException {
   public:
    TStringCore GetConcatenatedMessages() const override { return u"told"; }
    TStringCore GetMessagesFront() const override { return u"front"; }
    TStringCore CollateMessagesForLog() const override { return u"log"; }
  };
  const Told told;
  const QuillonException& exception = told;
  EXPECT_EQ(Utf8(exception.GetConcatenatedMessages()), "told");
  EXPECT_EQ(Utf8(exception.GetMessagesFront()), "front");
  EXPECT_EQ(Utf8(exception.CollateMessagesForLog()), "log");
}

// ---- Copying by dynamic type

template <class Made, class Expected>
struct CopyCase {
  using MadeType = Made;
  using ExpectedType = Expected;
};

template <class Case>
class QuillonExceptionCopy : public testing::Test {
 protected:
  const typename Case::MadeType m_exception{TStringCore(u"text"), SomeInfo()};
  const QuillonException& m_base = m_exception;
};

using CopyCases = testing::Types<
    CopyCase<QuillonException, QuillonException>, CopyCase<QuillonOutOfMemoryException, QuillonOutOfMemoryException>,
    CopyCase<QuillonUserErrorException, QuillonException>, CopyCase<TFormatStringCore::Exception, QuillonException>>;
TYPED_TEST_SUITE(QuillonExceptionCopy, CopyCases);

TYPED_TEST(QuillonExceptionCopy, CloneHasTheTabledTypeAndSharesTheRecord) {
  const std::unique_ptr<QuillonException> clone(this->m_base.Clone());
  const QuillonException& cloned = *clone;
  EXPECT_EQ(typeid(cloned), typeid(typename TypeParam::ExpectedType));
  EXPECT_EQ(MessagesOf(cloned), Lines{"text"});
  EXPECT_EQ(&cloned.GetErrorInfo(), &this->m_base.GetErrorInfo());
}

TYPED_TEST(QuillonExceptionCopy, ThrowHasTheTabledType) {
  try {
    this->m_base.Throw();
  } catch (const QuillonException& thrown) {
    EXPECT_EQ(typeid(thrown), typeid(typename TypeParam::ExpectedType));
    EXPECT_NE(&thrown, &this->m_base);
    EXPECT_EQ(MessagesOf(thrown), Lines{"text"});
    EXPECT_EQ(&thrown.GetErrorInfo(), &this->m_base.GetErrorInfo());
  }
}

TEST(QuillonExceptionCopyOnThread, CloneMayBeThrownElsewhereWhileItsSourceLives) {
  QuillonException source(Format("one"), SomeInfo());
  std::unique_ptr<QuillonException> clone(source.Clone());
  std::thread thrower([&clone] {
    try {
      clone->Throw();
    } catch (QuillonException& thrown) {
      thrown.StackMessage(u"elsewhere");
      EXPECT_EQ(thrown.GetErrorCode(), 0x0D655B98u);
    }
    clone.reset();
  });
  source.StackMessage(u"here");
  thrower.join();
  EXPECT_EQ(MessagesOf(source), (Lines{"one", "here"}));
  EXPECT_EQ(source.GetErrorCode(), 0x0D655B98u);
}

// ---- The small descendants

TEST(QuillonOutOfMemoryException, FromARecordAloneHasItsOneText) {
  const QuillonOutOfMemoryException exception(SomeInfo());
  EXPECT_EQ(MessagesOf(exception), Lines{"Out of memory"});
  EXPECT_EQ(RedactedOf(exception), Lines{});
  EXPECT_TRUE(exception.GetErrorInfo() == SomeInfo());
}

TEST(QuillonOutOfMemoryException, OtherFormsAddNoText) {
  EXPECT_EQ(MessagesOf(QuillonOutOfMemoryException(u"text", SomeInfo())), Lines{"text"});
  EXPECT_EQ(MessagesOf(QuillonOutOfMemoryException(u"", SomeInfo())), Lines{});
  EXPECT_EQ(MessagesOf(QuillonOutOfMemoryException(ThreeMessages, SomeInfo())), (Lines{"one", "", "two"}));
}

TEST(QuillonUserErrorException, BehavesAsItsBase) {
  const QuillonUserErrorException plain(u"text", SomeInfo());
  EXPECT_EQ(MessagesOf(plain), Lines{"text"});
  EXPECT_EQ(RedactedOf(plain), Lines{});
  const QuillonUserErrorException format(Format("text"), SomeInfo());
  EXPECT_EQ(RedactedOf(format), Lines{"text"});
  EXPECT_EQ(format.GetErrorCode(), 0x0D655B98u);
}

TEST(QuillonExceptionDescendants, CopiesAndAssignmentsShareTheRecord) {
  const QuillonUserErrorException userError(u"text", SomeInfo());
  QuillonUserErrorException copy(userError);
  copy = userError;
  EXPECT_EQ(&copy.GetErrorInfo(), &userError.GetErrorInfo());
  const QuillonOutOfMemoryException outOfMemory(SomeInfo());
  QuillonOutOfMemoryException other(u"", SomeInfo());
  other = outOfMemory;
  EXPECT_EQ(MessagesOf(other), Lines{"Out of memory"});
}

// ---- Stacking on an exception in flight

template <class Message>
void RaiseAndStack(const QuillonException& exception, const Message& message) {
  try {
    exception.Throw();
  } catch (...) {
    StackExceptionAndRethrow(message);
  }
}

TEST(StackExceptionAndRethrow, AddsPlainTextAtTheEnd) {
  try {
    RaiseAndStack(QuillonException(Format("one"), SomeInfo()), TStringCore(u"two"));
  } catch (const QuillonException& exception) {
    EXPECT_EQ(MessagesOf(exception), (Lines{"one", "two"}));
    EXPECT_EQ(RedactedOf(exception), Lines{"one"});
    EXPECT_EQ(exception.GetErrorCode(), 0x0D655B98u);
  }
}

TEST(StackExceptionAndRethrow, AddsAFormatToBothLists) {
  try {
    RaiseAndStack(QuillonException(u"one"), Format("two"));
  } catch (const QuillonException& exception) {
    EXPECT_EQ(MessagesOf(exception), (Lines{"one", "two"}));
    EXPECT_EQ(RedactedOf(exception), Lines{"two"});
  }
}

TEST(StackExceptionAndRethrow, KeepsTheObjectAndItsType) {
  const void* first = nullptr;
  try {
    try {
      throw QuillonUserErrorException(u"one", SomeInfo());
    } catch (const QuillonException& exception) {
      first = &exception;
      StackExceptionAndRethrow(u"two");
    }
  } catch (const QuillonUserErrorException& exception) {
    EXPECT_EQ(&exception, first);
    EXPECT_EQ(MessagesOf(exception), (Lines{"one", "two"}));
    return;
  }
  FAIL() << "lost its type";
}

TEST(StackExceptionAndRethrow, AnEmptyTextStillRethrows) {
  try {
    RaiseAndStack(QuillonException(u"one"), TStringCore());
  } catch (const QuillonException& exception) {
    EXPECT_EQ(MessagesOf(exception), Lines{"one"});
  }
}

TEST(StackExceptionAndRethrow, PassesStandardExceptionsUnchanged) {
  try {
    try {
      throw std::runtime_error("as it was");
    } catch (...) {
      StackExceptionAndRethrow(u"dropped");
    }
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "as it was");
    return;
  }
  FAIL() << "nothing was rethrown";
}

TEST(StackExceptionAndRethrow, PassesStringExceptionsUnchangedAndDropsTheFormatUnread) {
  try {
    try {
      throw TStringCore::CapacityException();
    } catch (...) {
      StackExceptionAndRethrow(BadFormat());
    }
  } catch (const TStringCore::CapacityException& error) {
    EXPECT_EQ(Utf8(error.GetConcatenatedMessages()), "String capacity overflow.");
    return;
  }
  FAIL() << "nothing was rethrown";
}

TEST(StackExceptionAndRethrow, AFailureWhileStackingReplacesTheException) {
  EXPECT_THROW(RaiseAndStack(QuillonException(u"one"), BadFormat()), TFormatStringCore::Exception);
}

TEST(StackExceptionAndRethrowDeathTest, TerminatesWithNoExceptionInFlight) {
  EXPECT_EXIT(
      {
        std::set_terminate([] { std::_Exit(42); });
        StackExceptionAndRethrow(u"text");
      },
      testing::ExitedWithCode(42), "");
}

}  // namespace
