#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

const TStringCore Long(u"abcdefghijklmnopqrstuvwxyz");

TEST(Join, EdgeCases) {
  using List = std::vector<TStringCore>;
  const TStringCore comma(u", ");
  EXPECT_TRUE(TStringCore::join(List{}, comma).isEmpty());
  EXPECT_EQ(TStringCore::join(List{u"a", u"b", u"c"}, comma), u"a, b, c");
  EXPECT_EQ(TStringCore::join(List{u"a", u"b"}, u','), u"a,b");
  EXPECT_EQ(TStringCore::join(List{u"a", u"b"}, L','), u"a,b");
  EXPECT_EQ(TStringCore::join(List{u"", u""}, comma), u", ");
  EXPECT_EQ(TStringCore::join(List{u"a", u"b"}, TStringCore()), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore::join(List{u"a", u"b"}, u'\0')), (std::u16string{u"a\0b", 3}));
  EXPECT_EQ(UnitsOf(TStringCore::join(List{String({u"\0a", 2}), u"b"}, comma)), (std::u16string{u"\0a, b", 5}));
}

TEST(Join, OneElementIsShared) {
  EXPECT_EQ(TStringCore::join(std::vector<TStringCore>{Long}, u',').constData(), Long.constData());
}

TEST(Join, AllocatesExactlyOnce) {
  EXPECT_EQ(TStringCore::join(std::vector<TStringCore>{Long, Long}, u',').capacity(), 54);
}

TEST(Join, UndoesSplit) {
  SeededRandom random;
  for (int round = Rounds(2000); round > 0; --round) {
    const std::u16string text = RandomText(random, u"ab,", 40);
    ASSERT_EQ(UnitsOf(TStringCore::join(String(text).split(u','), u',')), text);
  }
}

}  // namespace
}  // namespace qilsys::test
