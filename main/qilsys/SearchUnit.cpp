#include <algorithm>
#include <cstdint>

#include "qilsys/Search.h"
#include "qilsys/UnitScan.h"

namespace qilsys::search {

int unitLength(const TCodeUnit* s) {
  if (s == nullptr) return 0;
  std::int64_t length = 0;
  while (s[length] != 0) {
    if (++length >= LengthLimit) throw TStringCore::CapacityException();
  }
  return static_cast<int>(length);
}

int lengthToNul(const TCodeUnit* s, int len) {
  const int at = scanForward(0, len, IsUnit<UnitLanes>(s, 0));
  return at < 0 ? len : at;
}

int findUnit(const TCodeUnit* s, int len, TCodeUnit c, int start) {
  if (s == nullptr) return -1;
  if (len < 0) len = unitLength(s);
  if (start < 0) start += len;
  if (start < 0 || start >= len) return -1;
  return scanForward(start, len, IsUnit<UnitLanes>(s, c));
}

int findLastUnit(const TCodeUnit* s, int len, TCodeUnit c, int from) {
  if (from < 0) from = from == -1 ? len : from + len;
  if (from < 0) return -1;
  return scanBackward(std::min(from, len) + 1, IsUnit<UnitLanes>(s, c));
}

int countUnit(const TCodeUnit* s, int len, TCodeUnit c) { return scanCount(len, IsUnit<UnitLanes>(s, c)); }

}  // namespace qilsys::search
