#include "numbers/IntegerText.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/Random.h"

namespace qilsys::numbers {
namespace {

std::string Digits(std::uint64_t value, int base) {
  TCodeUnit room[64];
  const TCodeUnit* const end = room + 64;
  const TCodeUnit* const first = WriteDigitsBefore(room + 64, value, base);
  EXPECT_EQ(DigitsLength(value, base), end - first) << value << " in base " << base;
  std::string text;
  for (const TCodeUnit* unit = first; unit != end; ++unit) text.push_back(static_cast<char>(*unit));
  return text;
}

std::string NaiveDigits(std::uint64_t value, int base) {
  const std::string alphabet = base == 64 ? "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
                                          : "0123456789abcdefghijklmnopqrstuvwxyz";
  const auto width = static_cast<unsigned>(base);
  const std::string last(1, alphabet[value % width]);
  return value < width ? last : NaiveDigits(value / width, base) + last;
}

TEST(IntegerText, CountsDigitsAtEveryPowerOfTen) {
  EXPECT_EQ(DecimalLength(0), 1);
  std::uint64_t power = 1;
  for (int digits = 1; digits <= 20; ++digits, power *= 10) {
    EXPECT_EQ(DecimalLength(power), digits);
    if (digits > 1) {
      EXPECT_EQ(DecimalLength(power - 1), digits - 1);
    }
  }
  EXPECT_EQ(DecimalLength(~std::uint64_t{0}), 20);
}

TEST(IntegerText, CountsDigitsAtEveryPowerOfTwo) {
  for (int bit = 0; bit < 64; ++bit) {
    for (const std::uint64_t value : {std::uint64_t{1} << bit, (std::uint64_t{1} << bit) - 1}) {
      EXPECT_EQ(DecimalLength(value), static_cast<int>(std::to_string(value).size())) << value;
    }
  }
}

TEST(IntegerText, WritesLimitsInEveryBase) {
  for (int base = 2; base <= 64; base = base == 36 ? 64 : base + 1) {
    const auto width = static_cast<unsigned>(base);
    for (const std::uint64_t value :
         {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{width - 1}, std::uint64_t{width},
          std::uint64_t{width} * width - 1, std::uint64_t{width} * width, std::uint64_t{1} << 63, ~std::uint64_t{0}}) {
      EXPECT_EQ(Digits(value, base), NaiveDigits(value, base)) << base;
    }
  }
}

TEST(IntegerText, WritesAnyNumberInAnyBase) {
  test::SeededRandom random;
  for (int round = 0; round < test::Rounds(20000); ++round) {
    const std::uint64_t value = random.Between<std::uint64_t>(0, ~std::uint64_t{0}) >> random.Between(0, 63);
    const int drawn = random.Between(2, 37);
    const int base = drawn == 37 ? 64 : drawn;
    ASSERT_EQ(Digits(value, base), NaiveDigits(value, base)) << value << " in base " << base;
  }
}

}  // namespace
}  // namespace qilsys::numbers
