// Append, insert, replace, remove and cut.
#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/StringText.h"
#include "support/TStringCoreForTest.h"

using namespace std::string_literals;
using qilsys::test::UnitsOf;
using CS = TStringCore::CaseSensitivity;
constexpr CS Sensitive = TStringCore::CaseSensitive;
constexpr CS Insensitive = TStringCore::CaseInsensitive;

namespace {

/// Text that holds NULs.
template <std::size_t N>
TStringCore Text(const char16_t (&units)[N]) {
  return TStringCore(units, static_cast<int>(N) - 1);
}

const std::u16string LongUnits = u"abcdefghijklmnopqrstuvwxyz";

TStringCore LongText() { return TStringCore::fromStdU16String(LongUnits); }

// ---- Append

TEST(TStringCoreAppend, TakesEveryOperand) {
  TStringCore text(u"a");
  text.append(TStringCore(u"b")).append(u"cd", 1).append("\xC3\xA9").append(u'e').append('\x80');
  EXPECT_EQ(UnitsOf(text), u"abc\u00E9e\u0080"s);
  text += TStringCore(u"1");
  text += u"2";
  text += u'3';
  text.push_back(u'4');
  text.push_back(TStringCore(u"5"));
  EXPECT_EQ(UnitsOf(text).substr(6), u"12345");
}

TEST(TStringCoreAppend, KeepsNulsOfTextAndOfAGivenLength) {
  TStringCore text = Text(u"a\0b");
  text.append(Text(u"\0c"));
  EXPECT_EQ(UnitsOf(text), u"a\0b\0c"s);
  text.append(u"\0d", 2);
  EXPECT_EQ(UnitsOf(text), u"a\0b\0c\0d"s);
  text.append("\0e", 2);
  EXPECT_EQ(UnitsOf(text), u"a\0b\0c\0d\0e"s);
}

TEST(TStringCoreAppend, NothingAddsNothing) {
  TStringCore text(u"abc");
  text.append(nullptr).append(nullptr, 5).append(u"x", 0).append(u"").append(static_cast<const char*>(nullptr));
  text.append("x", 0).append("");
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCoreAppend, NothingAddedLeavesASharedBlock) {
  TStringCore text = LongText();
  const TStringCore other = text;
  text.append(nullptr).append(u"").append("").append(text.constData() + text.length());
  EXPECT_TRUE(text.isShared());
}

TEST(TStringCoreAppend, DoublesItself) {
  for (const int n : {0, 3, 7, 8, 14, 20, 30}) {
    TStringCore text = LongText().left(n);
    const std::u16string once = UnitsOf(text);
    const TStringCore other = text;
    text.append(text);
    EXPECT_EQ(UnitsOf(text), once + once);
    EXPECT_EQ(UnitsOf(other), once);
  }
}

TEST(TStringCoreAppend, ReadsItsOwnTailAfterGrowth) {
  for (const int n : {5, 14, 25}) {
    TStringCore text = LongText().left(n);
    const std::u16string before = UnitsOf(text);
    text.append(text.constData() + 2);
    EXPECT_EQ(UnitsOf(text), before + before.substr(2));
    text.append(text.constData() + 1, 2);
    EXPECT_EQ(UnitsOf(text), before + before.substr(2) + before.substr(1, 2));
  }
  TStringCore withNul = Text(u"ab\0cd");
  withNul.append(withNul.constData() + 1);
  EXPECT_EQ(UnitsOf(withNul), u"ab\0cdb\0cd"s) << "own text runs to its end, not to a NUL";
  withNul = u"abc";
  withNul.append(withNul.constData() + 1, 100);
  EXPECT_EQ(UnitsOf(withNul), u"abcbc");
}

TEST(TStringCoreAppend, ReadsTextOfASharerAsItsOwn) {
  TStringCore text = LongText();
  const TStringCore sharer = text;
  text.append(sharer.constData() + 20);
  EXPECT_EQ(UnitsOf(text), LongUnits + u"uvwxyz");
  EXPECT_EQ(UnitsOf(sharer), LongUnits);
}

TEST(TStringCoreAppend, OneUnitAtATimeCrossesEveryStep) {
  TStringCore text;
  std::u16string model;
  for (int i = 0; i < 2000; ++i) {
    const TStringCore other = i % 100 == 0 ? text : TStringCore();
    text.append(static_cast<TCodeUnit>(i));
    model.push_back(static_cast<char16_t>(i));
    ASSERT_EQ(text.length(), i + 1);
    ASSERT_EQ(text.constData()[i + 1], 0);
  }
  EXPECT_EQ(UnitsOf(text), model);
}

TEST(TStringCoreAppend, Concatenates) {
  const TStringCore a(u"a");
  const TStringCore b(u"b");
  EXPECT_EQ(UnitsOf(a + b), u"ab");
  EXPECT_EQ(UnitsOf(a + u"x"), u"ax");
  EXPECT_EQ(UnitsOf(a + u'x'), u"ax");
  EXPECT_EQ(UnitsOf(u"x" + a), u"xa");
  EXPECT_EQ(UnitsOf(u'x' + a), u"xa");
  EXPECT_EQ(UnitsOf(a + nullptr), u"a");
  EXPECT_EQ(UnitsOf(a + L"x" + L'y'), u"axy");
  EXPECT_EQ(UnitsOf(L"x" + a), u"xa");
  EXPECT_EQ(UnitsOf(L'\U0001F600' + a), u"\U0001F600a");
  EXPECT_EQ(UnitsOf(a), u"a");
}

// ---- Insert

TEST(TStringCoreInsert, PutsTextAnywhere) {
  TStringCore text(u"ad");
  EXPECT_EQ(UnitsOf(text.insert(1, u"bc")), u"abcd");
  EXPECT_EQ(UnitsOf(text.insert(4, u"ef", 1)), u"abcde");
  EXPECT_EQ(UnitsOf(text.insert(0, TStringCore(u"_"))), u"_abcde");
  EXPECT_EQ(UnitsOf(text.insert(6, u'!')), u"_abcde!");
  EXPECT_EQ(UnitsOf(text.prepend(u"12", 1)), u"1_abcde!");
  EXPECT_EQ(UnitsOf(text.prepend(u'0').prepend(TStringCore(u"x"))), u"x01_abcde!");
  text.push_front(u'<');
  text.push_front(TStringCore(u"<"));
  EXPECT_EQ(UnitsOf(text), u"<<x01_abcde!");
}

TEST(TStringCoreInsert, OutsideOrNothingChangesNothing) {
  TStringCore text = LongText();
  const TStringCore other = text;
  text.insert(-1, u"x").insert(27, u"x").insert(0, nullptr).insert(0, nullptr, 3).insert(0, u"x", 0).insert(0, u"");
  text.insert(-1, u'x').insert(27, u'x').insert(3, TStringCore());
  EXPECT_EQ(UnitsOf(text), LongUnits);
  EXPECT_TRUE(text.isShared());
}

TEST(TStringCoreInsert, TextNeverSplitsACodePointButAUnitDoes) {
  TStringCore text(u"a\U0001F600");
  text.insert(2, u"x", 1);
  EXPECT_EQ(UnitsOf(text), u"a\U0001F600");
  text.insert(2, u'x');
  EXPECT_EQ(UnitsOf(text), u"a\xD83Dx\xDE00");
}

TEST(TStringCoreInsert, AtCodePointIterators) {
  TStringCore text(u"ac");
  text.insert(++text.codepoint_cbegin(), TStringCore(u"b"));
  EXPECT_EQ(UnitsOf(text), u"abc");
  text.insert(text.codepoint_cend(), u"de", 1);
  EXPECT_EQ(UnitsOf(text), u"abcd");
}

TEST(TStringCoreInsert, OwnTextBeforeTheGapIsReadAsItWas) {
  TStringCore text = LongText();
  text.insert(3, text.constData(), 3);
  EXPECT_EQ(UnitsOf(text), u"abcabcdefghijklmnopqrstuvwxyz");
  TStringCore whole(u"abcd");
  whole.insert(2, whole);
  EXPECT_EQ(UnitsOf(whole), u"ababcdcd");
}

TEST(TStringCoreInsert, OwnTextBehindTheGapIsReadAsShifted) {
  TStringCore text(u"abcdef");
  text.insert(1, text.constData() + 3, 2);
  EXPECT_EQ(UnitsOf(text), u"abcbcdef") << "offset 3 holds b and c once the tail has moved up by two";
}

// ---- Replace a range

TEST(TStringCoreReplace, PutsTextInPlaceOfARange) {
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(1, 2, u"X")), u"aXdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(1, 2, u"XY")), u"aXYdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(1, 2, u"XYZ")), u"aXYZdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(1, 2, u"XYZ", 2)), u"aXYdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(4, 9, u"XYZ")), u"abcdXYZ");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(2, 0x7FFFFFFF, u"XYZ")), u"abXYZ");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(6, 0, u"XYZ")), u"abcdefXYZ");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(0, 6, u"XYZ")), u"XYZ");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(1, 2, TStringCore(u"X"))), u"aXdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").replace(1, 2, u"")), u"adef");
}

