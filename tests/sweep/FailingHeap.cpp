#include "sweep/FailingHeap.h"

#include <unicode/uclean.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "qilsys/TSystem.h"

// What the linker calls the functions that it has put aside, and those in their place.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

namespace qilsys::test::sweep {
namespace {

// Threads of a pool may give blocks back while an operation under test runs.
std::atomic<long> g_liveBlocks = 0;
std::atomic<bool> g_counting = false;
// The rest is of the one thread whose requests count, and of the one that may work for it while it waits. They are known
// by their numbers: a thread_local variable may itself be made of memory.
unsigned long long g_thread = 0;
unsigned long long g_workingThread = 0;
int g_refuseFrom = 0;
Refused g_which = Refused::One;
Requests g_requests;

bool IsOfTheOperation() {
  const unsigned long long thread = TSystem::ThreadID();
  return thread == g_thread || thread == g_workingThread;
}

bool IsRefused() {
  if (!g_counting || !IsOfTheOperation()) return false;
  const int number = g_requests.asked++;
  const bool refused = g_refuseFrom >= 0 && (g_which == Refused::One ? number == g_refuseFrom : number >= g_refuseFrom);
  g_requests.refused += refused ? 1 : 0;
  return refused;
}

void* Counted(void* block) {
  g_liveBlocks += block == nullptr ? 0 : 1;
  return block;
}

void* IcuAllocate(const void*, std::size_t size) { return __wrap_malloc(size); }
void* IcuReallocate(const void*, void* block, std::size_t size) { return __wrap_realloc(block, size); }
void IcuFree(const void*, void* block) { __wrap_free(block); }

}  // namespace

void RefuseFrom(int n, Refused which) {
  g_refuseFrom = n;
  g_which = which;
  g_requests = {};
  g_thread = TSystem::ThreadID();
  g_counting = true;
}

void CountAsWorkingThread(bool does) { g_workingThread = does ? TSystem::ThreadID() : 0; }

Requests StopRefusing() {
  g_counting = false;
  return g_requests;
}

long LiveBlocks() { return g_liveBlocks; }

void TakeOverHeapOfIcu() {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(nullptr, &IcuAllocate, &IcuReallocate, &IcuFree, &status);
}

bool ReachesOperatorNew() {
  RefuseFrom(-1, Refused::One);
  ::operator delete(::operator new(1));
  return StopRefusing().asked == 1;
}

}  // namespace qilsys::test::sweep

using namespace qilsys::test::sweep;

void* __wrap_malloc(std::size_t size) { return IsRefused() ? nullptr : Counted(__real_malloc(size)); }

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return IsRefused() ? nullptr : Counted(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, std::size_t size) {
  if (IsRefused()) return nullptr;
  void* moved = __real_realloc(block, size);
  if (block == nullptr) Counted(moved);
  return moved;
}

void __wrap_free(void* block) {
  g_liveBlocks -= block == nullptr ? 0 : 1;
  __real_free(block);
}
