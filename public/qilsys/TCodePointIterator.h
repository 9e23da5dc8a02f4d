/// Walks a string by code point.
#pragma once

#include <cstddef>
#include <iterator>

#include "qilsys/CodePoint.h"
#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"

namespace CodePoint::detail {

[[noreturn]] QILSYS_API void ThrowPositionOutOfRange(int position);
[[noreturn]] QILSYS_API void ThrowIncrementPastEnd();
[[noreturn]] QILSYS_API void ThrowDecrementPastBegin();
[[noreturn]] QILSYS_API void ThrowOtherString(const char* operation);

}  // namespace CodePoint::detail

/// A position in a TString, on the first unit of a code point. The end has both indices -1.
///
/// Any change to the string makes it invalid. Misuse raises std::runtime_error. It shares the string's rules for
/// threads.
template <class TString>
class TConstCodePointIterator {
 public:
  using iterator_category = std::bidirectional_iterator_tag;
  using value_type = char32_t;
  using difference_type = std::ptrdiff_t;
  using pointer = const char32_t*;
  using reference = char32_t;

  TConstCodePointIterator() = default;
  /// On the code point number `position`, the end if there are not so many; -1 gives the end, below that it raises.
  explicit TConstCodePointIterator(const TString& string, int position = 0);
  TConstCodePointIterator(const TString* string, int unitIndex, int pointIndex)
      : codePointIndex(pointIndex), codeUnitIndex(unitIndex), owner(string) {}

  /// The code point here, a lone surrogate as U+FFFD; 0 at the end.
  char32_t operator*() const {
    return codeUnitIndex < 0 ? 0 : CodePoint::GetCodePoint(owner->constData() + codeUnitIndex);
  }

  /// Raises at the end. On a low surrogate the walk ends, whatever follows.
  TConstCodePointIterator& operator++();
  TConstCodePointIterator operator++(int);
  /// Raises on the first code point, and at the end of empty text, whose unit index is 0 then. From the end, `codePointIndex` stays -1 for good, unless the first is reached.
  TConstCodePointIterator& operator--();
  TConstCodePointIterator operator--(int);
  /// A copy moved by `n` code points, back for a negative `n`.
  TConstCodePointIterator operator+(int n) const;
  TConstCodePointIterator operator-(int n) const;

  /// Compares unit indices. Raises unless both strings show the same units, as those do that share a block.
  bool operator==(const TConstCodePointIterator& other) const;
  bool operator!=(const TConstCodePointIterator& other) const;

  /// Number of the code point in the text; -1 where it is not known, and at the end.
  int codePointIndex = -1;
  /// Index of the first unit; -1 at the end.
  int codeUnitIndex = -1;
  const TString* owner = nullptr;

 private:
  void Step(long long count);
  void SetEnd() { codePointIndex = codeUnitIndex = -1; }
  bool SameString(const TConstCodePointIterator& other) const;
};

template <class TString>
TConstCodePointIterator<TString>::TConstCodePointIterator(const TString& string, int position) : owner(&string) {
  if (position < -1) CodePoint::detail::ThrowPositionOutOfRange(position);
  if (position < 0 || string.length() == 0) return;
  codePointIndex = codeUnitIndex = 0;
  for (; position > 0 && codeUnitIndex >= 0; --position) ++*this;
}

template <class TString>
TConstCodePointIterator<TString>& TConstCodePointIterator<TString>::operator++() {
  if (codeUnitIndex < 0) CodePoint::detail::ThrowIncrementPastEnd();
  const TCodeUnit* text = owner->constData();
  const TCodeUnit* next = CodePoint::GetNextCodePointPointer(text, text + codeUnitIndex, owner->length());
  if (next) {
    codeUnitIndex = static_cast<int>(next - text);
    if (codePointIndex >= 0) ++codePointIndex;
  } else {
    SetEnd();
  }
  return *this;
}

template <class TString>
TConstCodePointIterator<TString> TConstCodePointIterator<TString>::operator++(int) {
  TConstCodePointIterator before = *this;
  ++*this;
  return before;
}

template <class TString>
TConstCodePointIterator<TString>& TConstCodePointIterator<TString>::operator--() {
  if (codeUnitIndex < 0) codeUnitIndex = owner ? owner->length() : 0;
  if (codeUnitIndex < 1) CodePoint::detail::ThrowDecrementPastBegin();
  const TCodeUnit* text = owner->constData();
  const TCodeUnit* previous = CodePoint::GetPreviousCodePointPointer(text, text + codeUnitIndex);
  if (previous && previous > text) {
    codeUnitIndex = static_cast<int>(previous - text);
    if (codePointIndex >= 0) --codePointIndex;
  } else {
    codePointIndex = codeUnitIndex = 0;
  }
  return *this;
}

template <class TString>
TConstCodePointIterator<TString> TConstCodePointIterator<TString>::operator--(int) {
  TConstCodePointIterator before = *this;
  --*this;
  return before;
}

template <class TString>
TConstCodePointIterator<TString> TConstCodePointIterator<TString>::operator+(int n) const {
  TConstCodePointIterator moved = *this;
  moved.Step(n);
  return moved;
}

template <class TString>
TConstCodePointIterator<TString> TConstCodePointIterator<TString>::operator-(int n) const {
  TConstCodePointIterator moved = *this;
  // In 64 bits: the most negative int has no opposite of its own type.
  moved.Step(-static_cast<long long>(n));
  return moved;
}

template <class TString>
bool TConstCodePointIterator<TString>::operator==(const TConstCodePointIterator& other) const {
  if (!SameString(other)) CodePoint::detail::ThrowOtherString("==");
  return codeUnitIndex == other.codeUnitIndex;
}

template <class TString>
bool TConstCodePointIterator<TString>::operator!=(const TConstCodePointIterator& other) const {
  if (!SameString(other)) CodePoint::detail::ThrowOtherString("!=");
  return codeUnitIndex != other.codeUnitIndex;
}

template <class TString>
void TConstCodePointIterator<TString>::Step(long long count) {
  for (; count > 0; --count) ++*this;
  for (; count < 0; ++count) --*this;
}

template <class TString>
bool TConstCodePointIterator<TString>::SameString(const TConstCodePointIterator& other) const {
  if (!owner || !other.owner) return owner == other.owner;
  return owner->constData() == other.owner->constData();
}
