// Raw arguments that are measured may be no longer than a string.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "qilsys/TStringCore.h"
#include "search/Search.h"
#include "support/StringHeaps.h"
#include "units/TextLength.h"
#include "units/TextLimits.h"

namespace qilsys::test {
namespace {

struct Row {
  const char* name;
  std::function<void(const TCodeUnit* tooLong)> measure;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class SearchLimits : public testing::TestWithParam<Row> {};

TEST_P(SearchLimits, LongerTextRaises) {
  const RepeatedBytes bytes(std::size_t{qilsys::units::LengthLimit} * 2 + 8, 'a');
  try {
    GetParam().measure(reinterpret_cast<const TCodeUnit*>(bytes.data()));
    FAIL() << "nothing was raised";
  } catch (const TStringCore::CapacityException& e) {
    EXPECT_EQ(e.message, u"String capacity overflow.");
  }
}

const TStringCore Text(u"abc");

INSTANTIATE_TEST_SUITE_P(Table, SearchLimits,
                         testing::Values(Row{"IndexOf", [](auto s) { (void)Text.indexOf(s); }},
                                         Row{"FindStr", [](auto s) { (void)TStringCore::findStr(s, u"b"); }},
                                         Row{"FindOneOf", [](auto s) { (void)Text.findOneOf(s); }},
                                         Row{"Split", [](auto s) { (void)Text.split(s); }}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SearchLimitsExact, TheLongestTextIsMeasured) {
  const RepeatedBytes bytes(std::size_t{qilsys::units::LengthLimit - 1} * 2 + 8, 'a');
  EXPECT_EQ(qilsys::units::TerminatedLength(reinterpret_cast<const TCodeUnit*>(bytes.data())),
            qilsys::units::LengthLimit - 1);
}

}  // namespace
}  // namespace qilsys::test
