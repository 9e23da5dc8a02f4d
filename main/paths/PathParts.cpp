#include "paths/PathParts.h"

#include <algorithm>

#include "qilsys/TCType.h"
#include "qilsys/TStringCore.h"

namespace qilsys::paths {

namespace {

constexpr TCodeUnit Colon = 58;
constexpr TCodeUnit Dot = 46;
constexpr TCodeUnit QuestionMark = 63;

constexpr TCodeUnit ExtendedMark[] = {'/', '/', '?', '/'};
constexpr int ExtendedLength = 4;
// Stands at 3, so that the two make "//?/UNC/".
constexpr TCodeUnit ShareMark[] = {'/', 'U', 'N', 'C', '/'};
constexpr int ExtendedShareLength = 8;

/// The first unit from `from` on that is another one.
int FindOther(const TStringCore& path, TCodeUnit unit, int from) {
  const auto* const found = std::find_if(path.cbegin() + from, path.cend(), [unit](TCodeUnit u) { return u != unit; });
  return found == path.cend() ? -1 : static_cast<int>(found - path.cbegin());
}

/// Where the name that begins at `from` ends: at the next separator, or with the path.
int EndOfName(const TStringCore& path, int from) {
  const int separator = path.indexOf(Separator, from);
  return separator < 0 ? path.length() : separator;
}

bool IsDriveAt(const TStringCore& path, int position) {
  const TCodeUnit* const units = path.constData() + position;
  return path.length() >= position + 2 && units[1] == Colon && TCType::isAlpha(units[0]);
}

bool HasShareMark(const TStringCore& path) {
  return path.length() >= ExtendedShareLength &&
         TStringCore::compareN(path.constData() + 3, ShareMark, 5, TStringCore::CaseInsensitive) == 0;
}

}  // namespace

bool HasLeadingSeparator(const TStringCore& path) { return *path.constData() == Separator; }

bool HasTrailingSeparator(const TStringCore& path) { return !path.empty() && path.back() == Separator; }

bool IsExtendedLength(const TStringCore& path) {
  return path.length() >= ExtendedLength && TStringCore::compareN(path.constData(), ExtendedMark, ExtendedLength) == 0;
}

bool IsUNC(const TStringCore& path) {
  const TCodeUnit* const units = path.constData();
  if (path.length() < 3 || units[0] != Separator || units[1] != Separator) return false;
  return units[2] != QuestionMark || HasShareMark(path);
}

int RootNameLength(const TStringCore& path) {
  if (IsDriveAt(path, 0)) return 2;
  if (IsExtendedLength(path)) {
    if (IsDriveAt(path, ExtendedLength)) return ExtendedLength + 2;
    if (HasShareMark(path)) return EndOfName(path, ExtendedShareLength);
  }
  return IsUNC(path) ? EndOfName(path, 2) : 0;
}

Root RootOf(const TStringCore& path) {
  const int nameLength = RootNameLength(path);
  // The terminator is none.
  return {nameLength, path.constData()[nameLength] == Separator ? nameLength : -1};
}

int RootDirectoryPosition(const TStringCore& path) { return RootOf(path).directoryPosition; }

int RootPathLength(const TStringCore& path) {
  const Root root = RootOf(path);
  return root.directoryPosition < 0 ? root.nameLength : root.directoryPosition + 1;
}

int FilenamePosition(const TStringCore& path) {
  // Without a colon the search starts at 0.
  const int first = FindOther(path, Separator, path.indexOf(Colon) + 1);
  if (first < 0) return -1;
  const int last = path.lastIndexOf(Separator);
  return last >= first ? last + 1 : first;
}

int ExtensionPosition(const TStringCore& path) {
  const int filename = FilenamePosition(path);
  if (filename < 0) return -1;
  const int first = FindOther(path, Dot, filename);
  if (first < 0) return -1;
  const int last = path.lastIndexOf(Dot);
  return last > first ? last + 1 : -1;
}

int UNCShareNamePosition(const TStringCore& path) {
  const int directory = RootDirectoryPosition(path);
  return IsUNC(path) && directory >= 0 ? directory + 1 : -1;
}

int UNCObjectNamePosition(const TStringCore& path) {
  const int share = UNCShareNamePosition(path);
  return share < 0 ? -1 : path.indexOf(Separator, share);
}

TStringCore Between(const TStringCore& path, int position, int end) {
  return position < 0 ? TStringCore() : path.mid(position, end - position);
}

TStringCore From(const TStringCore& path, int position) { return Between(path, position, path.length()); }

}  // namespace qilsys::paths
