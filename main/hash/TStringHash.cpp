#include "qilsys/TStringHash.h"

#include "qilsys/THash.h"
#include "search/Search.h"

std::size_t std::hash<TStringCore>::operator()(const TStringCore& text) const noexcept {
  const int units = qilsys::search::lengthToNul(text.data(), text.length());
  // The length is the seed: what stands behind a NUL counts for nothing else.
  return THash64(text.data(), static_cast<std::size_t>(units) * sizeof(TCodeUnit), text.size());
}
