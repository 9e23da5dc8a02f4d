// The functions of Unicode.h that look at, copy and hand out UTF-16.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "qilsys/Unicode.h"
#include "support/TextForms.h"

namespace {

using qilsys::test::As;
using qilsys::test::ForEachUnitType;
using qilsys::test::ForeignHoldsCodePoints;
using qilsys::test::RowName;

// ---- LengthInCodePoints

struct LengthRow {
  const char* name;
  std::u16string text;
  int start;
  int end;
  int expected;
};

class UnicodeLength : public testing::TestWithParam<LengthRow> {};

TEST_P(UnicodeLength, LengthInCodePoints) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(GetParam().text);
    EXPECT_EQ(Unicode::LengthInCodePoints(text.c_str(), GetParam().start, GetParam().end), GetParam().expected);
  });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnicodeLength,
    testing::Values(LengthRow{"ZeroEnd", u"abc", 0, 0, 0}, LengthRow{"NegativeStart", u"abc", -1, 3, 0},
                    LengthRow{"NegativeStartAndEnd", u"abc", -1, -1, 0}, LengthRow{"Whole", u"abc", 0, 3, 3},
                    LengthRow{"FromStart", u"abc", 1, 3, 2}, LengthRow{"StartAtEnd", u"abc", 2, 2, 0},
                    LengthRow{"StartPastEnd", u"abc", 3, 2, 0}, LengthRow{"ToTheNul", u"abc", 1, -1, 2},
                    LengthRow{"PairBounded", {u'a', 0xD83D, 0xDE00, u'b'}, 0, 4, 3},
                    LengthRow{"PairToTheNul", {u'a', 0xD83D, 0xDE00, u'b'}, 0, -1, 3},
                    LengthRow{"PairCutByEnd", {u'a', 0xD83D, 0xDE00}, 0, 2, 2},
                    LengthRow{"LoneHighToTheNul", {0xD83D, u'a'}, 0, -1, 2},
                    LengthRow{"HighIsTheLast", {u'a', 0xD83D}, 0, -1, 2},
                    LengthRow{"LoneLowToTheNul", {0xDE00, 0xDE00, u'a'}, 0, -1, 3},
                    LengthRow{"LoneBounded", {0xDE00, 0xD83D, 0xD83D}, 0, 3, 3},
                    LengthRow{"NulWithinBounds", std::u16string(u"a\0b", 3), 0, 3, 3},
                    LengthRow{"NulEndsTheWalk", std::u16string(u"a\0b", 3), 0, -1, 1}),
    RowName<LengthRow>);

// ---- SubStringSizeInCodeUnits

struct SizeRow {
  const char* name;
  std::u16string text;
  int length;
  int start;
  int codePoints;
  int expected;
};

class UnicodeSize : public testing::TestWithParam<SizeRow> {};

TEST_P(UnicodeSize, SubStringSizeInCodeUnits) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(GetParam().text);
    const SizeRow& row = GetParam();
    EXPECT_EQ(Unicode::SubStringSizeInCodeUnits(text.c_str(), row.length, row.start, row.codePoints), row.expected);
  });
}

INSTANTIATE_TEST_SUITE_P(Rows, UnicodeSize,
                         testing::Values(SizeRow{"None", u"abc", 3, 0, 0, 0}, SizeRow{"Some", u"abc", 3, 0, 2, 2},
                                         SizeRow{"MoreThanThereAre", u"abc", 3, 1, 9, 2},
                                         SizeRow{"AtTheEnd", u"abc", 3, 3, 1, 0},
                                         SizeRow{"PastTheEnd", u"abc", 3, 4, 1, 0},
                                         SizeRow{"ToTheNul", u"abc", 2, 1, -1, 2},
                                         SizeRow{"Pair", {0xD83D, 0xDE00, u'b'}, 3, 0, 1, 2},
                                         SizeRow{"PairAndOne", {0xD83D, 0xDE00, u'b'}, 3, 0, 2, 3},
                                         SizeRow{"PairCutByLength", {0xD83D, 0xDE00, u'b'}, 1, 0, 1, 1},
                                         SizeRow{"LoneSurrogates", {0xDE00, 0xD83D, u'b'}, 3, 0, 2, 2}),
                         RowName<SizeRow>);

// ---- StringValidateCopy

struct CopyRow {
  const char* name;
  std::u16string source;
  int length;
  int capacity;
  std::u16string wanted;
};

