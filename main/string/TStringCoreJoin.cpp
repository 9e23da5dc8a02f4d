// The texts of a list, joined into one.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cstdint>

TStringCore TStringCore::join(const std::vector<TStringCore>& list, const TStringCore& sep) {
  if (list.empty()) return TStringCore();
  if (list.size() == 1) return list.front();
  std::uint64_t wanted = static_cast<std::uint64_t>(list.size() - 1) * static_cast<std::uint64_t>(sep.length());
  for (const TStringCore& element : list) wanted += static_cast<std::uint64_t>(element.length());
  // In 32 bits, so that a sum beyond the limit raises as a negative capacity first.
  const auto total = static_cast<std::uint32_t>(wanted);
  TStringCore result;
  result.reserve(static_cast<int>(total));
  if (wanted >= MaxStringCapacity) throw CapacityException();
  TCodeUnit* units = result.resizeForWrite(static_cast<int>(total));
  for (const TStringCore& element : list) {
    if (&element != list.data()) units = std::copy_n(sep.data(), sep.length(), units);
    units = std::copy_n(element.data(), element.length(), units);
  }
  return result;
}

TStringCore TStringCore::join(const std::vector<TStringCore>& list, TCodeUnit sep) {
  return join(list, TStringCore(sep, 1));
}
