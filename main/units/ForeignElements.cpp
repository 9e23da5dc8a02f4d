#include "units/ForeignElements.h"

#include "qilsys/CodePoint.h"

namespace qilsys::units {

namespace {

/// True if the unit and the next one make one element.
bool IsPair(const TCodeUnit* unit, const TCodeUnit* end) {
  return sizeof(TForeignUnit) > sizeof(TCodeUnit) && end - unit > 1 && CodePoint::IsHighSurrogate(unit[0]) &&
         CodePoint::IsLowSurrogate(unit[1]);
}

}  // namespace

int StoreElements(const TCodeUnit* units, int length, TForeignUnit* target, int capacity) {
  const TCodeUnit* const end = units + length;
  int count = 0;
  for (const TCodeUnit* unit = units; unit < end; ++count) {
    const bool pair = IsPair(unit, end);
    const char32_t value = pair ? CodePoint::JoinSurrogates(unit[0], unit[1]) : *unit;
    if (count < capacity) target[count] = static_cast<TForeignUnit>(value);
    unit += pair ? 2 : 1;
  }
  return count;
}

}  // namespace qilsys::units
