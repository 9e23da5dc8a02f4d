// Every family through both of its unit types; positions and buffers of wide text; operators and null arguments.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/RowName.h"
#include "support/StringText.h"

using namespace std::string_literals;
using qilsys::test::UnitsOf;

namespace {

constexpr bool WideIsCodePoints = sizeof(wchar_t) > sizeof(char16_t);
constexpr auto Sensitive = TStringCore::CaseSensitive;
constexpr auto Insensitive = TStringCore::CaseInsensitive;

std::u16string Shown(const TStringCore& text) { return UnitsOf(text); }
std::u16string Shown(int value) { return Shown(TStringCore::fromStdString(std::to_string(value))); }
std::u16string Shown(const std::vector<TStringCore>& list) {
  std::u16string shown;
  for (const TStringCore& text : list) shown += Shown(text) + u"|";
  return shown;
}
std::u16string Shown(const TStringCore::CodePointIterator& at) { return Shown(at.codeUnitIndex); }

/// The literals of one unit type.
template <class U>
struct Literals;
template <>
struct Literals<char16_t> {
  static const char16_t* text(const char16_t* narrow, const wchar_t*) { return narrow; }
  static char16_t unit(char16_t narrow, wchar_t) { return narrow; }
};
template <>
struct Literals<wchar_t> {
  static const wchar_t* text(const char16_t*, const wchar_t* wide) { return wide; }
  static wchar_t unit(char16_t, wchar_t wide) { return wide; }
};

// Both spellings of a literal; the unit type in force picks one.
#define T(literal) Literals<U>::text(u##literal, L##literal)
#define C(literal) Literals<U>::unit(u##literal, L##literal)

using Results = std::vector<std::pair<std::string, std::u16string>>;

const TStringCore& Sample() {
  static const TStringCore Text(u"ab\U0001F600\u00C9abXab");
  return Text;
}

template <class Edit>
std::u16string Edited(Edit edit) {
  TStringCore copy = Sample();
  edit(copy);
  return Shown(copy);
}

template <class U>
Results ResultsOfStorage() {
  return {
      {"construct", Shown(TStringCore(T("x\u00C9\U0001F600")))},
      {"construct with length", Shown(TStringCore(T("xyz"), 2))},
      {"construct repeated", Shown(TStringCore(C('x'), 3))},
      {"construct from null", Shown(TStringCore(static_cast<const U*>(nullptr), 5))},
      {"assign", Edited([](TStringCore& s) { s.assign(T("xyz"), 2); })},
      {"assign null", Edited([](TStringCore& s) { s.assign(static_cast<const U*>(nullptr), 3); })},
      {"assign unit", Edited([](TStringCore& s) { s.assign(C('x'), 2); })},
      {"assign unit never", Edited([](TStringCore& s) { s.assign(C('x'), -1); })},
      {"set", Edited([](TStringCore& s) { s.set(T("xyz")); })},
      {"=", Edited([](TStringCore& s) { s = T("xyz"); })},
      {"= unit", Edited([](TStringCore& s) { s = C('x'); })},
      {"fromUtf16", Shown(TStringCore::fromUtf16(T("xyz"), 1))},
      {"fromWChar", Shown(TStringCore::fromWChar(T("xyz")))},
      {"length", Shown(TStringCore::length(T("xyz")))},
      {"lengthInBytes", Shown(TStringCore::lengthInBytes(T("xyz")))},
  };
}

template <class U>
Results ResultsOfSearches() {
  const TStringCore& text = Sample();
  const auto it = ++text.codepoint_cbegin();
  return {
      {"compare", Shown(text.compare(T("AB"), Insensitive))},
      {"static compare", Shown(TStringCore::compare(T("a"), T("B"), Insensitive))},
      {"static compare sensitive", Shown(TStringCore::compare(T("a"), T("B")))},
      {"compareN", Shown(TStringCore::compareN(T("abX"), T("abY"), 2))},
      {"compareN more", Shown(TStringCore::compareN(T("abX"), T("abY"), 3))},
      {"compareN all", Shown(TStringCore::compareN(T("abX"), T("abX"), -1))},
      {"compareN past the end", Shown(TStringCore::compareN(T("ab"), T("ab"), 100))},
      {"compareN null", Shown(TStringCore::compareN(static_cast<const U*>(nullptr), T("ab"), 1))},
      {"findStr 6", Shown(TStringCore::findStr(T("xabx"), 4, T("ab"), 2, 0, Sensitive))},
      {"findStr 5", Shown(TStringCore::findStr(T("xabx"), 4, T("AB"), 0, Insensitive))},
      {"findStr 4", Shown(TStringCore::findStr(T("xabxab"), T("ab"), 2))},
      {"findStr negative start", Shown(TStringCore::findStr(T("xabxab"), T("ab"), -2))},
      {"findStr negative length", Shown(TStringCore::findStr(T("xabxab"), -1, T("ab"), 2, 0))},
      {"indexOf", Shown(text.indexOf(T("AB"), 1, Insensitive))},
      {"indexOf unit", Shown(text.indexOf(C('b'), 2))},
      {"static indexOf", Shown(TStringCore::indexOf(T("xabx"), 4, C('x'), 1))},
      {"static indexOf measured", Shown(TStringCore::indexOf(T("xabx"), -1, C('x'), -1))},
      {"contains unit", Shown(text.contains(C('X')))},
      {"count", Shown(text.count(T("AB"), Insensitive))},
      {"count unit", Shown(text.count(C('a')))},
      {"startsWith", Shown(text.startsWith(T("AB"), Insensitive))},
      {"startsWith unit", Shown(text.startsWith(C('a')))},
      {"endsWith", Shown(text.endsWith(T("ab")))},
      {"endsWith unit", Shown(text.endsWith(C('b')))},
      {"lastIndexOf", Shown(text.lastIndexOf(T("AB"), 7, Insensitive))},
      {"lastIndexOf unit", Shown(text.lastIndexOf(C('a'), 6))},
      {"find", Shown(text.find(T("\U0001F600")))},
      {"find from", Shown(text.find(T("ab"), it))},
      {"find unit", Shown(text.find(C('X')))},
      {"find unit from", Shown(text.find(C('b'), it))},
      {"findLast unit", Shown(text.findLast(C('a')))},
      {"findLast unit from", Shown(text.findLast(C('a'), it))},
      {"findOneOf", Shown(text.findOneOf(T("X\u00C9")))},
      {"findOneOf from", Shown(text.findOneOf(T("ab"), it))},
      {"static findOneOf", Shown(TStringCore::findOneOf(T("xabx"), T("ba"), 2))},
      {"findChar", Shown(TStringCore::findChar(T("xabx"), C('x'), 1))},
      {"findChar NUL", Shown(TStringCore::findChar(T("xabx"), U{}, 0))},
      {"findOneNotOf", Shown(text.findOneNotOf(T("ab")))},
      {"findOneNotOf unit", Shown(text.findOneNotOf(C('a')))},
      {"static findOneNotOf", Shown(TStringCore::findOneNotOf(T("xxabx"), T("xy"), 1))},
      {"static findOneNotOf unit", Shown(TStringCore::findOneNotOf(T("xxabx"), C('x')))},
  };
}

template <class U>
Results ResultsOfEdits() {
  const TStringCore& text = Sample();
  return {
      {"append", Edited([](TStringCore& s) { s.append(T("xyz"), 2).append(T("\u00C9")); })},
      {"append unit", Edited([](TStringCore& s) { s.append(C('\u00C9')); })},
      {"+=", Edited([](TStringCore& s) { (s += T("xyz")) += C('x'); })},
      {"push_back", Edited([](TStringCore& s) { s.push_back(C('x')); })},
      {"insert", Edited([](TStringCore& s) { s.insert(2, T("xyz"), 2).insert(0, C('0')); })},
      {"insert null", Edited([](TStringCore& s) { s.insert(2, static_cast<const U*>(nullptr), 2); })},
      {"insert in a pair", Edited([](TStringCore& s) { s.insert(3, T("xyz")); })},
      {"insert at iterator", Edited([](TStringCore& s) { s.insert(s.codepoint_cend(), T("xyz"), 1); })},
      {"prepend", Edited([](TStringCore& s) { s.prepend(T("xyz")).prepend(C('0')).push_front(C('1')); })},
      {"replace range", Edited([](TStringCore& s) { s.replace(1, 1, T("xyz"), 2); })},
      {"replace range by unit", Edited([](TStringCore& s) { s.replace(1, 3, C('x')); })},
      {"replace range by nothing", Edited([](TStringCore& s) { s.replace(1, 1, static_cast<const U*>(nullptr), 0); })},
      {"replace range by null", Edited([](TStringCore& s) { s.replace(1, 1, static_cast<const U*>(nullptr), 2); })},
      {"replace at iterator", Edited([](TStringCore& s) { s.replace(s.codepoint_cbegin(), 2, C('x')); })},
      {"replace units", Edited([](TStringCore& s) { s.replace(C('a'), C('x')); })},
      {"replace unit by text", Edited([](TStringCore& s) { s.replace(C('a'), TStringCore(u"--")); })},
      {"replace", Edited([](TStringCore& s) { s.replace(T("AB"), 2, T("-"), 1, Insensitive); })},
      {"replace texts", Edited([](TStringCore& s) { s.replace(T("ab"), T("\U0001F600")); })},
      {"replaceCount", Shown(TStringCore(text).replaceCount(T("a"), 1, T("b"), 1))},
      {"replaceCount -1", Shown(TStringCore(text).replaceCount(T("a"), -1, T("b"), 1))},
      {"replaceAnyOf", Edited([](TStringCore& s) { s.replaceAnyOf(T("a\U0001F600"), C('x'), 1); })},
      {"removeAll", Edited([](TStringCore& s) { s.removeAll(T("AB"), -1, Insensitive); })},
      {"removeAll unit", Edited([](TStringCore& s) { s.removeAll(C('a')); })},
      {"removeAll null", Edited([](TStringCore& s) { s.removeAll(static_cast<const U*>(nullptr), 3); })},
      {"removeAnyOf", Edited([](TStringCore& s) { s.removeAnyOf(T("a\U0001F600"), 1); })},
      {"trim", Edited([](TStringCore& s) { s.trim(T("ab")); })},
      {"trimLeft", Edited([](TStringCore& s) { s.trimLeft(T("ab")).trimLeft(C('\u00C9')); })},
      {"trimRight", Edited([](TStringCore& s) { s.trimRight(T("ab")).trimRight(C('X')); })},
      {"trim unit", Edited([](TStringCore& s) { s.trim(C('a')).trim(C('b')); })},
      {"fill", Edited([](TStringCore& s) { s.fill(C('x')); })},
  };
}

template <class U>
Results ResultsOfPieces() {
  const TStringCore& text = Sample();
  int pos = 0;
  return {
      {"leftJustified", Shown(text.leftJustified(12, C('.')))},
      {"rightJustified", Shown(text.rightJustified(12, C('.'), true))},
      {"spanIncluding", Shown(text.spanIncluding(T("ab")))},
      {"spanExcluding", Shown(text.spanExcluding(T("X")))},
      {"split", Shown(text.split(T("B"), TStringCore::KeepEmptyTokens, Insensitive))},
      {"split unit", Shown(text.split(C('b')))},
      {"static split", Shown(TStringCore::split(T("x,,y"), 4, T(","), TStringCore::DropEmptyTokens))},
      {"static split cut", Shown(TStringCore::split(T("x,,y"), 2, T(",")))},
      {"static split unit", Shown(TStringCore::split(T("x,,y"), -1, C(',')))},
      {"splitOnAny", Shown(text.splitOnAny(T("aX")))},
      {"tokenize", Shown(text.tokenize(T("X"), pos))},
      {"section", Shown(text.section(T("a"), 1, 1))},
      {"section unit", Shown(text.section(C('a'), 1, 1, TStringCore::SectionWithLeadingSeparator))},
      {"static section", Shown(TStringCore::section(T("x,y,z"), -1, T(","), 1, 1))},
      {"join", Shown(TStringCore::join({text, text}, C('-')))},
      {"number", Shown(TStringCore::number(-42, 10, 6, C('0')))},
      {"leftIntegerLength", Shown(TStringCore::leftIntegerLength(T("-12x"), -1, 10))},
      {"leftDoubleLength", Shown(TStringCore::leftDoubleLength(T("1.5e3x")))},
      {"+", Shown(text + T("x") + C('y'))},
      {"+ on the left", Shown(T("x") + (C('y') + text))},
  };
}

#undef T
#undef C

void ExpectSame(const Results& narrow, const Results& wide) {
  ASSERT_EQ(narrow.size(), wide.size());
  for (std::size_t i = 0; i < narrow.size(); ++i) EXPECT_EQ(wide[i].second, narrow[i].second) << narrow[i].first;
}

TEST(TForeignForms, GiveTheSameResults) {
  ExpectSame(ResultsOfStorage<char16_t>(), ResultsOfStorage<wchar_t>());
  ExpectSame(ResultsOfSearches<char16_t>(), ResultsOfSearches<wchar_t>());
  ExpectSame(ResultsOfEdits<char16_t>(), ResultsOfEdits<wchar_t>());
  ExpectSame(ResultsOfPieces<char16_t>(), ResultsOfPieces<wchar_t>());
}

// A few rows of the table above with results that were worked out by hand.
TEST(TForeignForms, SomeResultsByHand) {
  TStringCore text(L"ab");
  EXPECT_EQ(UnitsOf(text.append(L"\U0001F600c")), u"ab\U0001F600c");
  EXPECT_EQ(text.indexOf(L'c'), 4);
  EXPECT_EQ(UnitsOf(text.insert(2, L"xy", 1)), u"abx\U0001F600c");
  EXPECT_EQ(UnitsOf(text.removeAnyOf(L"\U0001F600")), u"abxc");
}

// ---- What only wide elements can show

TEST(TForeignForms, AWideUnitOfTwoActsAsText) {
  if (!WideIsCodePoints) {
    // An element is one unit here, also where that is half a pair.
    EXPECT_EQ(UnitsOf(TStringCore(u"\U0001F600").append(L'\xD83D')), u"\U0001F600\xD83D");
    EXPECT_EQ(TStringCore(u"\U0001F600").indexOf(L'\xDE00'), 1);
    return;
  }
  const auto grin = static_cast<wchar_t>(0x1F600);
  TStringCore text(u"a");
  text.append(grin);
  text.insert(0, grin);
  EXPECT_EQ(UnitsOf(text), u"\U0001F600a\U0001F600");
  EXPECT_EQ(text.indexOf(grin, 1), 3);
  EXPECT_EQ(text.lastIndexOf(grin), 3);
  EXPECT_EQ(text.count(grin), 2);
  EXPECT_TRUE(text.contains(grin) && text.startsWith(grin) && text.endsWith(grin));
  EXPECT_TRUE(TStringCore(grin, 1) == grin && grin == TStringCore(grin, 1));
  EXPECT_EQ(UnitsOf(TStringCore(grin, 2)), u"\U0001F600\U0001F600");
  EXPECT_EQ(Shown(text.split(grin)), u"|a||");
  EXPECT_EQ(UnitsOf(TStringCore(text).replace(grin, L'b')), u"bab");
  EXPECT_EQ(UnitsOf(TStringCore(text).replace(L'a', grin)), u"\U0001F600\U0001F600\U0001F600");
  EXPECT_EQ(UnitsOf(TStringCore(text).trim(grin)), u"a");
  EXPECT_EQ(UnitsOf(TStringCore(text).removeAll(grin)), u"a");
  text.assign(grin, 2);
  EXPECT_EQ(UnitsOf(text), u"\U0001F600\U0001F600");
  text.assign(grin, -1);
  EXPECT_EQ(text.length(), 4);
  text.assign(grin, 0);
  EXPECT_TRUE(text.empty());
}

TEST(TForeignForms, PositionsInWideTextCountElements) {
  constexpr int Grin = WideIsCodePoints ? 1 : 2;
  const wchar_t* hay = L"\U0001F600ab\U0001F600ab";
  EXPECT_EQ(TStringCore::findStr(hay, L"ab"), Grin);
  EXPECT_EQ(TStringCore::findStr(hay, L"ab", Grin + 1), 2 * Grin + 2);
  EXPECT_EQ(TStringCore::findStr(hay, Grin + 2, L"ab", Grin + 1), -1);
  EXPECT_EQ(TStringCore::findStr(hay, L"ab", -3), 2 * Grin + 2);
  EXPECT_EQ(TStringCore::indexOf(hay, 2 * Grin + 4, L'b', Grin + 2), 2 * Grin + 3);
  EXPECT_EQ(TStringCore::findStr(hay, L"\U0001F600", 1), Grin + 2);
  EXPECT_EQ(TStringCore::findOneOf(hay, L"b", Grin + 2), 2 * Grin + 3);
  EXPECT_EQ(TStringCore::findOneNotOf(hay, L"\U0001F600", 0), Grin);
  EXPECT_EQ(TStringCore::length(hay), 2 * Grin + 4);
  EXPECT_EQ(TStringCore::compareN(L"\U0001F600a", L"\U0001F600b", Grin), 0);
  EXPECT_EQ(TStringCore::compareN(L"\U0001F600a", L"\U0001F600b", Grin + 1), -1);
  EXPECT_EQ(UnitsOf(TStringCore(hay, Grin + 1)), u"\U0001F600a");
}

TEST(TForeignForms, WideBuffersAreEditedInPlace) {
  wchar_t buffer[] = L"a\u00E9b\U0001F600c";
  EXPECT_EQ(TStringCore::removeAnyOf(buffer, L"b"), WideIsCodePoints ? 4 : 5);
  EXPECT_EQ(std::wstring(buffer), L"a\u00E9\U0001F600c");
  wchar_t zero[] = L"abc";
  EXPECT_EQ(TStringCore::removeAnyOf(zero, L"b\u00E9"), 2);
  EXPECT_EQ(zero[2], 0x30);
  wchar_t replaced[] = L"a\U0001F600b\U0001F600";
  EXPECT_EQ(TStringCore::replaceAnyOf(replaced, L"\U0001F600", L'x', WideIsCodePoints ? 2 : 3),
            WideIsCodePoints ? 4 : 5);
  EXPECT_EQ(std::wstring(replaced), L"a\U0001F600bx");
  wchar_t lines[] = L"a\r\n\U0001F600";
  EXPECT_EQ(TStringCore::dosToUnix(lines), WideIsCodePoints ? 3 : 4);
  EXPECT_EQ(std::wstring(lines), L"a\n\U0001F600");
}

// Values and not elements: some exist only where an element is a code point.
using Values = std::vector<char32_t>;

/// A row of a static edit of a wide buffer: what it leaves, its NUL included.
struct WideEdit {
  const char* name;
  Values text;
  int (*edit)(wchar_t*);
  Values wanted;
};

const WideEdit WideEdits[] = {
    {"RemoveNothing",
     {0xD83D, 0xDE00, 'a', 0},
     [](wchar_t* s) { return TStringCore::removeAnyOf(s, L"z"); },
     {0xD83D, 0xDE00, 'a', 0}},
    {"RemoveBesideAPair",
     {0xD83D, 0xDE00, 'a', 'b', 0},
     [](wchar_t* s) { return TStringCore::removeAnyOf(s, L"a"); },
     {0xD83D, 0xDE00, 'b', 0}},
    {"RemoveBesideANoCodePoint",
     {0x110000, 'a', 0xFFFD, 0},
     [](wchar_t* s) { return TStringCore::removeAnyOf(s, L"a"); },
     {0x110000, 0xFFFD, 0}},
    {"RemoveAPairOfElements",
     {'x', 0xD83D, 0xDE00, 0x110000, 0},
     [](wchar_t* s) { return TStringCore::removeAnyOf(s, L"\U0001F600"); },
     {'x', 0x110000, 0}},
    {"RemoveWhatReadsAsTheReplacement",
     {0x110000, 'x', 0xFFFD, 0},
     [](wchar_t* s) { return TStringCore::removeAnyOf(s, L"\uFFFD"); },
     {'x', 0}},
    {"RemoveFromAStart",
     {0x110000, 'a', 0x110000, 'a', 0},
     [](wchar_t* s) { return TStringCore::removeAnyOf(s, L"a", 2); },
     {0x110000, 'a', 0x110000, 0}},
    {"ReplaceNothing",
     {0xD83D, 0xDE00, 0x110000, 0},
     [](wchar_t* s) { return TStringCore::replaceAnyOf(s, L"z", L'x'); },
     {0xD83D, 0xDE00, 0x110000, 0}},
    {"ReplaceBetween",
     {0xD83D, 0xDE00, 'a', 0x110000, 0},
     [](wchar_t* s) { return TStringCore::replaceAnyOf(s, L"a", L'x'); },
     {0xD83D, 0xDE00, 'x', 0x110000, 0}},
    {"ReplaceAPairOfElements",
     {0x110000, 0xD83D, 0xDE00, 0x110000, 0},
     [](wchar_t* s) { return TStringCore::replaceAnyOf(s, L"\U0001F600", L'x'); },
     {0x110000, 'x', 0x110000, 0}},
    {"ReplaceFromAStart",
     {'a', 0x110000, 'a', 0},
     [](wchar_t* s) { return TStringCore::replaceAnyOf(s, L"a", L'x', 1); },
     {'a', 0x110000, 'x', 0}},
    {"LineEnds",
     {0xD83D, 0xDE00, 0x110000, '\r', 0},
     [](wchar_t* s) { return TStringCore::dosToUnix(s); },
     {0xD83D, 0xDE00, 0x110000, '\n', 0}},
};

class WideBuffer : public testing::TestWithParam<WideEdit> {};

TEST_P(WideBuffer, KeepsTheElementsThatDoNotChange) {
  if (!WideIsCodePoints) GTEST_SKIP() << "an element is a unit here";
  std::vector<wchar_t> text(GetParam().text.begin(), GetParam().text.end());
  EXPECT_EQ(GetParam().edit(text.data()), static_cast<int>(GetParam().wanted.size()) - 1);
  text.resize(GetParam().wanted.size());
  EXPECT_EQ(Values(text.begin(), text.end()), GetParam().wanted);
}

INSTANTIATE_TEST_SUITE_P(Rows, WideBuffer, testing::ValuesIn(WideEdits), qilsys::test::RowName<WideEdit>);

TEST(TForeignForms, LengthsCountElements) {
  EXPECT_EQ(TStringCore::length(L"a\U0001F600"), WideIsCodePoints ? 2 : 3);
  EXPECT_EQ(TStringCore::lengthInBytes(L"a\U0001F600"), WideIsCodePoints ? 4 : 6);
  EXPECT_EQ(TStringCore::lengthInBytes(static_cast<const wchar_t*>(nullptr)), 0);
}

TEST(TForeignForms, TheRunOfAWideUnitIsALength) {
  const auto grin = static_cast<wchar_t>(WideIsCodePoints ? 0x1F600 : u'a');
  const wchar_t text[] = {grin, grin, 0};
  EXPECT_EQ(TStringCore::findOneNotOf(text, grin), 2);
  EXPECT_EQ(TStringCore::findOneNotOf(L"", grin), 0);
  EXPECT_EQ(TStringCore::findOneNotOf(L"b", grin), 0);
  EXPECT_EQ(TStringCore::findOneNotOf(static_cast<const wchar_t*>(nullptr), grin), 0);
}

TEST(TForeignForms, AUnitAssignedKeepsTheBlocksForm) {
  const TStringCore block(u'a', 20);
  const auto assigned = [&](auto c) {
    TStringCore text = block;
    text = c;
    return text.capacity();
  };
  EXPECT_EQ(assigned(TForeignUnit{'x'}), assigned(TCodeUnit{'x'}));
  EXPECT_EQ(assigned(static_cast<TForeignUnit>(0x1F600)), assigned(TCodeUnit{'x'}));
  TStringCore exclusive(u'a', 1000);
  exclusive.assign(static_cast<TForeignUnit>(0x1F600), 20);
  EXPECT_EQ(exclusive.capacity(), 1018);
  TStringCore shared = block;
  shared.assign(static_cast<TForeignUnit>(0x1F600), 2);
  EXPECT_EQ(shared.capacity(), 26);
}

TEST(TForeignForms, TooManyOfAWideUnitAreTooLong) {
  TStringCore text(u"abc");
  for (const int n : {0x7FFFFFFF, 0x7FFFFFF0, 0x40000000, 0x3FFFFFFC}) {
    if (!WideIsCodePoints && n < 0x7FFFFFF8) continue;
    EXPECT_THROW(text.assign(static_cast<TForeignUnit>(0x1F600), n), TStringCore::CapacityException) << n;
  }
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TForeignForms, BadWideElements) {
  const auto bad = static_cast<wchar_t>(WideIsCodePoints ? 0x110000 : 0xFFFD);
  const wchar_t text[] = {bad, static_cast<wchar_t>(0xD800), L'a', 0};
  EXPECT_EQ(UnitsOf(TStringCore(text)), (std::u16string{0xFFFD, 0xD800, u'a'}));
}

// ---- Operators

TEST(TForeignForms, SingleUnitOperatorsAreLopsided) {
  const TStringCore one(u"c");
  const auto expectRow = [](const TStringCore& s, auto c) {
    EXPECT_TRUE(c < s);
    EXPECT_TRUE(c > s);
    EXPECT_FALSE(c <= s);
    EXPECT_FALSE(c >= s);
    EXPECT_TRUE(c == s);
    EXPECT_FALSE(c != s);
    EXPECT_TRUE(s == c);
    EXPECT_FALSE(s != c);
    EXPECT_FALSE(s < c);
    EXPECT_TRUE(s <= c);
    EXPECT_FALSE(s > c);
    EXPECT_TRUE(s >= c);
  };
  expectRow(one, u'c');
  expectRow(one, L'c');
  const TStringCore two(u"ab");
  EXPECT_FALSE(two == u'a');
  EXPECT_FALSE(two < u'a');
  EXPECT_FALSE(two == L'a');
  EXPECT_FALSE(two < L'a');
}

TEST(TForeignForms, TextOperatorsMirror) {
  const TStringCore s(u"b");
  EXPECT_TRUE(u"a" < s && L"a" < s && s > u"a" && s > L"a");
  EXPECT_TRUE(u"b" <= s && L"b" <= s && u"b" >= s && L"b" >= s);
  EXPECT_TRUE(u"b" == s && L"b" == s && s == u"b" && s == L"b" && !(u"b" != s) && !(L"b" != s));
  EXPECT_FALSE(u"c" < s || L"c" < s || s > u"c" || s > L"c");
}

TEST(TForeignForms, NullIsEmptyTextForOperators) {
  const TStringCore empty;
  const TStringCore text(u"a");
  EXPECT_TRUE(empty == nullptr && nullptr == empty && text != nullptr && nullptr != text);
  EXPECT_TRUE(nullptr < text && text > nullptr && nullptr <= empty && empty >= nullptr);
  EXPECT_EQ(UnitsOf(text + nullptr), u"a");
  TStringCore assigned(u"b");
  assigned = nullptr;
  EXPECT_TRUE(assigned.empty());
}

TEST(TForeignForms, TheQuirkOfContainsStaysWithItsForm) {
  const TStringCore text(u"a");
  EXPECT_FALSE(text.contains(u"A", Insensitive));
  EXPECT_TRUE(text.contains(L"A", Insensitive));
  EXPECT_TRUE(text.contains(TStringCore(u"A"), Insensitive));
  EXPECT_TRUE(text.contains(nullptr));
  EXPECT_FALSE(TStringCore().contains(nullptr));
  EXPECT_TRUE(TStringCore(u"x\0a", 3).contains(u"a")) << "sees the whole text";
  EXPECT_FALSE(TStringCore(u"x\0a", 3).contains(L"a")) << "ends at the first NUL";
}

TEST(TForeignForms, NullIsUnambiguousEverywhere) {
  TStringCore s(u"abc");
  const auto it = s.codepoint_cbegin();
  int pos = 0;
  EXPECT_EQ(s.compare(nullptr), 1);
  EXPECT_EQ(TStringCore::compare(nullptr, nullptr), 0);
  EXPECT_EQ(TStringCore::compareN(nullptr, nullptr, 3), 0);
  EXPECT_EQ(TStringCore::findStr(nullptr, nullptr), -1);
  EXPECT_EQ(s.indexOf(nullptr), 0);
  EXPECT_EQ(TStringCore::indexOf(nullptr, 3, u'x'), -1);
  EXPECT_EQ(s.lastIndexOf(nullptr), -1);
  EXPECT_EQ(s.count(nullptr), 0);
  EXPECT_FALSE(s.startsWith(nullptr) || s.endsWith(nullptr));
  EXPECT_EQ(s.findOneOf(nullptr), -1);
  EXPECT_EQ(TStringCore::findOneOf(nullptr, nullptr), -1);
  EXPECT_EQ(s.find(nullptr).codeUnitIndex, 0);
  EXPECT_TRUE(s.split(nullptr).empty());
  EXPECT_TRUE(s.tokenize(nullptr, pos).empty());
  EXPECT_TRUE(s.section(nullptr, 0).empty());
  EXPECT_EQ(TStringCore::leftIntegerLength(nullptr, 0), 0);
  EXPECT_EQ(TStringCore::leftDoubleLength(nullptr), 0);
  s.append(nullptr).insert(0, nullptr).insert(it, nullptr).prepend(nullptr).replace(1, 1, nullptr).removeAll(nullptr);
  s.removeAnyOf(nullptr).replaceAnyOf(nullptr, u'x').replaceAnyOf(nullptr, L'x');
  s.trim(nullptr).trimLeft(nullptr).trimRight(nullptr);
  EXPECT_EQ(s.replaceCount(nullptr, 1, nullptr, 1), 0);
  EXPECT_EQ(UnitsOf(s), u"abc");
}

// What compiles on one system compiles on the other, whichever unit is the native one.
template <class Literals>
void ExpectFormsBeside(const Literals& l) {
  const TStringCore s(u"a,b,a");
  EXPECT_EQ(TStringCore::compare(s, l.text), 0);
  EXPECT_EQ(TStringCore::compare(l.text, s), 0);
  EXPECT_EQ(TStringCore::compare(nullptr, l.text), -1);
  EXPECT_EQ(TStringCore::compare(l.text, nullptr), 1);
  EXPECT_EQ(TStringCore::compareN(s, l.other, 2), 0);
  EXPECT_EQ(TStringCore::compareN(l.other, s, 3), 1);
  EXPECT_EQ(TStringCore::compareN(l.other, l.text, 2), 0);
  EXPECT_EQ(TStringCore::compareN(nullptr, l.text, 0), 0);
  EXPECT_EQ(TStringCore::findStr(s, l.comma), 1);
  EXPECT_EQ(TStringCore::findStr(s, 5, l.comma, 2), 3);
  EXPECT_EQ(TStringCore::findStr(s, 5, l.comma, 1, -3), 3);
  EXPECT_EQ(TStringCore::findStr(nullptr, l.comma), -1);
  EXPECT_EQ(TStringCore::findStr(l.comma, nullptr), 0);
  EXPECT_EQ(TStringCore::indexOf(s, 5, l.a, 1), 4);
  EXPECT_EQ(TStringCore::indexOf(nullptr, 5, l.a), -1);
  EXPECT_EQ(TStringCore::findOneOf(s, l.comma, 2), 3);
  EXPECT_EQ(TStringCore::findOneOf(nullptr, l.comma), -1);
  EXPECT_EQ(TStringCore::findChar(s, l.a, 1), 4);
  EXPECT_EQ(TStringCore::findChar(nullptr, l.a), -1);
  EXPECT_EQ(TStringCore::findOneNotOf(s, l.text), -1);
  EXPECT_EQ(TStringCore::findOneNotOf(s.constData(), l.a), 1);
  EXPECT_EQ(TStringCore::findOneNotOf(nullptr, l.comma), -1);
  EXPECT_EQ(Shown(TStringCore::split(s, 5, l.comma)), u"a|b|a|");
  EXPECT_EQ(Shown(TStringCore::split(s, -1, l.a)), u"|,b,||");
  EXPECT_EQ(Shown(TStringCore::split(nullptr, 5, l.comma)), u"|");
  EXPECT_EQ(Shown(TStringCore::section(s, 5, l.comma, 1, 1)), u"b");
  EXPECT_EQ(Shown(TStringCore::section(nullptr, 5, l.comma, 1, 1)), u"");
  EXPECT_EQ(Shown(TStringCore(s).replace(l.comma, 1, s, 1)), u"aabaa");
  EXPECT_EQ(Shown(TStringCore(s).replace(l.comma, 1, nullptr, 0)), u"aba");
  EXPECT_EQ(TStringCore(s).replaceCount(s, 1, l.comma, 1), 2);
  EXPECT_EQ(Shown(TStringCore(s).replaceAnyOf(s, l.a)), u"aaaaa");
}

TEST(TForeignForms, EitherUnitGoesBesideAStringAndNull) {
  struct {
    const char16_t* text = u"a,b,a";
    const char16_t* other = u"a,c";
    const char16_t* comma = u",";
    char16_t a = u'a';
  } units;
  struct {
    const wchar_t* text = L"a,b,a";
    const wchar_t* other = L"a,c";
    const wchar_t* comma = L",";
    wchar_t a = L'a';
  } wide;
  ExpectFormsBeside(units);
  ExpectFormsBeside(wide);
}

TEST(TForeignForms, NarrowTextIsUtf8Everywhere) {
  TStringCore s("a\xC3\xA9");
  EXPECT_TRUE(s == "a\xC3\xA9" && s.contains("\xC3\xA9") && s.startsWith("a"));
  EXPECT_EQ(UnitsOf(s + "\xC3\xA8"), u"a\u00E9\u00E8");
  EXPECT_EQ(UnitsOf(s.replace("\xC3\xA9", "e")), u"ae");
}

}  // namespace
