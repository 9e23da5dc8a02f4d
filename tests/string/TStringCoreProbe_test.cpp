#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/Random.h"
#include "support/StringText.h"

namespace {

using qilsys::test::Narrow;
using qilsys::test::UnitsOf;

struct IntegerRow {
  const char* name;
  const char16_t* text;
  int base;
  int wanted;
};

class LeftIntegerLength : public testing::TestWithParam<IntegerRow> {};

TEST_P(LeftIntegerLength, CountsTheUnitsOfTheNumber) {
  const auto [name, text, base, wanted] = GetParam();
  EXPECT_EQ(TStringCore(text).leftIntegerLength(base), wanted);
  EXPECT_EQ(TStringCore::leftIntegerLength(text, -1, base), wanted);
  EXPECT_EQ(TStringCore::leftIntegerLength(text, TStringCore::length(text), base), wanted);
}

constexpr IntegerRow IntegerRows[] = {
    {"Empty", u"", 10, 0},
    {"EmptyWithBadBase", u"", 99, 0},
    {"Decimal", u"123x", 10, 3},
    {"WholeText", u"123", 10, 3},
    {"Minus", u"-12", 10, 3},
    {"Plus", u"+12", 10, 3},
    {"MinusOnly", u"-", 10, 0},
    {"MinusInBase16", u"-12", 16, 0},
    {"PlusInBase8", u"+12", 8, 0},
    {"Space", u" 12", 10, 0},
    {"HexPrefix", u"0x1Fg", 16, 4},
    {"HexUpperPrefix", u"0X1f", 16, 4},
    {"HexPrefixOnly", u"0x", 16, 0},
    {"HexNoPrefix", u"fF0g", 16, 3},
    {"HexPrefixInBase10", u"0x1", 10, 1},
    {"HexPrefixInBase36", u"0x1", 36, 3},
    {"ChosenHex", u"0x1F", 0, 4},
    {"ChosenOctal", u"0189", 0, 2},
    {"ChosenDecimal", u"19", 0, 2},
    {"ChosenMinus", u"-9", 0, 2},
    {"DigitAboveBase8", u"178", 8, 2},
    {"DigitAboveBase2", u"1012", 2, 3},
    {"LettersOfBase11", u"9ab", 11, 2},
    {"ControlUnits", u"\u0011\u0012", 10, 2},
    {"Letter", u"z", 10, 0},
    {"LetterOfBase36", u"Z", 36, 1},
    {"BraceAboveBase36", u"{", 36, 0},
};
INSTANTIATE_TEST_SUITE_P(Rows, LeftIntegerLength, testing::ValuesIn(IntegerRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LeftIntegerLengthLimits, StopAtTheGivenLength) {
  EXPECT_EQ(TStringCore::leftIntegerLength(u"12345", 3, 10), 3);
  EXPECT_EQ(TStringCore::leftIntegerLength(u"0x12", 1, 16), 1);
  EXPECT_EQ(TStringCore::leftIntegerLength(u"0x12", 2, 16), 0);
  EXPECT_EQ(TStringCore::leftIntegerLength(u"-1", 1, 10), 0);
  EXPECT_EQ(TStringCore::leftIntegerLength(u"12", 0, 99), 0);
  EXPECT_EQ(TStringCore::leftIntegerLength(nullptr, 5, 10), 0);
  EXPECT_EQ(TStringCore::leftIntegerLength(nullptr, -1, 99), 0);
  EXPECT_EQ(TStringCore::leftIntegerLength(u"1\0002", 3, 10), 1);
}

TEST(LeftIntegerLengthLimits, TakeWideText) {
  EXPECT_EQ(TStringCore::leftIntegerLength(L"-12", 3, 10), 3);
  EXPECT_EQ(TStringCore::leftIntegerLength(L"12x", -1, 10), 2);
  EXPECT_THROW(TStringCore::leftIntegerLength(L"7", 1, 0), TStringCore::Exception);
}

std::string RaisedText(const char16_t* text, int len, int base) {
  try {
    TStringCore::leftIntegerLength(text, len, base);
  } catch (const TStringCore::Exception& e) {
    return Narrow(e.message);
  }
  return "nothing raised";
}

TEST(LeftIntegerLengthBase, RaisesOutsideTheRange) {
  const std::string wanted = "TStringCore::parseInteger: base out of range.";
  for (const int base : {INT_MIN, -1, 1, 37, 64, INT_MAX}) EXPECT_EQ(RaisedText(u"12", 2, base), wanted) << base;
  EXPECT_EQ(RaisedText(u"7", 1, 0), wanted);
  EXPECT_EQ(RaisedText(u"7", -1, 0), wanted);
  EXPECT_EQ(RaisedText(u"77", 1, 0), wanted);
  EXPECT_EQ(RaisedText(u"77", 2, 0), "nothing raised");
}

struct DoubleRow {
  const char* name;
  const char16_t* text;
  int wanted;
};

class LeftDoubleLength : public testing::TestWithParam<DoubleRow> {};

TEST_P(LeftDoubleLength, CountsTheUnitsOfTheNumber) {
  const auto [name, text, wanted] = GetParam();
  EXPECT_EQ(TStringCore(text).leftDoubleLength(), wanted);
  EXPECT_EQ(TStringCore::leftDoubleLength(text, -1), wanted);
}

constexpr DoubleRow DoubleRows[] = {
    {"Empty", u"", 0},
    {"Whole", u"12", 2},
    {"WholeAndText", u"12 ", 2},
    {"Fraction", u"-1.25x", 5},
    {"FractionOnly", u".5x", 2},
    {"PointBehind", u"5.x", 2},
    {"Exponent", u"1e5x", 3},
    {"ExponentSign", u"+1.5E-10,", 8},
    {"PlusAtEnd", u"+", 1},
    {"PlusAndText", u"+x", 0},
    {"PointAtEnd", u".", 1},
    {"PointAndText", u".x", 0},
    {"SignPointAtEnd", u"-.", 2},
    {"SignPointAndText", u"-.x", 0},
    {"TwoPoints", u"1..2", 2},
    {"ExponentLetterAtEnd", u"1e", 2},
    {"ExponentLetterAndText", u"1ex", 1},
    {"ExponentSignAtEnd", u"1e+", 3},
    {"ExponentSignAndText", u"1.5e+x", 3},
    {"ExponentWithoutMantissa", u"e5", 0},
    {"SignAndExponent", u"+e5", 0},
    {"PointAndExponent", u".e5", 0},
    {"Space", u" 1", 0},
    {"Text", u"inf", 0},
    {"DigitsBeyondAscii", u"\u0663.\u0664e\u0665x", 5},
};
INSTANTIATE_TEST_SUITE_P(Rows, LeftDoubleLength, testing::ValuesIn(DoubleRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LeftDoubleLengthLimits, StopAtTheGivenLengthOrNul) {
  EXPECT_EQ(TStringCore::leftDoubleLength(u"1.5e10", 4), 4);
  EXPECT_EQ(TStringCore::leftDoubleLength(u"1ex", 2), 2);
  EXPECT_EQ(TStringCore::leftDoubleLength(u"12", 0), 0);
  EXPECT_EQ(TStringCore::leftDoubleLength(nullptr, 5), 0);
  EXPECT_EQ(TStringCore::leftDoubleLength(nullptr, -1), 0);
  EXPECT_EQ(TStringCore::leftDoubleLength(u"1\0002", 3), 1);
  EXPECT_EQ(TStringCore::leftDoubleLength(u"1e\0002", 4), 2);
  EXPECT_EQ(TStringCore::leftDoubleLength(L"1.5x", -1), 3);
  EXPECT_EQ(TStringCore::leftDoubleLength(L"1.5x", 2), 2);
}

// The state table itself, one state after the other.
int Model(const std::u16string& text) {
  const int end = static_cast<int>(text.size());
  const auto digit = [&](int at) {
    return text[static_cast<std::size_t>(at)] >= u'0' && text[static_cast<std::size_t>(at)] <= u'9';
  };
  int at = 0;
  int state = 0;
  int integerDigits = 0;
  int fractionDigits = 0;
  int exponentDigits = 0;
  int mantissaEnd = 0;
  while (at < end) {
    const char16_t c = text[static_cast<std::size_t>(at)];
    const bool sign = c == u'+' || c == u'-';
    switch (state) {
      case 0:
        if (sign) ++at;
        state = 1;
        break;
      case 1:
        if (digit(at)) {
          ++at, ++integerDigits;
        } else {
          state = 2;
        }
        break;
      case 2:
        if (c == u'.') ++at;
        state = 3;
        break;
      case 3:
        if (digit(at)) {
          ++at, ++fractionDigits;
        } else if (integerDigits + fractionDigits > 0) {
          mantissaEnd = at;
          state = 4;
        } else {
          return 0;
        }
        break;
      case 4:
        if (c != u'e' && c != u'E') return at;
        ++at;
        state = 5;
        break;
      case 5:
        if (sign) ++at;
        state = 6;
        break;
      default:
        if (!digit(at)) return exponentDigits > 0 ? at : mantissaEnd;
        ++at, ++exponentDigits;
    }
  }
  return at;
}

TEST(LeftDoubleLengthModel, AgreesForAnyText) {
  qilsys::test::SeededRandom random;
  const std::u16string alphabet = u"019..eE+-x";
  for (int round = 0; round < qilsys::test::Rounds(50000); ++round) {
    std::u16string text;
    const int length = random.Between(0, 9);
    for (int i = 0; i < length; ++i) text.push_back(alphabet[random.Between<std::size_t>(0, alphabet.size() - 1)]);
    ASSERT_EQ(TStringCore::leftDoubleLength(text.c_str(), length), Model(text)) << Narrow(TStringCore(text.c_str()));
  }
}

}  // namespace
