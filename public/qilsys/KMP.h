/// A pattern prepared for searching by Knuth-Morris-Pratt.
#pragma once

#include <vector>

#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"
#include "qilsys/TStringOptions.h"

namespace KMP {

/// A value: copies have tables of their own but look at the same pattern, which is not owned and must outlive them.
/// Reading is safe from several threads.
class QILSYS_API StringTable {
 public:
  /// Prepares `length` units of `pattern`, up to its NUL where `length` is negative; null gives an empty table. Raises
  /// TStringCore::CapacityException where the measured length is beyond the string limit.
  StringTable(const TCodeUnit* pattern, int length, TStringOptions::CaseSensitivity sensitivity);
  StringTable(const StringTable& other);
  /// Keeps a table that is large enough; a larger one grows to at least half as much again.
  StringTable& operator=(const StringTable& other);
  ~StringTable();

  const TCodeUnit* pattern() const noexcept { return m_pattern; }
  int patternLength() const noexcept { return m_patternLength; }
  TStringOptions::CaseSensitivity sensitivity() const noexcept { return m_sensitivity; }
  /// For each prefix of the pattern the index of the last unit of its longest proper border, -1 for none.
  const std::vector<int>& failureTable() const noexcept { return m_failureTable; }

 private:
  const TCodeUnit* m_pattern;
  int m_patternLength;
  TStringOptions::CaseSensitivity m_sensitivity;
  std::vector<int> m_failureTable;
};

}  // namespace KMP
