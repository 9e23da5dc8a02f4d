// Walks among what else a process does on Linux: forks, signals, threads that are cancelled, programs that are started.
#include "diagnostics/SymbolEngine_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "diagnostics/SymbolEngine.h"
#include "qilsys/TStackWalker.h"

namespace qilsys::test {
namespace {

using diagnostics::CapturedFrame;
using diagnostics::CaptureStack;

class WalksTest : public testing::Test {
 protected:
  WalksTest() { TStackWalker::InitSym(true); }
  ~WalksTest() override { TStackWalker::InitSym(false); }
};

// Ends by a signal where the child hangs.
int ExitCodeOf(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

pid_t ForkAndWalk() {
  const pid_t child = fork();
  if (child == 0) {
    alarm(30);
    TStackWalker walker;
    _exit(walker.GenerateCallstack() ? 0 : 1);
  }
  return child;
}

TEST_F(WalksTest, AChildThatIsForkedAmidWalksOfOtherThreadsWalks) {
  std::atomic<bool> isDone = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&] {
      TStackWalker walker;
      while (!isDone) walker.GenerateCallstack();
    });
  }
  for (int i = 0; i < 50; ++i) ASSERT_EQ(ExitCodeOf(ForkAndWalk()), 0);
  isDone = true;
  for (std::thread& thread : threads) thread.join();
}

TEST_F(WalksTest, AForkWaitsForTheThreadInside) {
  SymbolEngine& engine = SymbolEngine::Instance();
  engine.Enter();
  std::atomic<bool> isForked = false;
  std::thread other([&] {
    const pid_t child = ForkAndWalk();
    isForked = true;
    EXPECT_EQ(ExitCodeOf(child), 0);
  });
  for (int i = 0; i < 1000; ++i) std::this_thread::yield();
  EXPECT_FALSE(isForked);
  engine.Leave();
  other.join();
}

std::vector<std::string> DescriptorsKeptByPrograms() {
  std::vector<std::string> kept;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int flags = fcntl(std::stoi(entry.path().filename().string()), F_GETFD);
    std::error_code ignored;
    if (flags >= 0 && !(flags & FD_CLOEXEC))
      kept.push_back(std::filesystem::read_symlink(entry.path(), ignored).string());
  }
  return kept;
}

TEST_F(WalksTest, FilesThatAWalkOpensAreNotThoseOfProgramsThatTheProcessStarts) {
  TStackWalker walker;
  ASSERT_TRUE(walker.GenerateCallstack());
  EXPECT_THAT(DescriptorsKeptByPrograms(), testing::Each(testing::Not(testing::HasSubstr("/diagnostics_tests"))));
  EXPECT_THAT(DescriptorsKeptByPrograms(), testing::Each(testing::Not(testing::HasSubstr(".so"))));
}

std::array<CapturedFrame, 64> g_frames;
std::size_t g_count = 0;
std::uint64_t g_interrupted = 0;
sigjmp_buf g_afterFault;

// The handler of a signal may capture, though it may not walk.
void Capture(int, siginfo_t* info, void*) {
  g_interrupted = reinterpret_cast<std::uint64_t>(info->si_addr);
  g_count = CaptureStack(g_frames);
  siglongjmp(g_afterFault, 1);
}

TEST(CaptureStackTest, AFrameThatASignalHasInterruptedStandsWhereItIs) {
  struct sigaction ours {};
  ours.sa_sigaction = &Capture;
  ours.sa_flags = SA_SIGINFO;
  struct sigaction before {};
  ASSERT_EQ(sigaction(SIGILL, &ours, &before), 0);
  if (sigsetjmp(g_afterFault, 1) == 0) __builtin_trap();
  sigaction(SIGILL, &before, nullptr);
  int interrupted = 0;
  for (std::size_t i = 0; i < g_count; ++i) {
    const bool isInterrupted = g_frames[i].address == g_interrupted;
    interrupted += isInterrupted;
    EXPECT_EQ(g_frames[i].lookUp, g_frames[i].address - (isInterrupted ? 0 : 1)) << "frame " << i;
  }
  EXPECT_EQ(interrupted, 1);
}

TEST(CaptureStackTest, TakesNoMoreFramesThanThereIsRoomFor) {
  std::array<CapturedFrame, 3> frames{};
  EXPECT_EQ(CaptureStack(std::span(frames).first(2)), 2u);
  EXPECT_NE(frames[1].address, 0u);
  EXPECT_EQ(frames[2].address, 0u);
  EXPECT_EQ(CaptureStack({}), 0u);
}

}  // namespace
}  // namespace qilsys::test
