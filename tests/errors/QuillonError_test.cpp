#include "qilsys/QuillonError.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "support/Utf8.h"

using qilsys::test::Utf8;

namespace {

static_assert(!std::is_default_constructible_v<QuillonError>);
static_assert(!std::is_constructible_v<QuillonError, unsigned int, TStringCore>);
static_assert(std::is_copy_constructible_v<QuillonError> && std::is_copy_assignable_v<QuillonError>);

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

}  // namespace