TEST(TStringCoreReplace, NoUnitsInsertAndNoTextRemoves) {
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(1, 0, u"x", 1)), u"axbc");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(1, 1, nullptr, 0)), u"ac");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(1, 5, nullptr, 0)), u"a");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(0, 3, nullptr, 0)), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"\U0001F600").replace(1, 0, u"x", 1)), u"\U0001F600") << "the boundary test of insert";
}

TEST(TStringCoreReplace, OutsideChangesNothing) {
  TStringCore text(u"abc");
  text.replace(-1, 1, u"x").replace(4, 1, u"x").replace(1, -1, u"x").replace(1, 1, nullptr, 5).replace(1, 1, nullptr);
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCoreReplace, OwnTextIsCopiedFirst) {
  for (const int pad : {0, 40}) {
    const std::u16string tail(static_cast<std::size_t>(pad), u'_');
    TStringCore text = TStringCore::fromStdU16String(u"abcdef" + tail);
    text.replace(1, 2, text.constData() + 2, 4);
    EXPECT_EQ(UnitsOf(text), u"acdefdef" + tail);
    text = TStringCore::fromStdU16String(u"abcdef" + tail);
    text.replace(2, 100, text.constData() + 3, 3);
    EXPECT_EQ(UnitsOf(text), u"abdef");
    text = TStringCore::fromStdU16String(u"abcdef" + tail);
    text.replace(0, 100, text.constData() + 3, 2);
    EXPECT_EQ(UnitsOf(text), u"de");
    text = TStringCore::fromStdU16String(u"abcdef" + tail);
    text.replace(1, 1, text);
    EXPECT_EQ(UnitsOf(text), u"aabcdef" + tail + u"cdef" + tail);
  }
}