class UnicodeCopy : public testing::TestWithParam<CopyRow> {};

TEST_P(UnicodeCopy, StringValidateCopy) {
  const CopyRow& row = GetParam();
  ForEachUnitType([&](auto zero) {
    const auto source = As<decltype(zero)>(row.source);
    std::vector<TCodeUnit> target(16, TCodeUnit{0x55});
    ASSERT_EQ(Unicode::StringValidateCopy(source.c_str(), row.length, target.data(), row.capacity),
              static_cast<int>(row.wanted.size()));
    EXPECT_EQ(std::basic_string<TCodeUnit>(target.data(), row.wanted.size()), As<TCodeUnit>(row.wanted));
    EXPECT_EQ(target[row.wanted.size()], TCodeUnit{});
    for (size_t i = static_cast<size_t>(row.capacity); i < target.size(); ++i) EXPECT_EQ(target[i], TCodeUnit{0x55});
  });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnicodeCopy,
    testing::Values(CopyRow{"Fits", u"abc", 3, 4, u"abc"}, CopyRow{"RoomToSpare", u"abc", 3, 9, u"abc"},
                    CopyRow{"OneShort", u"abc", 3, 3, u"ab"}, CopyRow{"OnlyTheNul", u"abc", 3, 1, u""},
                    CopyRow{"Empty", u"", 0, 1, u""}, CopyRow{"PartOfTheText", u"abc", 2, 9, u"ab"},
                    CopyRow{"ToTheNul", u"abc", -1, 9, u"abc"},
                    CopyRow{"NulInside", std::u16string(u"a\0b", 3), 3, 9, std::u16string(u"a\0b", 3)},
                    CopyRow{"Pair", {u'a', 0xD83D, 0xDE00}, 3, 4, {u'a', 0xD83D, 0xDE00}},
                    CopyRow{"PairOneShort", {u'a', 0xD83D, 0xDE00}, 3, 3, u"a"},
                    CopyRow{"PairTwoShort", {u'a', 0xD83D, 0xDE00}, 3, 2, u"a"},
                    CopyRow{"PairCutByLength", {u'a', 0xD83D, 0xDE00}, 2, 9, u"a\uFFFD"},
                    CopyRow{"LoneSurrogates", {0xDE00, u'a', 0xD83D, 0xD83D, u'b'}, 5, 9, u"\uFFFDa\uFFFD\uFFFDb"}),
    RowName<CopyRow>);

TEST(UnicodeCopyEdge, NullsAndItself) {
  TCodeUnit units[] = {u'a', u'b', 0};
  EXPECT_EQ(Unicode::StringValidateCopy(nullptr, 3, units, 3), 0);
  EXPECT_EQ(Unicode::StringValidateCopy(units, 2, nullptr, 0), 2);
  EXPECT_EQ(Unicode::StringValidateCopy(units, -1, nullptr, 0), 2);
  EXPECT_EQ(Unicode::StringValidateCopy(units, 2, units, 3), 0);
  TForeignUnit wide[] = {L'a', L'b', 0};
  EXPECT_EQ(Unicode::StringValidateCopy(nullptr, 3, wide, 3), 0);
  EXPECT_EQ(Unicode::StringValidateCopy(wide, -1, nullptr, 0), 2);
  EXPECT_EQ(Unicode::StringValidateCopy(wide, 2, wide, 3), 0);
  EXPECT_EQ(std::basic_string<TForeignUnit>(wide), As<TForeignUnit>(u"ab"));
}

TEST(UnicodeCopyEdge, WithoutCapacityNothingIsWritten) {
  TCodeUnit unit = u'x';
  EXPECT_EQ(Unicode::StringValidateCopy(u"abc", 3, &unit, 0), 0);
  EXPECT_EQ(Unicode::StringValidateCopy(u"abc", 3, &unit, -1), 0);
  EXPECT_EQ(unit, TCodeUnit{u'x'});
}

TEST(UnicodeCopyEdge, WideTargetsHoldTheirOwnElements) {
  constexpr int Elements = ForeignHoldsCodePoints ? 2 : 3;
  wchar_t wide[8];
  EXPECT_EQ(Unicode::StringValidateCopy(u"a\U0001F600", 3, wide, 8), Elements);
  EXPECT_EQ(std::wstring(wide), L"a\U0001F600");
  EXPECT_EQ(Unicode::StringValidateCopy(L"a\U0001F600", Elements, wide, Elements + 1), Elements);
  EXPECT_EQ(std::wstring(wide), L"a\U0001F600");
  TCodeUnit units[8];
  EXPECT_EQ(Unicode::StringValidateCopy(L"a\U0001F600", Elements, units, 3), 1);
  EXPECT_EQ(Unicode::StringValidateCopy(L"a\U0001F600", Elements, units, 4), 3);
}

