/// Heaps that stand in for that of strings while a test runs.
#pragma once

#include <cstddef>

#include "string/StringHeap.h"

namespace qilsys::test {

/// Puts two functions in place of the heap of strings while it lives.
class StringHeapGuard {
 public:
  explicit StringHeapGuard(const string::StringHeap& heap) : m_kept(string::g_stringHeap) {
    string::g_stringHeap = heap;
  }
  ~StringHeapGuard() { string::g_stringHeap = m_kept; }
  StringHeapGuard(const StringHeapGuard&) = delete;
  StringHeapGuard& operator=(const StringHeapGuard&) = delete;

 private:
  string::StringHeap m_kept;
};

/// The real heap, counted, which gives nothing from the `n`-th request on.
class FailingStringHeap {
 public:
  explicit FailingStringHeap(int n);
  /// The requests so far, failed ones included.
  static int Requests();
  /// The blocks that are out, those from before this heap not counted.
  static int Blocks();

 private:
  StringHeapGuard m_guard;
};

/// Room for the longest text, of which only the pages that are touched exist. Only for strings made and ended while it
/// lives.
class LazyStringHeap {
 public:
  LazyStringHeap();

 private:
  StringHeapGuard m_guard;
};

/// Memory of `size` bytes that all hold `fill` but for the last eight, which are 0. It takes next to no room.
class RepeatedBytes {
 public:
  RepeatedBytes(std::size_t size, char fill);
  ~RepeatedBytes();
  RepeatedBytes(const RepeatedBytes&) = delete;
  RepeatedBytes& operator=(const RepeatedBytes&) = delete;
  char* data() const { return m_data; }

 private:
  std::size_t m_size;
  char* m_data;
};

}  // namespace qilsys::test
