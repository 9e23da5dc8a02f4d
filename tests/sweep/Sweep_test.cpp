// Every operation while memory runs out: nothing changes, nothing leaks, and the exception is the one that is promised.
#include "sweep/Sweep.h"

#include <gtest/gtest.h>

#include <ostream>
#include <set>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/RowName.h"

using namespace qilsys::test::sweep;

namespace qilsys::test::sweep {

/// Found by GoogleTest.
static void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

}  // namespace qilsys::test::sweep

namespace {

constexpr bool StartsProcessesQuickly = QILSYS_QUICK_PROCESSES;

class Sweep : public testing::TestWithParam<Operation> {
 protected:
  static void SetUpTestSuite() {
    TakeOverHeapOfIcu();
    // The runtime makes what it keeps for the exceptions of a thread with the first of them.
    try {
      throw TStringCore::OutOfMemoryException();
    } catch (const TStringCore::OutOfMemoryException&) {
    }
  }
  void SetUp() override {
    if (!ReachesOperatorNew()) GTEST_SKIP() << "the sanitizer's operators stand before those of the library";
  }
};

TEST_P(Sweep, Warm) { EXPECT_EQ(SweepWarm(GetParam()), ""); }

INSTANTIATE_TEST_SUITE_P(Operations, Sweep, testing::ValuesIn(AllOperations()), qilsys::test::RowName<Operation>);

// One case for all, since a process for each request is quick on one system alone.
TEST(SweptOperations, HoldAsTheFirstOfTheirProcess) {
  if (!ReachesOperatorNew()) GTEST_SKIP() << "the sanitizer's operators stand before those of the library";
  if (!StartsProcessesQuickly) GTEST_SKIP() << "left out: a process for each request takes seconds here";
  for (const Operation& operation : AllOperations()) EXPECT_EQ(SweepCold(operation), "") << operation.name;
}

TEST(SweptOperations, AreManyAndStandOnce) {
  std::set<std::string> names;
  for (const Operation& operation : AllOperations()) {
    EXPECT_TRUE(names.insert(operation.name).second) << operation.name;
    const bool hasLeave = operation.leave.raises != Raises::Own || operation.leave.left != Left::Unchanged ||
                          operation.leave.result != Result::Same;
    EXPECT_EQ(hasLeave, !std::string(operation.leave.reason).empty()) << operation.name << ": a leave has its reason";
  }
  EXPECT_GE(names.size(), 600U);
}

}  // namespace
