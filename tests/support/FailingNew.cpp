#include "support/FailingNew.h"

#include <cstdlib>

#include "qilsys/TMemory.h"

namespace qilsys::test {
namespace {

constexpr int Never = -1;
thread_local int t_requestsLeft = Never;

bool Fails() { return t_requestsLeft != Never && t_requestsLeft-- == 0; }

}  // namespace

FailingNew::FailingNew(int n) { t_requestsLeft = n; }
FailingNew::~FailingNew() { t_requestsLeft = Never; }

void* New(std::size_t size) {
  void* block = Fails() ? nullptr : TMalloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace qilsys::test

void* operator new(std::size_t size) { return qilsys::test::New(size); }
void* operator new[](std::size_t size) { return qilsys::test::New(size); }
void operator delete(void* block) noexcept { TFree(block); }
void operator delete[](void* block) noexcept { TFree(block); }
void operator delete(void* block, std::size_t) noexcept { TFree(block); }
void operator delete[](void* block, std::size_t) noexcept { TFree(block); }
