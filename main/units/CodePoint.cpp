#include "qilsys/CodePoint.h"

#include <cstddef>

namespace CodePoint {

namespace {

/// From `current` back by one unit and over the low surrogates there; null if they reach `begin`.
template <qilsys::TextUnit U>
const U* WalkBack(const U* begin, const U* current, int* units) {
  const U* unit = current - 1;
  while (!IsFirstUtf16CodeUnit(*unit)) {
    if (unit == begin) return nullptr;
    --unit;
  }
  if (units) *units = static_cast<int>(current - unit);
  return unit;
}

template <qilsys::TextUnit U>
const U* Next(const U* begin, const U* current, int length, int* nextUnits) {
  if (nextUnits) *nextUnits = 0;
  if (!current) return nullptr;
  const std::ptrdiff_t index = current - begin;
  if (index < 0 || index >= length) return nullptr;
  const int step = CountCodeUnits(current);
  if (step == 0 || step >= length - index) return nullptr;
  if (nextUnits) *nextUnits = CountCodeUnits(current + step);
  return current + step;
}

template <qilsys::TextUnit U>
const U* Previous(const U* begin, const U* current, int* units) {
  if (units) *units = 0;
  return current && current > begin ? WalkBack(begin, current, units) : nullptr;
}

template <qilsys::TextUnit U>
const U* Last(const U* text, int length, int* units) {
  if (units) *units = 0;
  return text && length >= 1 ? WalkBack(text, text + length, units) : nullptr;
}

}  // namespace

const TCodeUnit* GetNextCodePointPointer(const TCodeUnit* begin, const TCodeUnit* current, int length, int* nextUnits) {
  return Next(begin, current, length, nextUnits);
}
template <qilsys::ForeignUnit U>
const U* GetNextCodePointPointer(const U* begin, std::type_identity_t<const U*> current, int length, int* nextUnits) {
  return Next(begin, current, length, nextUnits);
}

const TCodeUnit* GetPreviousCodePointPointer(const TCodeUnit* begin, const TCodeUnit* current, int* units) {
  return Previous(begin, current, units);
}
template <qilsys::ForeignUnit U>
const U* GetPreviousCodePointPointer(const U* begin, std::type_identity_t<const U*> current, int* units) {
  return Previous(begin, current, units);
}

const TCodeUnit* GetLastCodePointPointer(const TCodeUnit* text, int length, int* units) {
  return Last(text, length, units);
}
template <qilsys::ForeignUnit U>
const U* GetLastCodePointPointer(const U* text, int length, int* units) {
  return Last(text, length, units);
}

template QILSYS_API const TForeignUnit* GetNextCodePointPointer(const TForeignUnit*, const TForeignUnit*, int, int*);
template QILSYS_API const TForeignUnit* GetPreviousCodePointPointer(const TForeignUnit*, const TForeignUnit*, int*);
template QILSYS_API const TForeignUnit* GetLastCodePointPointer(const TForeignUnit*, int, int*);

}  // namespace CodePoint
