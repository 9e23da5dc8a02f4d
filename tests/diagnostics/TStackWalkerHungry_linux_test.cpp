// Walks while the whole process is out of memory, libdw with it, and while libraries are opened: the program's own malloc
// and dlopen stand before those of the C library.
#include "qilsys/TStackWalker.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/auxv.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>

#include "support/Latch.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace {

// Which requests are refused.
enum class Heap {
  Whole,
  LacksOneBlock,  // The request of a certain number.
  HasBudget,      // What goes beyond a sum of bytes.
  HasScrapsOnly,  // What is not small, as if small blocks had been given back; and whatever the loader asks for.
};
Heap s_heap = Heap::Whole;
long g_left = 0;
bool s_isOpening = false;
bool s_hasRefused = false;

// The loader asks for a thread's variables of a library that was opened late, and ends the process if it is refused.
bool IsOfLoader(const void* caller) {
  constexpr std::size_t MostOfLoader = 0x40000;
  return reinterpret_cast<std::size_t>(caller) - getauxval(AT_BASE) < MostOfLoader;
}

bool Lacks(std::size_t size, const void* caller) {
  constexpr std::size_t Scrap = 1024;
  switch (s_heap) {
    case Heap::LacksOneBlock:
      return (s_isOpening || !IsOfLoader(caller)) && g_left-- == 0;
    case Heap::HasBudget:
      return static_cast<long>(size) > g_left;
    case Heap::HasScrapsOnly:
      return size > Scrap || IsOfLoader(caller);
    default:
      return false;
  }
}

void TakeBack(void* block) {
  if (s_heap == Heap::HasBudget) g_left += static_cast<long>(malloc_usable_size(block));
}

// What `make` gives for the block that there was, unless it is to be refused.
template <class Make>
void* Give(std::size_t size, const void* caller, void* before, Make make) {
  if (Lacks(size, caller)) {
    s_hasRefused = true;
    errno = ENOMEM;
    return nullptr;
  }
  TakeBack(before);
  void* const block = make();
  if (s_heap == Heap::HasBudget) g_left -= static_cast<long>(malloc_usable_size(block));
  return block;
}

// Where a thread that opens libdw waits until another one loads a module; and whether there is no libdw.
std::atomic<bool> g_isToMeet = false;
qilsys::test::Latch s_atOpening(1);
qilsys::test::Latch s_isLoading(1);
bool s_opensNothing = false;

const auto RealDlopen = reinterpret_cast<void* (*)(const char*, int)>(dlsym(RTLD_NEXT, "dlopen"));

}  // namespace

#define QILSYS_IN_PLACE extern "C" __attribute__((visibility("default")))

QILSYS_IN_PLACE void* malloc(std::size_t size) {
  return Give(size, __builtin_return_address(0), nullptr, [&] { return __libc_malloc(size); });
}
QILSYS_IN_PLACE void* calloc(std::size_t count, std::size_t size) {
  return Give(count * size, __builtin_return_address(0), nullptr, [&] { return __libc_calloc(count, size); });
}
QILSYS_IN_PLACE void* realloc(void* block, std::size_t size) {
  return Give(size, __builtin_return_address(0), block, [&] { return __libc_realloc(block, size); });
}
QILSYS_IN_PLACE void free(void* block) {
  TakeBack(block);
  __libc_free(block);
}
QILSYS_IN_PLACE void* dlopen(const char* file, int mode) {
  if (s_opensNothing) return nullptr;
  if (g_isToMeet) {
    s_atOpening.CountDown();
    s_isLoading.Wait();
  }
  s_isOpening = true;
  void* const library = RealDlopen(file, mode);
  s_isOpening = false;
  return library;
}

namespace {

// How a child has come out.
enum Ending { AsPromised = 10, NothingRefused = 11, ResultAndLinesDiffer = 12, NoLines = 13 };

template <class Work>
int EndingOfChild(Work work) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    _exit(work());
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// The first walk of the process on such a heap, and another one on the whole heap.
int WalkHungry(Heap heap, long left) {
  TStackWalker walker;
  g_left = left;
  s_heap = heap;
  const bool hasLines = walker.GenerateCallstack();
  s_heap = Heap::Whole;
  if (hasLines == walker.GetCollected().empty()) return ResultAndLinesDiffer;
  if (!walker.GenerateCallstack()) return NoLines;
  return s_hasRefused ? AsPromised : NothingRefused;
}

// In the end the steps are a sixteenth of the way.
void WalkEverHungrier(Heap heap, long step) {
  TStackWalker::InitSym(true);
  int ending = AsPromised;
  int walks = 0;
  for (long left = 0; ending == AsPromised; left += step + left / 16) {
    ending = EndingOfChild([&] { return WalkHungry(heap, left); });
    ASSERT_TRUE(ending == AsPromised || ending == NothingRefused) << ending << " with " << left;
    ++walks;
  }
  EXPECT_GT(walks, 50);
}

TEST(HungryTest, AWalkThatLacksOneBlockEndsWithTheLinesThatItHas) { WalkEverHungrier(Heap::LacksOneBlock, 1); }

TEST(HungryTest, AWalkThatRunsOutOfMemoryEndsWithTheLinesThatItHas) { WalkEverHungrier(Heap::HasBudget, 512); }

TEST(HungryTest, TheFirstWalkOfAThreadDoesNotEndTheProcess) {
  TStackWalker::InitSym(true);
  const auto walk = [] {
    TStackWalker walker;
    if (!walker.GenerateCallstack()) return NoLines;
    bool hasLines = false;
    std::thread([&] {
      s_heap = Heap::HasScrapsOnly;
      hasLines = walker.GenerateCallstack();
      s_heap = Heap::Whole;
    }).join();
    return hasLines == walker.GetCollected().empty() ? ResultAndLinesDiffer : AsPromised;
  };
  EXPECT_EQ(EndingOfChild(walk), AsPromised);
}

TEST(OpeningTest, WithoutLibDwLinesShowAddresses) {
  TStackWalker::InitSym(true);
  const auto walk = [] {
    s_opensNothing = true;
    TStackWalker walker;
    if (!walker.GenerateCallstack()) return NoLines;
    for (const std::string& line : walker.GetCollected()) {
      if (!line.ends_with(" (module name not available)!(symbol not available)")) return ResultAndLinesDiffer;
    }
    return AsPromised;
  };
  EXPECT_EQ(EndingOfChild(walk), AsPromised);
}

// A thread loads a module that walks, and holds the loader's lock. Another one, which is about to open libdw for its own
// first walk, must keep nothing from it.
TEST(OpeningTest, AModuleMayWalkWhileItIsLoaded) {
  TStackWalker::InitSym(true);
  const auto walk = [] {
    g_isToMeet = true;
    std::thread other([] { TStackWalker().GenerateCallstack(); });
    s_atOpening.Wait();
    g_isToMeet = false;
    void* const module = dlopen(QILSYS_WALKING_MODULE, RTLD_NOW | RTLD_LOCAL);
    other.join();
    const auto result = module ? reinterpret_cast<int (*)()>(dlsym(module, "ResultOfLoading")) : nullptr;
    return result && result() == 1 ? AsPromised : NoLines;
  };
  EXPECT_EQ(EndingOfChild(walk), AsPromised);
}

}  // namespace

QILSYS_IN_PLACE int CalledWhileLoading() {
  s_isLoading.CountDown();
  return TStackWalker().GenerateCallstack();
}
