#include "qilsys/QuillonError.h"

#include <gtest/gtest.h>

#include <compare>
#include <map>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "support/Utf8.h"

using qilsys::test::Utf8;

namespace {

static_assert(!std::is_default_constructible_v<QuillonError>);
static_assert(!std::is_constructible_v<QuillonError, unsigned int, TStringCore>);
static_assert(std::is_copy_constructible_v<QuillonError> && std::is_copy_assignable_v<QuillonError>);

// Nothing but an error compares with an error.
static_assert(std::three_way_comparable<QuillonError, std::weak_ordering>);
static_assert(!std::is_convertible_v<QuillonError, bool> && !std::is_convertible_v<QuillonError, unsigned int> &&
              !std::is_convertible_v<QuillonError, TStringCore> && !std::is_convertible_v<unsigned int, QuillonError>);

TEST(QuillonError, KeepsCodeAndNameAsTheyAre) {
  const QuillonError error = QuillonError::MakeError(0xFCC690FC, u"LogicException_LogicAssert_FCC690FC");
  EXPECT_EQ(error.GetCode(), 0xFCC690FCu);
  EXPECT_EQ(Utf8(error.GetCodeName()), "LogicException_LogicAssert_FCC690FC");
}

TEST(QuillonError, NameNeedNotSpellTheCode) {
  EXPECT_EQ(Utf8(QuillonError::MakeError(1, u"two").GetCodeName()), "two");
}

TEST(QuillonError, NoErrorIsZeroWithoutName) {
  EXPECT_EQ(QuillonError::NoError().GetCode(), 0u);
  EXPECT_TRUE(QuillonError::NoError().GetCodeName().empty());
}

TEST(QuillonError, NameIsGivenByReferenceIntoTheRecord) {
  const QuillonError error = QuillonError::MakeError(1, u"a name too long for inline storage");
  EXPECT_EQ(&error.GetCodeName(), &error.GetCodeName());
}

TEST(QuillonError, CopiesBothFields) {
  const QuillonError error = QuillonError::MakeError(7, u"seven");
  QuillonError other = QuillonError::NoError();
  other = error;
  EXPECT_EQ(other.GetCode(), 7u);
  EXPECT_EQ(Utf8(other.GetCodeName()), "seven");
}

// ---- Comparison. Each error lies at an address of its own and each name in a block of its own, in an order that is not
// that of the codes: whatever goes by addresses or by names fails.

QuillonError Error(unsigned int code) {
  return QuillonError::MakeError(code, TStringCore::number(0xFFFFFFFFU - code) + u", too long for inline storage");
}

TEST(QuillonErrorOrder, IsThatOfTheCodesAlone) {
  const QuillonError low = QuillonError::MakeError(1, u"z");
  const QuillonError sameAsLow = QuillonError::MakeError(1, u"a");
  const QuillonError high = QuillonError::MakeError(0xFFFFFFFF, u"a");
  EXPECT_TRUE(low == sameAsLow);
  EXPECT_TRUE(low != high);
  EXPECT_TRUE((low <=> sameAsLow) == std::weak_ordering::equivalent);
  EXPECT_TRUE((low <=> high) == std::weak_ordering::less);
  EXPECT_TRUE((high <=> low) == std::weak_ordering::greater);
  EXPECT_TRUE(low < high && low <= sameAsLow && high > low && low >= sameAsLow);
}

struct Place {
  QuillonError error;
  int line;
  auto operator<=>(const Place&) const = default;
};

TEST(QuillonErrorOrder, HoldsInAStructureWithDefaultedComparison) {
  EXPECT_TRUE((Place{Error(7), 1} == Place{Error(7), 1}));
  EXPECT_TRUE((Place{Error(7), 1} < Place{Error(7), 2}));
  EXPECT_TRUE((Place{Error(7), 2} < Place{Error(8), 1}));
  EXPECT_TRUE((Place{Error(9), 1} > Place{Error(8), 2}));
}

TEST(QuillonErrorOrder, HoldsInWhatTheStandardLibraryPutsTogether) {
  EXPECT_TRUE(std::pair(Error(7), 1) == std::pair(Error(7), 1));
  EXPECT_TRUE(std::pair(Error(7), 2) < std::pair(Error(8), 1));
  EXPECT_TRUE(std::tuple(1, Error(7)) == std::tuple(1, Error(7)));
  EXPECT_TRUE(std::tuple(1, Error(7)) < std::tuple(1, Error(8)));
  EXPECT_TRUE(std::vector({Error(7), Error(8)}) == std::vector({Error(7), Error(8)}));
  EXPECT_TRUE(std::vector({Error(7), Error(9)}) > std::vector({Error(7), Error(8)}));
  EXPECT_TRUE(std::optional(Error(7)) == std::optional(Error(7)));
  EXPECT_TRUE(std::optional(Error(7)) < std::optional(Error(8)));
  using Either = std::variant<int, QuillonError>;
  EXPECT_TRUE(Either(Error(7)) == Either(Error(7)));
  EXPECT_TRUE(Either(Error(7)) < Either(Error(8)));
}

TEST(QuillonErrorOrder, AMapKeepsOneEntryForACode) {
  std::map<std::pair<QuillonError, int>, int> counts;
  for (int i = 0; i < 100; ++i) ++counts[{Error(7), 1}];
  ++counts[{Error(6), 1}];
  EXPECT_EQ(counts.size(), 2U);
  EXPECT_EQ(counts.begin()->first.first.GetCode(), 6U);
  EXPECT_EQ(counts.rbegin()->second, 100);
}

}  // namespace
