#include "qilsys/TStringException.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <type_traits>

#include "support/StringText.h"
#include "support/TStringCoreForTest.h"

using qilsys::test::UnitsOf;

namespace {

using Exception = TStringCore::Exception;
using CapacityException = TStringCore::CapacityException;
using OutOfMemoryException = TStringCore::OutOfMemoryException;

static_assert(!std::is_base_of_v<std::exception, Exception>);
static_assert(std::is_base_of_v<Exception, CapacityException> && std::is_base_of_v<Exception, OutOfMemoryException>);

TEST(TStringException, KeepsItsText) {
  EXPECT_EQ(UnitsOf(Exception(u"text").message), u"text");
  EXPECT_EQ(UnitsOf(Exception(L"text").message), u"text");
  EXPECT_EQ(UnitsOf(Exception(nullptr).message), u"");
  EXPECT_EQ(UnitsOf(Exception(u"").message), u"");
  EXPECT_EQ(UnitsOf(Exception(TStringCore(u"text")).message), u"text");
  const TStringCore text(u"text");
  EXPECT_EQ(UnitsOf(Exception(text).message), u"text");
  EXPECT_EQ(UnitsOf(Exception(text).CollateMessagesForLog()), u"text");
  EXPECT_EQ(UnitsOf(Exception(text).GetConcatenatedMessages()), u"text");
}

TEST(TStringException, HasFixedTexts) {
  EXPECT_EQ(UnitsOf(CapacityException().message), u"String capacity overflow.");
  EXPECT_EQ(UnitsOf(OutOfMemoryException().message), u"Out of memory");
  EXPECT_TRUE(qilsys::test::TStringCoreForTest::IsInline(OutOfMemoryException().message))
      << "raising it must not allocate";
}

TEST(TStringException, OnlyTheBaseMovesItsMessage) {
  Exception base(TStringCore(u'x', 40));
  const Exception taken(std::move(base));
  EXPECT_TRUE(base.message.empty());  // NOLINT(bugprone-use-after-move): that is what is tested
  CapacityException derived;
  const CapacityException copied(std::move(derived));
  EXPECT_EQ(UnitsOf(derived.message), u"String capacity overflow.");  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(UnitsOf(copied.message), u"String capacity overflow.");
}

template <class E>
void ExpectClassSurvives(const E& raised) {
  const Exception& seen = raised;
  EXPECT_THROW(seen.Throw(), E);
  const std::unique_ptr<Exception> clone(seen.Clone());
  EXPECT_NE(dynamic_cast<E*>(clone.get()), nullptr);
  const Exception& copy = *clone;
  EXPECT_EQ(typeid(copy), typeid(E));
  EXPECT_EQ(UnitsOf(clone->message), UnitsOf(raised.message));
}

TEST(TStringException, CloneAndThrowKeepTheClass) {
  ExpectClassSurvives(Exception(u"text"));
  ExpectClassSurvives(CapacityException());
  ExpectClassSurvives(OutOfMemoryException());
}

TEST(TStringException, NoStandardHandlerCatchesIt) {
  bool caught = false;
  try {
    try {
      throw CapacityException();
    } catch (const std::exception&) {
      FAIL() << "std::exception caught it";
    }
  } catch (const Exception&) {
    caught = true;
  }
  EXPECT_TRUE(caught);
}

}  // namespace
