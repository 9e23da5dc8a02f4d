// Single units: all by vectors.
#include "search/Search.h"

#include <algorithm>
#include <cstdint>

#include "units/TextLength.h"
#include "units/UnitScan.h"

namespace qilsys::search {

int lengthToNul(const TCodeUnit* s, int len) {
  const int at = units::scanForward(0, len, units::IsUnit<units::UnitLanes>(s, 0));
  return at < 0 ? len : at;
}

int findUnit(const TCodeUnit* s, int len, TCodeUnit c, int start) {
  if (s == nullptr) return -1;
  if (len < 0) len = units::TerminatedLength(s);
  if (start < 0) start += len;
  if (start < 0 || start >= len) return -1;
  return units::scanForward(start, len, units::IsUnit<units::UnitLanes>(s, c));
}

int findLastUnit(const TCodeUnit* s, int len, TCodeUnit c, int from) {
  if (from < 0) from = from == -1 ? len : from + len;
  if (from < 0) return -1;
  return units::scanBackward(std::min(from, len) + 1, units::IsUnit<units::UnitLanes>(s, c));
}

int countUnit(const TCodeUnit* s, int len, TCodeUnit c) {
  return units::scanCount(len, units::IsUnit<units::UnitLanes>(s, c));
}

}  // namespace qilsys::search
