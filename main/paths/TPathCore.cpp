// Construction, output, comparison and joining.
#include "qilsys/TPathCore.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <utility>

#include "paths/PathParts.h"
#include "qilsys/THash.h"
#include "string/StringGrowth.h"
#include "string/StringSum.h"
#include "units/Folding.h"

using namespace qilsys::paths;

// ---- Construction and assignment

TPathCore::TPathCore(TStringCore text) : m_text(std::move(text)) {
  m_text.replace(NativeSeparator, Separator);
  if (HasTrailingSeparator(m_text) && m_text.length() != RootPathLength(m_text)) m_text.chop(1);
}

TPathCore TPathCore::MakePath(TStringCore text) {
  TPathCore path;
  path.m_text = std::move(text);
  return path;
}

TPathCore TPathCore::fromVector(const std::vector<TStringCore>& elements) {
  TPathCore path;
  for (const TStringCore& element : elements) path.Append(TPathCore(element));
  return path;
}

// ---- Output

TStringCore TPathCore::NativeString() const {
  TStringCore native = m_text;
  native.replace(Separator, NativeSeparator);
  return native;
}

std::ostream& operator<<(std::ostream& out, const TPathCore& path) { return out << path.GenericString().toStdString(); }

// ---- Joining

TPathCore& TPathCore::Append(const TPathCore& other) {
  if (IsEmpty() || other.IsEmpty() || HasTrailingSeparator(m_text) || HasLeadingSeparator(other.m_text)) {
    return Concat(other);
  }
  // A copy, since `other` may be this path.
  const TStringCore added = other.m_text;
  const int before = m_text.length();
  const int after = qilsys::string::SumOfLengths(before + 1, added.length());
  TCodeUnit* const units = qilsys::string::ResizeForWrite(m_text, after);
  units[before] = Separator;
  std::copy_n(added.constData(), added.length(), units + before + 1);
  return *this;
}

TPathCore& TPathCore::Concat(const TPathCore& other) {
  if (!other.IsEmpty()) m_text.append(other.m_text);
  return *this;
}

// ---- Hash

// Folded piece by piece, as the comparison folds, and up to a NUL, where it ends.
std::size_t std::hash<TPathCore>::operator()(const TPathCore& path) const noexcept {
  const TStringCore text = path.GenericString();
  const TCodeUnit* unit = text.constData();
  const TCodeUnit* const end = std::find(unit, text.cend(), TCodeUnit{0});
  unsigned long long sum = 0;
  while (unit != end) {
    TCodeUnit folded[256];
    const std::ptrdiff_t count = std::min<std::ptrdiff_t>(end - unit, std::ssize(folded));
    std::transform(unit, unit + count, folded, [](TCodeUnit u) { return qilsys::units::foldCodeUnit(u); });
    sum = THash64(folded, static_cast<unsigned long long>(count) * sizeof(TCodeUnit), sum);
    unit += count;
  }
  return sum;
}
