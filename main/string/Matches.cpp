#include "string/Matches.h"

namespace qilsys::string {

// findStrCore takes a needle that begins with NUL for an empty one.
Matches::Matches(const TCodeUnit* needle, int length, search::CaseSensitivity cs)
    : m_needle(needle), m_length(length), m_cs(cs), m_byTable(cs != TStringOptions::CaseSensitive || needle[0] == 0) {
  if (m_byTable) search::buildFailureTable(needle, length, m_table, cs);
}

int Matches::Next(const TCodeUnit* text, int textLength, int from) const {
  if (!m_byTable) return search::findStrCore(text, textLength, m_needle, m_length, from, m_cs);
  const int at = search::kmpSearch(text + from, textLength - from, m_needle, m_length, m_table, m_cs);
  return at < 0 ? -1 : from + at;
}

}  // namespace qilsys::string
