#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "qilsys/Unicode.h"
#include "support/TextForms.h"

namespace {

using qilsys::test::As;
using qilsys::test::ForEachUnitType;
using qilsys::test::RowName;

struct LineRow {
  const char* name;
  std::u16string source;
  std::u16string unixText;
  std::u16string dosText;
};

class LineEndings : public testing::TestWithParam<LineRow> {};

template <class U>
void Normalize(const std::basic_string<U>& source, const std::basic_string<U>& wanted) {
  // The unit behind the text is one that the length form must not take for text.
  std::basic_string<U> withLength = source + U{'\n'} + U{'z'};
  ASSERT_EQ(Unicode::normalizeLineEndings(withLength.data(), source.size()), wanted.size());
  EXPECT_EQ(withLength.substr(0, wanted.size()), wanted);
  EXPECT_EQ(withLength[wanted.size()], U{});
  std::basic_string<U> terminated = source;
  ASSERT_EQ(Unicode::normalizeLineEndings(terminated.data()), wanted.size());
  EXPECT_EQ(std::basic_string<U>(terminated.c_str()), wanted);
}

TEST_P(LineEndings, NormalizeUnits) {
  ForEachUnitType([](auto zero) {
    using U = decltype(zero);
    Normalize<U>(As<U>(GetParam().source), As<U>(GetParam().unixText));
  });
}

TEST_P(LineEndings, NormalizeBytes) {
  const LineRow& row = GetParam();
  Normalize<char>(std::string(row.source.begin(), row.source.end()),
                  std::string(row.unixText.begin(), row.unixText.end()));
}

TEST_P(LineEndings, UnixToDos) {
  ForEachUnitType([](auto zero) {
    const auto source = As<decltype(zero)>(GetParam().source);
    const TStringCore result = Unicode::unixToDos(source.data(), source.size());
    EXPECT_EQ(std::u16string(result.begin(), result.end()), GetParam().dosText);
  });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LineEndings,
    testing::Values(
        LineRow{"Empty", u"", u"", u""}, LineRow{"NoLineEnd", u"abc", u"abc", u"abc"},
        LineRow{"Unix", u"a\nb\n", u"a\nb\n", u"a\r\nb\r\n"}, LineRow{"Dos", u"a\r\nb\r\n", u"a\nb\n", u"a\r\nb\r\n"},
        LineRow{"OnlyReturn", u"\r", u"\n", u"\r\n"}, LineRow{"LoneReturns", u"a\rb\rc", u"a\nb\nc", u"a\r\nb\r\nc"},
        LineRow{"ReturnAtTheEnd", u"a\r", u"a\n", u"a\r\n"}, LineRow{"ReturnReturnFeed", u"\r\r\n", u"\n", u"\r\n"},
        LineRow{"ReturnFeedFeed", u"\r\n\n", u"\n\n", u"\r\n\r\n"},
        LineRow{"ReturnReturn", u"a\r\rb", u"a\nb", u"a\r\nb"},
        LineRow{"FeedFeed", u"a\n\nb", u"a\n\nb", u"a\r\n\r\nb"},
        LineRow{"LoneReturnThenPair", u"a\rb\r\nc", u"a\nb\nc", u"a\r\nb\r\nc"},
        LineRow{"LoneReturnAfterPair", u"a\r\nb\rc", u"a\nb\nc", u"a\r\nb\r\nc"},
        LineRow{"ReturnAfterFeedInTheSecondPass", u"\r\na\n\rb", u"\na\nb", u"\r\na\r\nb"},
        LineRow{"ReturnRunAfterFeedInTheSecondPass", u"\r\n\n\r\rb", u"\n\nb", u"\r\n\r\nb"},
        LineRow{"PairThenReturn", u"\r\n\r", u"\n\n", u"\r\n\r\n"}),
    RowName<LineRow>);

// Before the first pair nothing drops a CR: the one behind an LF becomes a line end of its own.
TEST(LineEndingsEdge, ReturnAfterFeedInTheFirstPass) {
  char text[] = "a\n\rb";
  EXPECT_EQ(Unicode::normalizeLineEndings(text), 4U);
  EXPECT_STREQ(text, "a\n\nb");
}

TEST(LineEndingsEdge, ALengthOfZeroStillWritesTheTerminator) {
  char bytes[] = "ab";
  EXPECT_EQ(Unicode::normalizeLineEndings(bytes, 0), 0U);
  EXPECT_EQ(bytes[0], '\0');
  ForEachUnitType([](auto zero) {
    using U = decltype(zero);
    U units[] = {U{'a'}, U{}};
    EXPECT_EQ(Unicode::normalizeLineEndings(units, 0), 0U);
    EXPECT_EQ(units[0], U{});
  });
}

TEST(LineEndingsEdge, TheLengthFormsGoOverNul) {
  char text[] = "a\0\r\nb";
  EXPECT_EQ(Unicode::normalizeLineEndings(text, 5), 4U);
  EXPECT_EQ(std::string(text, 4), std::string("a\0\nb", 4));
  const TStringCore dos = Unicode::unixToDos(u"a\0\n", 3);
  EXPECT_EQ(std::u16string(dos.begin(), dos.end()), std::u16string(u"a\0\r\n", 4));
}

TEST(LineEndingsEdge, AWideCodePointGoesThrough) {
  constexpr size_t Elements = sizeof(wchar_t) > 2 ? 2 : 3;
  const TStringCore dos = Unicode::unixToDos(L"\U0001F600\n", Elements);
  EXPECT_EQ(std::u16string(dos.begin(), dos.end()), u"\U0001F600\r\n");
  wchar_t text[] = L"\U0001F600\r\n";
  EXPECT_EQ(Unicode::normalizeLineEndings(text), Elements);
  EXPECT_STREQ(text, L"\U0001F600\n");
}

}  // namespace
