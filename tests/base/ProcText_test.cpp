#include "base/ProcText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/RowName.h"

namespace qilsys::base {
namespace {

std::vector<std::string> WordsOf(std::string_view text) {
  std::vector<std::string> words;
  for (std::string_view word = TakeWord(text); !word.empty(); word = TakeWord(text)) words.emplace_back(word);
  EXPECT_TRUE(text.find_first_not_of(" \t\n") == std::string_view::npos);
  return words;
}

using Words = std::vector<std::string>;

TEST(TakeWordTest, WordsStandBetweenAnyNumberOfBlanks) {
  EXPECT_EQ(WordsOf("a b"), (Words{"a", "b"}));
  EXPECT_EQ(WordsOf(" \ta \n\n b\t"), (Words{"a", "b"}));
  EXPECT_EQ(WordsOf("alone"), Words{"alone"});
  EXPECT_EQ(WordsOf(""), Words{});
  EXPECT_EQ(WordsOf(" \n"), Words{});
}

TEST(TakeWordTest, LeavesWhatStandsBehindTheWord) {
  std::string_view text = "  one two";
  EXPECT_EQ(TakeWord(text), "one");
  EXPECT_EQ(text, " two");
}

TEST(TakeUntilTest, CutsBehindTheFirstEnd) {
  std::string_view text = "a::b";
  EXPECT_EQ(TakeUntil(text, ':'), "a");
  EXPECT_EQ(text, ":b");
  EXPECT_EQ(TakeUntil(text, ':'), "");
  EXPECT_EQ(TakeUntil(text, ':'), "b") << "the rest, where there is no end any more";
  EXPECT_EQ(text, "");
  EXPECT_EQ(TakeUntil(text, ':'), "");
}

TEST(TakeRowTest, TheLastRowNeedsNoLineFeed) {
  std::string_view text = "a\n\nb";
  EXPECT_EQ(TakeRow(text), "a");
  EXPECT_EQ(TakeRow(text), "");
  EXPECT_EQ(TakeRow(text), "b");
  EXPECT_TRUE(text.empty());
}

TEST(WholeNumberTest, TakesDecimalDigitsAlone) {
  EXPECT_EQ(WholeNumber("0"), 0U);
  EXPECT_EQ(WholeNumber("007"), 7U);
  EXPECT_EQ(WholeNumber("18446744073709551615"), 0xFFFFFFFFFFFFFFFFU);
  for (const char* text : {"", " 1", "1 ", "1\n", "-1", "+1", "0x1", "1x", "18446744073709551616"}) {
    EXPECT_FALSE(WholeNumber(text)) << text;
  }
}

TEST(SingleNumberTest, TakesANumberAndItsLineFeed) {
  EXPECT_EQ(SingleNumber("2400000\n"), 2400000U);
  EXPECT_EQ(SingleNumber("0"), 0U);
  EXPECT_EQ(SingleNumber("18446744073709551615\n"), 0xFFFFFFFFFFFFFFFFU);
}

TEST(SingleNumberTest, RefusesEverythingElse) {
  for (const char* text : {"", "\n", " 1\n", "1 \n", "1\n\n", "-1\n", "<unknown>\n", "18446744073709551616\n"}) {
    EXPECT_FALSE(SingleNumber(text)) << text;
  }
}

TEST(ValueOfTest, IsWhatStandsBehindTheColonOfTheFirstSuchRow) {
  EXPECT_EQ(ValueOf("Name:\tcat\nPid:\t12\nPid:\t13\n", "Pid"), "\t12");
  EXPECT_EQ(ValueOf("Pid:", "Pid"), "");
  EXPECT_EQ(ValueOf("Tgid:\t12\n", "Pid"), std::nullopt);
  EXPECT_EQ(ValueOf("PPid:\t12\nPidX:\t1\n", "Pid"), std::nullopt);
  EXPECT_EQ(ValueOf("", "Pid"), std::nullopt);
}

struct KilobyteRow {
  const char* name;
  std::string_view text;
  std::optional<std::uint64_t> bytes;
};

class BytesOfRowTest : public testing::TestWithParam<KilobyteRow> {};

TEST_P(BytesOfRowTest, GivesTheBytesOrRefuses) { EXPECT_EQ(BytesOfRow(GetParam().text, "RssAnon"), GetParam().bytes); }

constexpr std::uint64_t LargestKilobytes = 0xFFFFFFFFFFFFFFFF / 1024;

INSTANTIATE_TEST_SUITE_P(
    Rows, BytesOfRowTest,
    testing::Values(KilobyteRow{"Plain", "Name:\tcat\nRssAnon:\t     132 kB\nVmSwap:\t       0 kB\n", 132 * 1024},
                    KilobyteRow{"FirstLine", "RssAnon:\t1 kB\n", 1024},
                    KilobyteRow{"LastLineWithoutLineFeed", "Name:\tcat\nRssAnon:\t2 kB", 2048},
                    KilobyteRow{"Zero", "RssAnon:\t0 kB\n", 0}, KilobyteRow{"NoBlanks", "RssAnon:7 kB\n", 7 * 1024},
                    KilobyteRow{"LargestThatFits", "RssAnon:\t18014398509481983 kB\n", LargestKilobytes * 1024},
                    KilobyteRow{"OneTooLarge", "RssAnon:\t18014398509481984 kB\n", std::nullopt},
                    KilobyteRow{"Beyond64Bits", "RssAnon:\t99999999999999999999999 kB\n", std::nullopt},
                    KilobyteRow{"Empty", "", std::nullopt}, KilobyteRow{"Missing", "Name:\tcat\n", std::nullopt},
                    KilobyteRow{"LongerName", "RssAnonX:\t1 kB\n", std::nullopt},
                    KilobyteRow{"InsideAnotherLine", "Name:\tRssAnon:\t1 kB\n", std::nullopt},
                    KilobyteRow{"NameAlone", "RssAnon", std::nullopt},
                    KilobyteRow{"NoValue", "RssAnon:\n", std::nullopt},
                    KilobyteRow{"NoNumber", "RssAnon:\t kB\n", std::nullopt},
                    KilobyteRow{"NoUnit", "RssAnon:\t12\n", std::nullopt},
                    KilobyteRow{"OtherUnit", "RssAnon:\t12 MB\n", std::nullopt},
                    KilobyteRow{"Negative", "RssAnon:\t-12 kB\n", std::nullopt},
                    KilobyteRow{"Signed", "RssAnon:\t+12 kB\n", std::nullopt},
                    KilobyteRow{"Hexadecimal", "RssAnon:\t0x12 kB\n", std::nullopt},
                    KilobyteRow{"TwoNumbers", "RssAnon:\t1 2 kB\n", std::nullopt},
                    KilobyteRow{"Trailing", "RssAnon:\t1 kB x\n", std::nullopt},
                    KilobyteRow{"EmbeddedNul", std::string_view("RssAnon:\t1\0 kB\n", 15), std::nullopt}),
    test::RowName<KilobyteRow>);

}  // namespace
TEST(DeletedMark, IsTakenOffTheEnd) {
  EXPECT_EQ(WithoutDeletedMark("/a/b (deleted)"), "/a/b");
  EXPECT_EQ(WithoutDeletedMark("/a/b (deleted) (deleted)"), "/a/b (deleted)");
  EXPECT_EQ(WithoutDeletedMark("/a (deleted)/b"), "/a (deleted)/b");
  EXPECT_EQ(WithoutDeletedMark("/a/b(deleted)"), "/a/b(deleted)");
  EXPECT_EQ(WithoutDeletedMark(""), "");
}

}  // namespace qilsys::base
