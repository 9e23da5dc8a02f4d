#include "monitor/ProcessorClock.h"

#include <gtest/gtest.h>

#include <map>

#include "support/RowName.h"

namespace qilsys::monitor {
namespace {

TEST(AllAtMaximumTest, OneBelowItsMaximumDecides) {
  EXPECT_FALSE(AllAtMaximum({{3000, 3000}, {2999, 3000}, {3000, 3000}}));
  EXPECT_FALSE(AllAtMaximum({{0, 3000}}));
}

TEST(AllAtMaximumTest, AtOrAboveIsMaximum) { EXPECT_TRUE(AllAtMaximum({{3000, 3000}, {3100, 3000}, {0, 0}})); }

TEST(AllAtMaximumTest, UnknownLeansToTrue) { EXPECT_TRUE(AllAtMaximum({})); }

/// The files of a driver, by their paths below the folder of the processors.
using Tree = std::map<std::string, std::string>;

using Clocks = std::vector<ProcessorClock>;

struct TreeRow {
  const char* name;
  unsigned int count;
  Tree tree;
  Clocks clocks;
  bool isAtMaximum;
};
void PrintTo(const TreeRow& row, std::ostream* out) { *out << row.name; }

class ProcessorClocksOfTree : public testing::TestWithParam<TreeRow> {};

TEST_P(ProcessorClocksOfTree, AreThese) {
  const TreeRow& row = GetParam();
  const auto read = [&row](const std::string& path) {
    const auto file = row.tree.find(path);
    return file != row.tree.end() ? file->second : std::string();
  };
  const Clocks clocks = ProcessorClocksOf(row.count, read);
  EXPECT_EQ(clocks, row.clocks);
  EXPECT_EQ(AllAtMaximum(clocks), row.isAtMaximum);
}

// Two processors of 2.1 GHz that rise to 3.9, one of them at work and the other one idle.
const Tree IntelPstate = {
    {"cpu0/cpufreq/base_frequency", "2100000\n"},   {"cpu0/cpufreq/cpuinfo_max_freq", "3900000\n"},
    {"cpu0/cpufreq/scaling_cur_freq", "3399999\n"}, {"cpu1/cpufreq/base_frequency", "2100000\n"},
    {"cpu1/cpufreq/cpuinfo_max_freq", "3900000\n"}, {"cpu1/cpufreq/scaling_cur_freq", "800000\n"},
    {"cpu0/acpi_cppc/nominal_freq", "9999\n"},
};

// The nominal clock is in MHz.
const Tree AmdPstate = {
    {"cpu0/acpi_cppc/nominal_freq", "3400\n"},      {"cpu0/cpufreq/cpuinfo_max_freq", "4600000\n"},
    {"cpu0/cpufreq/scaling_cur_freq", "1200000\n"}, {"cpu1/acpi_cppc/nominal_freq", "3400\n"},
    {"cpu1/cpufreq/cpuinfo_max_freq", "4600000\n"}, {"cpu1/cpufreq/scaling_cur_freq", "3400000\n"},
};

// It knows of no boost; and firmware that tells of none either leaves the nominal clock 0.
const Tree AcpiCpufreq = {
    {"cpu0/cpufreq/cpuinfo_max_freq", "2400000\n"},
    {"cpu0/cpufreq/scaling_cur_freq", "2400000\n"},
    {"cpu0/acpi_cppc/nominal_freq", "0\n"},
};

Tree With(Tree tree, const Tree& changes) {
  for (const auto& [path, text] : changes) tree[path] = text;
  return tree;
}

INSTANTIATE_TEST_SUITE_P(
    Drivers, ProcessorClocksOfTree,
    testing::Values(
        TreeRow{"NoneOfAVirtualMachine", 2, {}, {}, true},
        TreeRow{"IntelPstateBusyAboveItsBase", 2, IntelPstate, {{3400, 2100}, {3400, 2100}}, true},
        TreeRow{"IntelPstateHeldDown",
                2,
                With(IntelPstate, {{"cpu0/cpufreq/scaling_cur_freq", "1400000\n"}}),
                {{1400, 2100}, {1400, 2100}},
                false},
        TreeRow{"AmdPstateAtItsNominalClock", 2, AmdPstate, {{3400, 3400}, {3400, 3400}}, true},
        TreeRow{"AmdPstateHeldDown",
                2,
                With(AmdPstate, {{"cpu1/cpufreq/scaling_cur_freq", "3399499\n"}}),
                {{3399, 3400}, {3399, 3400}},
                false},
        TreeRow{"AcpiCpufreqAtItsMaximum", 1, AcpiCpufreq, {{2400, 2400}}, true},
        TreeRow{"AcpiCpufreqHeldDown",
                1,
                With(AcpiCpufreq, {{"cpu0/cpufreq/scaling_cur_freq", "1600000\n"}}),
                {{1600, 2400}},
                false},
        TreeRow{"AMeasuredClockMayMissByKilohertz",
                1,
                With(AcpiCpufreq, {{"cpu0/cpufreq/scaling_cur_freq", "2399500\n"}}),
                {{2400, 2400}},
                true},
        TreeRow{"AProcessorThatIsOffHasNoFiles", 3, IntelPstate, {{3400, 2100}, {3400, 2100}}, true},
        TreeRow{"OnlyProcessorsOfTheCountAreAsked", 1, IntelPstate, {{3400, 2100}}, true},
        TreeRow{"ClocksThatAreNotKnownNow", 1, {{"cpu0/cpufreq/cpuinfo_max_freq", "2400000\n"}}, {}, true},
        TreeRow{
            "AClockThatIsNoNumber", 1, With(AcpiCpufreq, {{"cpu0/cpufreq/scaling_cur_freq", "<unknown>\n"}}), {}, true},
        TreeRow{"NoMaximumAtAll", 1, {{"cpu0/cpufreq/scaling_cur_freq", "800000\n"}}, {}, true},
        TreeRow{"AMaximumOfOneProcessorOnly",
                2,
                {{"cpu0/cpufreq/cpuinfo_max_freq", "2400000\n"}, {"cpu1/cpufreq/scaling_cur_freq", "2400000\n"}},
                {{2400, 2400}},
                true},
        TreeRow{"NumbersAtTheEndOfTheirRange",
                1,
                {{"cpu0/acpi_cppc/nominal_freq", "18446744073709551615\n"},
                 {"cpu0/cpufreq/scaling_cur_freq", "18446744073709551615\n"}},
                {{18446744073709552, 18446744073709551615U}},
                false}),
    test::RowName<TreeRow>);

}  // namespace
}  // namespace qilsys::monitor
