/// Strings as keys of the standard library's hashed containers.
#pragma once

#include <cstddef>
#include <functional>

#include "qilsys/Export.h"
#include "qilsys/TStringCore.h"

/// Strings that compare equal hash equal: like operator==, this takes in the length, and the units up to the first NUL
/// only. The result depends on the text alone, the same in every run.
template <>
struct std::hash<TStringCore> {
  QILSYS_API std::size_t operator()(const TStringCore& text) const noexcept;
};
