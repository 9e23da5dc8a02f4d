#include "diagnostics/FixedText.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

namespace qilsys::diagnostics {
namespace {

TEST(FixedText, HoldsTextsAndNumbersOneAfterTheOther) {
  FixedText<32> text;
  text << "/proc/" << 17 << "/task/" << -3;
  EXPECT_EQ(text.View(), "/proc/17/task/-3");
  EXPECT_STREQ(text.CStr(), "/proc/17/task/-3");
  EXPECT_TRUE(text.IsWhole());
}

TEST(FixedText, IsEmptyAtFirst) {
  const FixedText<1> text;
  EXPECT_EQ(text.View(), "");
  EXPECT_STREQ(text.CStr(), "");
  EXPECT_TRUE(text.IsWhole());
}

TEST(FixedText, KeepsRoomForTheNul) {
  FixedText<4> fits;
  fits << "abc";
  EXPECT_TRUE(fits.IsWhole());
  EXPECT_STREQ(fits.CStr(), "abc");
  FixedText<4> tooLong;
  tooLong << "abcd";
  EXPECT_FALSE(tooLong.IsWhole());
  EXPECT_EQ(tooLong.View(), "");
}

TEST(FixedText, TakesNothingMoreOnceSomethingDidNotFit) {
  FixedText<6> text;
  text << "ab"
       << "cdefg"
       << "h";
  EXPECT_FALSE(text.IsWhole());
  EXPECT_EQ(text.View(), "ab");
}

TEST(FixedText, HoldsTheLongestNumbers) {
  FixedText<64> text;
  text << INT64_MIN << " " << UINT64_MAX;
  EXPECT_EQ(text.View(), "-9223372036854775808 18446744073709551615");
}

}  // namespace
}  // namespace qilsys::diagnostics
