// Texts and needles for which a search by trying each place would need longer than any test may take: that these tests
// end is what they show.
#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

constexpr auto Sensitive = TStringCore::CaseSensitive;
constexpr auto Insensitive = TStringCore::CaseInsensitive;

/// A text of one letter, and a needle that differs from every place of it in its middle.
template <int Length>
class NearMisses : public testing::Test {
 protected:
  static constexpr int TextLength = Length;
  static constexpr int Half = TextLength / 4;  // of a needle of half the text

  std::u16string Needle() const { return std::u16string(Half, u'a') + u"b" + std::u16string(Half, u'a'); }
  /// The text with the needle's letter put in, so that it matches at `at`.
  TStringCore TextWithMatch(int at) const {
    std::u16string units(TextLength, u'a');
    units[static_cast<std::size_t>(at + Half)] = u'b';
    return String(units);
  }

  const TStringCore m_text{u'a', TextLength};
  const TStringCore m_needle = String(Needle());
  const TStringCore m_capitals = m_needle.toUpper();
};

using SearchLinear = NearMisses<4'000'000>;
// Without vectors, places are tried more slowly.
using SearchLinearBackward = NearMisses<1'000'000>;

TEST_F(SearchLinear, IndexOf) {
  EXPECT_EQ(m_text.indexOf(m_needle), -1);
  EXPECT_EQ(m_text.indexOf(m_capitals, 0, Insensitive), -1);
  const TStringCore text = TextWithMatch(1'000'000);
  EXPECT_EQ(text.indexOf(m_needle), 1'000'000);
  EXPECT_EQ(text.indexOf(m_capitals, 0, Insensitive), 1'000'000);
  EXPECT_EQ(text.indexOf(m_needle, 1'000'001), -1);
}

TEST_F(SearchLinear, Contains) {
  EXPECT_FALSE(m_text.contains(m_needle, Sensitive));
  EXPECT_FALSE(m_text.contains(m_capitals, Insensitive));
}

TEST_F(SearchLinear, CountOfOverlappingMatches) {
  const TStringCore needle(u'a', TextLength / 2);
  EXPECT_EQ(m_text.count(needle, Sensitive), TextLength / 2 + 1);
  EXPECT_EQ(m_text.count(needle.toUpper(), Insensitive), TextLength / 2 + 1);
  EXPECT_EQ(m_text.count(m_needle, Sensitive), 0);
}

TEST_F(SearchLinearBackward, LastIndexOf) {
  EXPECT_EQ(m_text.lastIndexOf(m_needle), -1);
  EXPECT_EQ(m_text.lastIndexOf(m_capitals, -1, Insensitive), -1);
  const TStringCore text = TextWithMatch(125'000);
  EXPECT_EQ(text.lastIndexOf(m_needle), 125'000);
  EXPECT_EQ(text.lastIndexOf(m_capitals, -1, Insensitive), 125'000);
  EXPECT_EQ(text.lastIndexOf(m_needle, 124'999), -1);
}

TEST_F(SearchLinearBackward, FindLast) {
  EXPECT_TRUE(m_text.findLast(m_needle) == m_text.codepoint_cend());
  EXPECT_TRUE(m_text.findLast(m_capitals, Insensitive) == m_text.codepoint_cend());
  const TStringCore text = TextWithMatch(125'000);
  EXPECT_EQ(text.findLast(m_needle).codeUnitIndex, 125'000);
  EXPECT_EQ(text.findLast(m_needle).codePointIndex, -1);
  EXPECT_EQ(text.findLast(m_capitals, Insensitive).codeUnitIndex, 125'000);
}

TEST_F(SearchLinearBackward, FindLastFromAPlaceCountsCodePoints) {
  const TStringCore text = TextWithMatch(125'000);
  const TStringCore::CodePointIterator from(&text, 875'000, 875'000);
  EXPECT_EQ(text.findLast(m_needle, from).codePointIndex, 125'000);
  const TStringCore::CodePointIterator tooEarly(&text, 625'000 - 1, 625'000 - 1);
  EXPECT_TRUE(text.findLast(m_needle, tooEarly) == text.codepoint_cend());
}

// U+10400 and U+10428, capital and small; the needle is half the text again.
TEST_F(SearchLinearBackward, ByFoldedCodePoints) {
  std::u16string units;
  for (int i = 0; i < TextLength / 4; ++i) units += u"\U00010428";
  const std::size_t middle = units.size() / 4;
  std::u16string needle = units.substr(0, units.size() / 2);
  needle[middle] = u'-';
  needle.erase(middle + 1, 1);
  const TStringCore text = String(units);
  EXPECT_EQ(text.lastIndexOf(String(needle), -1, Insensitive), -1);
  EXPECT_TRUE(text.findLast(String(needle), Insensitive) == text.codepoint_cend());
  const TStringCore found = String(u"\U00010400\U00010400" + needle) + text;
  EXPECT_EQ(found.lastIndexOf(String(needle).toUpper(), -1, Insensitive), 4);
  EXPECT_EQ(found.findLast(String(needle).toUpper(), Insensitive).codeUnitIndex, 4);
}

TEST_F(SearchLinear, Split) {
  EXPECT_EQ(m_text.split(m_needle, TStringCore::KeepEmptyTokens, Sensitive).size(), 1U);
  EXPECT_EQ(m_text.split(m_capitals, TStringCore::KeepEmptyTokens, Insensitive).size(), 1U);
  EXPECT_EQ(TextWithMatch(7).split(m_needle, TStringCore::KeepEmptyTokens, Sensitive).size(), 2U);
}

TEST_F(SearchLinear, RemoveAllAndReplace) {
  TStringCore text = TextWithMatch(7);
  EXPECT_EQ(text.replaceCount(m_needle.constData(), m_needle.length(), nullptr, 0, Sensitive), 1);
  EXPECT_EQ(text.length(), TextLength - m_needle.length());
  text = TextWithMatch(7);
  text.removeAll(m_capitals, Insensitive);
  EXPECT_EQ(text.length(), TextLength - m_needle.length());
}

}  // namespace
}  // namespace qilsys::test
