#include "qilsys/TFormatStringCore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/FailingNew.h"
#include "support/FormatModel.h"
#include "support/Random.h"
#include "support/StringHeaps.h"
#include "support/StringText.h"

namespace {

using namespace qilsys::test::format_texts;
using qilsys::test::ExpectedFormat;
using qilsys::test::FailOneByOne;
using qilsys::test::FormatExpectation;
using qilsys::test::Narrow;
using qilsys::test::UnitsOf;

TStringCore Text(const std::u16string& units) { return TStringCore::fromStdU16String(units); }

// ---- Expansion

struct ExpandRow {
  const char* name;
  std::u16string format;
  std::vector<std::u16string> parameters;
  std::u16string wanted;
};

class TFormatStringCoreExpand : public testing::TestWithParam<ExpandRow> {};

TEST_P(TFormatStringCoreExpand, GivesTheText) {
  const ExpandRow& row = GetParam();
  TFormatStringCore format(Text(row.format));
  for (const std::u16string& parameter : row.parameters) format.arg(Text(parameter));
  EXPECT_EQ(UnitsOf(format.result()), row.wanted);
  EXPECT_EQ(UnitsOf(TStringCore(format)), row.wanted);
  EXPECT_EQ(UnitsOf(format.formatString()), row.format);
}

const ExpandRow ExpandRows[] = {
    {"Empty", u"", {}, u""},
    {"EmptyWithParameters", u"", {u"a", u"b"}, u""},
    {"NoMarker", u"text", {u"a"}, u"text"},
    {"Percent", u"100%%", {}, u"100%"},
    {"PercentThenOne", u"%%1", {}, u"%1"},
    {"PercentThenMarker", u"%%%1", {u"a"}, u"%a"},
    {"One", u"%1", {u"a"}, u"a"},
    {"Adjacent", u"%1%2", {u"a", u"b"}, u"ab"},
    {"AnyOrder", u"%2 %1 %2", {u"a", u"b"}, u"b a b"},
    {"Skipped", u"%3", {u"a", u"b", u"c"}, u"c"},
    {"Extra", u"%1", {u"a", u"b"}, u"a"},
    {"MarkerThenLetter", u"%9a", {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9"}, u"9a"},
    {"MarkerThenPercent", u"%1%%", {u"a"}, u"a%"},
    {"ParameterWithMarker", u"%1 %2", {u"%2", u"%1 %"}, u"%2 %1 %"},
    {"EmptyParameter", u"<%1>", {u""}, u"<>"},
    {"NulInFormatAndParameter", std::u16string(u"a\0%1", 4), {std::u16string(u"\0b", 2)}, std::u16string(u"a\0\0b", 4)},
    {"LoneSurrogates", u"\xD800%1\xDC00", {u"\xDC00"}, u"\xD800\xDC00\xDC00"},
    {"LongerThanInline",
     u"%1 and %1",
     {u"longer than what fits inline"},
     u"longer than what fits inline and longer than what fits inline"},
};
INSTANTIATE_TEST_SUITE_P(Rows, TFormatStringCoreExpand, testing::ValuesIn(ExpandRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TFormatStringCore, TakesMarkerNinetyNine) {
  TFormatStringCore format(u"%99");
  for (int i = 1; i <= 99; ++i) format.arg(i);
  EXPECT_EQ(Narrow(format.result()), "99");
}

TEST(TFormatStringCore, AddsToTheSameListAfterAResult) {
  TFormatStringCore format(u"%1-%2");
  EXPECT_THROW(format.arg(u"a").result(), TFormatStringCore::Exception);
  EXPECT_EQ(Narrow(format.arg(u"b").result()), "a-b");
  EXPECT_EQ(Narrow(format.arg(u"c").result()), "a-b");
  format.clearParms();
  EXPECT_THROW(format.result(), TFormatStringCore::Exception);
  EXPECT_EQ(Narrow(format.args().arg(u"x").arg(u"y").result()), "x-y");
}

TEST(TFormatStringCore, ReturnsItselfFromEveryArg) {
  TFormatStringCore format(u"%1");
  EXPECT_EQ(&format.args(), &format);
  EXPECT_EQ(&format.arg(u"a"), &format);
  EXPECT_EQ(&format.arg(u"a", 9, u'*'), &format);
  EXPECT_EQ(&format.arg(1), &format);
  EXPECT_EQ(&format.arg(1.5), &format);
  EXPECT_EQ(&format.arg(u'x'), &format);
  EXPECT_EQ(&format.arg(u"a", u"b"), &format);
  EXPECT_EQ(&format.arg(std::vector<TStringCore>{u"z"}), &format);
  EXPECT_EQ(Narrow(format.result()), "z");
}

TEST(TFormatStringCore, GrowsNothingButTheResult) {
  TFormatStringCore format(u"%1 and %2");
  format.arg(u"a").arg(u"longer than what fits inline");
  const TStringCore result = format.result();
  EXPECT_EQ(result.capacity(), result.length() + 1);
}

TEST(TFormatStringCore, GivesItsResultToManyThreadsAtOnce) {
  TFormatStringCore format(u"%1 and a longer text than what fits inline, %2");
  format.arg(u"a longer parameter than what fits inline").arg(1.5);
  const TFormatStringCore& shared = format;
  const std::u16string wanted = UnitsOf(shared.result());
  std::atomic<int> same{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 100; ++round) same += UnitsOf(shared.result()) == wanted ? 1 : 0;
      same += shared.formatString().length() > 0 ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(same, 404);
}

// ---- Templates from every kind of text

TEST(TFormatStringCoreSource, TakesEveryTextType) {
  EXPECT_EQ(UnitsOf(TFormatStringCore(u"\u20AC%1").arg(1).result()), u"\u20AC1");
  EXPECT_EQ(UnitsOf(TFormatStringCore(L"\u20AC%1").arg(1).result()), u"\u20AC1");
  EXPECT_EQ(UnitsOf(TFormatStringCore("\xE2\x82\xAC%1").arg(1).result()), u"\u20AC1");
  EXPECT_EQ(UnitsOf(TFormatStringCore(L"\U0001F600%1").arg(1).result()), u"\U0001F6001");
  EXPECT_EQ(UnitsOf(TFormatStringCore(TStringCore(u"%1")).arg(1).result()), u"1");
}

TEST(TFormatStringCoreSource, TakesNullAsEmpty) {
  EXPECT_TRUE(TFormatStringCore(nullptr).result().isEmpty());
  EXPECT_TRUE(TFormatStringCore(static_cast<const char16_t*>(nullptr)).result().isEmpty());
  EXPECT_TRUE(TFormatStringCore(static_cast<const wchar_t*>(nullptr)).result().isEmpty());
  EXPECT_TRUE(TFormatStringCore(static_cast<const char*>(nullptr)).result().isEmpty());
  TFormatStringCore format(u"%1");
  format = nullptr;
  EXPECT_TRUE(format.result().isEmpty());
  format = static_cast<const wchar_t*>(nullptr);
  EXPECT_TRUE(format.formatString().isEmpty());
}

TEST(TFormatStringCoreSource, IsNeverMadeFromTextByAccident) {
  EXPECT_FALSE((std::is_convertible_v<const char16_t*, TFormatStringCore>));
  EXPECT_FALSE((std::is_convertible_v<TStringCore, TFormatStringCore>));
  EXPECT_TRUE((std::is_convertible_v<TFormatStringCore, TStringCore>));
}

TEST(TFormatStringCoreSource, KeepsParametersWhenAssigned) {
  TFormatStringCore format(u"%1");
  format.arg(u"a").arg(u"b");
  format = u"%2%1";
  EXPECT_EQ(Narrow(format.result()), "ba");
  format = L"<%2>";
  EXPECT_EQ(Narrow(format.result()), "<b>");
  format = TStringCore(u"%%%1");
  EXPECT_EQ(Narrow(format.result()), "%a");
  format = "narrow %1";
  EXPECT_EQ(Narrow(format.result()), "narrow a");
  format = u"";
  EXPECT_EQ(Narrow(format.result()), "");
}

TEST(TFormatStringCoreSource, CopiesTemplateAndParameters) {
  TFormatStringCore format(u"%1 %2");
  format.arg(u"a");
  TFormatStringCore copy(format);
  EXPECT_EQ(Narrow(copy.arg(u"b").result()), "a b");
  EXPECT_THROW(format.result(), TFormatStringCore::Exception);
  TFormatStringCore assigned(u"%1 %2 %3");
  assigned = copy;
  EXPECT_EQ(Narrow(assigned.result()), "a b");
  TFormatStringCore& self = assigned;
  assigned = self;
  EXPECT_EQ(Narrow(assigned.result()), "a b");
}

// ---- Parameters

TEST(TFormatStringCoreArg, PadsText) {
  const auto padded = [](int width, char16_t fill) {
    return Narrow(TFormatStringCore(u"%1|").arg(TStringCore(u"abc"), width, fill).result());
  };
  EXPECT_EQ(padded(0, u'*'), "abc|");
  EXPECT_EQ(padded(5, u'*'), "**abc|");
  EXPECT_EQ(padded(-5, u'*'), "abc**|");
  EXPECT_EQ(padded(3, u'*'), "abc|");
  EXPECT_EQ(padded(2, u'*'), "abc|");
  EXPECT_EQ(padded(-2, u'*'), "abc|");
  EXPECT_EQ(padded(INT_MIN, u'*'), "abc|");
  EXPECT_EQ(padded(20, u' '), "                 abc|");
}

template <class T>
class TFormatStringCoreArgOfType : public testing::Test {};
using IntegerTypes =
    testing::Types<short, unsigned short, int, unsigned int, long, unsigned long, long long, unsigned long long>;
TYPED_TEST_SUITE(TFormatStringCoreArgOfType, IntegerTypes);

TYPED_TEST(TFormatStringCoreArgOfType, ConvertsAndPads) {
  using Limits = std::numeric_limits<TypeParam>;
  TFormatStringCore format(u"%1 %2 %3 %4 %5 %6");
  format.arg(Limits::min()).arg(Limits::max()).arg(TypeParam{42}, 6).arg(TypeParam{42}, -6, 10, u'.');
  format.arg(TypeParam{255 % 128}, 4, 16, u'0').arg(TypeParam{42}, 4, 10, L'#');
  EXPECT_EQ(Narrow(format.result()),
            std::to_string(Limits::min()) + " " + std::to_string(Limits::max()) + "     42 42.... 007f ##42");
}

TEST(TFormatStringCoreArg, PutsTheSignInsideTheFill) {
  EXPECT_EQ(Narrow(TFormatStringCore(u"%1").arg(-42, 5, 10, u'0').result()), "00-42");
}

TEST(TFormatStringCoreArg, PrintsNegativeNumbersOfOtherBasesAsPatterns) {
  EXPECT_EQ(Narrow(TFormatStringCore(u"%1").arg(short{-1}, 0, 16).result()), "ffffffffffffffff");
  EXPECT_EQ(Narrow(TFormatStringCore(u"%1").arg(64, 0, 64).result()), "BA");
}

TEST(TFormatStringCoreArg, RaisesForABadBase) {
  TFormatStringCore format(u"%1");
  EXPECT_THROW(format.arg(1, 0, 37), TStringCore::Exception);
  EXPECT_EQ(Narrow(format.arg(1).result()), "1");
}

TEST(TFormatStringCoreArg, ConvertsDoubles) {
  const auto text = [](auto... values) { return Narrow(TFormatStringCore(u"%1").arg(values...).result()); };
  EXPECT_EQ(text(1.5), "1.5");
  EXPECT_EQ(text(1.5F), "1.5");
  EXPECT_EQ(text(-1.5, 7), "   -1.5");
  EXPECT_EQ(text(-1.5, -7, 'f', 2, u'0'), "-1.5000");
  EXPECT_EQ(text(-1.5, 7, 'f', 2, u'0'), "00-1.50");
  EXPECT_EQ(text(2.0, 0, 'f', 3, u' ', true), "2.0");
  EXPECT_EQ(text(2.0, 5, 'f', 3, L'*', true), "**2.0");
  EXPECT_EQ(text(1e6, 0, 'e', 1), "1.0e+06");
}

TEST(TFormatStringCoreArg, TakesOneCharacter) {
  const auto text = [](auto... values) { return UnitsOf(TFormatStringCore(u"%1").arg(values...).result()); };
  EXPECT_EQ(text(u'x'), u"x");
  EXPECT_EQ(text(L'x'), u"x");
  EXPECT_EQ(text(u'x', 3), u"  x");
  EXPECT_EQ(text(L'x', -3), u"x  ");
  EXPECT_EQ(text(u'x', 3, u'*'), u"**x");
  EXPECT_EQ(text(u'x', 3, L'*'), u"**x");
  EXPECT_EQ(text(L'x', 3, u'*'), u"**x");
  EXPECT_EQ(text(L'x', 3, L'*'), u"**x");
  EXPECT_EQ(text(u'\xD800'), u"\xD800");
  EXPECT_EQ(text(u'\0'), std::u16string(1, u'\0'));
}

TEST(TFormatStringCoreArg, TakesAWideCharacterOfTwoUnits) {
  const bool canNeedTwo = sizeof(wchar_t) > sizeof(char16_t);
  const auto wide = static_cast<wchar_t>(canNeedTwo ? 0x1F600 : 0xD83D);
  const auto shown = [](TFormatStringCore& format) { return UnitsOf(format.result()); };
  EXPECT_EQ(shown(TFormatStringCore(u"%1").arg(wide)), canNeedTwo ? u"\U0001F600" : u"\xD83D");
  EXPECT_EQ(shown(TFormatStringCore(u"%1").arg(wide, 4)), canNeedTwo ? u"  \U0001F600" : u"   \xD83D");
  EXPECT_EQ(shown(TFormatStringCore(u"%1").arg(u"x", 3, wide)), canNeedTwo ? u"\xFFFD\xFFFDx" : u"\xD83D\xD83Dx");
  EXPECT_EQ(shown(TFormatStringCore(u"%1").arg(7, -2, 10, wide)), canNeedTwo ? u"7\xFFFD" : u"7\xD83D");
}

TEST(TFormatStringCoreArg, TakesTwoToTenTexts) {
  const auto all = [](const auto&... texts) {
    TFormatStringCore format(u"%1,%2");
    format.arg(texts...);
    for (std::size_t i = 3; i <= sizeof...(texts); ++i) {
      format = format.formatString().append(u",%").append(TStringCore::number(static_cast<int>(i)));
    }
    return Narrow(format.result());
  };
  const TStringCore a(u"a");
  EXPECT_EQ(all(a, u"b"), "a,b");
  EXPECT_EQ(all(a, L"b", "c"), "a,b,c");
  EXPECT_EQ(all(a, a, a, a), "a,a,a,a");
  EXPECT_EQ(all(a, a, a, a, u"5"), "a,a,a,a,5");
  EXPECT_EQ(all(a, a, a, a, a, u"6"), "a,a,a,a,a,6");
  EXPECT_EQ(all(a, a, a, a, a, a, u"7"), "a,a,a,a,a,a,7");
  EXPECT_EQ(all(a, a, a, a, a, a, a, u"8"), "a,a,a,a,a,a,a,8");
  EXPECT_EQ(all(a, a, a, a, a, a, a, a, u"9"), "a,a,a,a,a,a,a,a,9");
  EXPECT_EQ(all(a, a, a, a, a, a, a, a, a, u"10"), "a,a,a,a,a,a,a,a,a,10");
}

template <class... Texts>
concept AcceptsTogether = requires(TFormatStringCore format, Texts... texts) {
  format.arg(texts...);
};

TEST(TFormatStringCoreArg, TakesNoElevenTexts) {
  using T = TStringCore;
  EXPECT_TRUE((AcceptsTogether<T, T, T, T, T, T, T, T, T, T>));
  EXPECT_FALSE((AcceptsTogether<T, T, T, T, T, T, T, T, T, T, T>));
  EXPECT_FALSE((AcceptsTogether<T, T, int>));
}

TEST(TFormatStringCoreArg, ReplacesAllByAVector) {
  TFormatStringCore format(u"%1%2");
  format.arg(u"x").arg(u"y").arg(u"z");
  const std::vector<TStringCore> all{u"a", u"b"};
  EXPECT_EQ(Narrow(format.arg(all).result()), "ab");
  EXPECT_EQ(Narrow(format.arg(u"c").result()), "ab");
  format.arg(std::vector<TStringCore>());
  EXPECT_THROW(format.result(), TFormatStringCore::Exception);
}

TEST(TFormatStringCoreArg, TakesNullText) {
  EXPECT_EQ(Narrow(TFormatStringCore(u"<%1%2%3>").arg(nullptr).arg(nullptr, 2, u'*').arg(u"c").result()), "<**c>");
}

// ---- Failures

struct FailureRow {
  const char* name;
  std::u16string format;
  const char* message;
  unsigned int code;
  const char* codeName;
};

class TFormatStringCoreFailure : public testing::TestWithParam<FailureRow> {};

void ExpectFailure(const TFormatStringCore::Exception& e, const FailureRow& row) {
  EXPECT_EQ(Narrow(e.GetMessagesFront()), row.message);
  EXPECT_EQ(e.GetMessages().size(), 1U);
  EXPECT_TRUE(e.GetRedactedMessages().empty());
  EXPECT_EQ(e.GetErrorCode(), row.code);
  EXPECT_EQ(Narrow(e.GetErrorName()), row.codeName);
  EXPECT_EQ(e.GetErrorSource(), TError::Client);
  EXPECT_EQ(e.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
}

template <class Action>
void ExpectRaised(Action action, const FailureRow& row) {
  try {
    action();
  } catch (const TFormatStringCore::Exception& e) {
    return ExpectFailure(e, row);
  }
  FAIL() << "nothing raised";
}

TEST_P(TFormatStringCoreFailure, RaisesWhenSet) {
  const FailureRow& row = GetParam();
  const TStringCore text = Text(row.format);
  ExpectRaised([&] { TFormatStringCore bad{text}; }, row);
  ExpectRaised([&] { TFormatStringCore bad{text.constData()}; }, row);
  ExpectRaised([&] { TFormatStringCore bad{text.toStdWString().c_str()}; }, row);
  TFormatStringCore good(u"%1");
  ExpectRaised([&] { good = text; }, row);
  ExpectRaised([&] { good = text.constData(); }, row);
}

FailureRow Incomplete(const char* name, const char16_t* format) {
  return {name, format, IncompleteText, 0xA33EDF83, "QuillonException_AutoGen_0xA33EDF83"};
}
FailureRow Numberless(const char* name, const char16_t* format) {
  return {name, format, NumberlessText, 0xF7AF5E37, "QuillonException_AutoGen_0xF7AF5E37"};
}
FailureRow LeadingZero(const char* name, const char16_t* format) {
  return {name, format, LeadingZeroText, 0xB3668D59, "QuillonException_AutoGen_0xB3668D59"};
}
FailureRow Above99(const char* name, const char16_t* format) {
  return {name, format, Above99Text, 0xCA249FEE, "QuillonException_AutoGen_0xCA249FEE"};
}

const FailureRow FailureRows[] = {
    Incomplete("PercentAtEnd", u"100%"),
    Incomplete("PercentAlone", u"%"),
    Incomplete("PercentBehindMarker", u"%1%"),
    Incomplete("ThreePercents", u"%%%"),
    Numberless("Letter", u"%a"),
    Numberless("Space", u"% 1"),
    Numberless("Minus", u"%-1"),
    Numberless("LoneSurrogate", u"%\xD835"),
    Numberless("SupplementaryDigit", u"%\U0001D7CE"),
    LeadingZero("ZeroOne", u"%01"),
    LeadingZero("Zero", u"%0"),
    LeadingZero("ZeroLetter", u"%0a"),
    Above99("Hundred", u"%100"),
    Above99("HundredTwenty", u"%120"),
    Above99("HugeNumber", u"%99999999999999999999"),
    Above99("SecondDigitBeyondAscii", u"%1\u0663"),
    Above99("TwoDigitsBeyondAscii", u"%\u0663\u0663"),
    Above99("DigitBeyondAsciiAndOne", u"%\uFF111"),
};
INSTANTIATE_TEST_SUITE_P(Rows, TFormatStringCoreFailure, testing::ValuesIn(FailureRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TFormatStringCoreInsufficient, TellsCountsAndTemplate) {
  TFormatStringCore format(u"%1 of %3%%");
  format.arg(u"a");
  ExpectRaised([&] { format.result(); },
               {"", u"", "Insufficient parameters to format string (have 1, need 3: format string = \"%1 of %3%%\")",
                0x0E2B86FB, "QuillonException_AutoGen_0x0E2B86FB"});
  ExpectRaised([&] { static_cast<void>(static_cast<TStringCore>(format)); },
               {"", u"", "Insufficient parameters to format string (have 1, need 3: format string = \"%1 of %3%%\")",
                0x0E2B86FB, "QuillonException_AutoGen_0x0E2B86FB"});
}

// U+0663 less 48 is 1587: the first digit is never tested against 99.
TEST(TFormatStringCoreInsufficient, CountsADigitBeyondAsciiByItsUnit) {
  TFormatStringCore format(u"%\u0663");
  ExpectRaised([&] { format.arg(u"a").result(); },
               {"", u"", "Insufficient parameters to format string (have 1, need 1587: format string = \"%?\")",
                0x0E2B86FB, "QuillonException_AutoGen_0x0E2B86FB"});
}

TEST(TFormatStringCoreInsufficient, TakesADigitBeyondAsciiWithEnoughParameters) {
  TFormatStringCore format(u"%\u0663");
  std::vector<TStringCore> all(1587, TStringCore(u"x"));
  all.back() = u"last";
  EXPECT_EQ(Narrow(format.arg(all).result()), "last");
}

TEST(TFormatStringCoreException, IsPlainAfterACopyByDynamicType) {
  const TError::ErrorInfo info(QuillonError::MakeError(5, u"five"), TError::Content, grpc::StatusCode::ABORTED);
  const TFormatStringCore::Exception exception(TStringCore(u"text"), info);
  const std::unique_ptr<QuillonException> clone(exception.Clone());
  EXPECT_EQ(dynamic_cast<TFormatStringCore::Exception*>(clone.get()), nullptr);
  EXPECT_EQ(Narrow(clone->GetMessagesFront()), "text");
  EXPECT_EQ(&clone->GetErrorInfo(), &exception.GetErrorInfo());
  EXPECT_THROW(
      {
        try {
          exception.Throw();
        } catch (const TFormatStringCore::Exception&) {
          FAIL() << "the class survived";
        }
      },
      QuillonException);
}

TEST(TFormatStringCoreException, CopiesAndAssigns) {
  const TError::ErrorInfo info(QuillonError::MakeError(5, u"five"), TError::Content, grpc::StatusCode::ABORTED);
  const TFormatStringCore::Exception first(TStringCore(u"first"), info);
  TFormatStringCore::Exception copy(first);
  EXPECT_EQ(Narrow(copy.GetMessagesFront()), "first");
  copy = TFormatStringCore::Exception(TStringCore(u"second"), TError::ErrorInfo::NoError());
  EXPECT_EQ(Narrow(copy.GetMessagesFront()), "second");
  EXPECT_EQ(copy.GetErrorCode(), 0U);
}

// ---- When memory runs out

// One needs five parameters and has one, the other needs that one alone: a mixture of both finds no fault with itself.
TEST(TFormatStringCoreOutOfMemory, AssignmentLeavesTheObjectAsItWas) {
  TFormatStringCore target(u"%1 %2 %3 %4 %5");
  target.arg(u"one");
  TFormatStringCore source(u"%1 %% %% %% %% %%");
  source.arg(u"p");
  const auto unchanged = [&target] {
    EXPECT_EQ(Narrow(target.formatString()), "%1 %2 %3 %4 %5");
    EXPECT_THROW(target.result(), TFormatStringCore::Exception) << "four parameters are missing";
  };
  EXPECT_EQ(FailOneByOne([&] { target = source; }, unchanged), 2) << "its markers and its parameters";
  EXPECT_EQ(Narrow(target.result()), "p % % % % %");
}

TEST(TFormatStringCoreOutOfMemory, ANewTemplateLeavesTheObjectAsItWas) {
  TFormatStringCore format(u"%1 %2");
  format.arg(u"a").arg(u"b");
  const auto unchanged = [&format] {
    EXPECT_EQ(Narrow(format.formatString()), "%1 %2");
    EXPECT_EQ(Narrow(format.result()), "a b");
  };
  const TStringCore longer(u"%9 %8 %7 %6 %5 %4 %3 %2 %1");
  EXPECT_EQ(FailOneByOne([&] { format = longer; }, unchanged), 2) << "its markers and the room for its parameters";
  EXPECT_THROW(format.result(), TFormatStringCore::Exception) << "seven parameters are missing";
}

TEST(TFormatStringCoreOutOfMemory, SeveralTextsAreAppendedTogetherOrNotAtAll) {
  TFormatStringCore format(u"%1");
  format.arg(u"first");
  const TStringCore text(u"text");
  const auto unchanged = [&format] {
    TFormatStringCore copy(format);
    copy = TStringCore(u"%1 %2");
    EXPECT_THROW(copy.result(), TFormatStringCore::Exception) << "there is a second parameter";
  };
  EXPECT_EQ(FailOneByOne([&] { format.arg(text, text, text, text, text); }, unchanged), 1);
  EXPECT_EQ(Narrow((format = TStringCore(u"%1 %6")).result()), "first text");
}

TEST(TFormatStringCoreOutOfMemory, SeveralTextsOfWhichOneFailsAreNotAppended) {
  TFormatStringCore format(u"%1");
  format.arg(u"first").arg(u"second");
  const char16_t* converted = u"a text too long for inline storage";
  const TStringCore text(u"text");
  const TStringCore wanted(u"first second");
  {
    const qilsys::test::FailingStringHeap heap(0);
    EXPECT_THROW(format.arg(text, text, converted), TStringCore::OutOfMemoryException);
  }
  EXPECT_THROW((format = TStringCore(u"%1 %2 %3")).result(), TFormatStringCore::Exception) << "there is a third one";
  EXPECT_TRUE((format = TStringCore(u"%1 %2")).result() == wanted);
}

TEST(TFormatStringCoreOutOfMemory, OneParameterIsAppendedOrNot) {
  TFormatStringCore format(u"");
  const auto unchanged = [&format] { EXPECT_EQ(Narrow(TFormatStringCore(format).result()), ""); };
  EXPECT_EQ(FailOneByOne([&] { format.arg(7, 3); }, unchanged), 1);
  EXPECT_EQ(FailOneByOne([&] { format.arg(std::vector<TStringCore>(9, TStringCore(u"x"))); }, unchanged), 2);
  EXPECT_EQ(Narrow((format = TStringCore(u"%9")).result()), "x");
}

// ---- Random templates against a plain reading of the state table

TEST(TFormatStringCoreModel, AgreesForAnyTemplate) {
  qilsys::test::SeededRandom random;
  const std::u16string alphabet = u"%%%%0123459ab \u0663\xD800\xDC00";
  std::vector<std::u16string> parameters;
  for (std::size_t i = 0; i < 12; ++i) {
    parameters.push_back(std::u16string(i * 3, u"ABCDEFGHIJKL"[i]) + u"%1");
  }
  int good = 0;
  for (int round = 0; round < qilsys::test::Rounds(30000); ++round) {
    std::u16string format;
    const int length = random.Between(0, 9);
    for (int i = 0; i < length; ++i) format.push_back(alphabet[random.Between<std::size_t>(0, alphabet.size() - 1)]);
    const FormatExpectation expected = ExpectedFormat(format, parameters);
    std::optional<TFormatStringCore> made;
    try {
      made.emplace(Text(format));
    } catch (const TFormatStringCore::Exception& e) {
      ASSERT_NE(expected.failure, nullptr) << Narrow(Text(format));
      ASSERT_EQ(Narrow(e.GetMessagesFront()), expected.failure) << Narrow(Text(format));
      continue;
    }
    ASSERT_EQ(expected.failure, nullptr) << Narrow(Text(format));
    for (const std::u16string& parameter : parameters) made->arg(Text(parameter));
    if (expected.highest > static_cast<int>(parameters.size())) {
      ASSERT_THROW(made->result(), TFormatStringCore::Exception) << Narrow(Text(format));
      continue;
    }
    ASSERT_EQ(UnitsOf(made->result()), expected.text) << Narrow(Text(format));
    ++good;
  }
  EXPECT_GT(good, 0);
}

}  // namespace
