#include "qilsys/TSystem.h"

#include <gtest/gtest.h>

#include <boost/system/error_code.hpp>
#include <chrono>
#include <clocale>
#include <string>
#include <thread>

#include "support/NoDescriptors.h"
#include "support/OpenHandles.h"
#include "support/RowName.h"
#include "support/SystemError.h"
#include "support/Utf8.h"
#include "system/CodePage.h"
#include "system/MachineMemory.h"
#include "system/TSystem_platform.h"

using qilsys::test::SystemError;
using qilsys::test::Utf8;

namespace {

TEST(TSystemIdentity, ProcessIsTheSameEverywhere) {
  const unsigned int here = TSystem::ProcessID();
  EXPECT_NE(here, 0u);
  unsigned int there = 0;
  std::thread([&there] { there = TSystem::ProcessID(); }).join();
  EXPECT_EQ(there, here);
}

TEST(TSystemIdentity, ThreadsDiffer) {
  const unsigned long long here = TSystem::ThreadID();
  EXPECT_EQ(TSystem::ThreadID(), here);
  unsigned long long there = here;
  std::thread([&there] { there = TSystem::ThreadID(); }).join();
  EXPECT_NE(there, here);
}

// Windows counts ticks, so the first of them may be nearly over.
constexpr std::chrono::milliseconds Tick(16);

TEST(TSystemSleep, TakesThatLong) {
  const auto start = std::chrono::steady_clock::now();
  TSystem::Sleep(40);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40) - Tick);
  TSystem::Sleep(0);
}

TEST(TSystemMainThread, IsFalseWithoutACallback) { EXPECT_FALSE(TSystem::IsDesktopMainThread()); }

TEST(TSystemMainThread, AsksTheCallbackAndGivesBackTheOneBefore) {
  EXPECT_FALSE(TSystem::SetDesktopMainThreadFunc([] { return true; }));
  EXPECT_TRUE(TSystem::IsDesktopMainThread());
  const std::function<bool()> previous = TSystem::SetDesktopMainThreadFunc([] { return false; });
  ASSERT_TRUE(previous);
  EXPECT_TRUE(previous());
  EXPECT_FALSE(TSystem::IsDesktopMainThread());
  TSystem::SetDesktopMainThreadFunc(nullptr);
  EXPECT_FALSE(TSystem::IsDesktopMainThread());
}

TEST(TSystemEncoding, IsTheCharsetOfTheCodePageAndStays) {
  char const* const charset = TSystem::Local8BitEncoding();
  EXPECT_STREQ(charset, qilsys::system::CharsetOfCodePage(qilsys::system::ActiveCodePage()));
  EXPECT_EQ(TSystem::Local8BitEncoding(), charset);
  EXPECT_LT(std::string(charset).size(), 20u);
}

TEST(TSystemEncoding, LeavesTheProcessesOwnLocaleAsItIs) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  qilsys::system::ActiveCodePage();
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

TEST(TSystemMemory, FiguresFitTogether) {
  const TSystem::MemoryInfo memory = TSystem::Memory();
  EXPECT_GT(memory.m_totalPhysical, 16u * 1024 * 1024);
  EXPECT_LE(memory.m_availablePhysical, memory.m_totalPhysical);
  EXPECT_EQ(memory.m_usedPhysical, memory.m_totalPhysical - memory.m_availablePhysical);
  EXPECT_GE(memory.m_pageSize, 4096u);
  EXPECT_EQ(memory.m_pageSize & (memory.m_pageSize - 1), 0u);
  EXPECT_LE(memory.m_memoryLoad, 100u);
}

TEST(TSystemMemory, IsNothingWhereTheSystemCantBeAsked) {
  if (!qilsys::test::NoDescriptors::CanBeHad()) GTEST_SKIP() << "left out on Windows: asking it needs nothing";
  const qilsys::test::NoDescriptors none;
  const TSystem::MemoryInfo memory = TSystem::Memory();
  EXPECT_EQ(memory.m_totalPhysical, 0u);
  EXPECT_EQ(memory.m_availablePhysical, 0u);
  EXPECT_EQ(memory.m_usedPhysical, 1u);
}

