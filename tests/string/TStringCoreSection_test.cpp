#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/SearchModels.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

using Flags = TStringCore::SectionFlags;

constexpr Flags None = TStringCore::SectionDefault;
constexpr Flags DropEmpty = TStringCore::SectionDropEmpty;
constexpr Flags Leading = TStringCore::SectionWithLeadingSeparator;
constexpr Flags Trailing = TStringCore::SectionWithTrailingSeparator;
constexpr Flags Fold = TStringCore::SectionFoldSeparator;

struct Row {
  const char* name;
  std::u16string text;
  std::u16string sep;
  int first;
  int last;
  Flags flags;
  std::u16string wanted;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class Section : public testing::TestWithParam<Row> {};

TEST_P(Section, EveryForm) {
  const Row& row = GetParam();
  const TStringCore text = String(row.text);
  EachRawForm(row.sep, [&](const auto* sep) {
    EXPECT_EQ(UnitsOf(text.section(sep, row.first, row.last, row.flags)), row.wanted);
  });
  for (const int length : {-1, text.length()}) {
    const TStringCore found =
        TStringCore::section(row.text.c_str(), length, row.sep.c_str(), row.first, row.last, row.flags);
    EXPECT_EQ(UnitsOf(found), row.wanted);
  }
  const TStringCore wide =
      TStringCore::section(Wide(row.text).c_str(), -1, Wide(row.sep).c_str(), row.first, row.last, row.flags);
  EXPECT_EQ(UnitsOf(wide), row.wanted);
  if (row.sep.size() != 1) return;
  EXPECT_EQ(UnitsOf(text.section(row.sep[0], row.first, row.last, row.flags)), row.wanted);
  EXPECT_EQ(UnitsOf(text.section(static_cast<wchar_t>(row.sep[0]), row.first, row.last, row.flags)), row.wanted);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Section,
    testing::Values(
        Row{"Middle", u"a,b,c", u",", 1, 1, None, u"b"}, Row{"WithLeading", u"a,b,c", u",", 1, 1, Leading, u",b"},
        Row{"WithBoth", u"a,b,c", u",", 1, 1, Leading | Trailing, u",b,"},
        Row{"NoRoomBeforeTheFirst", u"a,b,c", u",", 0, 0, Leading | Trailing, u"a,"},
        Row{"NoRoomBehindTheLast", u"a,b,c", u",", 2, 2, Leading | Trailing, u",c"},
        Row{"LastByMinusOne", u"a,b,c", u",", -1, -1, None, u"c"}, Row{"Range", u"a,b,c", u",", 0, 1, None, u"a,b"},
        Row{"All", u"a,b,c", u",", 0, -1, None, u"a,b,c"}, Row{"Reversed", u"a,b,c", u",", 2, 1, None, u"c"},
        Row{"ReversedFromTheMiddle", u"a,b,c", u",", 1, 0, None, u"b,c"},
        Row{"ReversedWithTrailingIsEmpty", u"a,b,c", u",", 2, 1, Trailing, u""},
        Row{"FirstTooHigh", u"a,b,c", u",", 3, 3, None, u""}, Row{"LastTooHigh", u"a,b,c", u",", 0, 3, None, u""},
        Row{"FirstTooLow", u"a,b,c", u",", -4, 0, None, u""}, Row{"LastTooLow", u"a,b,c", u",", 0, -4, None, u""},
        Row{"EmptyField", u"a,,c", u",", 1, 1, None, u""},
        Row{"DropsEmptyFields", u"a,,c", u",", 1, 1, DropEmpty, u"c"},
        Row{"DropsAllFields", u",,", u",", 0, 0, DropEmpty, u""}, Row{"Folds", u"aXbxc", u"x", 1, 1, Fold, u"b"},
        Row{"DoesNotFold", u"aXbxc", u"x", 0, 0, None, u"aXb"},
        Row{"LongSeparator", u"a::b::c", u"::", 1, 1, Leading | Trailing, u"::b::"},
        Row{"LeadingIntoADroppedField", u",,a", u",", 0, 0, DropEmpty | Leading, u",a"},
        Row{"NoSeparator", u"abc", u",", 0, 0, None, u"abc"}, Row{"EmptyText", u"", u",", 0, 0, None, u""},
        Row{"EmptySeparator", u"abc", u"", 0, 0, None, u""}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SectionNull, IsEmpty) {
  const TStringCore text(u"a,b");
  EXPECT_TRUE(text.section(nullptr, 0, 0).isEmpty());
  EXPECT_TRUE(text.section(static_cast<const TForeignUnit*>(nullptr), 0, 0).isEmpty());
  EXPECT_TRUE(text.section(u'\0', 0, 0).isEmpty());
  EXPECT_TRUE(TStringCore::section(nullptr, 3, u",", 0, 0).isEmpty());
  EXPECT_TRUE(TStringCore::section(nullptr, -1, u",", 0, 0).isEmpty());
}

TEST(SectionNul, TextThatBeginsWithNulIsEmpty) {
  EXPECT_TRUE(String({u"\0,b", 3}).section(u",", 1, 1).isEmpty());
  EXPECT_EQ(UnitsOf(String({u"a\0b,c", 5}).section(u",", 0, 0)), (std::u16string{u"a\0b", 3}));
  EXPECT_EQ(UnitsOf(String({u"a,b\0c", 5}).section(u",", 1, 0)), u"b");
}

TEST(SectionLength, EndsTheText) {
  EXPECT_EQ(TStringCore::section(u"a,b,c", 3, u",", -1, -1), u"b");
  EXPECT_EQ(TStringCore::section(u"a,b,c", 3, u",", 1, 1, Trailing), u"b");
  EXPECT_EQ(TStringCore::section(u"a,b,c", 3, u",", 1, 0), u"b");
  EXPECT_TRUE(TStringCore::section(u"a,b,c", 0, u",", 0, 0).isEmpty());
}

TEST(SectionRandom, AgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(10000); round > 0; --round) {
    std::u16string text = RandomText(random, NearMissAlphabet, 12);
    const std::u16string sep = RandomText(random, NearMissAlphabet, 2);
    const auto flags = static_cast<Flags>(random.Between(0, 15));
    int first = random.Between(-5, 5);
    int last = random.Between(-5, 5);
    const TStringCore found = String(text).section(sep.c_str(), first, last, flags);

    std::u16string wanted;
    const std::vector<ModelField> fields = ModelFields(text, sep, (flags & DropEmpty) != 0, (flags & Fold) != 0);
    const int count = static_cast<int>(fields.size());
    first += first < 0 ? count : 0;
    last += last < 0 ? count : 0;
    if (!text.empty() && first >= 0 && last >= 0 && first < count && last < count) {
      int start = fields[static_cast<std::size_t>(first)].offset;
      int end = fields[static_cast<std::size_t>(last)].offset + fields[static_cast<std::size_t>(last)].length;
      const int sepLen = static_cast<int>(sep.size());
      if ((flags & Leading) != 0 && start >= sepLen) start -= sepLen;
      if ((flags & Trailing) != 0 && end + sepLen <= static_cast<int>(text.size())) end += sepLen;
      wanted = text.substr(static_cast<std::size_t>(start));
      if (end >= start) wanted.resize(static_cast<std::size_t>(end - start));
    }
    ASSERT_EQ(UnitsOf(found), wanted) << testing::PrintToString(text) << testing::PrintToString(sep) << " " << first
                                      << " " << last << " " << flags;
  }
}

}  // namespace
}  // namespace qilsys::test
