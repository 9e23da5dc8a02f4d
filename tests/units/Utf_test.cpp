#include "units/Utf.h"

#include <gtest/gtest.h>

#include <string>

#include "support/RowName.h"

namespace qilsys::units {
namespace {

struct Row {
  const char* name;
  char32_t codePoint;
  std::string utf8;
  std::u16string utf16;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

// The ends of each length, as RFC 3629 and RFC 2781 lay the forms down.
const Row Rows[] = {
    {"Nul", 0, std::string(1, '\0'), std::u16string(1, u'\0')},
    {"LastOfOneByte", 0x7F, "\x7F", u"\x7F"},
    {"FirstOfTwoBytes", 0x80, "\xC2\x80", u"\x80"},
    {"LastOfTwoBytes", 0x7FF, "\xDF\xBF", u"\x7FF"},
    {"FirstOfThreeBytes", 0x800, "\xE0\xA0\x80", u"\x800"},
    {"SurrogateValue", 0xD800, "\xED\xA0\x80", u"\xD800"},
    {"LastOfThreeBytes", 0xFFFF, "\xEF\xBF\xBF", u"\xFFFF"},
    {"FirstOfFourBytes", 0x10000, "\xF0\x90\x80\x80", u"\xD800\xDC00"},
    {"Face", 0x1F600, "\xF0\x9F\x98\x80", u"\xD83D\xDE00"},
    {"LastCodePoint", 0x10FFFF, "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
};

class Utf : public testing::TestWithParam<Row> {};

TEST_P(Utf, BytesOfACodePoint) {
  const Row& row = GetParam();
  char bytes[5] = "xxxx";
  const char* end = WriteUtf8(row.codePoint, bytes);
  EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(end - bytes)), row.utf8);
  EXPECT_EQ(Utf8Length(row.codePoint), static_cast<int>(row.utf8.size()));
}

TEST_P(Utf, UnitsOfACodePoint) {
  const Row& row = GetParam();
  char16_t units[2] = {};
  const char16_t* end = WriteUtf16(row.codePoint, units);
  EXPECT_EQ(std::u16string(units, static_cast<std::size_t>(end - units)), row.utf16);
}

TEST_P(Utf, BytesOfUnits) {
  const std::u16string units = u"a" + GetParam().utf16 + u"b";
  const std::basic_string<TCodeUnit> text(units.begin(), units.end());
  EXPECT_EQ(CountUtf8(text.data(), 0, text.size()), static_cast<long long>(GetParam().utf8.size()) + 2);
}

INSTANTIATE_TEST_SUITE_P(Table, Utf, testing::ValuesIn(Rows), test::RowName<Row>);

TEST(UtfCount, PairThatIsCutCountsOneMore) {
  const TCodeUnit pair[] = {0xD83D, 0xDE00};
  EXPECT_EQ(CountUtf8(pair, 0, 1), 3);
  EXPECT_EQ(CountUtf8(pair, 1, 2), 1);
}

TEST(UtfSurrogate, RangeIsThatOfBothHalves) {
  EXPECT_FALSE(IsSurrogate(0xD7FF));
  EXPECT_TRUE(IsSurrogate(0xD800));
  EXPECT_TRUE(IsSurrogate(0xDFFF));
  EXPECT_FALSE(IsSurrogate(0xE000));
  EXPECT_FALSE(IsSurrogate(0x1D800));
}

}  // namespace
}  // namespace qilsys::units
