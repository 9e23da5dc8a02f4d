// Edits of the whole text: fill, reverse, byte order mark, line endings.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <climits>

#include "qilsys/CodePoint.h"
#include "qilsys/Unicode.h"
#include "search/Search.h"
#include "transcode/LineEnds.h"
#include "transcode/UnicodeWide.h"

namespace {

constexpr TCodeUnit ByteOrderMark = 0xFEFF;
constexpr TCodeUnit CarriageReturn = 0x0D;

}  // namespace

TStringCore& TStringCore::fill(TCodeUnit c, int n) {
  if (n < 0) n = Unicode::LengthInCodePoints(constData(), 0, length());
  std::fill_n(resizeForWrite(n), n, c);
  return *this;
}

void TStringCore::reverse() {
  TCodeUnit* units = data();
  std::reverse(units, units + length());
  for (int i = 0; i + 1 < length(); ++i) {
    if (!CodePoint::IsLowSurrogate(units[i]) || !CodePoint::IsHighSurrogate(units[i + 1])) continue;
    std::swap(units[i], units[i + 1]);
    ++i;
  }
}

TStringCore& TStringCore::prependBOM() { return hasBOM() ? *this : insert(0, ByteOrderMark); }

TStringCore& TStringCore::removeBOM() { return hasBOM() ? removeAt(0, 1) : *this; }

TStringCore& TStringCore::dosToUnix() {
  if (isShared() && qilsys::search::findUnit(constData(), length(), CarriageReturn, 0) < 0) return *this;
  TCodeUnit* units = data();
  resizeForWrite(static_cast<int>(Unicode::normalizeLineEndings(units, size())));
  return *this;
}

int TStringCore::dosToUnix(TCodeUnit* text) { return text ? static_cast<int>(Unicode::normalizeLineEndings(text)) : 0; }

TStringCore& TStringCore::unixToDos() {
  const TStringCore converted = Unicode::unixToDos(constData(), size());
  const bool same = std::equal(cbegin(), cend(), converted.cbegin(), converted.cend());
  if (!isShared() || !same) *this = converted;
  return *this;
}

namespace Unicode {

TStringCore unixToDos(const TCodeUnit* text, size_t length) {
  const size_t count = qilsys::transcode::CountDosUnits(text, length);
  if (count > INT_MAX) throw TStringCore::CapacityException();
  TStringCore result;
  if (count == 0) return result;
  result.resize(static_cast<int>(count));
  qilsys::transcode::WriteDosUnits(text, length, result.data());
  return result;
}

template <qilsys::ForeignUnit U>
TStringCore unixToDos(const U* text, size_t length) {
  if (length > INT_MAX) throw TStringCore::CapacityException();
  return qilsys::transcode::WithUnits(text, static_cast<int>(length), [](const TCodeUnit* units, int n) {
    return unixToDos(units, static_cast<size_t>(n));
  });
}

template QILSYS_API TStringCore unixToDos(const TForeignUnit*, size_t);

}  // namespace Unicode
