#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/StringText.h"

using namespace std::string_literals;
using qilsys::test::UnitsOf;

namespace {

/// Text that holds NULs.
template <std::size_t N>
TStringCore Text(const char16_t (&units)[N]) {
  return TStringCore(units, static_cast<int>(N) - 1);
}

const std::u16string LongUnits = u"abcdefghijklmnopqrstuvwxyz";

TStringCore LongText() { return TStringCore::fromStdU16String(LongUnits); }

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

// Only no text at all leaves it; an empty string is text of no units.
TEST(TStringCoreAppend, AnEmptyStringGivesASharedBlockUp) {
  TStringCore emptied(u'a', 20);
  emptied.resize(0);
  TStringCore itself = emptied;
  itself.append(itself);
  EXPECT_FALSE(itself.isShared());
  TStringCore other = emptied;
  other.append(TStringCore());
  EXPECT_FALSE(other.isShared());
  TStringCore kept = emptied;
  kept.append("").append(u"").append(static_cast<const char*>(nullptr), 5);
  EXPECT_TRUE(kept.isShared());
}

TEST(TStringCoreAppend, NoBytesAssignedGiveASharedBlockUp) {
  TStringCore emptied(u'a', 20);
  emptied.resize(0);
  for (const char* bytes : {"", static_cast<const char*>(nullptr)}) {
    TStringCore text = emptied;
    text.assign(bytes, bytes ? 0 : -1);
    EXPECT_FALSE(text.isShared());
    EXPECT_TRUE(text.empty());
  }
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
  EXPECT_EQ(UnitsOf(L"\U0001F600" + a), u"\U0001F600a");
  if (sizeof(wchar_t) > 2) {
    EXPECT_EQ(UnitsOf(static_cast<wchar_t>(0x1F600) + a), u"\U0001F600a");
  }
  EXPECT_EQ(UnitsOf(a), u"a");
}

}  // namespace
