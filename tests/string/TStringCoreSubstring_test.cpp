#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "qilsys/TStringException.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

// In a block, so that sharing shows.
const TStringCore Long(u"abcdefghijklmnopqrstuvwxyz");

void ExpectShared(const TStringCore& result, const TStringCore& source) {
  EXPECT_EQ(result, source);
  EXPECT_EQ(result.constData(), source.constData());
}

TEST(Left, EdgeCases) {
  EXPECT_EQ(Long.left(3), u"abc");
  EXPECT_TRUE(Long.left(0).isEmpty());
  EXPECT_TRUE(Long.left(-5).isEmpty());
  EXPECT_TRUE(TStringCore().left(3).isEmpty());
  EXPECT_EQ(UnitsOf(String({u"a\0b", 3}).left(2)), (std::u16string{u"a\0", 2}));
}

TEST(Left, WholeTextIsShared) {
  ExpectShared(Long.left(100), Long);
  ExpectShared(Long.left(26), Long);
  EXPECT_NE(Long.left(25).constData(), Long.constData());
}

TEST(Right, EdgeCases) {
  EXPECT_EQ(Long.right(3), u"xyz");
  EXPECT_TRUE(Long.right(0).isEmpty());
  EXPECT_TRUE(Long.right(-1).isEmpty());
  EXPECT_TRUE(TStringCore().right(3).isEmpty());
  ExpectShared(Long.right(26), Long);
  ExpectShared(Long.right(100), Long);
}

TEST(Mid, EdgeCases) {
  EXPECT_EQ(Long.mid(2, 3), u"cde");
  EXPECT_EQ(Long.mid(23), u"xyz");
  EXPECT_EQ(Long.mid(23, 100), u"xyz");
  EXPECT_EQ(Long.mid(23, 0x7FFFFFFF), u"xyz");
  EXPECT_TRUE(Long.mid(1, 0).isEmpty());
  EXPECT_TRUE(Long.mid(-1, 5).isEmpty());
  EXPECT_TRUE(Long.mid(Long.length()).isEmpty());
  EXPECT_TRUE(Long.mid(Long.length() + 1).isEmpty());
  EXPECT_TRUE(TStringCore().mid(0).isEmpty());
}

TEST(Mid, WholeTextIsShared) {
  ExpectShared(Long.mid(0), Long);
  ExpectShared(Long.mid(0, 26), Long);
  ExpectShared(Long.mid(0, 1000), Long);
}

TEST(Mid, NegativeCountStopsAtANul) {
  const TStringCore text = String({u"ab\0cd", 5});
  EXPECT_EQ(UnitsOf(text.mid(0)), u"ab");
  EXPECT_EQ(UnitsOf(text.mid(1, -7)), u"b");
  EXPECT_EQ(UnitsOf(text.mid(2)), u"");
  EXPECT_EQ(UnitsOf(text.mid(3)), u"cd");
  EXPECT_EQ(UnitsOf(text.mid(1, 3)), (std::u16string{u"b\0c", 3}));
}

TEST(MidIterators, Range) {
  const auto at = [](int i) { return Long.createFromIndex(i); };
  const auto end = Long.codepoint_cend();
  EXPECT_EQ(Long.mid(at(2), at(5)), u"cde");
  EXPECT_EQ(Long.mid(at(23), end), u"xyz");
  EXPECT_TRUE(Long.mid(at(5), at(5)).isEmpty());
  EXPECT_TRUE(Long.mid(at(5), at(2)).isEmpty());
  EXPECT_TRUE(Long.mid(end, end).isEmpty());
  EXPECT_TRUE(Long.mid(end, at(2)).isEmpty());
  ExpectShared(Long.mid(at(0), end), Long);
  const TStringCore nul = String({u"a\0b", 3});
  EXPECT_EQ(UnitsOf(nul.mid(nul.createFromIndex(1), nul.codepoint_cend())), (std::u16string{u"\0b", 2}));
}

