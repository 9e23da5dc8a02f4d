/// The sum of two lengths of text.
#pragma once

#include <cstdint>

namespace qilsys::string {

/// Wraps in 32 bits: a sum that no string can hold comes out negative, and the resizing step then raises for it.
constexpr int SumOfLengths(int a, int b) {
  return static_cast<int>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

}  // namespace qilsys::string
