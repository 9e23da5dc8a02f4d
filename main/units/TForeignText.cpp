#include "qilsys/TForeignText.h"

#include <algorithm>
#include <climits>

#include "qilsys/CodePoint.h"
#include "qilsys/TMemory.h"
#include "units/TextLength.h"
#include "units/TextLimits.h"
#include "units/Utf.h"

namespace qilsys {
namespace {

constexpr bool IsWide = sizeof(TForeignUnit) > sizeof(TCodeUnit);

char32_t ValueOf(TForeignUnit element) {
  const auto value = static_cast<char32_t>(element);
  return IsWide && value > 0x10FFFF ? CodePoint::ReplacementCharacter : value;
}

int UnitsOf(TForeignUnit element) { return IsWide ? CodePoint::CountCodeUnits(ValueOf(element)) : 1; }

/// The code point at `s`, a lone surrogate as it is, and the elements that make it.
char32_t PointAt(const TForeignUnit* s, int& elements) {
  const char32_t first = ValueOf(s[0]);
  const char32_t second = CodePoint::IsHighSurrogate(first) ? ValueOf(s[1]) : 0;
  elements = CodePoint::IsLowSurrogate(second) ? 2 : 1;
  return elements == 2 ? CodePoint::JoinSurrogates(first, second) : first;
}

/// In 64 bits: every element may take two units.
long long CountUnits(const TForeignUnit* s, int elements) {
  long long units = 0;
  for (int i = 0; i < elements; ++i) units += UnitsOf(s[i]);
  return units;
}

}  // namespace

TForeignText::TForeignText(const TForeignUnit* s, int len) : m_source(s), m_length(len) {
  if (!s) return;
  m_elements = len < 0 ? Measure(s) : len;
  m_length = m_elements;
  if constexpr (IsWide) {
    Convert(s);
  } else {
    m_units = reinterpret_cast<const TCodeUnit*>(s);
  }
}

TForeignText::TForeignText(TForeignUnit c) noexcept : m_units(m_inline), m_source(nullptr), m_elements(1) {
  TCodeUnit* end = qilsys::units::WriteUtf16(ValueOf(c), m_inline);
  *end = 0;
  m_length = static_cast<int>(end - m_inline);
}

TForeignText::~TForeignText() {
  if (m_allocated) TFree(m_allocated);
}

int TForeignText::Measure(const TForeignUnit* s, int limit) {
  return limit < 0 ? units::TerminatedLength(s) : units::TerminatedLength(s, limit);
}

void TForeignText::Convert(const TForeignUnit* s) {
  const long long units = CountUnits(s, m_elements);
  TCodeUnit* target = Reserve(units + 1);
  m_units = target;
  m_length = static_cast<int>(units);
  for (int i = 0; i < m_elements; ++i) target = qilsys::units::WriteUtf16(ValueOf(s[i]), target);
  *target = 0;
}

TCodeUnit* TForeignText::Reserve(long long units) {
  if (units <= InlineRoom) return m_inline;
  if (units > units::LengthLimit) units::ThrowCapacity();
  m_allocated = static_cast<TCodeUnit*>(TMalloc(static_cast<size_t>(units) * sizeof(TCodeUnit)));
  if (!m_allocated) units::ThrowOutOfMemory();
  return m_allocated;
}

int TForeignText::UnitIndex(int elementIndex) const noexcept {
  if (m_length == m_elements || !m_source) return elementIndex;
  if (elementIndex >= 0) {
    const int within = elementIndex < m_elements ? elementIndex : m_elements;
    const long long units = CountUnits(m_source, within) + (elementIndex - within);
    return static_cast<int>(units < INT_MAX ? units : INT_MAX);
  }
  const int fromStart = elementIndex < -m_elements ? 0 : m_elements + elementIndex;
  const long long units = CountUnits(m_source, fromStart) - m_length + (elementIndex + (m_elements - fromStart));
  return static_cast<int>(units > INT_MIN ? units : INT_MIN);
}

int TForeignText::ElementIndex(int unitIndex) const noexcept {
  if (m_length == m_elements || !m_source || unitIndex < 0) return unitIndex;
  if (unitIndex >= m_length) return m_elements + (unitIndex - m_length);
  int element = 0;
  for (int units = UnitsOf(m_source[0]); units <= unitIndex; units += UnitsOf(m_source[element])) ++element;
  return element;
}

TForeignBuffer::TForeignBuffer(TForeignUnit* text)
    : m_text(text), m_target(text), m_units(const_cast<TCodeUnit*>(m_text.data())) {}

TForeignBuffer::~TForeignBuffer() = default;

// The elements themselves move, and not what their units would make of them: a pair of surrogate elements is no single
// element, and several values have the unit U+FFFD.
int TForeignBuffer::Store(int units, int start, int unitsOfMatch) noexcept {
  if (!IsWide) return units;
  if (start < 0 || start >= m_text.elements()) return m_text.elements();
  const TCodeUnit* left = m_units + UnitIndex(start);
  const TCodeUnit* const end = m_units + units;
  int kept = start;
  for (int from = start, elements = 0; from < m_text.elements(); from += elements) {
    const char32_t codePoint = PointAt(m_target + from, elements);
    TCodeUnit wanted[2];
    const auto n = qilsys::units::WriteUtf16(codePoint, wanted) - wanted;
    if (n <= end - left && std::equal(wanted, wanted + n, left)) {
      std::copy_n(m_target + from, elements, m_target + kept);
      kept += elements;
      left += n;
    } else if (unitsOfMatch > 0) {
      m_target[kept++] = static_cast<TForeignUnit>(*left++);
    }
  }
  m_target[kept] = static_cast<TForeignUnit>(*end);
  return kept;
}

}  // namespace qilsys
