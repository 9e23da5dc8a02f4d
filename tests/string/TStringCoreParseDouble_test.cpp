#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <thread>

#include "qilsys/TStringCore.h"
#include "support/CommaLocale.h"
#include "support/DefaultLocale.h"
#include "support/Random.h"
#include "support/StringText.h"

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int Overflow = 34;

struct ParseRow {
  const char* name;
  std::u16string text;
  double wanted;
  bool ok;
  int error;
};

class TStringCoreToDouble : public testing::TestWithParam<ParseRow> {};

void ExpectSame(double value, double wanted) {
  if (std::isnan(wanted)) {
    EXPECT_TRUE(std::isnan(value)) << value;
    EXPECT_FALSE(std::signbit(value));
  } else {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(wanted)) << value << ' ' << wanted;
  }
}

TEST_P(TStringCoreToDouble, GivesValueOkAndErrno) {
  const ParseRow& row = GetParam();
  const TStringCore text = TStringCore::fromStdU16String(row.text);
  bool ok = !row.ok;
  errno = 77;
  const double value = text.toDouble(&ok);
  const int error = errno;
  ExpectSame(value, row.wanted);
  EXPECT_EQ(ok, row.ok);
  EXPECT_EQ(error, row.error);
  ExpectSame(text.toDouble(), row.wanted);
}

const ParseRow ParseRows[] = {
    {"Plain", u"1.5", 1.5, true, 0},
    {"SpaceAround", u" \t\u2003-2.25e3\u00A0\n", -2250, true, 0},
    {"UpperExponent", u"1E3", 1000, true, 0},
    {"Plus", u"+4", 4, true, 0},
    {"NegativeZero", u"-0", -0.0, true, 0},
    {"PointOnlyBehind", u"5.", 5, true, 0},
    {"PointInFront", u".5", 0.5, true, 0},
    {"HexadecimalAsTheRuntimeReadsIt", u"0X1.8P1", 3, true, 0},
    {"Empty", u"", 0, false, 0},
    {"SpaceOnly", u" \t ", 0, false, 0},
    {"Letter", u"x", 0, false, 0},
    {"LetterBehind", u"1.5x", 1.5, false, 0},
    {"CommaBehind", u"1,5", 1, false, 0},
    {"NulBehind", std::u16string(u"1\0", 2), 1, false, 0},
    {"DigitBeyondAscii", u"\u0663", 0, false, 0},
    {"Overflow", u"1e400", Infinity, false, Overflow},
    {"NegativeOverflow", u"-1e400", -Infinity, false, Overflow},
    {"SmallestNormal", u"2.2250738585072014e-308", 2.2250738585072014e-308, true, 0},
    {"ExactSubnormal", u"0x1p-1074", 0, true, 0},
    {"SubnormalNearby", u"1e-320", 0, false, Overflow},
    {"TwoSignsInHexadecimalExponent", u"0x1p+-1", 1, false, 0},
    {"UpperInf", u"INF", Infinity, true, 0},
    {"SpaceAroundInf", u"  +inf ", Infinity, true, 0},
    {"Infinity", u"-Infinity", -Infinity, true, 0},
    {"InfPointZero", u"inf.0", Infinity, true, 0},
    {"NegativeInfPointZero", u"-inf.0", -Infinity, true, 0},
    {"InfPointZeroInity", u"inf.0inity", 0, false, Overflow},
    {"InfPart", u"infin", 0, false, Overflow},
    {"InfLetter", u"infx", 0, false, Overflow},
    {"InfSpaceLetter", u"inf x", Infinity, false, 0},
    {"NegativeInfSpaceLetter", u"-inf.0 1", -Infinity, false, 0},
    {"In", u"in", 0, false, 0},
    {"Nan", u"NaN", NotANumber, true, 0},
    {"NegativeNan", u"-nan", NotANumber, true, 0},
    {"NanWithName", u"nan_12ab", NotANumber, true, 0},
    {"NanBracket", u"NaN(abc", 0, false, Overflow},
    {"NanSpaceLetter", u"nan x", NotANumber, false, 0},
    {"NanMinus", u"nan-", 0, false, Overflow},
    {"TwoSignsInf", u"+-inf", 0, false, 0},
};
INSTANTIATE_TEST_SUITE_P(Rows, TStringCoreToDouble, testing::ValuesIn(ParseRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TStringCoreToDoubleSubnormal, IsZero) {
  for (const char16_t* text : {u"1e-320", u"-1e-320", u"4.9406564584124654e-324", u"2.2250738585072009e-308"}) {
    EXPECT_EQ(TStringCore(text).toDouble(), 0.0);
  }
}

TEST(TStringCoreToFloat, NarrowsWithoutARangeTest) {
  bool ok = false;
  EXPECT_EQ(TStringCore(u"1.5").toFloat(&ok), 1.5F);
  EXPECT_TRUE(ok);
  EXPECT_EQ(TStringCore(u"1e300").toFloat(&ok), std::numeric_limits<float>::infinity());
  EXPECT_TRUE(ok);
  EXPECT_EQ(TStringCore(u"1e-300").toFloat(&ok), 0.0F);
  EXPECT_TRUE(ok);
  EXPECT_TRUE(std::isnan(TStringCore(u"nan").toFloat(&ok)));
  EXPECT_EQ(TStringCore(u"z").toFloat(&ok), 0.0F);
  EXPECT_FALSE(ok);
}

double ExpectedValue(double value) { return std::fpclassify(value) == FP_SUBNORMAL ? 0.0 : value; }

TEST(TStringCoreToDoubleModel, ReadsBackAnyBitPattern) {
  qilsys::test::SeededRandom random;
  for (int round = 0; round < qilsys::test::Rounds(10000); ++round) {
    const auto value = std::bit_cast<double>(random.Between<std::uint64_t>(0, ~std::uint64_t{0}));
    if (!std::isfinite(value)) continue;
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, random.OneIn(2) ? "%.17g" : "%.17E", value);
    bool ok = false;
    ASSERT_EQ(TStringCore(buffer).toDouble(&ok), ExpectedValue(value)) << buffer;
    ASSERT_TRUE(ok || std::fpclassify(value) == FP_SUBNORMAL) << buffer;
  }
}

