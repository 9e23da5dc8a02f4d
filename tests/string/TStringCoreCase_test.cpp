// ICU is the oracle: what it maps in a buffer that is large enough is what the string has to give.
#include <gtest/gtest.h>
#include <unicode/uclean.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstdlib>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/Random.h"
#include "support/StringText.h"

namespace {

using qilsys::test::Rounds;
using qilsys::test::SeededRandom;
using qilsys::test::UnitsOf;

using Mapping = decltype(&u_strToLower);

std::u16string ByIcu(const std::u16string& text, Mapping map) {
  // No code point maps to more than three units for one of its own.
  std::u16string result(text.size() * 3 + 1, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = map(result.data(), static_cast<int32_t>(result.size()), text.data(),
                             static_cast<int32_t>(text.size()), nullptr, &status);
  EXPECT_TRUE(U_SUCCESS(status)) << u_errorName(status);
  result.resize(static_cast<size_t>(length));
  return result;
}

void ExpectBothCases(const std::u16string& text) {
  const TStringCore source = TStringCore::fromStdU16String(text);
  EXPECT_EQ(UnitsOf(source.toLower()), ByIcu(text, u_strToLower));
  EXPECT_EQ(UnitsOf(source.toUpper()), ByIcu(text, u_strToUpper));
  EXPECT_EQ(UnitsOf(source), text) << "the source stays as it is";
}

void Append(std::u16string& text, UChar32 c) {
  if (c > 0xFFFF) text += static_cast<char16_t>(U16_LEAD(c));
  text += static_cast<char16_t>(c > 0xFFFF ? U16_TRAIL(c) : c);
}

TEST(TStringCoreCase, EveryCodePointByItself) {
  for (UChar32 c = 0; c <= 0x10FFFF && !HasFailure(); ++c) {
    SCOPED_TRACE(c);
    std::u16string text;
    Append(text, c);
    ExpectBothCases(text);
  }
}

TEST(TStringCoreCase, EveryCodePointBetweenLetters) {
  for (UChar32 c = 0; c <= 0x10FFFF && !HasFailure(); ++c) {
    SCOPED_TRACE(c);
    std::u16string text = u"aZ";
    Append(text, c);
    ExpectBothCases(text + u"zA");
  }
}

// The sigma at the end of a word, and letters that grow, from inline text to a block and within a block.
TEST(TStringCoreCase, TextsThatDependOnTheirNeighboursOrGrow) {
  for (const char16_t* text :
       {u"\u039F\u03A3", u"\u03A3\u03A3 \u03A3", u"stra\u00DFe", u"\uFB03\uFB03\uFB03\uFB03\uFB03",
        u"\u0390\u0390\u0390\u0390\u0390\u0390", u"\u0130\u0130\u0130\u0130\u0130\u0130\u0130\u0130"}) {
    ExpectBothCases(text);
    std::u16string longer;
    for (int i = 0; i < 20; ++i) longer += text;
    ExpectBothCases(longer);
  }
}

TEST(TStringCoreCase, NulAndLoneSurrogatesStay) {
  ExpectBothCases({u'a', u'\0', u'B'});
  ExpectBothCases({u'a', 0xD83D, u'B'});
  ExpectBothCases({u'a', 0xDE00, 0xD83D, u'\u00E9'});
  ExpectBothCases({});
}

TEST(TStringCoreCase, RandomTexts) {
  SeededRandom random;
  constexpr char16_t Alphabet[] = {u'a',      u'Z',   u'\0',  u'7',   u'\u00DF', u'\u03A3',
                                   u'\u0130', 0xD801, 0xDC00, 0xDC28, u' '};
  for (int round = 0; round < Rounds(20000) && !HasFailure(); ++round) {
    std::u16string text;
    const bool ascii = random.OneIn(3);
    for (int length = random.Between(0, 40); length > 0; --length) text += Alphabet[random.Between(0, ascii ? 3 : 10)];
    ExpectBothCases(text);
  }
}

// ICU's own heap, exhausted.
void* GiveNothing(const void*, size_t) { return nullptr; }
void* ResizeNothing(const void*, void*, size_t) { return nullptr; }
void ReleaseNothing(const void*, void*) {}

// In a process of its own, so that this mapping is its first: had ICU still to find its default locale, it would hang.
TEST(TStringCoreCaseDeathTest, TheFirstMappingNeedsNoMemoryOfIcu) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto mapWithoutMemory = [] {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(nullptr, &GiveNothing, &ResizeNothing, &ReleaseNothing, &status);
    const bool mapped = UnitsOf(TStringCore(u"\u00C4B").toLower()) == u"\u00E4b";
    std::_Exit(U_SUCCESS(status) && mapped ? 0 : 1);
  };
  EXPECT_EXIT(mapWithoutMemory(), testing::ExitedWithCode(0), "");
}

}  // namespace
