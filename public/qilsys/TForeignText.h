/// A text or single unit of the platform's other unit type, turned into TCodeUnit. This is the one bridge by which the
/// foreign form of an operation reaches its native form; see TCodeUnit.h.
#pragma once

#include <concepts>

#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"

namespace qilsys {

/// True for `char` alone: a template on it takes UTF-8 text beside a native form without making `nullptr` ambiguous.
template <class T>
concept NarrowUnit = std::same_as<T, char>;

/// The converted text of one argument, NUL-terminated, alive as long as this object. Where both unit types have 16 bits
/// the units are those of the argument itself; otherwise each element is a code point: one above U+10FFFF becomes
/// U+FFFD and a surrogate value passes as one unit. Never null-tests for the caller: null stays null.
class QILSYS_API TForeignText {
 public:
  /// Converts `len` elements of `s`, or up to its NUL where `len` is negative. Raises TStringCore::CapacityException
  /// where the result would exceed the string limit, TStringCore::OutOfMemoryException where memory ends.
  explicit TForeignText(const TForeignUnit* s, int len = -1);
  /// One element: a text of one or two units.
  explicit TForeignText(TForeignUnit c) noexcept;
  ~TForeignText();
  TForeignText(const TForeignText&) = delete;
  TForeignText& operator=(const TForeignText&) = delete;

  /// The elements of `s` before its NUL, at most `limit` of them where that is not negative: 0 for null.
  static int Measure(const TForeignUnit* s, int limit = -1);

  /// The units, or null where the argument was null.
  const TCodeUnit* data() const noexcept { return m_units; }
  /// The number of units; where the argument was null, the length that came with it.
  int length() const noexcept { return m_length; }
  /// The number of elements that were converted.
  int elements() const noexcept { return m_elements; }

  /// The unit index of an element index. A negative one counts from the end and stays negative; one past the end
  /// stays as far past it.
  int UnitIndex(int elementIndex) const noexcept;
  /// The element index of a unit index; -1 stays -1.
  int ElementIndex(int unitIndex) const noexcept;

  /// Calls `f` with the unit where the text is one unit, else with the text, and gives its result.
  template <class Function>
  decltype(auto) Visit(Function f) const {
    return m_length == 1 ? f(m_units[0]) : f(m_units);
  }

 private:
  static constexpr int InlineRoom = 32;

  void Convert(const TForeignUnit* s);
  TCodeUnit* Reserve(long long units);

  const TCodeUnit* m_units = nullptr;
  TCodeUnit* m_allocated = nullptr;
  const TForeignUnit* m_source = nullptr;
  int m_length = 0;
  int m_elements = 0;
  TCodeUnit m_inline[InlineRoom];
};

/// A caller's writable NUL-terminated buffer of foreign units while a native operation edits its text in place.
class QILSYS_API TForeignBuffer {
 public:
  explicit TForeignBuffer(TForeignUnit* text);
  ~TForeignBuffer();
  TForeignBuffer(const TForeignBuffer&) = delete;
  TForeignBuffer& operator=(const TForeignBuffer&) = delete;

  /// The writable units, or null where the argument was null.
  TCodeUnit* data() noexcept { return m_units; }
  /// As TForeignText::UnitIndex.
  int UnitIndex(int elementIndex) const noexcept { return m_text.UnitIndex(elementIndex); }
  /// Takes over what an edit from element `start` on has left, `units` units in all: elements that it did not match
  /// stay as they are, and each match of one code point becomes `unitsOfMatch` units, 0 or 1. Then writes the unit
  /// behind them and gives the elements before it.
  int Store(int units, int start, int unitsOfMatch) noexcept;

 private:
  TForeignText m_text;
  TForeignUnit* m_target;
  TCodeUnit* m_units;
};

/// The unit of one foreign element; U+FFFD where it would need two.
template <ForeignUnit U>
TCodeUnit ForeignToUnit(U c) noexcept {
  if constexpr (sizeof(U) > sizeof(TCodeUnit)) {
    return static_cast<char32_t>(c) > 0xFFFF ? TCodeUnit{0xFFFD} : static_cast<TCodeUnit>(c);
  } else {
    return static_cast<TCodeUnit>(c);
  }
}

}  // namespace qilsys
