/// A program's own operators of allocation, which the library knows nothing of. Linked with OwnOperators.cpp.
#pragma once

namespace qilsys::test {

/// While it lives, the operators give own memory, else that of the C heap.
class [[nodiscard]] OwnMemory {
 public:
  OwnMemory();
  OwnMemory(const OwnMemory&) = delete;
  OwnMemory& operator=(const OwnMemory&) = delete;
  ~OwnMemory();
};

bool IsOwn(const void* memory);

}  // namespace qilsys::test
