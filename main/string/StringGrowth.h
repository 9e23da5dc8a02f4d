/// The block of a string: how it is made, grows and is given up. What fails raises before anything has changed.
#pragma once

#include "qilsys/TStringCore.h"
#include "qilsys/TStringStorage.h"

namespace qilsys::string {

/// The capacity for `n` units by a mode; negative where `n` is the highest int.
int NextCapacity(const StringStorage& storage, int n, TStringOptions::GrowthMode mode);
int GeometricCapacity(int n);

/// A new block of no text, or `existing` at another capacity, its text cut to fit.
StringBlock* AllocateBlock(int capacity, StringBlock* existing);
void SetBlockLength(StringBlock* block, int n);
void FreeBlock(StringBlock* block) noexcept;

/// A block of its own in place of a shared one.
void UnshareInto(StringStorage& storage, int capacity);
/// From inline to a block; a capacity below 16 changes nothing.
void PromoteToBlock(StringStorage& storage, int capacity);
/// Another capacity for an exclusive block; one below 16 brings the text inline.
void ReallocateBlock(StringStorage& storage, int capacity);

/// The one step that every change of the length passes through; gives the writable units.
TCodeUnit* ResizeForWrite(StringStorage& storage, int n);
void ReserveWithMode(StringStorage& storage, int n, TStringOptions::GrowthMode mode);

/// The door by which the string's own sources reach its storage.
struct Inside {
  static StringStorage& StorageOf(TStringCore& text) noexcept { return text.m_storage; }
  static const StringStorage& StorageOf(const TStringCore& text) noexcept { return text.m_storage; }
};

inline TCodeUnit* ResizeForWrite(TStringCore& text, int n) { return ResizeForWrite(Inside::StorageOf(text), n); }

}  // namespace qilsys::string
