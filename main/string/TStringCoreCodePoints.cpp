// Code points: iterators, and sizes by code point.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <stdexcept>

#include "qilsys/CodePoint.h"
#include "qilsys/Unicode.h"

TStringCore::CodePointIterator TStringCore::codepoint_cbegin() const {
  return CodePointIterator(*this, isEmpty() ? -1 : 0);
}
TStringCore::CodePointIterator TStringCore::codepoint_cend() const { return CodePointIterator(*this, -1); }

TStringCore::CodePointIterator TStringCore::createFromIndex(int codeUnitIndex, int codePointIndex) const {
  if (codeUnitIndex == length() || codeUnitIndex == -1) return codepoint_cend();
  const int index = codeUnitIndex < 0 ? codeUnitIndex + length() : codeUnitIndex;
  if (index < 0 || index > length()) {
    throw std::runtime_error("TStringCore::createFromIndex codeUnitIndex is out of range.");
  }
  if (CodePoint::IsLowSurrogate(data()[index])) {
    throw std::runtime_error(
        // "begining" is spelt so on purpose: logs are searched for this text.
        "TStringCore::createFromIndex codeUnitIndex does not reference the begining of a code point.");
  }
  return CodePointIterator(this, index, index == 0 ? 0 : codePointIndex);
}

int TStringCore::subStringSizeInCodePoints(int start, int units) const {
  if (start < 0 || start >= length()) return 0;
  const int rest = length() - start;
  const int end = start + (units < 0 ? rest : std::min(units, rest));
  int count = 0;
  for (int at = start; at < end; at += std::max(CodePoint::CountCodeUnits(data() + at), 1)) ++count;
  return count;
}

int TStringCore::subStringSizeInCodeUnits(int start, int codePoints) const {
  if (start < 0 || start >= length()) return 0;
  return Unicode::SubStringSizeInCodeUnits(data(), length(), start, codePoints);
}