TEST(TStringCoreToDoubleModel, AgreesWithTheRuntimeForAnyText) {
  qilsys::test::SeededRandom random;
  const std::string alphabet = "0123459999..ee+-xp,";
  for (int round = 0; round < qilsys::test::Rounds(30000); ++round) {
    std::string text;
    const int length = random.Between(0, 12);
    for (int i = 0; i < length; ++i) text.push_back(alphabet[random.Between<std::size_t>(0, alphabet.size() - 1)]);
    errno = 0;
    char* end = nullptr;
    double value = ExpectedValue(std::strtod(text.c_str(), &end));
    // A sign alone gives some runtimes a zero of that sign.
    if (end == text.c_str()) value = 0;
    const bool wantedOk = errno == 0 && !text.empty() && *end == '\0';
    const int wantedError = errno;
    bool ok = !wantedOk;
    const double read = TStringCore(text.c_str()).toDouble(&ok);
    ASSERT_EQ(errno, wantedError) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(value)) << text;
    ASSERT_EQ(ok, wantedOk) << text;
  }
}

TEST(TStringCoreToDoubleThreads, KeepAnErrnoEach) {
  std::atomic<int> right{0};
  const TStringCore good(u"1.5");
  const TStringCore bad(u"1e400");
  const auto read = [&](const TStringCore& text, int wanted) {
    for (int round = 0; round < 100; ++round) {
      text.toDouble();
      right += errno == wanted ? 1 : 0;
    }
  };
  std::thread other([&] { read(bad, Overflow); });
  read(good, 0);
  other.join();
  EXPECT_EQ(right, 200);
}

// Its small "I" has no dot, so what toLower gives there is not "inf".
TEST(TStringCoreToDoubleLocale, KnowsItsWordsUnderATurkishLocale) {
  for (const char* name : {"tr_TR", "az"}) {
    const qilsys::test::DefaultLocale locale(name);
    for (const char16_t* text : {u"INF", u"Infinity", u"INFINITY", u"+INF.0"}) {
      bool ok = false;
      EXPECT_EQ(TStringCore(text).toDouble(&ok), Infinity);
      EXPECT_TRUE(ok);
    }
  }
}

TEST(TStringCoreToDoubleLocale, ReadsAPointUnderACommaLocale) {
  const qilsys::test::CommaLocale locale;
  if (!locale.Active()) GTEST_SKIP() << "no locale with a decimal comma on this machine, and none could be compiled";
  ASSERT_EQ(std::strtod("1,5", nullptr), 1.5);
  bool ok = false;
  EXPECT_EQ(TStringCore(u"1.5").toDouble(&ok), 1.5);
  EXPECT_TRUE(ok);
  EXPECT_EQ(TStringCore(u"1,5").toDouble(&ok), 1.0);
  EXPECT_FALSE(ok);
}

}  // namespace
