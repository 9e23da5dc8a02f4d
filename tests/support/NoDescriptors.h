/// A program that has run out of descriptors, brought about.
#pragma once

namespace qilsys::test {

/// While it lives, this program can open nothing more, where the system has means to refuse it. What is open stays so.
class NoDescriptors {
 public:
  static bool CanBeHad();

  NoDescriptors();
  NoDescriptors(const NoDescriptors&) = delete;
  NoDescriptors& operator=(const NoDescriptors&) = delete;
  ~NoDescriptors();
};

}  // namespace qilsys::test
