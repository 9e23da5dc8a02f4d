#include "qilsys/TForeignText.h"

#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"

namespace {

constexpr bool IsWide = sizeof(TForeignUnit) > sizeof(TCodeUnit);

std::u16string Units(const TForeignText& text) { return std::u16string(text.data(), text.data() + text.length()); }

TEST(ForeignText, NullStaysNull) {
  const TForeignText text(nullptr);
  EXPECT_EQ(text.data(), nullptr);
  EXPECT_EQ(text.length(), -1);
  EXPECT_EQ(text.elements(), 0);
  EXPECT_EQ(TForeignText(nullptr, 5).data(), nullptr);
}

TEST(ForeignText, EmptyIsNotNull) {
  const TForeignText text(L"");
  ASSERT_NE(text.data(), nullptr);
  EXPECT_EQ(text.length(), 0);
  EXPECT_EQ(text.data()[0], TCodeUnit{});
}

TEST(ForeignText, LengthCountsElements) {
  EXPECT_EQ(Units(TForeignText(L"abc", 2)), u"ab");
  EXPECT_EQ(Units(TForeignText(L"abc")), u"abc");
  EXPECT_EQ(Units(TForeignText(L"abc", -7)), u"abc");
  EXPECT_EQ(Units(TForeignText(L"a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(ForeignText, CodePointsBecomeUnits) {
  if (!IsWide) GTEST_SKIP() << "wchar_t has 16 bits here";
  const TForeignText text(L"a\U0001F600\u00E9\U0010FFFF");
  EXPECT_EQ(Units(text), u"a\U0001F600\u00E9\U0010FFFF");
  EXPECT_EQ(text.elements(), 4);
  EXPECT_EQ(text.data()[text.length()], TCodeUnit{});
  EXPECT_EQ(Units(TForeignText(L"\U0001F600\U0001F600", 1)), u"\U0001F600");
}

TEST(ForeignText, ValuesThatAreNoScalars) {
  if (!IsWide) GTEST_SKIP() << "wchar_t has 16 bits here";
  const wchar_t source[] = {static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), static_cast<wchar_t>(0xD800),
                            static_cast<wchar_t>(0xDC00), 0};
  EXPECT_EQ(Units(TForeignText(source)), (std::u16string{0xFFFD, 0xFFFD, 0xD800, 0xDC00}));
}

TEST(ForeignText, EveryLengthAroundTheInlineRoom) {
  for (int length = 0; length < 100; ++length) {
    const std::wstring source(static_cast<size_t>(length), L'x');
    const TForeignText text(source.c_str());
    ASSERT_EQ(Units(text), std::u16string(static_cast<size_t>(length), u'x'));
    ASSERT_EQ(text.data()[length], TCodeUnit{});
  }
}

TEST(ForeignText, OneElement) {
  EXPECT_EQ(Units(TForeignText(L'a')), u"a");
  if (!IsWide) return;
  EXPECT_EQ(Units(TForeignText(static_cast<TForeignUnit>(0x1F600))), u"\U0001F600");
  EXPECT_EQ(Units(TForeignText(static_cast<TForeignUnit>(0x110000))), u"\uFFFD");
  EXPECT_EQ(Units(TForeignText(static_cast<TForeignUnit>(0xDC00))), (std::u16string{0xDC00}));
}

TEST(ForeignText, VisitTellsAUnitFromAText) {
  struct Visitor {
    std::string operator()(TCodeUnit) const { return "unit"; }
    std::string operator()(const TCodeUnit*) const { return "text"; }
  };
  EXPECT_EQ(TForeignText(L'a').Visit(Visitor{}), "unit");
  if (!IsWide) return;
  EXPECT_EQ(TForeignText(static_cast<TForeignUnit>(0x1F600)).Visit(Visitor{}), "text");
}

TEST(ForeignText, Measure) {
  EXPECT_EQ(TForeignText::Measure(nullptr), 0);
  EXPECT_EQ(TForeignText::Measure(L"abc"), 3);
  EXPECT_EQ(TForeignText::Measure(L"abc", 2), 2);
  EXPECT_EQ(TForeignText::Measure(L"abc", 0), 0);
  EXPECT_EQ(TForeignText::Measure(L"abc", 9), 3);
}

TEST(ForeignText, IndicesWithoutPairsAreTheSame) {
  const TForeignText text(L"abcd");
  for (const int index : {-2147483647 - 1, -5, -4, -1, 0, 3, 4, 5, 2147483647}) {
    EXPECT_EQ(text.UnitIndex(index), index);
    EXPECT_EQ(text.ElementIndex(index), index);
  }
}

TEST(ForeignText, IndicesAcrossPairs) {
  if (!IsWide) GTEST_SKIP() << "wchar_t has 16 bits here";
  const TForeignText text(L"a\U0001F600b\U0001F600");  // Elements 0 1 2 3 4 are units 0 1 3 4 6.
  const int units[] = {0, 1, 3, 4, 6};
  for (int element = 0; element <= 4; ++element) {
    EXPECT_EQ(text.UnitIndex(element), units[element]);
    EXPECT_EQ(text.ElementIndex(units[element]), element);
  }
  EXPECT_EQ(text.UnitIndex(6), 8);
  EXPECT_EQ(text.ElementIndex(8), 6);
  EXPECT_EQ(text.ElementIndex(2), 1);
  EXPECT_EQ(text.ElementIndex(-1), -1);
  EXPECT_EQ(text.UnitIndex(-1), -2);
  EXPECT_EQ(text.UnitIndex(-2), -3);
  EXPECT_EQ(text.UnitIndex(-4), -6);
  EXPECT_EQ(text.UnitIndex(-5), -7);
  EXPECT_EQ(text.UnitIndex(2147483647), 2147483647);
  EXPECT_EQ(text.UnitIndex(-2147483647 - 1), -2147483647 - 1);
}

TEST(ForeignUnitOf, OneUnitOrTheReplacement) {
  EXPECT_EQ(ForeignToUnit(L'a'), TCodeUnit{u'a'});
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(0xD800)), TCodeUnit{0xD800});
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(0xFFFF)), TCodeUnit{0xFFFF});
  if (!IsWide) return;
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(0x10000)), TCodeUnit{0xFFFD});
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(-1)), TCodeUnit{0xFFFD});
}

TEST(ForeignBuffer, StoresWhatWasEdited) {
  TForeignUnit text[] = L"a\U0001F600bcd";
  TForeignBuffer buffer(text);
  // The first three elements stay, then a terminator that is no NUL.
  const int units = buffer.UnitIndex(3);
  buffer.data()[units] = 0x30;
  EXPECT_EQ(buffer.Store(units), IsWide ? 3 : 4);
  const TForeignUnit wanted[] = L"a\U0001F600b0d";
  EXPECT_EQ(std::basic_string<TForeignUnit>(text), std::basic_string<TForeignUnit>(wanted));
}

TEST(ForeignBuffer, NullStaysNull) { EXPECT_EQ(TForeignBuffer(nullptr).data(), nullptr); }

}  // namespace
