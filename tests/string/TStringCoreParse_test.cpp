#include <gtest/gtest.h>

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <string>
#include <type_traits>

#include "qilsys/TStringCore.h"
#include "support/IntegerModel.h"
#include "support/Random.h"
#include "support/StringText.h"

namespace {

using qilsys::test::Narrow;

// What one parse gave: value, `*ok` and `errno`.
template <class T>
struct Outcome {
  T value;
  bool ok;
  int error;
  bool operator==(const Outcome&) const = default;
};

template <class T>
std::ostream& operator<<(std::ostream& out, const Outcome<T>& outcome) {
  return out << +outcome.value << (outcome.ok ? " ok" : " not ok") << " errno " << outcome.error;
}

template <class T, class Parser>
Outcome<T> Parse(Parser parser, const TStringCore& text, int base) {
  bool ok = true;
  errno = 77;
  const T value = (text.*parser)(&ok, base);
  return {value, ok, errno};
}

Outcome<int> ParseInt(const TStringCore& text, int base = 10) { return Parse<int>(&TStringCore::toInt, text, base); }
Outcome<short> ParseShort(const TStringCore& text, int base = 10) {
  return Parse<short>(&TStringCore::toShort, text, base);
}
Outcome<unsigned short> ParseUShort(const TStringCore& text, int base = 10) {
  return Parse<unsigned short>(&TStringCore::toUShort, text, base);
}
Outcome<unsigned int> ParseUInt(const TStringCore& text, int base = 10) {
  return Parse<unsigned int>(&TStringCore::toUInt, text, base);
}
Outcome<long long> ParseLong(const TStringCore& text, int base = 10) {
  const auto outcome = Parse<long long>(&TStringCore::toLong, text, base);
  EXPECT_EQ(outcome, Parse<long long>(&TStringCore::toLongLong, text, base));
  return outcome;
}
Outcome<unsigned long long> ParseULong(const TStringCore& text, int base = 10) {
  const auto outcome = Parse<unsigned long long>(&TStringCore::toULong, text, base);
  EXPECT_EQ(outcome, Parse<unsigned long long>(&TStringCore::toULongLong, text, base));
  return outcome;
}

constexpr int Overflow = 34;
constexpr int NoDigits = 22;

struct IntRow {
  const char* name;
  std::u16string text;
  int base;
  Outcome<int> wanted;
};

class TStringCoreToInt : public testing::TestWithParam<IntRow> {};

TEST_P(TStringCoreToInt, GivesValueOkAndErrno) {
  const IntRow& row = GetParam();
  const TStringCore text = TStringCore::fromStdU16String(row.text);
  EXPECT_EQ(ParseInt(text, row.base), row.wanted);
  EXPECT_EQ(text.toInt(nullptr, row.base), row.wanted.value);
}

const IntRow IntRows[] = {
    {"SpaceAround", u"  12  ", 10, {12, true, 0}},
    {"TabAndNoBreakSpaceAround", u"\t\u00A0\u200312\u2003\n", 10, {12, true, 0}},
    {"LetterBehind", u"12x", 10, {12, false, 0}},
    {"SpaceAndLetterBehind", u"12 x", 10, {12, false, 0}},
    {"NulBehind", std::u16string(u"12\0", 3), 10, {12, false, 0}},
    {"Empty", u"", 10, {0, false, NoDigits}},
    {"SpaceOnly", u"   ", 10, {0, false, NoDigits}},
    {"SignOnly", u"-", 10, {0, false, NoDigits}},
    {"TwoSigns", u"+-1", 10, {0, false, NoDigits}},
    {"SpaceBehindSign", u"- 1", 10, {0, false, NoDigits}},
    {"Plus", u"+7", 10, {7, true, 0}},
    {"Minus", u"-7", 10, {-7, true, 0}},
    {"MinusZero", u"-0", 10, {0, true, 0}},
    {"ChosenHex", u"0x1F", 0, {31, true, 0}},
    {"ChosenUpperHex", u"0X1f", 0, {31, true, 0}},
    {"ChosenNegativeHex", u"-0x1F", 0, {-31, true, 0}},
    {"ChosenOctal", u"017", 0, {15, true, 0}},
    {"ChosenOctalZero", u"0", 0, {0, true, 0}},
    {"ChosenDecimal", u"19", 0, {19, true, 0}},
    {"ChosenFromNothing", u"", 0, {0, false, NoDigits}},
    {"ChosenHexWithoutDigits", u"0x", 0, {0, false, NoDigits}},
    {"HexWithPrefix", u"0xff", 16, {255, true, 0}},
    {"HexWithoutPrefix", u"ff", 16, {255, true, 0}},
    {"HexPrefixInBase10", u"0x1", 10, {0, false, 0}},
    {"HexPrefixInBase36", u"0x1", 36, {33 * 36 + 1, true, 0}},
    {"DigitNineInBase8", u"19", 8, {17, true, 0}},
    {"DigitTwoInBase2", u"12", 2, {4, true, 0}},
    {"LetterAtLimitOfBase11", u"1a", 11, {21, true, 0}},
    {"LetterAboveLimitOfBase11", u"1b", 11, {1, false, 0}},
    {"UpperLetters", u"Zz", 36, {35 * 37, true, 0}},
    {"BraceAboveLetters", u"1{", 36, {1, false, 0}},
    {"ControlUnitsAreDigits", u"\u0011\u0019", 10, {19, true, 0}},
    {"OtherControlUnit", u"1\u001A", 10, {1, false, 0}},
    {"DigitBeyondAscii", u"\u0663", 10, {0, false, NoDigits}},
    {"FullWidthDigitBehind", u"1\uFF11", 10, {1, false, 0}},
    {"Highest", u"2147483647", 10, {INT_MAX, true, 0}},
    {"AboveHighest", u"2147483648", 10, {INT_MAX, false, Overflow}},
    {"AboveHighestWithTail", u"2147483648x", 10, {INT_MAX, false, Overflow}},
    {"Lowest", u"-2147483648", 10, {INT_MIN, true, 0}},
    {"BelowLowest", u"-2147483649", 10, {INT_MIN, false, Overflow}},
    {"AboveSignedPattern", u"9223372036854775808", 10, {INT_MAX, false, Overflow}},
    {"AboveUnsignedPattern", u"18446744073709551616", 10, {INT_MAX, false, Overflow}},
    {"BelowSignedPattern", u"-9223372036854775809", 10, {INT_MIN, false, Overflow}},
    {"HexPatternOfMinusOne", u"ffffffffffffffff", 16, {INT_MAX, false, Overflow}},
};
INSTANTIATE_TEST_SUITE_P(Rows, TStringCoreToInt, testing::ValuesIn(IntRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TStringCoreToShort, KeepsItsLimits) {
  EXPECT_EQ(ParseShort(u"32767"), (Outcome<short>{32767, true, 0}));
  EXPECT_EQ(ParseShort(u"32768"), (Outcome<short>{32767, false, Overflow}));
  EXPECT_EQ(ParseShort(u"-32768"), (Outcome<short>{-32768, true, 0}));
  EXPECT_EQ(ParseShort(u"-32769"), (Outcome<short>{-32768, false, Overflow}));
  EXPECT_EQ(ParseShort(u"99999999999999999999"), (Outcome<short>{32767, false, Overflow}));
  EXPECT_EQ(ParseShort(u"-99999999999999999999"), (Outcome<short>{-32768, false, Overflow}));
  EXPECT_EQ(ParseShort(u""), (Outcome<short>{0, false, NoDigits}));
}

TEST(TStringCoreToLong, KeepsItsLimits) {
  EXPECT_EQ(ParseLong(u"9223372036854775807"), (Outcome<long long>{LLONG_MAX, true, 0}));
  EXPECT_EQ(ParseLong(u"9223372036854775808"), (Outcome<long long>{LLONG_MAX, false, Overflow}));
  EXPECT_EQ(ParseLong(u"18446744073709551616"), (Outcome<long long>{LLONG_MAX, false, Overflow}));
  EXPECT_EQ(ParseLong(u"-9223372036854775808"), (Outcome<long long>{LLONG_MIN, true, 0}));
  EXPECT_EQ(ParseLong(u"-9223372036854775809"), (Outcome<long long>{LLONG_MIN, false, Overflow}));
  EXPECT_EQ(ParseLong(u"7fffffffffffffff", 16), (Outcome<long long>{LLONG_MAX, true, 0}));
  EXPECT_EQ(ParseLong(u"x"), (Outcome<long long>{0, false, NoDigits}));
}

TEST(TStringCoreToUShort, KeepsItsLimits) {
  EXPECT_EQ(ParseUShort(u"65535"), (Outcome<unsigned short>{65535, true, 0}));
  EXPECT_EQ(ParseUShort(u"65536"), (Outcome<unsigned short>{65535, false, Overflow}));
  EXPECT_EQ(ParseUShort(u"-1"), (Outcome<unsigned short>{65535, false, Overflow}));
  EXPECT_EQ(ParseUShort(u"-0"), (Outcome<unsigned short>{0, true, 0}));
  EXPECT_EQ(ParseUShort(u"99999999999999999999"), (Outcome<unsigned short>{65535, false, Overflow}));
  EXPECT_EQ(ParseUShort(u"-99999999999999999999"), (Outcome<unsigned short>{65535, false, Overflow}));
  EXPECT_EQ(ParseUShort(u""), (Outcome<unsigned short>{0, false, NoDigits}));
}

TEST(TStringCoreToUInt, KeepsItsLimits) {
  EXPECT_EQ(ParseUInt(u"4294967295"), (Outcome<unsigned int>{UINT_MAX, true, 0}));
  EXPECT_EQ(ParseUInt(u"4294967296"), (Outcome<unsigned int>{UINT_MAX, false, Overflow}));
  EXPECT_EQ(ParseUInt(u"-1"), (Outcome<unsigned int>{UINT_MAX, false, Overflow}));
  EXPECT_EQ(ParseUInt(u"-0"), (Outcome<unsigned int>{0, true, 0}));
}

TEST(TStringCoreToULong, WrapsAMinus) {
  EXPECT_EQ(ParseULong(u"18446744073709551615"), (Outcome<unsigned long long>{ULLONG_MAX, true, 0}));
  EXPECT_EQ(ParseULong(u"18446744073709551616"), (Outcome<unsigned long long>{ULLONG_MAX, false, Overflow}));
  EXPECT_EQ(ParseULong(u"-1"), (Outcome<unsigned long long>{ULLONG_MAX, true, 0}));
  EXPECT_EQ(ParseULong(u"-9223372036854775808"), (Outcome<unsigned long long>{1ULL << 63, true, 0}));
  EXPECT_EQ(ParseULong(u"-9223372036854775809"), (Outcome<unsigned long long>{ULLONG_MAX, false, Overflow}));
  EXPECT_EQ(ParseULong(u"ffffffffffffffff", 16), (Outcome<unsigned long long>{ULLONG_MAX, true, 0}));
}

// 3 * 10^19 wraps in the multiplication to 11553255926290448384, which is above 3 * 10^18: nothing notices.
TEST(TStringCoreToULong, MissesAnOverflowOfTheMultiplication) {
  EXPECT_EQ(ParseULong(u"30000000000000000000"), (Outcome<unsigned long long>{11553255926290448384U, true, 0}));
}

template <class Parser>
std::string RaisedText(Parser parser, const TStringCore& text, int base, bool& ok) {
  try {
    (text.*parser)(&ok, base);
  } catch (const TStringCore::Exception& e) {
    return Narrow(e.message);
  }
  return "nothing raised";
}

TEST(TStringCoreParseBase, RaisesOutsideTheRange) {
  const std::string wanted = "TStringCore::parseInteger: base out of range.";
  for (const int base : {INT_MIN, -2, -1, 1, 37, 64, INT_MAX}) {
    for (const char16_t* text : {u"", u"0", u"7", u"x"}) {
      bool ok = true;
      errno = 77;
      EXPECT_EQ(RaisedText(&TStringCore::toInt, text, base, ok), wanted) << base;
      EXPECT_FALSE(ok);
      EXPECT_EQ(errno, 0);
      EXPECT_EQ(RaisedText(&TStringCore::toShort, text, base, ok), wanted);
      EXPECT_EQ(RaisedText(&TStringCore::toUShort, text, base, ok), wanted);
      EXPECT_EQ(RaisedText(&TStringCore::toUInt, text, base, ok), wanted);
      EXPECT_EQ(RaisedText(&TStringCore::toLong, text, base, ok), wanted);
      EXPECT_EQ(RaisedText(&TStringCore::toULong, text, base, ok), wanted);
      EXPECT_EQ(RaisedText(&TStringCore::toLongLong, text, base, ok), wanted);
      EXPECT_EQ(RaisedText(&TStringCore::toULongLong, text, base, ok), wanted);
    }
  }
}

TEST(TStringCoreParseBase, NeverRaisesForZero) {
  for (const char16_t* text : {u"", u"0", u"0x", u"7", u"x", u"-", u"-0"}) {
    EXPECT_NO_THROW(TStringCore(text).toInt(nullptr, 0));
  }
}

TEST(TStringCoreParseRoundTrip, ReadsWhatNumberWrote) {
  qilsys::test::SeededRandom random;
  for (int round = 0; round < qilsys::test::Rounds(20000); ++round) {
    const unsigned long long value = random.Between(0ULL, ULLONG_MAX) >> random.Between(0, 63);
    const int base = random.Between(2, 36);
    TStringCore text = TStringCore::number(value, base);
    if (random.OneIn(2)) text = text.toUpper();
    ASSERT_EQ(ParseULong(text, base), (Outcome<unsigned long long>{value, true, 0})) << Narrow(text) << ' ' << base;
    const auto pattern = static_cast<long long>(value);
    ASSERT_EQ(ParseLong(TStringCore::number(pattern)), (Outcome<long long>{pattern, true, 0}));
  }
}

Outcome<unsigned long long> Model(const std::string& text, int base) {
  const qilsys::test::ReadInteger read = qilsys::test::ReadIntegerByTheSteps(text, base);
  return {read.error == Overflow ? ULLONG_MAX : read.pattern, read.ok, read.error};
}

TEST(TStringCoreParseModel, AgreesForAnyText) {
  qilsys::test::SeededRandom random;
  const std::string alphabet = "00112789abfxXzZ+- \t\x11\x19g";
  for (int round = 0; round < qilsys::test::Rounds(50000); ++round) {
    std::string text;
    const int length = random.OneIn(3) ? random.Between(15, 70) : random.Between(0, 8);
    for (int i = 0; i < length; ++i) text.push_back(alphabet[random.Between<std::size_t>(0, alphabet.size() - 1)]);
    if (random.OneIn(2)) text = (random.OneIn(2) ? "-" : "") + text;
    const int drawn = random.Between(1, 36);
    const int base = drawn == 1 ? 0 : drawn;
    ASSERT_EQ(ParseULong(TStringCore(text.c_str()), base), Model(text, base)) << '"' << text << "\" base " << base;
  }
}

}  // namespace
