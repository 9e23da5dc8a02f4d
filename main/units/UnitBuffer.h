/// Room for units while a text is on its way from one form to another.
#pragma once

#include <cstddef>

#include "qilsys/TCodeUnit.h"
#include "qilsys/TMemory.h"
#include "units/TextLimits.h"

namespace qilsys::units {

/// Owns its units, which are not initialised. Raises TStringCore::OutOfMemoryException where there is no room.
class UnitBuffer {
 public:
  explicit UnitBuffer(std::size_t units) : m_units(static_cast<TCodeUnit*>(TMalloc(units * sizeof(TCodeUnit)))) {
    if (!m_units) ThrowOutOfMemory();
  }
  ~UnitBuffer() { TFree(m_units); }
  UnitBuffer(const UnitBuffer&) = delete;
  UnitBuffer& operator=(const UnitBuffer&) = delete;

  TCodeUnit* data() const noexcept { return m_units; }

 private:
  TCodeUnit* m_units;
};

}  // namespace qilsys::units
