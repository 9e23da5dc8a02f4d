/// The free operators of TStringCore: raw text or one unit on the left, foreign operands on either side, and `+`.
///
/// Every pairing is declared by itself, so none is ever made by exchanging the operands of another: with one unit the
/// two directions differ on purpose, but for `<=>`, which mirrors.
#pragma once

#include <compare>

#include "qilsys/TStringCoreClass.h"

// ---- Raw text on the left

inline bool operator==(const TCodeUnit* a, const TStringCore& b) { return b == a; }
inline bool operator!=(const TCodeUnit* a, const TStringCore& b) { return b != a; }
inline bool operator<(const TCodeUnit* a, const TStringCore& b) { return b > a; }
inline bool operator<=(const TCodeUnit* a, const TStringCore& b) { return b >= a; }
inline bool operator>(const TCodeUnit* a, const TStringCore& b) { return b < a; }
inline bool operator>=(const TCodeUnit* a, const TStringCore& b) { return b <= a; }
inline std::weak_ordering operator<=>(const TCodeUnit* a, const TStringCore& b) { return 0 <=> (b <=> a); }

// ---- One unit on the left

inline bool operator==(TCodeUnit c, const TStringCore& s) { return s == c; }
inline bool operator!=(TCodeUnit c, const TStringCore& s) { return s != c; }
inline bool operator<(TCodeUnit c, const TStringCore& s) { return !(s < c); }
inline bool operator<=(TCodeUnit c, const TStringCore& s) { return !(s < c) && !(s == c); }
inline bool operator>(TCodeUnit c, const TStringCore& s) { return s < c || s == c; }
inline bool operator>=(TCodeUnit c, const TStringCore& s) { return s < c; }
inline std::weak_ordering operator<=>(TCodeUnit c, const TStringCore& s) { return 0 <=> (s <=> c); }

// ---- Foreign text and units, on either side

// NOLINTBEGIN(bugprone-macro-parentheses): a type can't stand in parentheses.
#define QILSYS_FOREIGN_COMPARISON(Result, op)                                             \
  template <qilsys::ForeignUnit U>                                                        \
  Result operator op(const TStringCore& a, const U* b) {                                  \
    return a op qilsys::TForeignText(b).data();                                           \
  }                                                                                       \
  template <qilsys::ForeignUnit U>                                                        \
  Result operator op(const U* a, const TStringCore& b) {                                  \
    return qilsys::TForeignText(a).data() op b;                                           \
  }                                                                                       \
  template <qilsys::ForeignUnit U>                                                        \
  Result operator op(const TStringCore& s, U c) {                                         \
    return qilsys::TForeignText(c).Visit([&](auto text) -> Result { return s op text; }); \
  }                                                                                       \
  template <qilsys::ForeignUnit U>                                                        \
  Result operator op(U c, const TStringCore& s) {                                         \
    return qilsys::TForeignText(c).Visit([&](auto text) -> Result { return text op s; }); \
  }

QILSYS_FOREIGN_COMPARISON(bool, ==)
QILSYS_FOREIGN_COMPARISON(bool, !=)
QILSYS_FOREIGN_COMPARISON(bool, <)
QILSYS_FOREIGN_COMPARISON(bool, <=)
QILSYS_FOREIGN_COMPARISON(bool, >)
QILSYS_FOREIGN_COMPARISON(bool, >=)
QILSYS_FOREIGN_COMPARISON(std::weak_ordering, <=>)

#undef QILSYS_FOREIGN_COMPARISON
// NOLINTEND(bugprone-macro-parentheses)

// ---- Concatenation: a temporary of the left operand, then append

inline TStringCore operator+(TStringCore a, const TStringCore& b) {
  a.append(b);
  return a;
}
inline TStringCore operator+(TStringCore a, const TCodeUnit* b) {
  a.append(b, -1);
  return a;
}
inline TStringCore operator+(TStringCore a, TCodeUnit c) {
  a.append(c);
  return a;
}
inline TStringCore operator+(const TCodeUnit* a, const TStringCore& b) { return TStringCore(a) + b; }
inline TStringCore operator+(TCodeUnit c, const TStringCore& b) { return TStringCore(c, 1) + b; }
template <qilsys::ForeignUnit U>
TStringCore operator+(TStringCore a, const U* b) {
  a.append(b, -1);
  return a;
}
template <qilsys::ForeignUnit U>
TStringCore operator+(TStringCore a, U c) {
  a.append(c);
  return a;
}
template <qilsys::ForeignUnit U>
TStringCore operator+(const U* a, const TStringCore& b) {
  return TStringCore(a) + b;
}
template <qilsys::ForeignUnit U>
TStringCore operator+(U c, const TStringCore& b) {
  return TStringCore(qilsys::TForeignText(c)) + b;
}
