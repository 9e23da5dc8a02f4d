// Walks: each shape from end to end, and every way to fail.
#include <gtest/gtest.h>

#include <iterator>
#include <type_traits>

#include "paths/PathFailures.h"
#include "paths/PathShapes.h"
#include "qilsys/TPathCore.h"
#include "support/RowName.h"
#include "support/StringText.h"

using namespace qilsys::test;

namespace {

std::vector<TStringCore> ElementsOf(const PathShape& shape) {
  std::vector<TStringCore> elements;
  for (const std::u16string_view element : shape.Elements()) elements.push_back(Expanded(element));
  return elements;
}

class PathWalkTest : public testing::TestWithParam<PathShape> {
 protected:
  const PathShape& m_shape = GetParam();
  const TPathCore m_path{Expanded(m_shape.text)};
  const std::vector<TStringCore> m_elements = ElementsOf(m_shape);
};

TEST_P(PathWalkTest, MeetsTheElements) {
  TPathCore::iterator at = m_path.begin();
  for (std::size_t i = 0; i < m_elements.size(); ++i) {
    ASSERT_NE(at, m_path.end()) << i;
    EXPECT_EQ(*at, m_elements[i]) << i;
    EXPECT_EQ(at.operator->(), m_elements[i]) << i;
    if (!m_shape.Has(IsStuck) || i + 1 < m_elements.size()) ++at;
  }
  if (m_shape.Has(IsStuck)) {
    EXPECT_TRUE(FailsBy(EndOutOfRange, [&] { ++at; }));
    EXPECT_TRUE(FailsBy(EndOutOfRange, [&] { at++; }));
    EXPECT_EQ(*at, m_elements.back());
  } else {
    EXPECT_EQ(at, m_path.end());
    EXPECT_TRUE((*at).empty());
    EXPECT_TRUE(FailsBy(BeyondEnd, [&] { ++at; }));
    EXPECT_TRUE(FailsBy(BeyondEnd, [&] { at++; }));
    EXPECT_EQ(at, m_path.end());
  }
}

TEST_P(PathWalkTest, AtOnceGivesTheSame) {
  if (m_shape.Has(IsStuck)) {
    EXPECT_TRUE(FailsBy(EndOutOfRange, [&] { m_path.size(); }));
    EXPECT_TRUE(FailsBy(EndOutOfRange, [&] { m_path.toVector(); }));
  } else {
    EXPECT_EQ(m_path.size(), m_elements.size());
    EXPECT_EQ(m_path.toVector(), m_elements);
  }
  EXPECT_EQ(m_path.front(), m_elements.empty() ? TStringCore() : m_elements.front());
}

TEST_P(PathWalkTest, NeverStepsBack) {
  EXPECT_TRUE(FailsBy(BeyondBeginning, [&] { m_path.back(); }));
  EXPECT_TRUE(FailsBy(BeyondBeginning, [&] { --m_path.end(); }));
  TPathCore::iterator at = m_path.begin();
  EXPECT_TRUE(FailsBy(BeyondBeginning, [&] { --at; }));
  for (std::size_t i = 1; i < m_elements.size(); ++i) {
    ++at;
    EXPECT_TRUE(FailsBy(OutOfSync, [&] { --at; }));
    EXPECT_TRUE(FailsBy(OutOfSync, [&] { at--; }));
    EXPECT_EQ(*at, m_elements[i]);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, PathWalkTest, testing::ValuesIn(PathShapes()), RowName<PathShape>);

// ---- The iterator by itself

TEST(TPathCoreIterator, OfAnEmptyPathIsAtItsEnd) {
  const TPathCore path;
  EXPECT_EQ(path.begin(), path.end());
  EXPECT_EQ(path.size(), 0u);
  EXPECT_TRUE(path.toVector().empty());
  EXPECT_TRUE((*path.begin()).empty());
}

TEST(TPathCoreIterator, WalksInARangeLoop) {
  std::vector<std::string> elements;
  const TPathCore path(u"c:/a/b");
  for (const TStringCore& element : path) elements.push_back(Utf8(element));
  EXPECT_EQ(elements, (std::vector<std::string>{"c:", "/", "a", "b"}));
}

TEST(TPathCoreIterator, BehindItsStepGivesWhereItWas) {
  const TPathCore path(u"c:/a");
  TPathCore::iterator at = path.begin();
  EXPECT_EQ(Utf8(*at++), "c:");
  EXPECT_EQ(Utf8(*at), "/");
  EXPECT_EQ(&++at, &at);
}

TEST(TPathCoreIterator, TellsPlacesApart) {
  const TPathCore path(u"a/a");
  TPathCore::iterator at = path.begin();
  ++at;
  ++at;
  EXPECT_EQ(*at, *path.begin());
  EXPECT_NE(at, path.begin());
  EXPECT_FALSE(at == path.begin());
}

TEST(TPathCoreIterator, OfEqualPathsIsEqualWhateverTheirCase) {
  const TPathCore lower(u"c:/a");
  const TPathCore upper(u"C:/A");
  const TPathCore other(u"c:/b");
  EXPECT_EQ(lower.begin(), upper.begin());
  EXPECT_EQ(++lower.begin(), ++upper.begin());
  EXPECT_EQ(lower.end(), upper.end());
  EXPECT_NE(lower.begin(), other.begin());
  EXPECT_NE(lower.begin(), ++upper.begin());
}

TEST(TPathCoreIterator, IsAssignedOverOnePathOnly) {
  const TPathCore path(u"c:/a");
  const TPathCore same = path;
  TPathCore::iterator at = path.begin();
  at = path.end();
  EXPECT_EQ(at, path.end());
  EXPECT_TRUE(FailsBy(OtherPath, [&] { at = same.begin(); }));
  EXPECT_EQ(at, path.end());
  EXPECT_TRUE((*at).empty());
  at = *&at;
  EXPECT_EQ(at, path.end());
}

TEST(TPathCoreIterator, IsCopiedOverAnyPath) {
  const TPathCore path(u"c:/a");
  const TPathCore::iterator at = ++path.begin();
  const TPathCore::iterator copy = at;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(copy, at);
  EXPECT_EQ(Utf8(*copy), "/");
}

TEST(TPathCoreIterator, KeepsItsElementWhileThePathChanges) {
  TPathCore path(u"c:/some/name");
  TPathCore::iterator at = ++(++path.begin());
  EXPECT_EQ(Utf8(*at), "some");
  path = TPathCore(u"c:/some");
  EXPECT_EQ(Utf8(*at), "some");
  EXPECT_TRUE(FailsBy(EndOutOfRange, [&] { ++at; }));
  path = TPathCore(u"c:");
  EXPECT_TRUE(FailsBy(BeyondEnd, [&] { ++at; }));
  EXPECT_EQ(Utf8(*at), "some");
}

template <class T>
concept HasTextMembers = requires(T at) {
  at->length();
};
template <class T>
concept HasArrow = requires(T at) {
  at.operator->();
};

// Its arrow gives text, which has no arrow of its own; that it can be called only by name is on purpose.
static_assert(HasArrow<TPathCore::iterator>);
static_assert(!HasTextMembers<TPathCore::iterator>);
static_assert(std::is_same_v<std::iterator_traits<TPathCore::iterator>::value_type, TStringCore>);
static_assert(std::input_iterator<TPathCore::iterator>);

// ---- Many elements

TEST(TPathCoreElements, MayBeMany) {
  constexpr int Names = 20000;
  const TPathCore path(u"c:" + TStringCore(u"/a").repeated(Names));
  ASSERT_GT(path.GenericString().length(), 40000);
  EXPECT_EQ(path.size(), Names + 2u);
  EXPECT_EQ(path.toVector().size(), Names + 2u);
  EXPECT_EQ(path.Parent().GenericString().length(), 2 * Names);
  EXPECT_EQ(TPathCore(TStringCore(u"a/").repeated(Names)).size(), Names + 1u);
}

}  // namespace
