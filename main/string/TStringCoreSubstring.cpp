// Parts and copies of a text.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cstdint>

#include "qilsys/CodePoint.h"
#include "qilsys/TStringException.h"
#include "qilsys/Unicode.h"
#include "search/Search.h"

namespace search = qilsys::search;

namespace {

// Room for `text` and as many `fill` as `width` asks for; the text is copied to `at`.
TStringCore justified(const TStringCore& text, int width, int at, TCodeUnit fill) {
  TStringCore result;
  result.resize(width);
  TCodeUnit* units = result.data();
  std::fill_n(units, width, fill);
  std::copy_n(text.data(), text.length(), units + at);
  return result;
}

}  // namespace

TStringCore TStringCore::left(int n) const {
  if (n < 1) return TStringCore();
  return n >= length() ? *this : TStringCore(data(), n);
}

TStringCore TStringCore::right(int n) const {
  if (n < 1) return TStringCore();
  return n >= length() ? *this : TStringCore(data() + (length() - n), n);
}

TStringCore TStringCore::mid(int pos, int n) const {
  if (pos < 0 || pos > length() || n == 0) return TStringCore();
  const int rest = length() - pos;
  const int count = n < 0 ? search::lengthToNul(data() + pos, rest) : std::min(n, rest);
  return pos == 0 ? left(count) : TStringCore(data() + pos, count);
}

TStringCore TStringCore::mid(CodePointIterator from, CodePointIterator to) const {
  const int first = from.codeUnitIndex;
  if (first < 0 || first >= length()) return TStringCore();
  const int last = to.codeUnitIndex < 0 ? length() : to.codeUnitIndex;
  return last > first ? mid(first, last - first) : TStringCore();
}

TStringCore TStringCore::mid(CodePointIterator from, int codePoints) const {
  const int first = from.codeUnitIndex;
  if (first < 0 || first > length() || codePoints == 0 || codePoints < -1) return TStringCore();
  return mid(first, Unicode::SubStringSizeInCodeUnits(data(), length(), first, codePoints));
}

TStringCore TStringCore::leftJustified(int width, TCodeUnit fill, bool truncate) const {
  width = std::max(width, 0);
  if (width > length()) return justified(*this, width, 0, fill);
  return truncate ? left(width) : *this;
}

TStringCore TStringCore::rightJustified(int width, TCodeUnit fill, bool truncate) const {
  width = std::max(width, 0);
  if (width > length()) return justified(*this, width, width - length(), fill);
  return truncate ? left(width) : *this;
}

TStringCore TStringCore::repeated(int n) const {
  if (n == 1) return *this;
  if (n < 2 || empty()) return TStringCore();
  const std::int64_t total = std::int64_t{length()} * n;
  TStringCore result;
  // In 32 bits the product may wrap to less than is needed; a negative one raises here, another would only when all
  // memory had been filled.
  result.reserve(static_cast<int>(static_cast<std::uint32_t>(total)));
  if (total >= MaxStringCapacity) throw CapacityException();
  result.resize(static_cast<int>(total));
  TCodeUnit* units = result.data();
  for (; n > 0; --n) units = std::copy_n(data(), length(), units);
  return result;
}

TStringCore TStringCore::reversed() const {
  TStringCore result(*this);
  result.reverse();
  return result;
}

TStringCore TStringCore::trimmed() const {
  TStringCore result(*this);
  result.trimRight();
  result.trimLeft();
  return result;
}

TStringCore TStringCore::spanIncluding(const TCodeUnit* set) const {
  const int end = findOneNotOf(set, 0);
  return end < 0 ? *this : left(end);
}

TStringCore TStringCore::spanExcluding(const TCodeUnit* set) const {
  const int end = findOneOf(set, 0);
  return end < 0 ? *this : left(end);
}
