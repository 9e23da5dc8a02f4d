/// What the foreign forms of TForeignForms.h need beyond TForeignText: positions, and text that is edited in place.
#pragma once

#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"
#include "qilsys/TForeignText.h"

/// A foreign argument with the positions in it. The caller's elements must outlive this object.
class QILSYS_API TForeignSource {
 public:
  /// `len` counts elements; a negative one means up to the NUL. Raises as TForeignText.
  explicit TForeignSource(const TForeignUnit* s, int len = -1) : m_source(s), m_asked(len), m_text(s, len) {}

  /// The elements before the NUL of `s`, at most `limit` of them where that is not negative: 0 for null.
  static int Measure(const TForeignUnit* s, int limit = -1);

  /// Null where the argument was null.
  const TCodeUnit* data() const { return m_text.data(); }
  /// In units; where the argument was null, the length that came with it.
  int length() const { return m_source ? m_text.length() : m_asked; }

  /// The unit index of an element index. A negative one counts from the end and stays negative; one past the end stays
  /// as far past it.
  int UnitIndex(int element) const;
  /// The element index of a unit index; negative ones stay as they are.
  int ElementIndex(int unit) const;

 private:
  int Elements() const;

  const TForeignUnit* m_source;
  int m_asked;
  TForeignText m_text;
};

/// A caller's NUL-terminated buffer of foreign units while a native operation edits its text. The text must not grow.
class QILSYS_API TForeignBuffer {
 public:
  explicit TForeignBuffer(TForeignUnit* text) : m_target(text), m_source(text), m_units(m_source.data(), Room()) {}

  /// The writable units, or null where the argument was null.
  TCodeUnit* data() { return m_units.data(); }
  /// As TForeignSource::UnitIndex.
  int UnitIndex(int element) const { return m_source.UnitIndex(element); }
  /// Writes `units` units and the one behind them back, and gives the number of elements before the latter.
  int Store(int units);

 private:
  class Units {
   public:
    Units(const TCodeUnit* s, int room);
    ~Units();
    Units(const Units&) = delete;
    Units& operator=(const Units&) = delete;
    TCodeUnit* data() { return m_units; }

   private:
    TCodeUnit* m_units = nullptr;
  };

  int Room() const { return m_target ? m_source.length() + 1 : 0; }

  TForeignUnit* m_target;
  TForeignSource m_source;
  Units m_units;
};

/// Calls `f` with the unit of `c` where it is one, else with its text, and gives the result.
template <class Function>
decltype(auto) VisitForeign(TForeignUnit c, Function f) {
  const TForeignText text(c);
  return text.length() == 1 ? f(text.data()[0]) : f(text.data());
}
