/// A heap that gives nothing, for the thread that asks for it: malloc as the program's own code calls it, and with it
/// TMalloc and the global operator new, which are built on it. For programs that `qilsys_wrap_allocations` prepares.
#pragma once

namespace qilsys::test {

/// While it lives, the requests of this thread are counted, and from the `n`-th on they fail.
class FailingAllocations {
 public:
  explicit FailingAllocations(int n);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  /// The requests since it was made, failed ones included.
  int Requests() const;

  /// False where another operator new has won, as under a sanitizer, and where the linker has no means, as under MSVC.
  static bool SeesOperatorNew();
};

}  // namespace qilsys::test
