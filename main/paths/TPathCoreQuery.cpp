// Queries on parts, and changes in place.
#include "qilsys/TPathCore.h"

#include <utility>

#include "paths/PathParts.h"
#include "qilsys/TCType.h"

namespace paths = qilsys::paths;

namespace {

constexpr TCodeUnit Dot = 46;
constexpr TCodeUnit Dollar = 36;

}  // namespace

// ---- The root

TPathCore TPathCore::RootName() const { return MakePath(m_text.left(paths::RootNameLength(m_text))); }

bool TPathCore::HasRootName() const { return paths::RootNameLength(m_text) > 0; }

TPathCore TPathCore::RootDirectory() const {
  return HasRootDirectory() ? MakePath(TStringCore(paths::Separator, 1)) : TPathCore();
}

bool TPathCore::HasRootDirectory() const { return paths::RootDirectoryPosition(m_text) >= 0; }

TPathCore TPathCore::RootPath() const { return MakePath(m_text.left(paths::RootPathLength(m_text))); }

bool TPathCore::HasRootPath() const { return paths::RootPathLength(m_text) > 0; }

bool TPathCore::IsAbsolute() const { return paths::RootDirectoryPosition(m_text) > 0; }

bool TPathCore::IsRelative() const { return paths::RootDirectoryPosition(m_text) < 0; }

bool TPathCore::IsExtendedLength() const { return paths::IsExtendedLength(m_text); }

// ---- The filename

TPathCore TPathCore::Filename() const { return MakePath(paths::From(m_text, paths::FilenamePosition(m_text))); }

bool TPathCore::HasFilename() const { return paths::FilenamePosition(m_text) >= 0; }

TPathCore TPathCore::Stem() const {
  const int extension = paths::ExtensionPosition(m_text);
  const int end = extension < 0 ? m_text.length() : extension - 1;
  return MakePath(paths::Between(m_text, paths::FilenamePosition(m_text), end));
}

// An extension begins behind a unit of the filename at least.
bool TPathCore::HasStem() const { return HasFilename(); }

TStringCore TPathCore::Extension() const { return paths::From(m_text, paths::ExtensionPosition(m_text)); }

bool TPathCore::HasExtension() const { return paths::ExtensionPosition(m_text) >= 0; }

bool TPathCore::IsDots() const {
  const TStringCore filename = paths::From(m_text, paths::FilenamePosition(m_text));
  return filename == TStringCore(Dot, 1) || filename == TStringCore(Dot, 2);
}

TPathCore& TPathCore::RemoveFilename() {
  const int filename = paths::FilenamePosition(m_text);
  if (filename < 0) return *this;
  // The separator before the filename goes with it, but for the root directory. Without one, what stands there may be
  // a drive's colon.
  const bool isBehindRoot = filename == paths::RootDirectoryPosition(m_text) + 1;
  m_text.truncate(isBehindRoot ? filename : filename - 1);
  return *this;
}

TPathCore& TPathCore::RemoveExtension() {
  const int extension = paths::ExtensionPosition(m_text);
  if (extension >= 0) m_text.truncate(extension - 1);
  return *this;
}

// The whole is made first, so that memory that runs out leaves the path.
TPathCore& TPathCore::ReplaceExtension(const TStringCore& extension) {
  TPathCore replaced = *this;
  replaced.RemoveExtension();
  if (!extension.empty()) replaced.m_text.append(Dot).append(extension);
  return *this = std::move(replaced);
}

// ---- The parent

TPathCore TPathCore::Parent() const {
  TPathCore parent = *this;
  if (HasFilename()) {
    parent.RemoveFilename();
  } else if (HasRootDirectory() && paths::HasTrailingSeparator(m_text)) {
    parent.m_text.chop(1);
  } else {
    return {};
  }
  return parent.m_text.length() == m_text.length() ? TPathCore() : parent;
}

bool TPathCore::HasParentPath() const { return !Parent().IsEmpty(); }

// ---- Shares

bool TPathCore::IsUNC() const { return paths::IsUNC(m_text); }

TStringCore TPathCore::UNCShareName() const {
  const int object = paths::UNCObjectNamePosition(m_text);
  return paths::Between(m_text, paths::UNCShareNamePosition(m_text), object < 0 ? m_text.length() : object);
}

TStringCore TPathCore::UNCObjectName() const { return paths::From(m_text, paths::UNCObjectNamePosition(m_text)); }

bool TPathCore::HasUNCObjectName() const { return paths::UNCObjectNamePosition(m_text) >= 0; }

bool TPathCore::IsAdminShare() const {
  const TStringCore share = UNCShareName();
  return share.length() == 2 && TCType::isAlpha(share.constData()[0]) && share.back() == Dollar;
}

TCodeUnit TPathCore::AdminShareDriveLetter() const {
  return IsAdminShare() ? *UNCShareName().constData() : paths::NoDriveLetter;
}
