/// The inside of TStringCore, for its own tests.
#pragma once

#include "qilsys/TStringCore.h"
#include "string/OwnText.h"
#include "string/StringGrowth.h"

namespace qilsys::test {

struct TStringCoreForTest {
  static StringStorage& Storage(TStringCore& text) { return string::Inside::StorageOf(text); }
  static const StringStorage& Storage(const TStringCore& text) { return string::Inside::StorageOf(text); }

  static bool IsInline(const TStringCore& text) { return Storage(text).isInline(); }
  static int References(const TStringCore& text) {
    return IsInline(text) ? 0 : Storage(text).blockPointer()->references();
  }
  static int NextCapacity(const TStringCore& text, int n, TStringCore::GrowthMode mode) {
    return string::NextCapacity(Storage(text), n, mode);
  }
  static void ReserveWithMode(TStringCore& text, int n, TStringCore::GrowthMode mode) {
    string::ReserveWithMode(Storage(text), n, mode);
  }
  static TCodeUnit* ResizeForWrite(TStringCore& text, int n) { return string::ResizeForWrite(text, n); }
  static void PromoteToBlock(TStringCore& text, int capacity) { string::PromoteToBlock(Storage(text), capacity); }
  static void ReallocateBlock(TStringCore& text, int capacity) { string::ReallocateBlock(Storage(text), capacity); }
  static void UnshareInto(TStringCore& text, int capacity) { string::UnshareInto(Storage(text), capacity); }
  static void SetBlockLength(TStringCore& text, int n) { string::SetBlockLength(Storage(text).blockPointer(), n); }
  static void AllocateBlock(int capacity) { string::FreeBlock(string::AllocateBlock(capacity, nullptr)); }
  static bool InSelf(const TStringCore& text, const TCodeUnit* p) { return string::InSelf(text, p); }
};

}  // namespace qilsys::test
