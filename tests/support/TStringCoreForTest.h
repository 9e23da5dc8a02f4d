/// The inside of TStringCore, for its own tests.
#pragma once

#include "qilsys/TStringCore.h"

struct TStringCoreForTest {
  static bool IsInline(const TStringCore& text) { return text.isInline(); }
  static int StorageState(const TStringCore& text) { return text.m_words.storageState; }
  static int References(const TStringCore& text) {
    return text.isInline() ? 0 : TStringCore::references(text.blockPointer());
  }
  static int NextCapacity(const TStringCore& text, int n, TStringCore::GrowthMode mode) {
    return text.nextCapacity(n, mode);
  }
  static void ReserveWithMode(TStringCore& text, int n, TStringCore::GrowthMode mode) { text.reserveWithMode(n, mode); }
  static TCodeUnit* ResizeForWrite(TStringCore& text, int n) { return text.resizeForWrite(n); }
  static void PromoteToBlock(TStringCore& text, int capacity) { text.promoteToBlock(capacity); }
  static void ReallocateBlock(TStringCore& text, int capacity) { text.reallocateBlock(capacity); }
  static void UnshareInto(TStringCore& text, int capacity) { text.unshareInto(capacity); }
  static void SetBlockLength(TStringCore& text, int n) { TStringCore::setBlockLength(text.blockPointer(), n); }
  static void AllocateBlock(int capacity) { TStringCore::freeBlock(TStringCore::allocateBlock(capacity, nullptr)); }
  static bool InSelf(const TStringCore& text, const TCodeUnit* p) { return text.inSelf(p); }
};
