/// Simple case folding of single units and code points, by ICU's default options.
///
/// ASCII is folded in line. The rest of the 16-bit range comes from a table that the first unit above ASCII fills, so
/// a program that never folds one never pays for it. It stands in static storage, so filling it can't fail. All functions
/// are safe from several threads.
#pragma once

#include <atomic>
#include <cstdint>

#include "qilsys/TCodeUnit.h"

namespace qilsys::units {

/// The folding of all units. Its memory is zeros until it is filled, and stays so where units fold to themselves: pages
/// of the system that hold no others are never touched.
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

  TCodeUnit fold(TCodeUnit c) const { return static_cast<TCodeUnit>(c + m_toFolded[c]); }

  /// What folds to `folded`, itself included; `folded` must be the folding of something.
  Originals originals(TCodeUnit folded) const;

 private:
  FoldingTable();
  void add(TCodeUnit folded, TCodeUnit original);
  static const FoldingTable& build();

  // Published with release once complete, so that the acquiring reader sees all of it.
  static std::atomic<const FoldingTable*> s_instance;

  // Distances are modulo 2^16. Nothing but the zeros of static storage initialises them.
  std::uint16_t m_toFolded[0x10000];
  std::uint16_t m_toNext[0x10000];  // in the ring of the units that fold to the same
};

/// Folds ASCII letters and leaves every other unit.
constexpr TCodeUnit foldAsciiUnit(TCodeUnit c) { return c >= 0x41 && c <= 0x5A ? static_cast<TCodeUnit>(c | 0x20) : c; }

/// Folds one unit by itself; a surrogate stands, so supplementary letters never fold this way.
inline TCodeUnit foldCodeUnit(TCodeUnit c) { return c < 0x80 ? foldAsciiUnit(c) : FoldingTable::instance().fold(c); }

/// Folds one code point; a value above 0x10FFFF stands.
char32_t foldCodePoint(char32_t c);

}  // namespace qilsys::units
