#include "units/Folding.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <limits>

namespace qilsys::units {
namespace {

constexpr std::uint32_t PageSize = 0x100;

TCodeUnit foldByIcu(std::uint32_t c) {
  return static_cast<TCodeUnit>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

}  // namespace

std::atomic<const FoldingTable*> FoldingTable::s_instance{nullptr};

const FoldingTable& FoldingTable::build() {
  // Never destroyed: text may be compared while statics of other files are being taken down.
  static const FoldingTable* const s_table = new FoldingTable;
  s_instance.store(s_table, std::memory_order_release);
  return *s_table;
}

FoldingTable::FoldingTable() : m_distances(PageSize) {
  for (std::uint32_t page = 0; page < 0x10000; page += PageSize) addPage(page);
  std::sort(m_changes.begin(), m_changes.end());
}

void FoldingTable::addPage(std::uint32_t page) {
  const std::size_t known = m_changes.size();
  for (std::uint32_t c = page; c < page + PageSize; ++c) {
    const TCodeUnit folded = foldByIcu(c);
    if (folded != c) m_changes.push_back({folded, static_cast<TCodeUnit>(c)});
  }
  if (m_changes.size() == known) return;
  m_pages[page / PageSize] = static_cast<std::uint16_t>(m_distances.size());
  m_distances.resize(m_distances.size() + PageSize);
  std::uint16_t* distances = m_distances.data() + m_pages[page / PageSize];
  for (std::size_t i = known; i < m_changes.size(); ++i) {
    const Change& change = m_changes[i];
    distances[change.original - page] = static_cast<std::uint16_t>(change.folded - change.original);
  }
}

FoldingTable::Originals FoldingTable::originals(TCodeUnit folded) const {
  Originals found;
  found.units[found.count++] = folded;
  auto change = std::lower_bound(m_changes.begin(), m_changes.end(), Change{folded, 0});
  for (; change != m_changes.end() && change->folded == folded; ++change) {
    if (found.count == Originals::MaxUnits) return {};
    found.units[found.count++] = change->original;
  }
  // The changes are ordered; only the first unit may stand in the wrong place.
  std::rotate(found.units, found.units + 1, std::lower_bound(found.units + 1, found.units + found.count, folded));
  return found;
}

char32_t foldCodePoint(char32_t c) {
  if (c < 0x10000) return foldCodeUnit(static_cast<TCodeUnit>(c));
  if (c > 0x10FFFF) return c;
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

}  // namespace qilsys::units
