#include "qilsys/TStackWalker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <list>
#include <string>
#include <thread>
#include <vector>

#include "cpu/Compiler.h"
#include "diagnostics/CollectedLines.h"
#include "diagnostics/LoadedModule.h"
#include "diagnostics/StackChain.h"
#include "qilsys/TSystem.h"
#include "support/Latch.h"
#include "support/RowName.h"
#include "support/System.h"

namespace qilsys::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

// Where walks are on, and everything is shown.
class TStackWalkerTest : public testing::Test {
 protected:
  TStackWalkerTest() { Show(true, true, true, true); }
  ~TStackWalkerTest() override {
    Show(true, true, true, true);
    TStackWalker::InitSym(false);
  }

  static void Show(bool thread, bool addresses, bool fileName, bool lineNumber) {
    TStackWalker::InitSym(true);
    TStackWalker::IncludeThreadInfo(thread);
    TStackWalker::IncludeSystemMemoryAddresses(addresses);
    TStackWalker::IncludeFileName(fileName);
    TStackWalker::IncludeFileLineNumber(lineNumber);
  }
};

TEST(TStackWalkerSwitch, OffAtFirstAndInitSymReturnsWhatWasBefore) {
  EXPECT_FALSE(TStackWalker::IsActive());
  EXPECT_FALSE(TStackWalker::InitSym(true));
  EXPECT_TRUE(TStackWalker::InitSym(true));
  EXPECT_TRUE(TStackWalker::IsActive());
  EXPECT_TRUE(TStackWalker::InitSym(false));
  EXPECT_FALSE(TStackWalker::IsActive());
}

TEST(StackWalkerConfigTest, ItsDefaults) {
  const StackWalkerConfig config;
  EXPECT_FALSE(config.m_active);
  EXPECT_TRUE(config.m_includeThreadInfo);
  EXPECT_TRUE(config.m_includeSystemMemoryAddresses);
  EXPECT_TRUE(config.m_includeFileLineNumber);
  EXPECT_TRUE(config.m_includeFileName);
  const int& most = StackWalkerConfig::numberOfStackWalks;
  EXPECT_EQ(most, 200);
}

TEST_F(TStackWalkerTest, OffAWalkIsFalseAndKeepsTheLines) {
  TStackWalker::InitSym(false);
  TStackWalker walker;
  EXPECT_FALSE(walker.GenerateCallstack());
  EXPECT_TRUE(walker.GetCollected().empty());
  TStackWalker::InitSym(true);
  EXPECT_TRUE(walker.GenerateCallstack());
  const std::list<std::string> before = walker.GetCollected();
  EXPECT_FALSE(before.empty());
  TStackWalker::InitSym(false);
  EXPECT_FALSE(walker.GenerateCallstack());
  EXPECT_EQ(walker.GetCollected(), before);
}

TEST_F(TStackWalkerTest, AnotherWalkReplacesTheLines) {
  TStackWalker walker;
  ASSERT_TRUE(walker.GenerateCallstack());
  const std::size_t count = walker.GetCollected().size();
  ASSERT_TRUE(walker.GenerateCallstack());
  EXPECT_EQ(walker.GetCollected().size(), count);
}

TEST_F(TStackWalkerTest, ACopyHasTheLinesAndIsIndependent) {
  TStackWalker walker;
  ASSERT_TRUE(walker.GenerateCallstack());
  const std::list<std::string> lines = walker.GetCollected();
  const TStackWalker copy(walker);
  TStackWalker assigned;
  EXPECT_EQ(&(assigned = walker), &assigned);
  walker = TStackWalker();
  EXPECT_TRUE(walker.GetCollected().empty());
  EXPECT_EQ(copy.GetCollected(), lines);
  EXPECT_EQ(assigned.GetCollected(), lines);
}

// What a derived class may call, whether walks are on or off.
struct Walker : TStackWalker {
  using TStackWalker::GenerateCallstackImpl;
};

TEST_F(TStackWalkerTest, TheWalkItselfGoesByTheSwitchesThatItIsGiven) {
  TStackWalker::InitSym(false);
  StackWalkerConfig config;
  config.m_includeThreadInfo = false;
  Walker walker;
  EXPECT_THAT(walker.GenerateCallstackImpl(config), AllOf(Not(testing::IsEmpty()), Each(StartsWith(" "))));
  EXPECT_TRUE(walker.GetCollected().empty());
}

struct ModuleRow {
  const char* name;
  Chain* chain;
  const char* module;
  bool hasDebugInformation;
};

