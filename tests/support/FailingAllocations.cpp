// The linker puts the function here in the place of the malloc that this program calls.
#include "support/FailingAllocations.h"

#include <climits>
#include <cstddef>
#include <new>

namespace qilsys::test {

namespace {

thread_local int t_requests = 0;
thread_local int t_failsFrom = INT_MAX;

}  // namespace

// Other linkers have no such means: there nothing is counted, and SeesOperatorNew says so.
#if defined(__GNUC__)
void* RealMalloc(std::size_t size) __asm__("__real_malloc");
void* WrappedMalloc(std::size_t size) __asm__("__wrap_malloc");

void* WrappedMalloc(std::size_t size) {
  ++t_requests;
  return t_requests >= t_failsFrom ? nullptr : RealMalloc(size);
}
#endif

FailingAllocations::FailingAllocations(int n) {
  t_requests = 0;
  t_failsFrom = n;
}

FailingAllocations::~FailingAllocations() { t_failsFrom = INT_MAX; }

int FailingAllocations::Requests() const { return t_requests; }

bool FailingAllocations::SeesOperatorNew() {
  const FailingAllocations counted(INT_MAX);
  ::operator delete(::operator new(1));
  return counted.Requests() == 1;
}

}  // namespace qilsys::test
