/// Simple case folding of single units and code points, by ICU's default options.
///
/// ASCII is folded in line. The rest of the 16-bit range comes from a table that the first unit above ASCII fills, so
/// a program that never folds one never pays for it. All functions are safe from several threads.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "qilsys/TCodeUnit.h"

namespace qilsys::units {

/// The folding of all units. Most blocks of 256 units fold to themselves and share one page of zeros.
class FoldingTable {
 public:
  /// The units, in ascending order, that fold to one unit: at most `MaxUnits`, else `count` is 0 and they aren't known.
  struct Originals {
    static constexpr int MaxUnits = 4;
    int count = 0;
    TCodeUnit units[MaxUnits] = {};
  };

  /// The process-wide table, built by the first call.
  static const FoldingTable& instance() {
    const FoldingTable* table = s_instance.load(std::memory_order_acquire);
    return table != nullptr ? *table : build();
  }

  TCodeUnit fold(TCodeUnit c) const {
    return static_cast<TCodeUnit>(c + m_distances[static_cast<std::size_t>(m_pages[c >> 8] + (c & 0xFF))]);
  }

  /// What folds to `folded`, itself included; `folded` must be the folding of something.
  Originals originals(TCodeUnit folded) const;

 private:
  struct Change {
    TCodeUnit folded;
    TCodeUnit original;
    auto operator<=>(const Change&) const = default;
  };

  FoldingTable();
  void addPage(std::uint32_t page);
  static const FoldingTable& build();

  // Published with release once complete, so that the acquiring reader sees every page.
  static std::atomic<const FoldingTable*> s_instance;

  std::uint16_t m_pages[256] = {};         // where the page of a high byte starts in m_distances
  std::vector<std::uint16_t> m_distances;  // folded unit minus unit, modulo 2^16
  std::vector<Change> m_changes;           // ordered
};

/// Folds ASCII letters and leaves every other unit.
constexpr TCodeUnit foldAsciiUnit(TCodeUnit c) { return c >= 0x41 && c <= 0x5A ? static_cast<TCodeUnit>(c | 0x20) : c; }

/// Folds one unit by itself; a surrogate stands, so supplementary letters never fold this way.
inline TCodeUnit foldCodeUnit(TCodeUnit c) { return c < 0x80 ? foldAsciiUnit(c) : FoldingTable::instance().fold(c); }

/// Folds one code point; a value above 0x10FFFF stands.
char32_t foldCodePoint(char32_t c);

}  // namespace qilsys::units
