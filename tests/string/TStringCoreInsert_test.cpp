#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/StringText.h"

using qilsys::test::UnitsOf;

namespace {

const std::u16string LongUnits = u"abcdefghijklmnopqrstuvwxyz";

TStringCore LongText() { return TStringCore::fromStdU16String(LongUnits); }

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

}  // namespace