// ---- toWCharArray

template <qilsys::TextUnit S, qilsys::TextUnit T>
void CopiesToArray() {
  const auto source = As<S>(u"abc");
  T target[8];
  std::fill(std::begin(target), std::end(target), T{'x'});
  EXPECT_EQ(Unicode::toWCharArray(source.c_str(), 3, target, 4), 4U);
  EXPECT_EQ(std::basic_string<T>(target), As<T>(u"abc"));
  EXPECT_EQ(target[4], T{'x'});
  EXPECT_EQ(Unicode::toWCharArray(source.c_str(), 3, target, 3), 0U);
  EXPECT_EQ(target[0], T{});
  target[0] = T{'x'};
  EXPECT_EQ(Unicode::toWCharArray(source.c_str(), 3, target, 0), 0U);
  EXPECT_EQ(target[0], T{'x'});
  EXPECT_EQ(Unicode::toWCharArray(source.c_str(), 3, static_cast<T*>(nullptr), 9), 0U);
  EXPECT_EQ(Unicode::toWCharArray(source.c_str(), 3, nullptr, 9), 0U);
}

TEST(UnicodeArray, EveryForm) {
  CopiesToArray<TCodeUnit, TCodeUnit>();
  CopiesToArray<TCodeUnit, TForeignUnit>();
  CopiesToArray<TForeignUnit, TCodeUnit>();
  CopiesToArray<TForeignUnit, TForeignUnit>();
}

// ---- Standard strings

TEST(UnicodeStandardString, EveryForm) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(std::u16string{u'a', 0xE9, 0xD83D, 0xDE00});
    EXPECT_EQ(Unicode::toStdString(text.c_str(), text.size()), "a\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(Unicode::toStdU16String(text.c_str(), text.size()), u"a\u00E9\U0001F600");
    EXPECT_EQ(Unicode::toStdWString(text.c_str(), text.size()), L"a\u00E9\U0001F600");
    EXPECT_EQ(Unicode::toStdString(text.c_str(), 1), "a");
    EXPECT_EQ(Unicode::toStdU16String(text.c_str(), 1), u"a");
    EXPECT_EQ(Unicode::toStdWString(text.c_str(), 1), L"a");
  });
}

TEST(UnicodeStandardString, EmptyIfTheLengthIsZeroOrTheFirstUnitNul) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(std::u16string(u"\0bc", 3));
    EXPECT_EQ(Unicode::toStdString(text.c_str(), 3), "");
    EXPECT_EQ(Unicode::toStdU16String(text.c_str(), 3), u"");
    EXPECT_EQ(Unicode::toStdWString(text.c_str(), 3), L"");
    EXPECT_EQ(Unicode::toStdString(text.c_str() + 1, 0), "");
    EXPECT_EQ(Unicode::toStdU16String(text.c_str() + 1, 0), u"");
    EXPECT_EQ(Unicode::toStdWString(text.c_str() + 1, 0), L"");
  });
}

TEST(UnicodeStandardString, ALaterNulIsKept) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(std::u16string(u"a\0b", 3));
    EXPECT_EQ(Unicode::toStdString(text.c_str(), 3), std::string("a\0b", 3));
    EXPECT_EQ(Unicode::toStdU16String(text.c_str(), 3), std::u16string(u"a\0b", 3));
    EXPECT_EQ(Unicode::toStdWString(text.c_str(), 3), std::wstring(L"a\0b", 3));
  });
}

TEST(UnicodeStandardString, OnlyUtf8ReplacesLoneSurrogates) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(std::u16string{u'a', 0xD800});
    EXPECT_EQ(Unicode::toStdString(text.c_str(), 2), "a\xEF\xBF\xBD");
    EXPECT_EQ(Unicode::toStdU16String(text.c_str(), 2), (std::u16string{u'a', 0xD800}));
    EXPECT_EQ(Unicode::toStdWString(text.c_str(), 2), (std::wstring{L'a', static_cast<wchar_t>(0xD800)}));
  });
}

}  // namespace