TEST(MidIterators, OutsideTheTextIsEmpty) {
  const TStringCore text(u"abc");
  EXPECT_TRUE(text.mid(Long.createFromIndex(3), Long.codepoint_cend()).isEmpty());
  EXPECT_EQ(text.mid(Long.createFromIndex(1), Long.createFromIndex(20)), u"bc");
}

TEST(MidCodePoints, CountsCodePoints) {
  const TStringCore text(
      u"a\xD801\xDC00"
      u"b\xD801\xDC28"
      u"c");
  const auto first = text.codepoint_cbegin();
  EXPECT_EQ(text.mid(first, 2), u"a\xD801\xDC00");
  EXPECT_EQ(text.mid(first + 1, 2),
            u"\xD801\xDC00"
            u"b");
  EXPECT_EQ(text.mid(first + 3, 100),
            u"\xD801\xDC28"
            u"c");
  EXPECT_EQ(text.mid(first + 2, -1),
            u"b\xD801\xDC28"
            u"c");
  EXPECT_TRUE(text.mid(first, 0).isEmpty());
  EXPECT_TRUE(text.mid(first, -2).isEmpty());
  EXPECT_TRUE(text.mid(text.codepoint_cend(), 1).isEmpty());
  ExpectShared(Long.mid(Long.codepoint_cbegin(), 26), Long);
}

TEST(Justified, EdgeCases) {
  const TStringCore text(u"abc");
  EXPECT_EQ(text.leftJustified(5, u'.', false), u"abc..");
  EXPECT_EQ(text.leftJustified(5, L'.', false), u"abc..");
  EXPECT_EQ(text.rightJustified(5, u'.', false), u"..abc");
  EXPECT_EQ(text.rightJustified(5, L'.', false), u"..abc");
  EXPECT_EQ(text.leftJustified(2, u' ', true), u"ab");
  EXPECT_EQ(text.leftJustified(2, u' ', false), u"abc");
  EXPECT_EQ(text.rightJustified(2, u' ', true), u"ab");
  EXPECT_EQ(text.rightJustified(2, u' ', false), u"abc");
  EXPECT_EQ(text.leftJustified(-3, u' ', true), u"");
  EXPECT_EQ(text.rightJustified(-3, u' ', true), u"");
  EXPECT_EQ(text.leftJustified(-3, u' ', false), u"abc");
  EXPECT_EQ(text.leftJustified(4), u"abc ");
  EXPECT_EQ(text.rightJustified(20, u'\0', false).length(), 20);
  EXPECT_EQ(TStringCore().leftJustified(3, u'*', false), u"***");
}

TEST(Justified, UnchangedTextIsShared) {
  ExpectShared(Long.leftJustified(26, u' ', true), Long);
  ExpectShared(Long.rightJustified(26, u' ', true), Long);
  ExpectShared(Long.leftJustified(5, u' ', false), Long);
  ExpectShared(Long.rightJustified(5, u' ', false), Long);
}

TEST(Justified, WideFillThatNeedsTwoUnitsIsReplaced) {
  if constexpr (sizeof(wchar_t) > 2) {
    EXPECT_EQ(TStringCore(u"a").leftJustified(2, static_cast<wchar_t>(0x10400)), u"a\uFFFD");
  }
}

TEST(Repeated, EdgeCases) {
  EXPECT_TRUE(Long.repeated(0).isEmpty());
  EXPECT_TRUE(Long.repeated(-1).isEmpty());
  ExpectShared(Long.repeated(1), Long);
  EXPECT_EQ(TStringCore(u"ab").repeated(3), u"ababab");
  EXPECT_EQ(TStringCore(u"ab").repeated(3).capacity(), 15);
  EXPECT_EQ(Long.repeated(4).length(), 104);
  EXPECT_EQ(Long.repeated(4).capacity(), 105);
  EXPECT_TRUE(TStringCore().repeated(0x7FFFFFFF).isEmpty());
  EXPECT_EQ(UnitsOf(String({u"\0a", 2}).repeated(2)), (std::u16string{u"\0a\0a", 4}));
}

