// Comparison and its operators.
#include "qilsys/TStringCore.h"

#include "search/Search.h"

namespace search = qilsys::search;

int TStringCore::compare(const TStringCore& other, CaseSensitivity cs) const {
  return search::compareText(data(), length(), other.data(), other.length(), cs);
}

int TStringCore::compare(const TCodeUnit* other, CaseSensitivity cs) const {
  return search::compareText(data(), other, cs);
}

int TStringCore::compare(const TCodeUnit* a, const TCodeUnit* b, CaseSensitivity cs) {
  return search::compareText(a, b, cs);
}

int TStringCore::compareN(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs) {
  return search::compareN(a, b, n, cs);
}

// Only these two look at the lengths; what follows an embedded NUL counts for nothing in any of them.
bool TStringCore::operator==(const TStringCore& other) const {
  if (length() != other.length()) return false;
  return data() == other.data() || search::equalUpToNul(data(), other.data(), length(), CaseSensitive);
}
bool TStringCore::operator!=(const TStringCore& other) const { return !(*this == other); }
bool TStringCore::operator<(const TStringCore& other) const { return compare(other) < 0; }
bool TStringCore::operator<=(const TStringCore& other) const { return compare(other) <= 0; }
bool TStringCore::operator>(const TStringCore& other) const { return compare(other) > 0; }
bool TStringCore::operator>=(const TStringCore& other) const { return compare(other) >= 0; }

bool TStringCore::operator==(const TCodeUnit* other) const { return compare(other) == 0; }
bool TStringCore::operator!=(const TCodeUnit* other) const { return compare(other) != 0; }
bool TStringCore::operator<(const TCodeUnit* other) const { return compare(other) < 0; }
bool TStringCore::operator<=(const TCodeUnit* other) const { return compare(other) <= 0; }
bool TStringCore::operator>(const TCodeUnit* other) const { return compare(other) > 0; }
bool TStringCore::operator>=(const TCodeUnit* other) const { return compare(other) >= 0; }

bool TStringCore::operator==(TCodeUnit c) const { return length() == 1 && *data() == c; }
bool TStringCore::operator!=(TCodeUnit c) const { return !(*this == c); }
bool TStringCore::operator<(TCodeUnit c) const { return empty() || *data() < c; }
bool TStringCore::operator<=(TCodeUnit c) const { return *this < c || *this == c; }
bool TStringCore::operator>(TCodeUnit c) const { return !(*this < c) && !(*this == c); }
bool TStringCore::operator>=(TCodeUnit c) const { return !(*this < c); }
std::weak_ordering TStringCore::operator<=>(TCodeUnit c) const {
  if (*this < c) return std::weak_ordering::less;
  return *this == c ? std::weak_ordering::equivalent : std::weak_ordering::greater;
}
