#include "qilsys/TScanStringCore.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/CaughtAssertion.h"
#include "support/FailingNew.h"
#include "support/Literals.h"
#include "support/Random.h"
#include "support/RowName.h"
#include "support/ScanModel.h"
#include "support/StringHeaps.h"
#include "support/StringText.h"

namespace {

using namespace qilsys::test;

TStringCore Text(const std::u16string& units) { return TStringCore::fromStdU16String(units); }

// ---- Tokens that are there

struct TokenRow {
  const char* name;
  std::u16string text;
  TokenRequest request;
  std::u16string token;
  int moved;
};

class TScanStringCoreToken : public testing::TestWithParam<TokenRow> {};

TEST_P(TScanStringCoreToken, IsSkippedAndRead) {
  const TokenRow& row = GetParam();
  const TStringCore text = Text(row.text);
  TScanStringCore scan(text);
  SkipToken(scan, row.request);
  EXPECT_EQ(scan.index(), row.moved);
  EXPECT_EQ(scan.str(), text.constData());
  TokenValues out;
  if (!ReadToken(scan.reset(), row.request, out)) return;
  EXPECT_EQ(scan.index(), row.moved);
  const bool isText = row.request.token != Token::Bool && row.request.token != Token::Float;
  EXPECT_EQ(UnitsOf(out.text), isText ? row.token : UnitsOf(TokenValues().text));
}

constexpr char16_t LongWord[] = u"a word that is longer than what fits inline";

const TokenRow TokenRows[] = {
    {"AnyOf", u"aabbc", {Token::AnyOf, u"ab"}, u"aabb", 4},
    {"AnyOfNone", u"xaa", {Token::AnyOf, u"ab"}, u"", 0},
    {"AnyOfAll", u"abab", {Token::AnyOf, u"ab"}, u"abab", 4},
    {"AnyOfEmptySet", u"ab", {Token::AnyOf, u""}, u"", 0},
    {"AnyOfAtEnd", u"", {Token::AnyOf, u"ab"}, u"", 0},
    {"AnyOfFirstAndLastAscii", u"\x1\x7F\x1\x80", {Token::AnyOf, u"\x1\x7F"}, u"\x1\x7F\x1", 3},
    {"AnyOfBothHalvesOfAscii", u"?@?@A", {Token::AnyOf, u"?@"}, u"?@?@", 4},
    {"AnyOfBeyondAscii", u"\u20ACa\u20ADb", {Token::AnyOf, u"a\u20AD\u20AC"}, u"\u20ACa\u20AD", 3},
    {"AnyOfUnitsOfAPair", u"\xDE00\xD83Dx", {Token::AnyOf, u"\U0001F600"}, u"\xDE00\xD83D", 2},
    {"AnyOfLong", LongWord, {Token::AnyOf, u"abcdefghijklmnopqrstuvwxyz "}, LongWord, 43},
    {"AnyNotOf", u"key=value", {Token::AnyNotOf, u"=;"}, u"key", 3},
    {"AnyNotOfAtOnce", u"=value", {Token::AnyNotOf, u"=;"}, u"", 0},
    {"AnyNotOfToTheEnd", u"value", {Token::AnyNotOf, u"=;"}, u"value", 5},
    {"AnyNotOfEmptySet", u"value", {Token::AnyNotOf, u""}, u"value", 5},
    {"AnyNotOfBeyondAscii", u"ab\u20ACc", {Token::AnyNotOf, u"x\u20AC"}, u"ab", 2},
    {"TextEndsAtNul", std::u16string(u"ab\0cd", 5), {Token::AnyNotOf, u"d"}, u"ab", 2},
    {"BoolOne", u"1", {Token::Bool}, u"1", 1},
    {"BoolTen", u"10", {Token::Bool}, u"1", 1},
    {"BoolZero", u"0x", {Token::Bool}, u"0", 1},
    {"BoolTrue", u"True", {Token::Bool}, u"True", 4},
    {"BoolFalse", u"FALSEHOOD", {Token::Bool}, u"FALSE", 5},
    {"BoolYes", u"yES", {Token::Bool}, u"yES", 3},
    {"BoolNo", u"No", {Token::Bool}, u"No", 2},
    {"BoolNope", u"nope", {Token::Bool}, u"no", 2},
    {"Int", u"123x", {Token::Int, u"", 10}, u"123", 3},
    {"IntMinus", u"-12,", {Token::Int, u"", 10}, u"-12", 3},
    {"IntHex", u"0x1Fg", {Token::Int, u"", 16}, u"0x1F", 4},
    {"IntChosenBase", u"0x1Fg", {Token::Int, u"", 0}, u"0x1F", 4},
    {"IntChosenOctal", u"0178", {Token::Int, u"", 0}, u"017", 3},
    {"IntChosenBeforeALetter", u"7,", {Token::Int, u"", 0}, u"7", 1},
    {"IntLastUnit", u"7", {Token::Int, u"", 10}, u"7", 1},
    {"Float", u"-1.5e3x", {Token::Float}, u"", 6},
    {"Line", u"ab\ncd", {Token::Line}, u"ab", 3},
    {"LineWithCarriageReturn", u"ab\r\ncd", {Token::Line}, u"ab\r", 4},
    {"LineWithCarriageReturnBehind", u"ab\n\rcd", {Token::Line}, u"ab", 4},
    {"LineWithCarriageReturnInside", u"a\rb\nc", {Token::Line}, u"a\rb", 4},
    {"LineAtEnd", u"ab", {Token::Line}, u"ab", 2},
    {"LineEmpty", u"\n\n", {Token::Line}, u"", 1},
    {"LineAtTheVeryEnd", u"", {Token::Line}, u"", 0},
    {"NewlineLf", u"\nx", {Token::Newline}, u"", 1},
    {"NewlineCr", u"\rx", {Token::Newline}, u"", 1},
    {"NewlineCrLf", u"\r\nx", {Token::Newline}, u"", 2},
    {"NewlineLfCr", u"\n\rx", {Token::Newline}, u"", 2},
    {"NewlineLfLf", u"\n\n", {Token::Newline}, u"", 1},
    {"NewlineCrCr", u"\r\r", {Token::Newline}, u"", 1},
    {"NewlineLfAtEnd", u"\n", {Token::Newline}, u"", 1},
    {"NewlineAtEnd", u"", {Token::Newline}, u"", 0},
    {"NonWhitespace", u"word next", {Token::NonWhitespace}, u"word", 4},
    {"NonWhitespaceNone", u" word", {Token::NonWhitespace}, u"", 0},
    {"NonWhitespaceToNoBreakSpace", u"a\u00A0b", {Token::NonWhitespace}, u"a", 1},
    {"NonWhitespaceLoneSurrogates", u"\xD800\xDC00\xDC00\u3000", {Token::NonWhitespace}, u"\xD800\xDC00\xDC00", 3},
    {"Whitespace", u" \t\r\n\v\f\u0085\u2003\u3000x", {Token::Whitespace}, u"", 9},
    {"WhitespaceNone", u"x ", {Token::Whitespace}, u"", 0},
    {"WhitespaceAtEnd", u"", {Token::Whitespace}, u"", 0},
    {"String", u"abcdef", {Token::String, u"", 4}, u"abcd", 4},
    {"StringZero", u"abcdef", {Token::String, u"", 0}, u"", 0},
    {"StringPastTheEnd", u"abc", {Token::String, u"", 4}, u"abc", 3},
    {"StringNegative", u"abcdef", {Token::String, u"", -1}, u"abcdef", 6},
    {"StringHalfAPair", u"\U0001F600", {Token::String, u"", 1}, u"\xD83D", 1},
    {"Text", u"limit 3", {Token::Text, u"limit"}, u"", 5},
    {"TextWhole", u"limit", {Token::Text, u"limit"}, u"", 5},
    {"TextEmpty", u"limit", {Token::Text, u""}, u"", 0},
};
INSTANTIATE_TEST_SUITE_P(Rows, TScanStringCoreToken, testing::ValuesIn(TokenRows), RowName<TokenRow>);

struct BoolRow {
  const char* name;
  const char16_t* text;
  bool value;
};
class TScanStringCoreBool : public testing::TestWithParam<BoolRow> {};

TEST_P(TScanStringCoreBool, HasItsValue) {
  bool value = !GetParam().value;
  TScanStringCore(Text(GetParam().text)).readBool(value);
  EXPECT_EQ(value, GetParam().value);
}

const BoolRow BoolRows[] = {{"One", u"1", true},     {"Ten", u"10", true},       {"Zero", u"0", false},
                            {"True", u"True", true}, {"TRUE", u"TRUE", true},    {"False", u"False", false},
                            {"Yes", u"YES", true},   {"YesLower", u"yes", true}, {"No", u"NO", false},
                            {"Nope", u"nope", false}};
INSTANTIATE_TEST_SUITE_P(Rows, TScanStringCoreBool, testing::ValuesIn(BoolRows), RowName<BoolRow>);

TEST(TScanStringCoreFloat, IsReadInBothWidths) {
  const TStringCore text(u"0.1 -2.5e-3x 12345678901234567890123");
  float single = 0;
  double first = 0;
  double second = 0;
  TScanStringCore scan(text);
  scan.readFloat(single).skipWhitespace().readFloat(first).skip(u"x").skipWhitespace().readFloat(second).end();
  EXPECT_EQ(single, 0.1F);
  EXPECT_EQ(first, -2.5e-3);
  EXPECT_EQ(second, 12345678901234567890123.0);
}

// ---- Tokens that are not there

struct FailureRow {
  const char* name;
  std::u16string text;
  TokenRequest request;
};

struct Site {
  const char* message;
  TError::ErrorSource source;
  unsigned int code;
  const char* codeName;
};

void ExpectSite(const TScanStringCore::Exception& e, const Site& site) {
  EXPECT_EQ(Narrow(e.GetMessagesFront()), site.message);
  EXPECT_EQ(e.GetMessages().size(), 1U);
  EXPECT_TRUE(e.GetRedactedMessages().empty());
  EXPECT_EQ(e.GetErrorCode(), site.code);
  EXPECT_EQ(Narrow(e.GetErrorName()), site.codeName);
  EXPECT_EQ(e.GetErrorSource(), site.source);
  EXPECT_EQ(e.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
}

template <class Action>
void ExpectRaised(Action action, const Site& site) {
  try {
    action();
  } catch (const TScanStringCore::Exception& e) {
    return ExpectSite(e, site);
  }
  FAIL() << "nothing raised";
}

constexpr Site EndSite{"TScanStringCore::end(): Expected null character.", TError::System, 0x57D65295,
                       "QuillonException_AutoGen_0x57D65295"};
constexpr Site ReadDoubleSite{"TScanStringCore::readDouble: Float value not found.", TError::Client, 0x930719DA,
                              "QuillonException_AutoGen_0x930719DA"};
constexpr Site ReadFloatSite{"TScanStringCore::readFloat: Float value not found.", TError::Client, 0x85FD6267,
                             "QuillonException_AutoGen_0x85FD6267"};

Site SiteOf(Token token) {
  switch (token) {
    case Token::Bool:
      return {"TScanStringCore::lengthBool: Boolean value not found.", TError::Client, 0xE9FB330D,
              "QuillonException_AutoGen_0xE9FB330D"};
    case Token::Int:
      return {"TScanStringCore::lengthInt: Integer value not found.", TError::Client, 0x3AD2C18B,
              "QuillonException_AutoGen_0x3AD2C18B"};
    case Token::Newline:
      return {"TScanStringCore::lengthNewLine: No new line found.", TError::Client, 0xB44D5F02,
              "QuillonException_AutoGen_0xB44D5F02"};
    case Token::Text:
      return {"TScanStringCore::skip: String mismatch.", TError::Client, 0x9DAC629F,
              "QuillonException_AutoGen_0x9DAC629F"};
    default:
      return {"TScanStringCore::lengthFloat: Float value not found.", TError::Client, 0xE601166D,
              "QuillonException_AutoGen_0xE601166D"};
  }
}

class TScanStringCoreFailure : public testing::TestWithParam<FailureRow> {};

TEST_P(TScanStringCoreFailure, MovesNothingAndLeavesTheResult) {
  const FailureRow& row = GetParam();
  const TStringCore text = Text(u"# " + row.text);
  TScanStringCore scan(text);
  scan.skip(u"# ");
  ExpectRaised([&] { SkipToken(scan, row.request); }, SiteOf(row.request.token));
  EXPECT_EQ(scan.index(), 2);
  TokenValues out;
  bool isRead = true;
  const auto read = [&] { isRead = ReadToken(scan, row.request, out); };
  if (ScanFailure(read).empty()) {
    EXPECT_FALSE(isRead);
  } else {
    ExpectRaised(read, SiteOf(row.request.token));
  }
  EXPECT_EQ(scan.index(), 2);
  EXPECT_EQ(out.flag, TokenValues().flag);
  EXPECT_EQ(out.single, TokenValues().single);
  EXPECT_EQ(out.number, TokenValues().number);
  EXPECT_EQ(UnitsOf(out.text), UnitsOf(TokenValues().text));
}

const FailureRow FailureRows[] = {
    {"BoolWord", u"maybe", {Token::Bool}},
    {"BoolCut", u"tru", {Token::Bool}},
    {"BoolOn", u"on", {Token::Bool}},
    {"BoolSpaceBefore", u" 1", {Token::Bool}},
    {"BoolAtEnd", u"", {Token::Bool}},
    {"BoolControlUnitOfOne", u"\x11", {Token::Bool}},
    {"BoolControlUnitOfZero", u"\x10", {Token::Bool}},
    {"BoolLongS", u"ye\u017F", {Token::Bool}},
    {"BoolLongSInside", u"fal\u017Fe", {Token::Bool}},
    {"BoolBeyondAscii", u"\uFF11", {Token::Bool}},
    {"IntWord", u"x1", {Token::Int, u"", 10}},
    {"IntSign", u"-x", {Token::Int, u"", 10}},
    {"IntMinusInBase16", u"-12", {Token::Int, u"", 16}},
    {"IntPrefixOnly", u"0x", {Token::Int, u"", 16}},
    {"IntAtEnd", u"", {Token::Int, u"", 10}},
    {"IntAtEndChosen", u"", {Token::Int, u"", 0}},
    {"FloatWord", u"x1", {Token::Float}},
    {"FloatPointBeforeALetter", u".x", {Token::Float}},
    {"FloatSignBeforeALetter", u"+x", {Token::Float}},
    {"FloatAtEnd", u"", {Token::Float}},
    {"DoubleWord", u"nan", {Token::Double}},
    {"DoubleAtEnd", u"", {Token::Double}},
    {"NewlineWord", u"x", {Token::Newline}},
    {"NewlineSpace", u" \n", {Token::Newline}},
    {"NewlineFormFeed", u"\f", {Token::Newline}},
    {"TextOther", u"limes", {Token::Text, u"limit"}},
    {"TextOtherCase", u"Limit", {Token::Text, u"limit"}},
    {"TextCut", u"lim", {Token::Text, u"limit"}},
    {"TextAtEnd", u"", {Token::Text, u"l"}},
};
INSTANTIATE_TEST_SUITE_P(Rows, TScanStringCoreFailure, testing::ValuesIn(FailureRows), RowName<FailureRow>);

TEST(TScanStringCoreEnd, RaisesBeforeItAndNeverMoves) {
  const TStringCore text(u"ab");
  TScanStringCore scan(text);
  ExpectRaised([&] { scan.end(); }, EndSite);
  EXPECT_EQ(scan.index(), 0);
  ExpectRaised([&] { scan.skipString(1).end(); }, EndSite);
  EXPECT_EQ(scan.index(), 1);
  EXPECT_EQ(&scan.skipString(1).end(), &scan);
  EXPECT_EQ(scan.index(), 2);
}

TEST(TScanStringCoreInt, RaisesWhatTheStringRaisesForABadBase) {
  TScanStringCore scan(u"12");
  for (const int base : {-1, 1, 37}) {
    EXPECT_EQ(ScanFailure([&] { scan.skipInt(base); }), "TStringCore::parseInteger: base out of range.");
  }
  EXPECT_THROW(scan.skipInt(1), TStringCore::Exception);
  EXPECT_EQ(scan.index(), 0);
  scan.skipInt(10);
  EXPECT_EQ(scan.index(), 2);
}

TEST(TScanStringCoreInt, CannotChooseABaseForTheLastUnit) {
  TScanStringCore scan(u"17");
  scan.skipString(1);
  EXPECT_THROW(scan.skipInt(0), TStringCore::Exception);
  EXPECT_EQ(scan.index(), 1);
}

// ---- Numbers that their conversion refuses

struct RefusedRow {
  const char* name;
  std::u16string text;
  int length;
  double left;
};
class TScanStringCoreRefused : public testing::TestWithParam<RefusedRow> {};

TEST_P(TScanStringCoreRefused, IsSkippedLikeAnother) {
  const TStringCore text = Text(GetParam().text);
  TScanStringCore scan(text);
  EXPECT_EQ(scan.skipFloat().index(), GetParam().length);
}

TEST_P(TScanStringCoreRefused, RaisesBehindItsTokenAndOverwritesTheResult) {
  const TStringCore text = Text(GetParam().text);
  double number = -1;
  TScanStringCore scan(text);
  ExpectRaised([&] { scan.readFloat(number); }, ReadDoubleSite);
  EXPECT_EQ(scan.index(), GetParam().length);
  EXPECT_EQ(number, GetParam().left);
  float single = -1;
  ExpectRaised([&] { scan.reset().readFloat(single); }, ReadFloatSite);
  EXPECT_EQ(scan.index(), GetParam().length);
  EXPECT_EQ(single, static_cast<float>(GetParam().left));
}

const RefusedRow RefusedRows[] = {
    {"SignAtEnd", u"+", 1, 0},
    {"MinusAtEnd", u"-", 1, 0},
    {"PointAtEnd", u".", 1, 0},
    {"SignAndPointAtEnd", u"-.", 2, 0},
    {"ExponentWithoutDigits", u"1e", 2, 1},
    {"ExponentSignWithoutDigits", u"25e+", 4, 25},
    {"DigitsBeyondAscii", u"\u0663\u0664x", 2, 0},
    {"DigitBeyondAsciiBehind", u"7\u0663 ", 2, 7},
};
INSTANTIATE_TEST_SUITE_P(Rows, TScanStringCoreRefused, testing::ValuesIn(RefusedRows), RowName<RefusedRow>);

TEST(TScanStringCoreFloat, LeavesAnExponentThatGoesOnAsALetter) {
  double number = 0;
  TScanStringCore scan(u"1ex");
  EXPECT_EQ(scan.readFloat(number).index(), 1);
  EXPECT_EQ(number, 1);
}

// ---- Where the text comes from

TEST(TScanStringCoreSource, IsLookedAtAndNotCopied) {
  const TStringCore text(u"a text that is longer than what fits inline");
  const TStringCore inside(u"short");
  EXPECT_EQ(TScanStringCore(text).str(), text.constData());
  EXPECT_EQ(TScanStringCore(inside).str(), inside.constData());
  const TCodeUnit units[] = {u'1', 0};
  EXPECT_EQ(TScanStringCore(units).str(), units);
}

TEST(TScanStringCoreSource, MayBeOfEitherUnitType) {
  TScanStringCore native(QILSYS_UNITS("no \u20AC"));
  EXPECT_EQ(native.skipBool().skipWhitespace().skip(QILSYS_UNITS("\u20AC")).end().index(), 4);
  TScanStringCore foreign(QILSYS_FOREIGN("no \u20AC"));
  EXPECT_EQ(foreign.skipBool().skipWhitespace().skip(QILSYS_FOREIGN("\u20AC")).end().index(), 4);
}

TEST(TScanStringCoreSource, CountsUnitsOfWideText) {
  TScanStringCore scan(L"\U0001F600x");
  TStringCore token;
  EXPECT_EQ(scan.readAnyOf(token, L"\U0001F600").index(), 2);
  EXPECT_EQ(UnitsOf(token), u"\U0001F600");
  EXPECT_EQ(scan.reset().skip(L"\U0001F600").index(), 2);
  EXPECT_EQ(scan.reset().skipAnyOf(L"\U0001F600").index(), 2);
  EXPECT_EQ(scan.reset().skipAnyNotOf(L"x").index(), 2);
  EXPECT_EQ(scan.reset().readAnyNotOf(token, L"x").index(), 2);
  EXPECT_EQ(UnitsOf(token), u"\U0001F600");
}

TEST(TScanStringCoreSource, IsSharedByCopiesThatOutliveTheFirst) {
  std::wstring text = L"first second and more than what fits inline";
  auto first = std::make_unique<TScanStringCore>(text.c_str());
  first->skipNonWhitespace();
  TScanStringCore copy(*first);
  TScanStringCore assigned(u"another");
  assigned = *first;
  TScanStringCore moved(std::move(*first));
  EXPECT_EQ(copy.str(), first->str());
  EXPECT_EQ(assigned.str(), first->str());
  EXPECT_EQ(first->index(), 5);
  // What was moved from stays as it was: both fields are copied.
  EXPECT_EQ(UnitsOf(TStringCore(first->str(), 5)), u"first");
  first.reset();
  for (TScanStringCore* scan : {&copy, &assigned, &moved}) {
    TStringCore word;
    scan->skipWhitespace().readNonWhitespace(word);
    EXPECT_EQ(UnitsOf(word), u"second");
    EXPECT_EQ(scan->reset().index(), 0);
  }
}

TEST(TScanStringCoreSource, IsNeverConvertedIntoATextThatNobodyHolds) {
  EXPECT_FALSE((std::is_constructible_v<TScanStringCore, const char*>));
  EXPECT_FALSE((std::is_convertible_v<const char16_t*, TScanStringCore>));
  EXPECT_FALSE((std::is_convertible_v<TStringCore, TScanStringCore>));
  EXPECT_FALSE(std::is_default_constructible_v<TScanStringCore>);
}

template <class Null>
void ExpectNullIsAsserted(Null null) {
  const CaughtAssertion wanted{"main/qilsys/TScanStringCore", 101, "m_input", 0x1D15303B,
                               "LogicException_LogicAssert_0x1D15303B"};
  EXPECT_EQ(CatchAssertion([&] { TScanStringCore scan(null); }), wanted);
  const RecordedAssertions recorded;
  TScanStringCore scan(null);
  EXPECT_EQ(scan.str(), nullptr);
  EXPECT_EQ(recorded.All(), std::vector<CaughtAssertion>{wanted});
  TStringCore line(u"as it was");
  scan.end().skipWhitespace().skipNewline().skipString(-1).skipString(4).skip(u"").readLine(line).end();
  EXPECT_TRUE(line.empty());
  EXPECT_THROW(scan.skipInt(10), TScanStringCore::Exception);
  EXPECT_THROW(scan.skip(u"x"), TScanStringCore::Exception);
  EXPECT_EQ(scan.index(), 0);
  scan.reset();
  EXPECT_EQ(recorded.All().size(), 2U);
}

TEST(TScanStringCoreSource, MustNotBeNull) {
  ExpectNullIsAsserted(nullptr);
  ExpectNullIsAsserted(static_cast<const char16_t*>(nullptr));
  ExpectNullIsAsserted(static_cast<const wchar_t*>(nullptr));
}

TEST(TScanStringCoreSource, TakesNullSetsAndTextsAsEmpty) {
  TStringCore token(u"x");
  TScanStringCore scan(u"ab");
  EXPECT_EQ(scan.skipAnyOf(nullptr).skip(nullptr).readAnyOf(token, nullptr).index(), 0);
  EXPECT_TRUE(token.empty());
  EXPECT_EQ(scan.skip(static_cast<const wchar_t*>(nullptr)).index(), 0);
  EXPECT_EQ(scan.readAnyNotOf(token, nullptr).index(), 2);
  EXPECT_EQ(UnitsOf(token), u"ab");
  EXPECT_EQ(scan.reset().skipAnyNotOf(nullptr).index(), 2);
}

TEST(TScanStringCoreSource, MayNameTheResultAsItsSet) {
  TStringCore out(u"abc and longer than what fits inline");
  TScanStringCore scan(u"cab x");
  scan.readAnyOf(out, out.constData());
  EXPECT_EQ(UnitsOf(out), u"cab ");
}

TEST(TScanStringCore, ReturnsItselfFromEveryCall) {
  TScanStringCore scan(u"ab 1 yes 2\n\n3");
  TStringCore text;
  bool flag = false;
  float single = 0;
  double number = 0;
  const std::vector<const TScanStringCore*> results = {&scan.reset(),
                                                       &scan.skipAnyOf(u"a"),
                                                       &scan.readAnyOf(text, u"b"),
                                                       &scan.skipAnyNotOf(u"1"),
                                                       &scan.skipInt(10),
                                                       &scan.readAnyNotOf(text, u"y"),
                                                       &scan.readBool(flag),
                                                       &scan.skipWhitespace(),
                                                       &scan.readFloat(number),
                                                       &scan.skipNewline(),
                                                       &scan.skipLine(),
                                                       &scan.readFloat(single),
                                                       &scan.skipNonWhitespace(),
                                                       &scan.readNonWhitespace(text),
                                                       &scan.skipString(1),
                                                       &scan.readString(text, 1),
                                                       &scan.readLine(text),
                                                       &scan.skip(u""),
                                                       &scan.end()};
  for (const TScanStringCore* result : results) EXPECT_EQ(result, &scan);
  EXPECT_TRUE(flag);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(single, 3);
}

// ---- Memory

TEST(TScanStringCoreMemory, IsNotNeededToSkip) {
  const TStringCore text(u"abc=def, a long word that fits no string inline 12 1.25e10 yes \r\nnext line\nrest");
  const FailingStringHeap none(0);
  const FailingNew failing(0);
  TScanStringCore scan(text);
  scan.skipAnyOf(u"abc").skip(u"=").skipAnyNotOf(u",").skip(L", a").skipAnyNotOf(L"0123456789\u20AC");
  scan.skipInt(10).skipWhitespace().skipFloat().skipWhitespace().skipBool().skipWhitespace();
  scan.skipNonWhitespace().skipLine().skipString(2).skipString(-1).skipNewline().end();
  EXPECT_EQ(scan.index(), text.length());
  EXPECT_EQ(FailingStringHeap::Requests(), 0);
}

TEST(TScanStringCoreMemory, ThatEndsWhileATokenIsReadMovesNothing) {
  const TStringCore text(u"1234567890.1234567890 a token that is longer than what fits inline\n");
  using Step = void (*)(TScanStringCore&, TokenValues&);
  constexpr Step Steps[] = {
      [](TScanStringCore& scan, TokenValues& out) { scan.readLine(out.text); },
      [](TScanStringCore& scan, TokenValues& out) { scan.readString(out.text, 50); },
      [](TScanStringCore& scan, TokenValues& out) { scan.readNonWhitespace(out.text); },
      [](TScanStringCore& scan, TokenValues& out) { scan.readAnyOf(out.text, u"0123456789. aeo"); },
      [](TScanStringCore& scan, TokenValues& out) { scan.readAnyNotOf(out.text, u"\n"); },
      [](TScanStringCore& scan, TokenValues& out) { scan.readFloat(out.single); },
      [](TScanStringCore& scan, TokenValues& out) { scan.readFloat(out.number); },
  };
  for (const Step step : Steps) {
    TScanStringCore scan(text);
    TokenValues out;
    out.text.clear();
    {
      const FailingStringHeap none(0);
      EXPECT_THROW(step(scan, out), TStringCore::OutOfMemoryException);
    }
    EXPECT_EQ(scan.index(), 0);
    EXPECT_TRUE(out.text.empty());
    EXPECT_EQ(out.single, -1);
    EXPECT_EQ(out.number, -1);
    step(scan, out);
    EXPECT_GT(scan.index(), 0);
  }
}

// An index has 32 bits, and no string is longer than 0x7FFFFFF7 units.
TEST(TScanStringCoreLimits, EndBeforeAnIndexThatNoStringHas) {
  constexpr int Longest = 0x7FFFFFF7;
  const RepeatedBytes bytes((std::size_t{Longest} + 1) * 2 + 8, 'x');
  TScanStringCore scan(reinterpret_cast<const TCodeUnit*>(bytes.data()));
  TStringCore out(u"as it was");
  EXPECT_THROW(scan.skipLine(), TStringCore::CapacityException);
  EXPECT_EQ(scan.index(), 0);
  EXPECT_EQ(scan.skipString(Longest).index(), Longest);
  EXPECT_THROW(scan.skipString(1), TStringCore::CapacityException);
  EXPECT_THROW(scan.readLine(out), TStringCore::CapacityException);
  EXPECT_EQ(UnitsOf(out), u"as it was");
  EXPECT_EQ(scan.index(), Longest);
}

// ---- Any text

std::u16string RandomUnits(SeededRandom& random, std::u16string_view units, int most) {
  std::u16string text(static_cast<std::size_t>(random.Between(0, most)), u'\0');
  for (char16_t& unit : text) unit = units[random.Between<std::size_t>(0, units.size() - 1)];
  return text;
}

TEST(TScanStringCoreProperty, SkippingAndReadingEndAtTheSamePlace) {
  constexpr std::u16string_view Units = u"10truefalsyno \t\r\n+-.eExX79,\u0663\u20AC\xD83D\xDE00\u2003\u0011";
  constexpr int Bases[] = {-1, 0, 0, 1, 2, 8, 10, 10, 16, 36, 37};
  SeededRandom random;
  for (int round = Rounds(20000); round > 0; --round) {
    const TStringCore text = Text(RandomUnits(random, Units, 12));
    const auto token = static_cast<Token>(random.Between(0, TokenCount - 1));
    const int number =
        token == Token::Int ? Bases[random.Between<std::size_t>(0, std::size(Bases) - 1)] : random.Between(-1, 13);
    const TokenRequest request{token, RandomUnits(random, Units, 3), number};
    const int start = random.Between(0, text.length());
    TScanStringCore skipping(text);
    skipping.skipString(start);
    TScanStringCore reading(skipping);
    const std::u16string rest = UnitsOf(text).substr(static_cast<std::size_t>(start));
    SCOPED_TRACE(testing::Message() << "token " << static_cast<int>(token) << " of " << testing::PrintToString(text)
                                    << " from " << start << ", number " << number);

    const ExpectedToken skipped = ExpectToken(rest, request, false);
    EXPECT_EQ(ScanFailure([&] { SkipToken(skipping, request); }), skipped.failure ? skipped.failure : "");
    ASSERT_EQ(skipping.index(), start + skipped.moved);

    TokenValues out;
    bool isRead = true;
    const std::string failure = ScanFailure([&] { isRead = ReadToken(reading, request, out); });
    if (!isRead) continue;
    const bool isRefused = failure.find("TScanStringCore::read") == 0;
    EXPECT_EQ(failure.empty() || isRefused, skipped.failure == nullptr);
    ASSERT_EQ(reading.index(), skipping.index());
    if (failure.empty() && reading.index() > start && token >= Token::Line) {
      EXPECT_EQ(UnitsOf(out.text), rest.substr(0, static_cast<std::size_t>(skipped.length)));
    }
  }
}

// ---- The exception

TEST(TScanStringCoreException, KeepsItsClassThroughCloneAndThrow) {
  const TError::ErrorInfo info(QuillonError::MakeError(7, "seven"), TError::Client, grpc::StatusCode::UNKNOWN);
  const TScanStringCore::Exception first(u"message", info);
  const std::unique_ptr<QuillonException> clone(static_cast<const QuillonException&>(first).Clone());
  EXPECT_NE(dynamic_cast<TScanStringCore::Exception*>(clone.get()), nullptr);
  EXPECT_EQ(Narrow(clone->GetMessagesFront()), "message");
  EXPECT_EQ(clone->GetErrorCode(), 7U);
  EXPECT_THROW(clone->Throw(), TScanStringCore::Exception);
}

TEST(TScanStringCoreException, IsCopiedAndMoved) {
  const TError::ErrorInfo info(QuillonError::MakeError(7, "seven"), TError::Client, grpc::StatusCode::UNKNOWN);
  TScanStringCore::Exception first(u"message", info);
  TScanStringCore::Exception second(u"another", TError::ErrorInfo::NoError());
  second = first;
  EXPECT_EQ(Narrow(second.GetMessagesFront()), "message");
  const TScanStringCore::Exception moved(std::move(first));
  EXPECT_EQ(Narrow(moved.GetMessagesFront()), "message");
  second = TScanStringCore::Exception(u"third", info);
  EXPECT_EQ(Narrow(second.GetMessagesFront()), "third");
  EXPECT_EQ(second.GetErrorCode(), 7U);
}

}  // namespace
