// The forms in which modules bring symbols and lines on Linux.
#include "diagnostics/DwarfSymbols_linux.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <string>

#include "diagnostics/CollectedLines.h"
#include "diagnostics/StackChain.h"
#include "qilsys/TStackWalker.h"
#include "support/RowName.h"

namespace qilsys::test {
namespace {

struct FormRow {
  const char* name;
  Chain* chain;
  const char* module;
  const char* space;
  bool hasLines;
};

class FormTest : public testing::TestWithParam<FormRow> {
 protected:
  FormTest() { TStackWalker::InitSym(true); }
  ~FormTest() override { TStackWalker::InitSym(false); }
};

TEST_P(FormTest, HasNamesWithParametersAndLinesWhereTheyCanBeRead) {
  const FormRow& row = GetParam();
  const Lines lines = LinesThrough(row.chain);
  for (int link = 1; link <= ChainLength; ++link) {
    const std::string symbol = std::string(row.module) + "!qilsys::test::" + row.space + "::Chain" +
                               std::to_string(link) + "(void (*)(void*), void*)";
    const std::string line = LineOf(lines, link);
    EXPECT_THAT(line, testing::EndsWith(symbol));
    const std::string source = "StackChain.cpp(" + std::to_string(LineBeforeChain + link) + "): " + symbol;
    if (row.hasLines) {
      EXPECT_THAT(line, testing::EndsWith(source));
    } else {
      EXPECT_THAT(line, testing::MatchesRegex(QILSYS_ID " " QILSYS_ID " stack_chain.*"));
    }
  }
}

constexpr FormRow Forms[] = {
    {"InTheFile", &InModule::Chain1, "stack_chain", "InModule", true},
    {"NoneAtAll", &InPlainModule::Chain1, "stack_chain_plain", "InPlainModule", false},
    {"InAFileThatItNames", &InSplitModule::Chain1, "stack_chain_split", "InSplitModule", true},
    {"Compressed", &InCompressedModule::Chain1, "stack_chain_compressed", "InCompressedModule", false},
    {"CompressedInAFileThatItNames", &InCompressedSplitModule::Chain1, "stack_chain_compressed_split",
     "InCompressedSplitModule", false},
    {"WithoutATableOfAddresses", &InModuleWithoutTable::Chain1, "stack_chain_without_table", "InModuleWithoutTable",
     true},
};

INSTANTIATE_TEST_SUITE_P(Forms, FormTest, testing::ValuesIn(Forms), RowName<FormRow>);

TEST(DwarfSymbolsTest, KnowsNothingOfAnAddressInNoModule) {
  const diagnostics::LibDw* const dw = diagnostics::TheLibDw();
  ASSERT_NE(dw, nullptr);
  diagnostics::DwarfSymbols symbols(*dw);
  int local = 0;
  for (const std::uint64_t address : {std::uint64_t{0}, ~std::uint64_t{0}, reinterpret_cast<std::uint64_t>(&local)}) {
    StackFrameInfo frame;
    symbols.FindNames(address, frame);
    symbols.FindLine(address, frame);
    EXPECT_EQ(frame.m_moduleName + frame.m_symbolName + frame.m_fileName, "");
  }
}

struct Cancelled {
  const diagnostics::LibDw& dw;
  StackFrameInfo frame;
};

// What reads files is where a thread may be cancelled.
void* AskWhileCancelled(void* argument) {
  Cancelled& cancelled = *static_cast<Cancelled*>(argument);
  pthread_cancel(pthread_self());
  {
    diagnostics::DwarfSymbols symbols(cancelled.dw);
    const auto address = reinterpret_cast<std::uint64_t>(&AskWhileCancelled);
    symbols.FindNames(address, cancelled.frame);
    symbols.FindLine(address, cancelled.frame);
  }
  pthread_testcancel();
  return nullptr;
}

TEST(DwarfSymbolsTest, AThreadThatIsCancelledGetsItsAnswersFirst) {
  const diagnostics::LibDw* const dw = diagnostics::TheLibDw();
  ASSERT_NE(dw, nullptr);
  Cancelled cancelled{*dw, {}};
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, nullptr, &AskWhileCancelled, &cancelled), 0);
  void* result = nullptr;
  ASSERT_EQ(pthread_join(thread, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  EXPECT_THAT(cancelled.frame.m_symbolName, testing::HasSubstr("AskWhileCancelled"));
  EXPECT_THAT(cancelled.frame.m_fileName, testing::EndsWith("DwarfSymbols_linux_test.cpp"));
}

}  // namespace
}  // namespace qilsys::test
