#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/StringText.h"

using namespace std::string_literals;
using qilsys::test::UnitsOf;
using CS = TStringCore::CaseSensitivity;
constexpr CS Insensitive = TStringCore::CaseInsensitive;

namespace {

/// Text that holds NULs.
template <std::size_t N>
TStringCore Text(const char16_t (&units)[N]) {
  return TStringCore(units, static_cast<int>(N) - 1);
}

const std::u16string LongUnits = u"abcdefghijklmnopqrstuvwxyz";

TStringCore LongText() { return TStringCore::fromStdU16String(LongUnits); }

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
