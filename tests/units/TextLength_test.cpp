#include "units/TextLength.h"

#include <gtest/gtest.h>

#include "support/Literals.h"

namespace qilsys::units {
namespace {

TEST(TextLength, OfNullIsZero) {
  EXPECT_EQ(TerminatedLength(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(TerminatedLength(static_cast<const char32_t*>(nullptr)), 0);
  EXPECT_EQ(TerminatedLength(static_cast<const TCodeUnit*>(nullptr)), 0);
  EXPECT_EQ(TerminatedLength(static_cast<const TForeignUnit*>(nullptr)), 0);
  EXPECT_EQ(TerminatedLength(static_cast<const TForeignUnit*>(nullptr), 3), 0);
}

TEST(TextLength, CountsElementsBeforeTheNul) {
  EXPECT_EQ(TerminatedLength(""), 0);
  EXPECT_EQ(TerminatedLength("abc"), 3);
  EXPECT_EQ(TerminatedLength(U"abc"), 3);
  EXPECT_EQ(TerminatedLength(u"abc"), 3);
  EXPECT_EQ(TerminatedLength(L"abc"), 3);
}

TEST(TextLength, StopsAtItsLimit) {
  const TForeignUnit text[] = {'a', 'b', 'c', 0};
  EXPECT_EQ(TerminatedLength(text, 2), 2);
  EXPECT_EQ(TerminatedLength(text, 3), 3);
  EXPECT_EQ(TerminatedLength(text, 4), 3);
  EXPECT_EQ(TerminatedLength(text, 0), 0);
}

}  // namespace
}  // namespace qilsys::units