class ChainTest : public TStackWalkerTest, public testing::WithParamInterface<ModuleRow> {
 protected:
  void SetUp() override {
    if (GetParam().hasDebugInformation) return;
    QILSYS_SKIP_UNDER_WINE("without debug information functions have no names");
  }
};

TEST_P(ChainTest, EachOfItsFunctionsHasItsLine) {
  const Lines lines = LinesThrough(GetParam().chain);
  for (int link = 1; link <= ChainLength; ++link) {
    const std::string line = LineOf(lines, link);
    ASSERT_NE(line, "") << "Chain" << link << " in " << testing::PrintToString(lines);
    EXPECT_THAT(line, HasSubstr(std::string(GetParam().module) + "!"));
    const std::string source = "StackChain.cpp(" + std::to_string(LineBeforeChain + link) + "): ";
    if (GetParam().hasDebugInformation) {
      EXPECT_THAT(line, HasSubstr(source));
    } else {
      EXPECT_THAT(line, MatchesRegex(QILSYS_ID " " QILSYS_ID " .*"));
    }
  }
}

TEST_P(ChainTest, FramesStandInTheirOrderAndTheWalkersOwnAreLeftOut) {
  const Lines lines = LinesThrough(GetParam().chain);
  EXPECT_THAT(lines.front(), AllOf(HasSubstr("CollectedLines.cpp("), HasSubstr("Collect")));
  std::size_t at = 0;
  for (int link = ChainLength; link >= 1; --link) {
    ++at;
    EXPECT_EQ(lines.at(at), LineOf(lines, link));
  }
}

const ModuleRow Modules[] = {
    {"InTheProgram", &InProgram::Chain1, "diagnostics_tests", true},
    {"InAModule", &InModule::Chain1, "stack_chain", true},
    {"InAModuleWithoutDebugInformation", &InPlainModule::Chain1, "stack_chain_plain", false},
};

INSTANTIATE_TEST_SUITE_P(Modules, ChainTest, testing::ValuesIn(Modules), RowName<ModuleRow>);

struct SwitchRow {
  const char* name;
  bool thread;
  bool addresses;
  bool fileName;
  bool lineNumber;
  const char* withFile;
  const char* withoutFile;
};

class SwitchesTest : public TStackWalkerTest, public testing::WithParamInterface<SwitchRow> {};

// What stands before the module; the functions' own names are those of other tests.
TEST_P(SwitchesTest, DecideWhatALineShows) {
  const SwitchRow& row = GetParam();
  Show(row.thread, row.addresses, row.fileName, row.lineNumber);
  EXPECT_THAT(LineOf(LinesThrough(&InModule::Chain1), 3),
              MatchesRegex(std::string(row.withFile) + "stack_chain!.*Chain3.*"));
  // Behind those of the visit and of the links after it.
  EXPECT_THAT(LinesThrough(&InPlainModule::Chain1).at(1 + ChainLength - 3),
              MatchesRegex(std::string(row.withoutFile) + "stack_chain_plain!.*"));
}

constexpr SwitchRow Switches[] = {
    {"All", true, true, true, true, QILSYS_ID " .*StackChain.cpp.103.: ", QILSYS_ID " " QILSYS_ID " "},
    {"NoThread", false, true, true, true, " .*StackChain.cpp.103.: ", " " QILSYS_ID " "},
    {"NoAddresses", true, false, true, true, QILSYS_ID " .*StackChain.cpp.103.: ", QILSYS_ID},
    {"NoFileName", true, true, false, true, QILSYS_ID ".103.: ", QILSYS_ID " " QILSYS_ID " "},
    {"NoLineNumber", true, true, true, false, QILSYS_ID " .*StackChain.cpp", QILSYS_ID " " QILSYS_ID " "},
    {"NeitherNameNorNumber", true, true, false, false, QILSYS_ID " " QILSYS_ID " ", QILSYS_ID " " QILSYS_ID " "},
    {"AddressesAlone", false, true, false, false, " " QILSYS_ID " ", " " QILSYS_ID " "},
    {"None", false, false, false, false, "", ""},
};

INSTANTIATE_TEST_SUITE_P(Switches, SwitchesTest, testing::ValuesIn(Switches), RowName<SwitchRow>);

TEST_F(TStackWalkerTest, WithoutFilesTheWalkersOwnFramesShow) {
  Show(false, false, false, false);
  EXPECT_THAT(LinesThrough(&InProgram::Chain1), Contains(HasSubstr("GenerateCallstack")));
}

