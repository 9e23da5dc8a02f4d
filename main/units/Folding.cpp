#include "units/Folding.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace qilsys::units {
namespace {

TCodeUnit foldByIcu(std::uint32_t c) {
  return static_cast<TCodeUnit>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

}  // namespace

std::atomic<const FoldingTable*> FoldingTable::s_instance{nullptr};

const FoldingTable& FoldingTable::build() {
  // Never destroyed: text may be compared while statics of other files are being taken down.
  static const FoldingTable Table;
  s_instance.store(&Table, std::memory_order_release);
  return Table;
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only ever made in static storage, see the members
FoldingTable::FoldingTable() {
  for (std::uint32_t c = 0; c < 0x10000; ++c) {
    const TCodeUnit folded = foldByIcu(c);
    if (folded != c) add(folded, static_cast<TCodeUnit>(c));
  }
}

// The new unit stands behind the folded one in the ring.
void FoldingTable::add(TCodeUnit folded, TCodeUnit original) {
  m_toFolded[original] = static_cast<std::uint16_t>(folded - original);
  m_toNext[original] = static_cast<std::uint16_t>(folded + m_toNext[folded] - original);
  m_toNext[folded] = static_cast<std::uint16_t>(original - folded);
}

FoldingTable::Originals FoldingTable::originals(TCodeUnit folded) const {
  Originals found;
  TCodeUnit unit = folded;
  do {
    if (found.count == Originals::MaxUnits) return {};
    TCodeUnit* const end = found.units + found.count++;
    *end = unit;
    std::rotate(std::upper_bound(found.units, end, unit), end, end + 1);
    unit = static_cast<TCodeUnit>(unit + m_toNext[unit]);
  } while (unit != folded);
  return found;
}

char32_t foldCodePoint(char32_t c) {
  if (c < 0x10000) return foldCodeUnit(static_cast<TCodeUnit>(c));
  if (c > 0x10FFFF) return c;
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

}  // namespace qilsys::units
