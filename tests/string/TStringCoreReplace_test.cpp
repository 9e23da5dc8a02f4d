#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/StringText.h"

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

// A range that reaches the end is cut off first; own text before it then ends where the text does.
TEST(TStringCoreReplace, OwnTextEndsAtARangeThatReachesTheEnd) {
  for (const bool shared : {false, true}) {
    for (const std::u16string& head : {u""s, u"a text that needs a block: "s}) {
      const int pos = static_cast<int>(head.size()) + 3;
      const auto replaced = [&](int n, int from, int len) {
        TStringCore text = TStringCore::fromStdU16String(head + u"abcdef");
        const TStringCore sharer = shared ? text : TStringCore();
        text.replace(pos, n, text.constData() + pos - 3 + from, len);
        return UnitsOf(text).substr(head.size());
      };
      EXPECT_EQ(replaced(3, 1, 4), u"abcbc");
      EXPECT_EQ(replaced(3, 1, 1), u"abcb");
      EXPECT_EQ(replaced(9, 0, -1), u"abcabc");
      EXPECT_EQ(replaced(3, 3, 2), u"abc") << "from where the cut is";
      EXPECT_EQ(replaced(3, 4, 2), u"abcef") << "from behind the cut, as it was";
      EXPECT_EQ(replaced(3, 4, 9), u"abcef");
      EXPECT_EQ(replaced(2, 1, 4), u"abcbcdef") << "not to the end";
    }
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

}  // namespace
