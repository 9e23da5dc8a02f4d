/// Text of the other unit type on its way into an operation on TCodeUnit.
#pragma once

#include <memory>

#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"

/// A text of TForeignUnit as UTF-16, for the length of one call.
///
/// Where foreign units are code points they are converted: a value above 0x10FFFF becomes U+FFFD, a surrogate value
/// passes as one unit, and the units end with a NUL. Short text stays in the object and allocates nothing. Where they
/// are 16 bits wide the caller's own units are shown, NUL-terminated or not as they came.
///
/// Raises TStringCore::CapacityException where text and terminator would not fit a TStringCore, and
/// TStringCore::OutOfMemoryException.
class QILSYS_API TForeignText {
 public:
  /// `len` counts elements of `s`; a negative one means up to the NUL. `s` may be null: data() is null then too.
  TForeignText(const TForeignUnit* s, int len = -1);
  /// One character, which may take two units.
  explicit TForeignText(TForeignUnit c);

  TForeignText(const TForeignText&) = delete;
  TForeignText& operator=(const TForeignText&) = delete;

  /// Null only if the source was null; lives as long as this object.
  const TCodeUnit* data() const { return m_data; }
  /// In UTF-16 units.
  int length() const { return m_length; }

 private:
  static constexpr int InlineUnits = 64;

  TCodeUnit* Reserve(int units);
  void Convert(const TForeignUnit* s, int len);
  void Show(const TForeignUnit* s, int len);

  const TCodeUnit* m_data = nullptr;
  int m_length = 0;
  std::unique_ptr<TCodeUnit[]> m_heap;
  TCodeUnit m_inline[InlineUnits];
};

/// The one unit of `c`, or U+FFFD if it needs two.
constexpr TCodeUnit ForeignToUnit(TForeignUnit c) {
  const auto value = static_cast<char32_t>(c);
  return static_cast<TCodeUnit>(value > 0xFFFF ? 0xFFFD : value);
}
