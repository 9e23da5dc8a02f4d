#include "qilsys/TCodePointIterator.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/TextForms.h"

namespace {

using qilsys::test::As;
using Iterator = TConstCodePointIterator<TStringCore>;

TStringCore FromUnits(std::u16string_view units) {
  return TStringCore(As<TCodeUnit>(units).data(), static_cast<int>(units.size()));
}

const std::u16string Long = u"more than fifteen units";

template <class F>
std::string RuntimeError(F f) {
  try {
    f();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "nothing raised";
}

void ExpectAt(const Iterator& it, int codeUnitIndex, int codePointIndex) {
  EXPECT_EQ(it.codeUnitIndex, codeUnitIndex);
  EXPECT_EQ(it.codePointIndex, codePointIndex);
}

TEST(CodePointIterator, BeginAndEnd) {
  const TStringCore text = FromUnits(u"ab");
  ExpectAt(text.codepoint_cbegin(), 0, 0);
  ExpectAt(text.codepoint_cend(), -1, -1);
  EXPECT_EQ(text.codepoint_cbegin().owner, &text);
  const TStringCore empty;
  ExpectAt(empty.codepoint_cbegin(), -1, -1);
  EXPECT_TRUE(empty.codepoint_cbegin() == empty.codepoint_cend());
}

TEST(CodePointIterator, WalksByCodePoint) {
  const TStringCore text = FromUnits(u"a\u20AC\U0001F600z");
  std::u32string seen;
  std::vector<int> indices;
  for (auto it = text.codepoint_cbegin(); it != text.codepoint_cend(); ++it) {
    seen += *it;
    indices.push_back(it.codeUnitIndex);
    EXPECT_EQ(it.codePointIndex, static_cast<int>(seen.size()) - 1);
  }
  EXPECT_EQ(seen, U"a\u20AC\U0001F600z");
  EXPECT_EQ(indices, (std::vector<int>{0, 1, 2, 4}));
}

TEST(CodePointIterator, PostfixForms) {
  const TStringCore text = FromUnits(u"ab");
  auto it = text.codepoint_cbegin();
  EXPECT_EQ(*it++, U'a');
  EXPECT_EQ(*it, U'b');
  EXPECT_EQ(*it--, U'b');
  EXPECT_EQ(*it, U'a');
}

TEST(CodePointIterator, BuiltAtAPosition) {
  const TStringCore text = FromUnits(u"a\U0001F600z");
  ExpectAt(Iterator(text, 0), 0, 0);
  ExpectAt(Iterator(text, 1), 1, 1);
  ExpectAt(Iterator(text, 2), 3, 2);
  ExpectAt(Iterator(text, 3), -1, -1);
  ExpectAt(Iterator(text, 1000), -1, -1);
  ExpectAt(Iterator(text, -1), -1, -1);
  const TStringCore empty;
  ExpectAt(Iterator(empty, 0), -1, -1);
}

TEST(CodePointIterator, BuiltBelowMinusOneRaises) {
  const TStringCore text = FromUnits(u"ab");
  EXPECT_EQ(RuntimeError([&] { Iterator(text, -2); }),
            "CodePointIterator<>::operator++: m_position[-2] is out of range.");
}

TEST(CodePointIterator, IncrementAtTheEndRaises) {
  const TStringCore text = FromUnits(u"a");
  auto it = text.codepoint_cbegin();
  ++it;
  ExpectAt(it, -1, -1);
  EXPECT_EQ(RuntimeError([&] { ++it; }),
            "CodePointIterator<>::operator++: attempted to increment the iterator past the end of the string.");
}

TEST(CodePointIterator, DecrementAtTheBeginRaises) {
  const TStringCore text = FromUnits(u"a");
  const std::string wanted =
      "CodePointIterator<>::operator--: attempted to decrement iterator past the begining of the string.";
  auto it = text.codepoint_cbegin();
  EXPECT_EQ(RuntimeError([&] { --it; }), wanted);
  const TStringCore empty;
  auto end = empty.codepoint_cend();
  EXPECT_EQ(RuntimeError([&] { --end; }), wanted);
  EXPECT_EQ(end.codeUnitIndex, 0);
  EXPECT_EQ(end.codePointIndex, -1);
}

TEST(CodePointIterator, FromTheEndTheNumberStaysUnknown) {
  const TStringCore text = FromUnits(u"ab\U0001F600");
  auto it = text.codepoint_cend();
  --it;
  EXPECT_EQ(*it, char32_t{0x1F600});
  ExpectAt(it, 2, -1);
  --it;
  ExpectAt(it, 1, -1);
  ++it;
  ExpectAt(it, 2, -1);
  --it;
  --it;
  ExpectAt(it, 0, 0);
}

TEST(CodePointIterator, DecrementCountsTheNumberDown) {
  const TStringCore text = FromUnits(u"ab\U0001F600z");
  Iterator it(text, 3);
  --it;
  ExpectAt(it, 2, 2);
  --it;
  ExpectAt(it, 1, 1);
  --it;
  ExpectAt(it, 0, 0);
}

TEST(CodePointIterator, PlusAndMinus) {
  const TStringCore text = FromUnits(u"ab\U0001F600z");
  const auto begin = text.codepoint_cbegin();
  ExpectAt(begin + 0, 0, 0);
  ExpectAt(begin + 3, 4, 3);
  ExpectAt(begin + 4, -1, -1);
  ExpectAt((begin + 3) - 2, 1, 1);
  ExpectAt((begin + 3) + -2, 1, 1);
  ExpectAt(begin - -2, 2, 2);
  ExpectAt(text.codepoint_cend() - 1, 4, -1);
  ExpectAt(begin, 0, 0);
  EXPECT_NE(RuntimeError([&] { begin + 5; }), "nothing raised");
  EXPECT_NE(RuntimeError([&] { begin - 1; }), "nothing raised");
  EXPECT_NE(RuntimeError([&] { begin - (-2147483647 - 1); }), "nothing raised");
}

TEST(CodePointIterator, ALoneLowSurrogateEndsTheWalk) {
  const TStringCore text = FromUnits(std::u16string{u'a', 0xDC00, u'b'});
  auto it = text.codepoint_cbegin();
  ++it;
  EXPECT_EQ(*it, char32_t{0xFFFD});
  ++it;
  ExpectAt(it, -1, -1);
}

TEST(CodePointIterator, ALoneHighSurrogateStepsOverTheNextUnit) {
  const TStringCore text = FromUnits(std::u16string{0xD800, u'b', u'c'});
  auto it = text.codepoint_cbegin();
  EXPECT_EQ(*it, char32_t{0xFFFD});
  ++it;
  ExpectAt(it, 2, 1);
}

TEST(CodePointIterator, BackOverLowSurrogatesToTheStart) {
  const TStringCore text = FromUnits(std::u16string{0xDC00, 0xDC00, u'b'});
  auto it = text.createFromIndex(2, 7);
  --it;
  ExpectAt(it, 0, 0);
}

TEST(CodePointIterator, TheEndReadsAsZero) { EXPECT_EQ(*FromUnits(u"a").codepoint_cend(), char32_t{0}); }

// ---- Comparison

TEST(CodePointIteratorCompare, StringsThatShareABlockAreTheSame) {
  const TStringCore text = FromUnits(Long);
  const TStringCore copy = text;
  EXPECT_TRUE(text.codepoint_cbegin() == copy.codepoint_cbegin());
  EXPECT_FALSE(text.codepoint_cbegin() != copy.codepoint_cbegin());
  EXPECT_TRUE(text.codepoint_cbegin() != copy.codepoint_cend());
  EXPECT_FALSE(text.codepoint_cbegin() == copy.codepoint_cend());
}

TEST(CodePointIteratorCompare, EqualInlineCopiesRaise) {
  const TStringCore text = FromUnits(u"a");
  const TStringCore copy = text;
  EXPECT_EQ(RuntimeError([&] { (void)(text.codepoint_cbegin() == copy.codepoint_cbegin()); }),
            "TConstCodePointIterator<class TStringCore>::operator == iterators do not reference the same underlying "
            "string.");
  EXPECT_EQ(RuntimeError([&] { (void)(text.codepoint_cbegin() != copy.codepoint_cbegin()); }),
            "TConstCodePointIterator<class TStringCore>::operator != iterators do not reference the same underlying "
            "string.");
}

TEST(CodePointIteratorCompare, LooksAtUnitIndicesOnly) {
  const TStringCore text = FromUnits(u"ab");
  EXPECT_TRUE(text.createFromIndex(1, 1) == text.createFromIndex(1, 50));
}

// ---- createFromIndex

TEST(CreateFromIndex, Indices) {
  const TStringCore text = FromUnits(u"a\U0001F600zz");
  ExpectAt(text.createFromIndex(0, 9), 0, 0);
  ExpectAt(text.createFromIndex(0, -1), 0, 0);
  ExpectAt(text.createFromIndex(1, 1), 1, 1);
  ExpectAt(text.createFromIndex(1, -1), 1, -1);
  ExpectAt(text.createFromIndex(5, 3), -1, -1);
  ExpectAt(text.createFromIndex(-1, 3), -1, -1);
  ExpectAt(text.createFromIndex(-2, 2), 3, 2);
  ExpectAt(text.createFromIndex(-5, 2), 0, 0);
  ExpectAt(TStringCore().createFromIndex(0, 0), -1, -1);
}

TEST(CreateFromIndex, OutOfRangeRaises) {
  const TStringCore text = FromUnits(u"abc");
  const std::string wanted = "TStringCore::createFromIndex codeUnitIndex is out of range.";
  EXPECT_EQ(RuntimeError([&] { text.createFromIndex(-4, 0); }), wanted);
  EXPECT_EQ(RuntimeError([&] { text.createFromIndex(4, 0); }), wanted);
  EXPECT_EQ(RuntimeError([&] { text.createFromIndex(-2147483647 - 1, 0); }), wanted);
}

TEST(CreateFromIndex, InsideACodePointRaises) {
  const TStringCore text = FromUnits(u"\U0001F600z");
  EXPECT_EQ(RuntimeError([&] { text.createFromIndex(1, 0); }),
            "TStringCore::createFromIndex codeUnitIndex does not reference the begining of a code point.");
}

}  // namespace
