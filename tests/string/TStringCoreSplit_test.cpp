#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/SearchModels.h"
#include "support/SearchTexts.h"
#include "support/StringHeaps.h"
#include "support/StringText.h"

namespace qilsys::test {
namespace {

using test::UnitsOf;

using List = std::vector<std::u16string>;

constexpr auto Keep = TStringCore::KeepEmptyTokens;
constexpr auto Drop = TStringCore::DropEmptyTokens;
constexpr auto Other = static_cast<TStringCore::SplitBehavior>(2);
constexpr auto CaseSensitive = TStringCore::CaseSensitive;
constexpr auto CaseInsensitive = TStringCore::CaseInsensitive;

List UnitsOf(const std::vector<TStringCore>& strings) {
  List units;
  for (const TStringCore& string : strings) units.push_back(UnitsOf(string));
  return units;
}

struct Row {
  const char* name;
  std::u16string text;
  std::u16string sep;
  List keep;
  List drop;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class Split : public testing::TestWithParam<Row> {};

TEST_P(Split, TextSeparatorInEveryForm) {
  const Row& row = GetParam();
  const TStringCore text = String(row.text);
  const auto length = static_cast<int>(row.text.size());
  for (const auto cs : {CaseSensitive, CaseInsensitive}) {
    EXPECT_EQ(UnitsOf(text.split(String(row.sep), Keep, cs)), row.keep);
    EXPECT_EQ(UnitsOf(text.split(String(row.sep), Drop, cs)), row.drop);
    EXPECT_EQ(UnitsOf(text.split(String(row.sep), Other, cs)), row.drop);
    EachRawForm(row.sep, [&](const auto* sep) {
      EXPECT_EQ(UnitsOf(text.split(sep, Keep, cs)), row.keep);
      EXPECT_EQ(UnitsOf(text.split(sep, Drop, cs)), row.drop);
    });
    EXPECT_EQ(UnitsOf(TStringCore::split(row.text.c_str(), length, row.sep.c_str(), Keep, cs)), row.keep);
    const std::wstring wide = Wide(row.text);
    const auto wideLength = static_cast<int>(wide.size());
    EXPECT_EQ(UnitsOf(TStringCore::split(wide.c_str(), wideLength, Wide(row.sep).c_str(), Drop, cs)), row.drop);
  }
}

TEST_P(Split, OneUnitInEveryForm) {
  const Row& row = GetParam();
  if (row.sep.size() != 1) return;
  const TStringCore text = String(row.text);
  const auto wide = static_cast<wchar_t>(row.sep[0]);
  EXPECT_EQ(UnitsOf(text.split(row.sep[0], Keep)), row.keep);
  EXPECT_EQ(UnitsOf(text.split(row.sep[0], Drop)), row.drop);
  EXPECT_EQ(UnitsOf(text.split(row.sep[0], Other)), row.drop);
  EXPECT_EQ(UnitsOf(text.split(wide, Keep)), row.keep);
  EXPECT_EQ(UnitsOf(TStringCore::split(row.text.c_str(), text.length(), row.sep[0], Keep)), row.keep);
  EXPECT_EQ(UnitsOf(TStringCore::split(row.text.c_str(), -1, row.sep[0], Drop)), row.drop);
  EXPECT_EQ(UnitsOf(TStringCore::split(Wide(row.text).c_str(), -1, wide, Keep)), row.keep);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Split,
    testing::Values(Row{"EndsWithTheSeparator", u"a,b,", u",", {u"a", u"b", u""}, {u"a", u"b"}},
                    Row{"EmptyText", u"", u",", {u""}, {}}, Row{"EmptySeparator", u"abc", u"", {}, {}},
                    Row{"NoSeparator", u"abc", u",", {u"abc"}, {u"abc"}},
                    Row{"OnlySeparators", u",,", u",", {u"", u"", u""}, {}},
                    Row{"StartsWithTheSeparator", u",a", u",", {u"", u"a"}, {u"a"}},
                    Row{"Neighbours", u"a,,b", u",", {u"a", u"", u"b"}, {u"a", u"b"}},
                    Row{"LongSeparator", u"a, b, c", u", ", {u"a", u"b", u"c"}, {u"a", u"b", u"c"}},
                    Row{"SeparatorIsText", u"ab", u"ab", {u"", u""}, {}},
                    Row{"MatchesDoNotOverlap", u"aaa", u"aa", {u"", u"a"}, {u"a"}},
                    Row{"Supplementary", u"a\xD801\xDC00z", u"\xD801\xDC00", {u"a", u"z"}, {u"a", u"z"}},
                    Row{"LongFields",
                        u"abcdefghijklmnop,abcdefghijklmn,abcdefghijklmno",
                        u",",
                        {u"abcdefghijklmnop", u"abcdefghijklmn", u"abcdefghijklmno"},
                        {u"abcdefghijklmnop", u"abcdefghijklmn", u"abcdefghijklmno"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SplitCase, FoldsTheSeparator) {
  const TStringCore text(u"aXbxc");
  EXPECT_EQ(UnitsOf(text.split(u"x", Keep, CaseInsensitive)), (List{u"a", u"b", u"c"}));
  EXPECT_EQ(UnitsOf(text.split(u"x", Keep, CaseSensitive)), (List{u"aXb", u"c"}));
}

TEST(SplitNull, GivesNothing) {
  const TStringCore text(u"a,b");
  EXPECT_TRUE(text.split(nullptr).empty());
  EXPECT_TRUE(text.split(static_cast<const TForeignUnit*>(nullptr)).empty());
  EXPECT_TRUE(TStringCore::split(u"a,b", 3, nullptr).empty());
}

TEST(SplitNull, TextIsEmpty) {
  EXPECT_EQ(UnitsOf(TStringCore::split(nullptr, 5, u",")), (List{u""}));
  EXPECT_EQ(UnitsOf(TStringCore::split(nullptr, 5, u",", Drop)), List{});
  EXPECT_EQ(UnitsOf(TStringCore::split(nullptr, -1, u',')), (List{u""}));
  EXPECT_EQ(UnitsOf(TStringCore::split(nullptr, 5, u',', Drop)), List{});
}

TEST(SplitLength, NegativeIsNotMeasuredForATextSeparator) {
  EXPECT_EQ(UnitsOf(TStringCore::split(u"a,b", -1, u",")), (List{u"a,b"}));
  EXPECT_EQ(UnitsOf(TStringCore::split(u"a,b", -1, u",", Keep, CaseInsensitive)), (List{u"a,b"}));
  EXPECT_EQ(UnitsOf(TStringCore::split(L"a,b", -1, L",")), (List{u"a,b"}));
}

TEST(SplitLength, EndsTheText) {
  EXPECT_EQ(UnitsOf(TStringCore::split(u"a,b,c", 3, u",")), (List{u"a", u"b"}));
  EXPECT_EQ(UnitsOf(TStringCore::split(u"a,b,c", 2, u',')), (List{u"a", u""}));
}

// A sanitizer sees a read behind the allocation.
TEST(SplitLength, TextNeedsNoTerminator) {
  for (std::size_t length = 1; length < 40; ++length) {
    std::vector<TCodeUnit> text(length, 'a');
    text[length / 2] = ',';
    const List wanted{std::u16string(length / 2, u'a'), std::u16string(length - length / 2 - 1, u'a')};
    const auto units = static_cast<int>(length);
    EXPECT_EQ(UnitsOf(TStringCore::split(text.data(), units, u',')), wanted);
    EXPECT_EQ(UnitsOf(TStringCore::split(text.data(), units, u",")), wanted);
    EXPECT_EQ(UnitsOf(TStringCore::split(text.data(), units, u",", Keep, CaseInsensitive)), wanted);
  }
}

TEST(SplitNul, FieldsKeepNulsAndTheSeparatorEndsAtOne) {
  const TStringCore text = String({u"a\0b,c", 5});
  EXPECT_EQ(UnitsOf(text.split(u",")), (List{{u"a\0b", 3}, u"c"}));
  EXPECT_EQ(UnitsOf(text.split(String({u",\0x", 3}))), (List{{u"a\0b", 3}, u"c"}));
  EXPECT_EQ(UnitsOf(text.split(u'\0')), (List{u"a", u"b,c"}));
  EXPECT_TRUE(text.split(String({u"\0x", 2})).empty());
}

TEST(SplitSharing, AFieldIsAStringOfItsOwn) {
  const TStringCore text(u"abcdefghijklmnopqrstuvwxyz");
  EXPECT_NE(text.split(u",")[0].constData(), text.constData());
  EXPECT_NE(text.split(u',')[0].constData(), text.constData());
}

TEST(SplitRandom, AgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(5000); round > 0; --round) {
    const std::u16string text = RandomText(random, random.OneIn(2) ? SearchAlphabet : NearMissAlphabet, 60);
    const std::u16string sep{ModelToNul(RandomText(random, SearchAlphabet, 2))};
    for (const bool fold : {false, true}) {
      for (const auto behavior : {Keep, Drop}) {
        List wanted;
        for (const ModelField& f : ModelFields(text, sep, behavior == Drop, fold)) {
          wanted.push_back(text.substr(static_cast<std::size_t>(f.offset), static_cast<std::size_t>(f.length)));
        }
        ASSERT_EQ(UnitsOf(String(text).split(sep.c_str(), behavior, fold ? CaseInsensitive : CaseSensitive)), wanted);
        if (sep.size() == 1 && !fold) {
          ASSERT_EQ(UnitsOf(String(text).split(sep[0], behavior)), wanted);
        }
      }
    }
  }
}

struct AnyRow {
  const char* name;
  std::u16string text;
  std::u16string set;
  List keep;
  List drop;
};

void PrintTo(const AnyRow& row, std::ostream* out) { *out << row.name; }

class SplitOnAny : public testing::TestWithParam<AnyRow> {};

TEST_P(SplitOnAny, EveryForm) {
  const AnyRow& row = GetParam();
  const TStringCore text = String(row.text);
  EXPECT_EQ(UnitsOf(text.splitOnAny(String(row.set), Keep)), row.keep);
  EXPECT_EQ(UnitsOf(text.splitOnAny(String(row.set), Drop)), row.drop);
  EXPECT_EQ(UnitsOf(text.splitOnAny(String(row.set), Other)), row.keep);
  EachRawForm(row.set, [&](const auto* set) {
    EXPECT_EQ(UnitsOf(text.splitOnAny(set, Keep)), row.keep);
    EXPECT_EQ(UnitsOf(text.splitOnAny(set, Drop)), row.drop);
  });
}

INSTANTIATE_TEST_SUITE_P(
    Table, SplitOnAny,
    testing::Values(AnyRow{"TwoMembers", u"a,b;c", u",;", {u"a", u"b", u"c"}, {u"a", u"b", u"c"}},
                    AnyRow{"Empties", u",a,;b;", u",;", {u"", u"a", u"", u"b", u""}, {u"a", u"b"}},
                    AnyRow{"OnlyMembers", u",;", u",;", {u"", u"", u""}, {}}, AnyRow{"EmptyText", u"", u",", {u""}, {}},
                    AnyRow{"EmptySet", u"abc", u"", {u"abc"}, {u"abc"}},
                    AnyRow{
                        "MovesPastTheWholeCodePoint", u"a\xD801\xDC00z", u"\xD801\xDC00", {u"a", u"z"}, {u"a", u"z"}},
                    AnyRow{"NonAsciiSet", u"a\u00E4b,c", u",\u00E4", {u"a", u"b", u"c"}, {u"a", u"b", u"c"}},
                    AnyRow{"LoneSurrogateMember",
                           u"a\xD801"
                           u"b",
                           u"\uFFFD",
                           {u"a", u"b"},
                           {u"a", u"b"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SplitOnAnyEdge, NullSetEndsAndGivesNothing) {
  EXPECT_TRUE(TStringCore(u"abc").splitOnAny(nullptr).empty());
  EXPECT_TRUE(TStringCore(u"abc").splitOnAny(nullptr, Drop).empty());
  EXPECT_TRUE(TStringCore(u"abc").splitOnAny(static_cast<const TForeignUnit*>(nullptr)).empty());
}

TEST(SplitOnAnyEdge, LastFieldStopsAtANul) {
  const TStringCore text = String({u"a\0b,c\0d", 7});
  EXPECT_EQ(UnitsOf(text.splitOnAny(u",")), (List{{u"a\0b", 3}, u"c"}));
  EXPECT_EQ(UnitsOf(String({u",\0x", 3}).splitOnAny(u",", Drop)), List{});
  EXPECT_EQ(UnitsOf(String({u",\0x", 3}).splitOnAny(u",", Keep)), (List{u"", u""}));
}

TEST(SplitOnAnyEdge, WholeTextIsShared) {
  const TStringCore text(u"abcdefghijklmnopqrstuvwxyz");
  EXPECT_EQ(text.splitOnAny(u",")[0].constData(), text.constData());
}

// All tokens, with the position before each call.
List Tokens(const TStringCore& text, const std::u16string& set, TStringCore::SplitBehavior behavior) {
  List tokens;
  for (int pos = 0; pos >= 0;) tokens.push_back(UnitsOf(text.tokenize(set.c_str(), pos, behavior)));
  return tokens;
}

TEST(Tokenize, DropsEmptyTokens) {
  const TStringCore text(u",a,,b");
  int pos = 0;
  EXPECT_EQ(text.tokenize(u",", pos, Drop), u"a");
  EXPECT_EQ(pos, 3);
  EXPECT_EQ(text.tokenize(u",", pos, Drop), u"b");
  EXPECT_EQ(pos, -1);
  EXPECT_TRUE(text.tokenize(u",", pos, Drop).isEmpty());
  EXPECT_EQ(pos, -1);
}

TEST(Tokenize, NothingLeftButMembers) {
  const TStringCore text(u"a,,");
  int pos = 0;
  EXPECT_EQ(text.tokenize(L",", pos, Drop), u"a");
  EXPECT_EQ(pos, 2);
  EXPECT_TRUE(text.tokenize(L",", pos, Drop).isEmpty());
  EXPECT_EQ(pos, -1);
}

TEST(Tokenize, KeepsEmptyTokens) {
  EXPECT_EQ(Tokens(TStringCore(u",a,,b"), u",", Keep), (List{u"", u"a", u"", u"b"}));
  EXPECT_EQ(Tokens(TStringCore(u"a,"), u",", Keep), (List{u"a", u""}));
  EXPECT_EQ(Tokens(TStringCore(u"a,"), u",", Other), (List{u"a", u""}));
  EXPECT_EQ(Tokens(TStringCore(), u",", Keep), (List{u""}));
  EXPECT_EQ(Tokens(TStringCore(), u",", Drop), (List{u""}));
}

TEST(Tokenize, NullSetAndNegativePositionLeaveThePosition) {
  const TStringCore text(u"abc");
  for (int pos : {0, 2, -1, -7}) {
    const int before = pos;
    EXPECT_TRUE(text.tokenize(nullptr, pos, Keep).isEmpty());
    EXPECT_TRUE(text.tokenize(nullptr, pos, Drop).isEmpty());
    EXPECT_EQ(pos, before);
  }
  int pos = -7;
  EXPECT_TRUE(text.tokenize(u",", pos, Keep).isEmpty());
  EXPECT_EQ(pos, -7);
}

TEST(Tokenize, PositionAtOrPastTheEnd) {
  const TStringCore text(u"abc");
  for (const int start : {3, 4, 1000, 0x7FFFFFFF}) {
    for (const auto behavior : {Keep, Drop}) {
      int pos = start;
      EXPECT_TRUE(text.tokenize(u",", pos, behavior).isEmpty());
      EXPECT_EQ(pos, -1);
    }
  }
}

TEST(Tokenize, MovesToTheUnitBehindTheHit) {
  const TStringCore text(u"a\xD801\xDC00z");
  int pos = 0;
  EXPECT_EQ(text.tokenize(TStringCore(u"\xD801\xDC00"), pos, Keep), u"a");
  EXPECT_EQ(pos, 2);
}

TEST(Tokenize, EmptySetTakesTheRest) {
  const TStringCore text(u"abc");
  for (const auto behavior : {Keep, Drop}) {
    int pos = 1;
    EXPECT_EQ(text.tokenize(TStringCore(), pos, behavior), u"bc");
    EXPECT_EQ(pos, -1);
  }
}

TEST(Tokenize, LastTokenStopsAtANul) {
  const TStringCore text = String({u"a,b\0c", 5});
  EXPECT_EQ(Tokens(text, u",", Keep), (List{u"a", u"b"}));
}

// Without supplementary members and NULs both walks and a plain loop give the same fields.
TEST(TokenizeRandom, AgreesWithSplitOnAnyAndTheModel) {
  SeededRandom random;
  for (int round = Rounds(5000); round > 0; --round) {
    const std::u16string text = RandomText(random, u"ab,;\u00E4", 30);
    const std::u16string set = RandomText(random, u",;\u00E4", 3);
    for (const auto behavior : {Keep, Drop}) {
      List wanted(1);
      for (const char16_t c : text) {
        if (set.find(c) == set.npos) {
          wanted.back() += c;
        } else {
          wanted.emplace_back();
        }
      }
      if (behavior == Drop) std::erase(wanted, u"");
      ASSERT_EQ(UnitsOf(String(text).splitOnAny(set.c_str(), behavior)), wanted);
      List tokens = Tokens(String(text), set, behavior);
      if (behavior == Drop && !tokens.empty() && tokens.back().empty()) tokens.pop_back();
      ASSERT_EQ(tokens, wanted) << testing::PrintToString(text) << testing::PrintToString(set);
    }
  }
}

TEST(TokenizeWithoutMemory, KeepsThePlaceOfTheToken) {
  const TStringCore text(u"a field that is long enough for a block,b");
  int pos = 0;
  {
    const FailingStringHeap heap(0);
    EXPECT_THROW(static_cast<void>(text.tokenize(u",", pos)), TStringCore::OutOfMemoryException);
  }
  EXPECT_EQ(pos, 0);
  EXPECT_EQ(UnitsOf(text.tokenize(u",", pos)), u"a field that is long enough for a block");
  EXPECT_EQ(UnitsOf(text.tokenize(u",", pos)), u"b");
  EXPECT_EQ(pos, -1);
}

}  // namespace
}  // namespace qilsys::test
