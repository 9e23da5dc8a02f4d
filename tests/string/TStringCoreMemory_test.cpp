// An edit that finds no memory beside the block of its string: the text is as it was.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/FailingAllocations.h"
#include "support/RowName.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

constexpr auto Fold = TStringCore::CaseInsensitive;

// Too many units for a set that lies in itself; the first of them is ASCII.
std::u16string LargeSet() {
  std::u16string set = u"a";
  for (char16_t c = 0x4E00; c < 0x4E00 + 99; ++c) set += c;
  return set + u"\xFFFD";
}

// Near matches of a needle that repeats, then matches.
const std::u16string Needle = std::u16string(20, u'a') + u'b' + std::u16string(19, u'a');
const std::u16string NearMatches = Needle + u"-one-" + Needle + u"-two-" + std::u16string(3000, u'a') + u"\u00E9";

struct Row {
  const char* name;
  std::u16string text;
  std::function<void(TStringCore&)> edit;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class EditBesideABlock : public testing::TestWithParam<Row> {};

TEST_P(EditBesideABlock, ChangesNothingWhereItFails) {
  if (!FailingAllocations::SeesOperatorNew()) GTEST_SKIP() << "another operator new has won";
  const TStringCore before = String(GetParam().text);
  for (int n = 1; n < 50; ++n) {
    TStringCore text = before;
    text.reserve(text.length());
    try {
      const FailingAllocations failing(n);
      GetParam().edit(text);
    } catch (const std::bad_alloc&) {
      ASSERT_EQ(UnitsOf(text), GetParam().text) << "request " << n;
      continue;
    }
    EXPECT_NE(UnitsOf(text), GetParam().text);
    return;
  }
  ADD_FAILURE() << "never succeeds";
}

const Row Rows[] = {
    {"RemoveAllWithoutCase", NearMatches,
     [](TStringCore& s) { s.removeAll(Needle.c_str(), static_cast<int>(Needle.size()), Fold); }},
    {"ReplaceWithoutCase", NearMatches, [](TStringCore& s) { s.replace(String(Needle), String(u"x"), Fold); }},
    {"ReplaceInPlaceWithoutCase", u"Abc-\u00E9\u00E9-abc", [](TStringCore& s) { s.replace(u"abc", u"XYZ", Fold); }},
    {"ReplaceAnyOf", u"a\u4E01bc", [](TStringCore& s) { s.replaceAnyOf(LargeSet().c_str(), u'_'); }},
    {"RemoveAnyOf", u"a\u4E01bc", [](TStringCore& s) { s.removeAnyOf(LargeSet().c_str()); }},
    {"TrimRawSet", u"\u4E02abc\u4E01", [](TStringCore& s) { s.trim(LargeSet().c_str()); }},
    {"TrimStringSet", u"\u4E02abc\u4E01", [](TStringCore& s) { s.trim(String(LargeSet())); }},
};

INSTANTIATE_TEST_SUITE_P(Table, EditBesideABlock, testing::ValuesIn(Rows), RowName<Row>);

TEST(StaticEditBesideABlock, ChangesNothingWhereItFails) {
  if (!FailingAllocations::SeesOperatorNew()) GTEST_SKIP() << "another operator new has won";
  TStringCore buffer(u"a\u4E01bc");
  const TStringCore set = String(LargeSet());
  TCodeUnit* const units = buffer.data();
  {
    const FailingAllocations failing(1);
    EXPECT_THROW(TStringCore::replaceAnyOf(units, set.constData(), u'_'), std::bad_alloc);
    EXPECT_THROW(TStringCore::removeAnyOf(units, set.constData()), std::bad_alloc);
  }
  EXPECT_EQ(UnitsOf(buffer), u"a\u4E01bc");
}

}  // namespace
}  // namespace qilsys::test
