#include "system/CodePage.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct CharsetRow {
  unsigned int codePage;
  const char* charset;
};
void PrintTo(const CharsetRow& row, std::ostream* out) { *out << row.codePage; }

std::string NameOfRow(const testing::TestParamInfo<CharsetRow>& row) { return std::to_string(row.param.codePage); }

class CharsetOfCodePage : public testing::TestWithParam<CharsetRow> {};

TEST_P(CharsetOfCodePage, IsTheTabledOne) {
  EXPECT_STREQ(qilsys::system::CharsetOfCodePage(GetParam().codePage), GetParam().charset);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CharsetOfCodePage,
    testing::Values(CharsetRow{37, "EBCDIC"}, CharsetRow{437, "US-ASCII"}, CharsetRow{819, "iso-8859-1"},
                    CharsetRow{874, "tis-620"}, CharsetRow{912, "iso-8859-2"}, CharsetRow{914, "iso-8859-4"},
                    CharsetRow{915, "iso-8859-5"}, CharsetRow{920, "iso-8859-9"}, CharsetRow{922, "iso-8859-13"},
                    CharsetRow{923, "iso-8859-15"}, CharsetRow{932, "Shift_JIS"}, CharsetRow{936, "GBK"},
                    CharsetRow{943, "Shift_JIS"}, CharsetRow{949, "EUC-KR"}, CharsetRow{950, "Big5"},
                    CharsetRow{964, "EUC-TW"}, CharsetRow{970, "EUC-KR"}, CharsetRow{1250, "windows-1250"},
                    CharsetRow{1251, "windows-1251"}, CharsetRow{1252, "windows-1252"},
                    CharsetRow{1253, "windows-1253"}, CharsetRow{1254, "windows-1254"},
                    CharsetRow{1255, "windows-1255"}, CharsetRow{1256, "windows-1256"},
                    CharsetRow{1257, "windows-1257"}, CharsetRow{1258, "windows-1258"}, CharsetRow{1363, "EUC-KR"},
                    CharsetRow{1386, "EUC-CN"}, CharsetRow{20127, "US-ASCII"}, CharsetRow{20866, "KOI8-R"},
                    CharsetRow{28591, "iso-8859-1"}, CharsetRow{28592, "iso-8859-2"}, CharsetRow{38596, "iso-8859-6"},
                    CharsetRow{38598, "iso-8859-8"}, CharsetRow{1089, "iso-8859-6"}, CharsetRow{1200, "UTF-16LE"},
                    CharsetRow{1201, "UTF-16BE"}, CharsetRow{28593, "iso-8859-3"}, CharsetRow{28594, "iso-8859-4"},
                    CharsetRow{28595, "iso-8859-5"}, CharsetRow{28596, "iso-8859-6"}, CharsetRow{28597, "iso-8859-7"},
                    CharsetRow{28598, "iso-8859-8"}, CharsetRow{28599, "iso-8859-9"}, CharsetRow{28600, "iso-8859-10"}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(TableEnd, CharsetOfCodePage,
                         testing::Values(CharsetRow{28601, "iso-8859-11"}, CharsetRow{28602, "iso-8859-12"},
                                         CharsetRow{28603, "iso-8859-13"}, CharsetRow{28604, "iso-8859-14"},
                                         CharsetRow{28605, "iso-8859-15"}, CharsetRow{28606, "iso-8859-16"},
                                         CharsetRow{51949, "EUC-KR"}, CharsetRow{54936, "GB18030"},
                                         CharsetRow{65000, "UTF-7"}, CharsetRow{65001, "UTF-8"}),
                         NameOfRow);

INSTANTIATE_TEST_SUITE_P(NotInTheTable, CharsetOfCodePage,
                         testing::Values(CharsetRow{0, "UTF-8"}, CharsetRow{36, "UTF-8"}, CharsetRow{1249, "UTF-8"},
                                         CharsetRow{50000, "UTF-8"}, CharsetRow{65002, "UTF-8"},
                                         CharsetRow{0xFFFFFFFF, "UTF-8"}),
                         NameOfRow);

TEST(CodePageOfCodeset, KnowsTheSpellingsOfTheCLibrary) {
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("UTF-8"), 65001u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("ISO-8859-1"), 28591u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("ISO-8859-15"), 28605u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("CP1251"), 1251u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("EUC-KR"), 51949u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("GB18030"), 54936u);
}

TEST(CodePageOfCodeset, IgnoresCase) {
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("utf-8"), 65001u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("koi8-r"), 20866u);
}

TEST(CodePageOfCodeset, PlainAsciiAndTheUnknownAreUtf8) {
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("ANSI_X3.4-1968"), 65001u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset(""), 65001u);
  EXPECT_EQ(qilsys::system::CodePageOfCodeset("KLINGON"), 65001u);
}

TEST(CodePageOfCodeset, EveryCodePageItGivesHasACharsetOfThatKind) {
  EXPECT_STREQ(qilsys::system::CharsetOfCodePage(qilsys::system::CodePageOfCodeset("BIG5")), "Big5");
  EXPECT_STREQ(qilsys::system::CharsetOfCodePage(qilsys::system::CodePageOfCodeset("GB2312")), "EUC-CN");
  EXPECT_STREQ(qilsys::system::CharsetOfCodePage(qilsys::system::CodePageOfCodeset("SJIS")), "Shift_JIS");
  EXPECT_STREQ(qilsys::system::CharsetOfCodePage(qilsys::system::CodePageOfCodeset("EUC-TW")), "EUC-TW");
}

}  // namespace
