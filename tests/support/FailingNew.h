/// The operators `new` and `delete` of a test program that lets requests fail, one at a time.
///
/// For programs with the source FailingNew.cpp and the property QILSYS_OWN_OPERATORS, which leaves the library's out.
#pragma once

#include <new>

namespace qilsys::test {

/// While it lives, the request number `n` to an operator `new` of this thread fails, counted from 0, and no other.
class FailingNew {
 public:
  explicit FailingNew(int n);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
};

/// Runs `action` with its first request failing, then with its second, and so on until it succeeds; runs `check` after
/// each failure. Returns the number of failures.
template <class Action, class Check>
int FailOneByOne(const Action& action, const Check& check) {
  for (int n = 0;; ++n) {
    try {
      const FailingNew failing(n);
      action();
      return n;
    } catch (const std::bad_alloc&) {
      check();
    }
  }
}

}  // namespace qilsys::test
