#include "support/StringHeaps.h"

#include "qilsys/TMemory.h"

namespace qilsys::test {
namespace {

int g_left;
int g_requests;
int g_blocks;

void* ReallocateUntilSpent(void* block, std::size_t size) {
  ++g_requests;
  if (g_left-- <= 0) return nullptr;
  g_blocks += block == nullptr ? 1 : 0;
  return TRealloc(block, size);
}

void Release(void* block) {
  --g_blocks;
  TFree(block);
}

}  // namespace

FailingStringHeap::FailingStringHeap(int n) : m_guard({&ReallocateUntilSpent, &Release}) {
  g_left = n;
  g_requests = 0;
  g_blocks = 0;
}

int FailingStringHeap::Requests() { return g_requests; }

int FailingStringHeap::Blocks() { return g_blocks; }

}  // namespace qilsys::test