TEST(TStringCoreReplace, OneUnitForEachCodePoint) {
  EXPECT_EQ(UnitsOf(TStringCore(u"a\U0001F600b").replace(0, 3, u'x')), u"xxb");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(1, 100, u'x')), u"axx");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(3, 1, u'x')), u"abc");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(-1, 1, u'x')), u"abc");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").replace(1, 0, u'x')), u"abc");
}

TEST(TStringCoreReplace, AtCodePointIterators) {
  TStringCore text(u"abc");
  text.replace(++text.codepoint_cbegin(), 1, TStringCore(u"XY"));
  EXPECT_EQ(UnitsOf(text), u"aXYc");
  text.replace(text.codepoint_cbegin(), 2, u'z');
  EXPECT_EQ(UnitsOf(text), u"zzYc");
  text.replace(text.codepoint_cend(), 1, u'z').replace(text.codepoint_cend(), 1, TStringCore(u"z"));
  EXPECT_EQ(UnitsOf(text), u"zzYc");
}

// ---- Replace matches

TEST(TStringCoreReplace, Units) {
  TStringCore text(u"abcabcabcabcabcabcabc");
  text.replace(u'b', u'x');
  EXPECT_EQ(UnitsOf(text), u"axcaxcaxcaxcaxcaxcaxc");
  text.replace(u'c', TStringCore(u"YZ"));
  EXPECT_EQ(text.left(8), TStringCore(u"axYZaxYZ"));
}

