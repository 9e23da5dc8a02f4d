#include "qilsys/TForeignText.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/Literals.h"

namespace qilsys {
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
  const TForeignText text(QILSYS_FOREIGN(""));
  ASSERT_NE(text.data(), nullptr);
  EXPECT_EQ(text.length(), 0);
  EXPECT_EQ(text.data()[0], TCodeUnit{});
}

TEST(ForeignText, LengthCountsElements) {
  EXPECT_EQ(Units(TForeignText(QILSYS_FOREIGN("abc"), 2)), u"ab");
  EXPECT_EQ(Units(TForeignText(QILSYS_FOREIGN("abc"))), u"abc");
  EXPECT_EQ(Units(TForeignText(QILSYS_FOREIGN("abc"), -7)), u"abc");
  EXPECT_EQ(Units(TForeignText(QILSYS_FOREIGN("a\0b"), 3)), std::u16string(u"a\0b", 3));
}

TEST(ForeignText, CodePointsBecomeUnits) {
  const TForeignText text(QILSYS_FOREIGN("a\U0001F600\u00E9\U0010FFFF"));
  EXPECT_EQ(Units(text), u"a\U0001F600\u00E9\U0010FFFF");
  EXPECT_EQ(text.elements(), IsWide ? 4 : 6);
  EXPECT_EQ(text.data()[text.length()], TCodeUnit{});
  const std::u16string oneElement = IsWide ? std::u16string(u"\U0001F600") : std::u16string{0xD83D};
  EXPECT_EQ(Units(TForeignText(QILSYS_FOREIGN("\U0001F600\U0001F600"), 1)), oneElement);
}

TEST(ForeignText, UnitsThatAreNoScalars) {
  const TForeignUnit source[] = {0xDC00, 0xD800, 0xD800, 0xFFFF, 0};
  EXPECT_EQ(Units(TForeignText(source)), (std::u16string{0xDC00, 0xD800, 0xD800, 0xFFFF}));
}

TEST(ForeignText, ValuesAboveAllScalars) {
  if constexpr (IsWide) {
    const TForeignUnit source[] = {static_cast<TForeignUnit>(0x110000), static_cast<TForeignUnit>(-1), 0};
    EXPECT_EQ(Units(TForeignText(source)), (std::u16string{0xFFFD, 0xFFFD}));
  } else {
    EXPECT_EQ(std::numeric_limits<TForeignUnit>::max(), 0xFFFF) << "such values fit, but go untested";
  }
}

TEST(ForeignText, EveryLengthAroundTheInlineRoom) {
  for (int length = 0; length < 100; ++length) {
    const std::basic_string<TForeignUnit> source(static_cast<size_t>(length), QILSYS_FOREIGN('x'));
    const TForeignText text(source.c_str());
    ASSERT_EQ(Units(text), std::u16string(static_cast<size_t>(length), u'x'));
    ASSERT_EQ(text.data()[length], TCodeUnit{});
  }
}

TEST(ForeignText, OneElement) {
  EXPECT_EQ(Units(TForeignText(QILSYS_FOREIGN('a'))), u"a");
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
  EXPECT_EQ(TForeignText(QILSYS_FOREIGN('a')).Visit(Visitor{}), "unit");
  if (!IsWide) return;
  EXPECT_EQ(TForeignText(static_cast<TForeignUnit>(0x1F600)).Visit(Visitor{}), "text");
}

TEST(ForeignText, Measure) {
  EXPECT_EQ(TForeignText::Measure(nullptr), 0);
  EXPECT_EQ(TForeignText::Measure(QILSYS_FOREIGN("abc")), 3);
  EXPECT_EQ(TForeignText::Measure(QILSYS_FOREIGN("abc"), 2), 2);
  EXPECT_EQ(TForeignText::Measure(QILSYS_FOREIGN("abc"), 0), 0);
  EXPECT_EQ(TForeignText::Measure(QILSYS_FOREIGN("abc"), 9), 3);
}

TEST(ForeignText, IndicesWithoutPairsAreTheSame) {
  const TForeignText text(QILSYS_FOREIGN("abcd"));
  for (const int index : {-2147483647 - 1, -5, -4, -1, 0, 3, 4, 5, 2147483647}) {
    EXPECT_EQ(text.UnitIndex(index), index);
    EXPECT_EQ(text.ElementIndex(index), index);
  }
}

TEST(ForeignText, IndicesAcrossPairs) {
  const TForeignText text(QILSYS_FOREIGN("a\U0001F600b\U0001F600"));
  if (!IsWide) {
    for (int index = -7; index <= 8; ++index) EXPECT_EQ(text.UnitIndex(index), index);
    return;
  }
  // Elements 0 1 2 3 4 are units 0 1 3 4 6.
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
  EXPECT_EQ(ForeignToUnit(QILSYS_FOREIGN('a')), TCodeUnit{u'a'});
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(0xD800)), TCodeUnit{0xD800});
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(0xFFFF)), TCodeUnit{0xFFFF});
  if (!IsWide) return;
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(0x10000)), TCodeUnit{0xFFFD});
  EXPECT_EQ(ForeignToUnit(static_cast<TForeignUnit>(-1)), TCodeUnit{0xFFFD});
}

TEST(ForeignBuffer, StoresWhatWasEdited) {
  std::basic_string<TForeignUnit> text(QILSYS_FOREIGN("a\U0001F600bcd"));
  TForeignBuffer buffer(text.data());
  // The first three elements stay, then a terminator that is no NUL.
  const int units = buffer.UnitIndex(3);
  buffer.data()[units] = 0x30;
  EXPECT_EQ(buffer.Store(units, 0, 0), 3);
  EXPECT_EQ(text, IsWide ? QILSYS_FOREIGN("a\U0001F600b0d") : QILSYS_FOREIGN("a\U0001F6000cd"));
}

TEST(ForeignBuffer, NullStaysNull) { EXPECT_EQ(TForeignBuffer(nullptr).data(), nullptr); }

}  // namespace
}  // namespace qilsys