TEST_F(TStackWalkerTest, AFrameOfAHiddenFileIsLeftOutWhateverItsLetters) {
  Lines lines;
  CallFromHiddenFile(&Collect, &lines);
  EXPECT_THAT(lines, Each(Not(HasSubstr("CallFromHiddenFile"))));
  EXPECT_THAT(lines.at(1), HasSubstr("TStackWalker_test.cpp("));
  Show(true, true, false, false);
  CallFromHiddenFile(&Collect, &lines);
  EXPECT_THAT(lines, Contains(HasSubstr("CallFromHiddenFile"))) << "without files nothing can be hidden";
}

TEST_F(TStackWalkerTest, ALineBeginsWithTheThread) {
  const auto threadOf = [](const Lines& lines) { return lines.at(0).substr(0, 18); };
  const auto wanted = [] {
    char text[32];
    std::snprintf(text, sizeof text, "0x%016llX", TSystem::ThreadID());
    return std::string(text);
  };
  EXPECT_EQ(threadOf(LinesThrough(&InProgram::Chain1)), wanted());
  std::thread([&] { EXPECT_EQ(threadOf(LinesThrough(&InProgram::Chain1)), wanted()); }).join();
}

// The way down is what compilers can't see through, or they would make a loop of it.
QILSYS_NOINLINE int Descend(int depth, Lines& lines) {
  static int (*const volatile s_down)(int, Lines&) = &Descend;
  if (depth > 0) return s_down(depth - 1, lines) + 1;
  Collect(&lines);
  return 0;
}

TEST_F(TStackWalkerTest, OfFiveHundredFramesTheInnermostTwoHundredAreCaptured) {
  Lines lines;
  ASSERT_EQ(Descend(500, lines), 500);
  // All but the few of the walker itself.
  EXPECT_GE(lines.size(), 190u);
  EXPECT_LE(lines.size(), 200u);
  EXPECT_THAT(lines.front(), HasSubstr("Collect"));
  EXPECT_THAT(Lines(lines.begin() + 1, lines.end()), Each(HasSubstr("Descend")));
}

TEST_F(TStackWalkerTest, EightThreadsWalkAtOnce) {
  constexpr int Threads = 8;
  const Lines wanted = LinesThrough(&InModule::Chain1);
  Latch start(Threads);
  std::vector<std::thread> threads;
  for (int i = 0; i < Threads; ++i) {
    threads.emplace_back([&] {
      start.ArriveAndWait();
      for (int round = 0; round < 50; ++round) {
        const Lines lines = LinesThrough(round % 2 == 0 ? &InModule::Chain1 : &InProgram::Chain1);
        for (int link = 1; round % 2 == 0 && link <= ChainLength; ++link) {
          // Behind the thread they are the same.
          ASSERT_EQ(LineOf(lines, link).substr(18), LineOf(wanted, link).substr(18));
        }
        ASSERT_NE(LineOf(lines, 1), "");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(TStackWalkerTest, SwitchesMayChangeWhileOthersWalk) {
  std::atomic<bool> isDone = false;
  std::thread other([&] {
    for (bool on = false; !isDone; on = !on) Show(on, on, on, on);
  });
  for (int round = 0; round < 200; ++round) {
    const Lines lines = LinesThrough(&InModule::Chain1);
    // A walk takes them once: with or without a thread are all of its lines.
    const bool hasThread = lines.at(0).starts_with("0x");
    for (const std::string& line : lines) ASSERT_EQ(line.starts_with("0x"), hasThread) << line;
  }
  isDone = true;
  other.join();
}

TEST_F(TStackWalkerTest, AModuleThatIsLoadedAfterTheFirstWalkIsNotKnown) {
  ASSERT_FALSE(LinesThrough(&InModule::Chain1).empty());
  const auto call =
      reinterpret_cast<void (*)(Visit, void*)>(FunctionOfModule(QILSYS_LATER_MODULE, "CallFromLaterModule"));
  ASSERT_NE(call, nullptr);
  Lines lines;
  call(&Collect, &lines);
  EXPECT_THAT(lines.at(0), HasSubstr("Collect"));
  EXPECT_THAT(lines.at(1), MatchesRegex(QILSYS_ID " " QILSYS_ID " .module name not available.!.symbol not available."));
  EXPECT_THAT(lines.at(2), HasSubstr("TStackWalker_test.cpp("));
}

}  // namespace
}  // namespace qilsys::test