TEST(TStringCoreReplace, CountsMatchesThatNeverOverlap) {
  TStringCore text(u"aaa");
  EXPECT_EQ(text.replaceCount(u"aa", 2, u"b", 1, Sensitive), 1);
  EXPECT_EQ(UnitsOf(text), u"ba");
  text = u"aaaa";
  EXPECT_EQ(text.replaceCount(u"aa", 2, u"aa", 2, Sensitive), 2);
  text = u"ababa";
  EXPECT_EQ(text.replaceCount(u"ab", 2, u"ba", 2, Sensitive), 2) << "replaced text is not searched again";
  EXPECT_EQ(UnitsOf(text), u"babaa");
  text = u"aXbXc";
  EXPECT_EQ(text.replaceCount(u"x", 1, u"--", 2, Insensitive), 2);
  EXPECT_EQ(UnitsOf(text), u"a--b--c");
  EXPECT_EQ(text.replaceCount(u"--", 2, nullptr, 0, Sensitive), 2);
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCoreReplace, LengthsAreTakenAsTheyAre) {
  TStringCore text(u"abc");
  EXPECT_EQ(text.replaceCount(u"a", -1, u"b", 1, Sensitive), 0);
  EXPECT_EQ(text.replaceCount(u"a", 0, u"b", 1, Sensitive), 0);
  EXPECT_EQ(text.replaceCount(nullptr, 1, u"b", 1, Sensitive), 0);
  EXPECT_EQ(UnitsOf(text), u"abc");
  EXPECT_EQ(text.replaceCount(u"abx", 2, u"xyz", 1, Sensitive), 1);
  EXPECT_EQ(UnitsOf(text), u"xc");
  text = Text(u"a\0b\0c");
  EXPECT_EQ(text.replaceCount(u"\0", 1, u"--", 2, Sensitive), 2) << "NUL is a unit like others";
  EXPECT_EQ(UnitsOf(text), u"a--b--c");
}

TEST(TStringCoreReplace, OwnNeedleAndOwnReplacement) {
  TStringCore text(u"abab");
  EXPECT_EQ(text.replaceCount(text.constData(), 2, text.constData() + 1, 2, Sensitive), 2);
  EXPECT_EQ(UnitsOf(text), u"baba");
  EXPECT_EQ(text.replaceCount(text.constData(), 1, text.constData(), 4, Sensitive), 2);
  EXPECT_EQ(UnitsOf(text), u"babaababaa");
  text.replace(text, TStringCore(u"x"));
  EXPECT_EQ(UnitsOf(text), u"x");
}

TEST(TStringCoreReplace, WithoutAMatchASharedBlockStays) {
  TStringCore text = LongText();
  const TStringCore other = text;
  text.replace(u'!', u'?').replace(u"!", u"??").replace(u"!", u"?").replace(u'!', TStringCore(u"?"));
  EXPECT_TRUE(text.isShared());
  text.replace(u'a', u'b');
  EXPECT_FALSE(text.isShared());
  EXPECT_EQ(UnitsOf(other), LongUnits);
}

// ---- Remove

TEST(TStringCoreRemove, Ranges) {
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(1, 2)), u"adef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(-1, 3)), u"cdef") << "one of the three lies before the start";
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(-3, 3)), u"abcdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(-1, 100)), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(2, 100)), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(2, 0x7FFFFFFF)), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(6, 1)), u"abcdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(2, 0)), u"abcdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(2, -1)), u"abcdef");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcdef").removeAt(-0x7FFFFFFF - 1, -0x7FFFFFFF - 1)), u"abcdef");
}