template <class F>
std::string MessageOf(F f) {
  try {
    f();
  } catch (const TStringCore::Exception& e) {
    return e.message.toStdString();
  }
  return "nothing raised";
}

TEST(Repeated, ProductThatWrapsToANegativeRaises) {
  EXPECT_EQ(MessageOf([] { (void)TStringCore(u"ab").repeated(0x40000000); }),
            "Negative allocation size; probable overflow");
  EXPECT_EQ(MessageOf([] { (void)Long.repeated(0x7FFFFFFF); }), "Negative allocation size; probable overflow");
}

TEST(Repeated, ProductThatWrapsToAPositiveRaisesWithoutFillingMemory) {
  EXPECT_THROW((void)TStringCore(u"abcd").repeated(0x40000001), TStringCore::CapacityException);
}

TEST(Reversed, LeavesTheSource) {
  const TStringCore text(
      u"a\xD801\xDC00"
      u"b");
  EXPECT_EQ(text.reversed(),
            u"b\xD801\xDC00"
            u"a");
  EXPECT_EQ(text,
            u"a\xD801\xDC00"
            u"b");
}

TEST(Trimmed, LeavesTheSource) {
  const TStringCore text(u" \t a b \n");
  EXPECT_EQ(text.trimmed(), u"a b");
  EXPECT_EQ(text, u" \t a b \n");
}

struct SpanRow {
  const char* name;
  std::u16string text;
  std::u16string set;
  std::u16string including;
  std::u16string excluding;
};

void PrintTo(const SpanRow& row, std::ostream* out) { *out << row.name; }

class Span : public testing::TestWithParam<SpanRow> {};

TEST_P(Span, EveryForm) {
  const SpanRow& row = GetParam();
  EachRawForm(row.set, [&](const auto* set) {
    EXPECT_EQ(UnitsOf(String(row.text).spanIncluding(set)), row.including);
    EXPECT_EQ(UnitsOf(String(row.text).spanExcluding(set)), row.excluding);
  });
}

INSTANTIATE_TEST_SUITE_P(Table, Span,
                         testing::Values(SpanRow{"Digits", u"123abc", u"0123456789", u"123", u""},
                                         SpanRow{"Letters", u"123abc", u"abc", u"", u"123"},
                                         SpanRow{"All", u"aaa", u"a", u"aaa", u""},
                                         SpanRow{"None", u"abc", u"xyz", u"", u"abc"},
                                         SpanRow{"EmptySet", u"abc", u"", u"", u"abc"},
                                         SpanRow{"EmptyText", u"", u"a", u"", u""},
                                         SpanRow{"Supplementary",
                                                 u"\xD801\xDC00"
                                                 u"a",
                                                 u"\xD801\xDC00", u"\xD801\xDC00", u""}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(EmptySubstring, TakesNoBlockAlong) {
  TStringCore emptied(u'a', 100);
  emptied.resize(0);
  for (const TStringCore& part : {emptied.left(0), emptied.right(0), emptied.left(-1), emptied.right(-1)}) {
    EXPECT_TRUE(part.isEmpty());
    EXPECT_EQ(part.capacity(), 15);
  }
  EXPECT_FALSE(emptied.isShared());
  EXPECT_TRUE(emptied.left(1).isShared()) << "a copy of the whole text";
}

TEST(SpanNull, CountsAsEmpty) {
  EXPECT_TRUE(Long.spanIncluding(nullptr).isEmpty());
  ExpectShared(Long.spanExcluding(nullptr), Long);
}

TEST(SpanWhole, IsShared) {
  ExpectShared(Long.spanExcluding(u"0123456789"), Long);
  ExpectShared(Long.spanIncluding(u"abcdefghijklmnopqrstuvwxyz"), Long);
}

}  // namespace
}  // namespace qilsys::test
