#include "qilsys/KMP.h"

#include <algorithm>

#include "search/Search.h"
#include "units/TextLength.h"

namespace KMP {

StringTable::StringTable(const TCodeUnit* pattern, int length, TStringOptions::CaseSensitivity sensitivity)
    : m_pattern(pattern),
      m_patternLength(pattern == nullptr ? 0
                      : length < 0       ? qilsys::units::TerminatedLength(pattern)
                                         : length),
      m_sensitivity(sensitivity) {
  qilsys::search::buildFailureTable(m_pattern, m_patternLength, m_failureTable, m_sensitivity);
}

StringTable::StringTable(const StringTable& other) = default;

StringTable::~StringTable() = default;

StringTable& StringTable::operator=(const StringTable& other) {
  m_pattern = other.m_pattern;
  m_patternLength = other.m_patternLength;
  m_sensitivity = other.m_sensitivity;
  if (this == &other) return *this;
  const std::size_t needed = other.m_failureTable.size();
  const std::size_t capacity = m_failureTable.capacity();
  if (needed > capacity) m_failureTable.reserve(std::max(capacity + capacity / 2, needed));
  m_failureTable.assign(other.m_failureTable.begin(), other.m_failureTable.end());
  return *this;
}

}  // namespace KMP