TEST(TStringCoreRemove, AtCodePointIterators) {
  TStringCore text(u"a\U0001F600b");
  text.removeAt(++text.codepoint_cbegin(), 2).removeAt(text.codepoint_cend(), 1);
  EXPECT_EQ(UnitsOf(text), u"ab");
}

TEST(TStringCoreRemove, EveryMatch) {
  EXPECT_EQ(UnitsOf(TStringCore(u"abcabc").removeAll(u"bc")), u"aa");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcabc").removeAll(u"bcx", 2)), u"aa");
  EXPECT_EQ(UnitsOf(TStringCore(u"aXbxc").removeAll(u"X", -1, Insensitive)), u"abc");
  EXPECT_EQ(UnitsOf(TStringCore(u"abcabc").removeAll(TStringCore(u"a"))), u"bcbc");
  EXPECT_EQ(UnitsOf(TStringCore(u"aabb").removeAll(u"ab")), u"ab") << "joined text starts before the removal point";
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").removeAll(u"abc")), u"");
}

TEST(TStringCoreRemove, NothingToRemoveLeavesASharedBlock) {
  TStringCore text = LongText();
  const TStringCore other = text;
  text.removeAll(nullptr).removeAll(u"").removeAll(u"a", 0).removeAll(u"!").removeAll(u'!').removeAll(TStringCore());
  text.removeAll(u"\0a", 2).removeAnyOf(u"!?").removeAnyOf(nullptr).removeAnyOf(u"").removeAt(3, 0);
  EXPECT_TRUE(text.isShared());
}

TEST(TStringCoreRemove, OwnTextIsCopiedFirst) {
  TStringCore text(u"abxabyab");
  text.removeAll(text.constData(), 2);
  EXPECT_EQ(UnitsOf(text), u"xy");
  text.removeAll(text);
  EXPECT_EQ(UnitsOf(text), u"");
}

TEST(TStringCoreRemove, OneUnitEverywhere) {
  EXPECT_EQ(UnitsOf(TStringCore(u"abcabc").removeAll(u'b')), u"acac");
  EXPECT_EQ(UnitsOf(TStringCore(u"bbb").removeAll(u'b')), u"");
  EXPECT_EQ(UnitsOf(Text(u"abc\0abc").removeAll(u'b')), u"ac") << "what follows a NUL is dropped";
  EXPECT_EQ(UnitsOf(Text(u"ac\0b").removeAll(u'b')), u"ac\0"s);
  EXPECT_EQ(UnitsOf(Text(u"ac\0a").removeAll(u'x')), u"ac\0a"s);
}

// ---- Cut

TEST(TStringCoreCut, Truncates) {
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").truncate(2)), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").truncate(-1)), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").truncate(3)), u"abc");
  EXPECT_EQ(UnitsOf(Text(u"ab\0c").truncateAtFirstNull()), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore(u"ab").truncateAtFirstNull()), u"ab");
  TStringCore text(u"abc");
  text.truncate(text.codepoint_cend());
  EXPECT_EQ(UnitsOf(text), u"abc");
  text.truncate(++text.codepoint_cbegin());
  EXPECT_EQ(UnitsOf(text), u"a");
}

TEST(TStringCoreCut, Chops) {
  const auto chopped = [](int n) {
    TStringCore text(u"abc");
    text.chop(n);
    return UnitsOf(text);
  };
  EXPECT_EQ(chopped(0), u"abc");
  EXPECT_EQ(chopped(-1), u"abc");
  EXPECT_EQ(chopped(1), u"ab");
  EXPECT_EQ(chopped(3), u"");
  EXPECT_EQ(chopped(0x7FFFFFFF), u"");
}

TEST(TStringCoreCut, NothingToCutLeavesASharedBlock) {
  TStringCore text = LongText();
  const TStringCore other = text;
  text.truncate(26).truncate(30).truncateAtFirstNull();
  text.chop(0);
  EXPECT_TRUE(text.isShared());
}

}  // namespace