struct MemoryRow {
  const char* name;
  qilsys::system::MachineMemory machine;
  std::uint64_t used;
  std::uint32_t load;
};
void PrintTo(const MemoryRow& row, std::ostream* out) { *out << row.name; }

class MemoryInfoOfMachine : public testing::TestWithParam<MemoryRow> {};

TEST_P(MemoryInfoOfMachine, Gives) {
  const TSystem::MemoryInfo memory = qilsys::system::ToMemoryInfo(GetParam().machine, 4096);
  EXPECT_EQ(memory.m_availablePhysical, GetParam().machine.available);
  EXPECT_EQ(memory.m_totalPhysical, GetParam().machine.total);
  EXPECT_EQ(memory.m_usedPhysical, GetParam().used);
  EXPECT_EQ(memory.m_memoryLoad, GetParam().load);
  EXPECT_EQ(memory.m_pageSize, 4096u);
}

INSTANTIATE_TEST_SUITE_P(Table, MemoryInfoOfMachine,
                         testing::Values(MemoryRow{"AllFree", {1000, 1000}, 1, 0},
                                         MemoryRow{"Some", {1000, 250}, 750, 75},
                                         MemoryRow{"All", {1000, 0}, 1000, 100}, MemoryRow{"Unknown", {0, 0}, 1, 0},
                                         MemoryRow{"LoadOfTheSystem", {1000, 250, 74}, 750, 74}),
                         qilsys::test::RowName<MemoryRow>);

TEST(TSystemUpTime, MovesOn) {
  const unsigned int start = TSystem::AppUpTime();
  const auto wait = std::chrono::steady_clock::now() + std::chrono::milliseconds(6);
  while (std::chrono::steady_clock::now() < wait) TSystem::Sleep(1);
  EXPECT_GE(TSystem::AppUpTime(), start + 5);
}

// Another library's way to the same texts takes a full stop off their end.
std::string WithoutFullStop(std::string text) {
  if (text.ends_with('.')) text.pop_back();
  return text;
}

TEST(TSystemLastError, HasTheTextOfTheSystem) {
  for (const SystemError error : {SystemError::InvalidHandle, SystemError::Refused}) {
    qilsys::test::SetLastErrorNumber(NumberOf(error));
    const std::string text = Utf8(TSystem::GetLastErrorString());
    const std::string wanted = boost::system::system_category().message(NumberOf(error));
    EXPECT_EQ(WithoutFullStop(text), WithoutFullStop(wanted));
    EXPECT_FALSE(text.empty());
  }
}

TEST(TSystemLastError, EndsInNoBlank) {
  qilsys::test::SetLastErrorNumber(NumberOf(SystemError::InvalidHandle));
  const std::string text = Utf8(TSystem::GetLastErrorString());
  EXPECT_EQ(text.find_last_not_of(" \r\n"), text.size() - 1);
  EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(TSystemHandles, NothingIsLeftOpen) {
  const auto askAll = [] {
    TSystem::Memory();
    TSystem::GetLastErrorString();
    TSystem::Sleep(0);
    TSystem::AppUpTime();
    qilsys::system::ActiveCodePage();
    TStringCore(u"text").toLocal8Bit();
  };
  askAll();
  const unsigned int before = qilsys::test::OpenHandles();
  for (int i = 0; i < 100; ++i) askAll();
  EXPECT_EQ(qilsys::test::OpenHandles(), before);
}

TEST(TSystemClassName, IsTakenWhole) {
  EXPECT_EQ(Utf8(TSystem::unmangleClassName("class TPathCore")), "class TPathCore");
  EXPECT_EQ(Utf8(TSystem::unmangleClassName("9TPathCore")), "9TPathCore");
  EXPECT_TRUE(TSystem::unmangleClassName(nullptr).empty());
}

}  // namespace
