// Walks while the whole process is out of memory, libdw with it: the program's own malloc stands before the C library's.
#include "qilsys/TStackWalker.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <sys/auxv.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <string>
#include <thread>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
}

namespace {

// While the loader opens a library its requests are like others. Else they are for a thread's variables of one, where a
// refusal is the end of the process.
bool s_isOpening = false;
bool s_sparesLoader = false;

bool IsOfLoader(const void* caller) {
  constexpr std::size_t MostOfLoader = 0x40000;
  return reinterpret_cast<std::size_t>(caller) - getauxval(AT_BASE) < MostOfLoader;
}

// Requests are counted while this is not negative, and refused from this number on.
int s_firstRefused = -1;
bool s_onlyOne = false;
int s_requests = 0;

// What is small is found in blocks that have been given back, all but the loader's.
bool s_hasScrapsOnly = false;

bool IsRefused(const void* caller, std::size_t size) {
  constexpr std::size_t Scrap = 1024;
  if (s_hasScrapsOnly) return size > Scrap || IsOfLoader(caller);
  if (s_firstRefused < 0 || (s_sparesLoader && !s_isOpening && IsOfLoader(caller))) return false;
  const int number = s_requests++;
  const bool isRefused = s_onlyOne ? number == s_firstRefused : number >= s_firstRefused;
  if (isRefused) errno = ENOMEM;
  return isRefused;
}

}  // namespace

extern "C" void* malloc(std::size_t size) {
  return IsRefused(__builtin_return_address(0), size) ? nullptr : __libc_malloc(size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
  return IsRefused(__builtin_return_address(0), count * size) ? nullptr : __libc_calloc(count, size);
}
extern "C" void* realloc(void* block, std::size_t size) {
  return IsRefused(__builtin_return_address(0), size) ? nullptr : __libc_realloc(block, size);
}
// The library's call of it comes here.
extern "C" void* dlopen(const char* file, int mode) {
  static const auto s_dlopen = reinterpret_cast<void* (*)(const char*, int)>(dlsym(RTLD_NEXT, "dlopen"));
  s_isOpening = true;
  void* const library = s_dlopen(file, mode);
  s_isOpening = false;
  return library;
}

namespace {

enum Ending { Refused = 10, NothingRefused = 11, ResultAndLinesDiffer = 12, NoLinesLater = 13 };

// The first walk of the process with requests refused, and another one with memory.
int WalkHungry(int firstRefused, bool onlyOne) {
  alarm(60);
  TStackWalker walker;
  s_requests = 0;
  s_onlyOne = onlyOne;
  s_sparesLoader = true;
  s_firstRefused = firstRefused;
  const bool hasLines = walker.GenerateCallstack();
  s_firstRefused = -1;
  if (hasLines == walker.GetCollected().empty()) return ResultAndLinesDiffer;
  if (!walker.GenerateCallstack()) return NoLinesLater;
  return s_requests > firstRefused ? Refused : NothingRefused;
}

template <class Work>
int EndingOfChild(Work work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

class HungryTest : public testing::TestWithParam<bool> {};

// A walk asks some thousands of times; in the end the steps are a sixteenth of the way.
TEST_P(HungryTest, AWalkEndsWithTheLinesThatItHas) {
  TStackWalker::InitSym(true);
  int ending = Refused;
  int walks = 0;
  for (int first = 0; ending == Refused; first += 1 + first / 16) {
    ending = EndingOfChild([&] { return WalkHungry(first, GetParam()); });
    ASSERT_TRUE(ending == Refused || ending == NothingRefused) << "request " << first << ": " << ending;
    ++walks;
  }
  EXPECT_GT(walks, 50);
}

INSTANTIATE_TEST_SUITE_P(Requests, HungryTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "OneIsRefused" : "AllAreRefusedAfterIt"; });

// A walk of a thread that has not stepped into libdw before, and for which the loader would end the process.
int WalkOnScraps() {
  alarm(60);
  TStackWalker walker;
  if (!walker.GenerateCallstack()) return NoLinesLater;
  bool hasLines = false;
  std::thread([&] {
    s_hasScrapsOnly = true;
    hasLines = walker.GenerateCallstack();
    s_hasScrapsOnly = false;
  }).join();
  return hasLines == walker.GetCollected().empty() ? ResultAndLinesDiffer : Refused;
}

TEST(ScrapsTest, AThreadsFirstWalkDoesNotEndTheProcess) {
  TStackWalker::InitSym(true);
  EXPECT_EQ(EndingOfChild(&WalkOnScraps), Refused);
}

}  // namespace
