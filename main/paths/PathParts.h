/// Where the parts of a path stand in its generic form: positions in units, -1 for a part that is not there.
#pragma once

#include "qilsys/TCodeUnit.h"
#include "qilsys/TStringCore.h"

namespace qilsys::paths {

inline constexpr TCodeUnit Separator = 47;        // "/"
inline constexpr TCodeUnit NativeSeparator = 92;  // "\"
inline constexpr TCodeUnit NoDriveLetter = 0xFFFF;

bool HasLeadingSeparator(const TStringCore& path);
bool HasTrailingSeparator(const TStringCore& path);

/// "//?/", the mark of a path of extended length.
bool IsExtendedLength(const TStringCore& path);
/// The root of a share, in either form: "//server", "//?/UNC/server".
bool IsUNC(const TStringCore& path);

/// The root of a path: what the other parts are told by, again and again.
struct Root {
  int nameLength;
  int directoryPosition;
};
Root RootOf(const TStringCore& path);
int RootNameLength(const TStringCore& path);
int RootDirectoryPosition(const TStringCore& path);
/// Root name and root directory.
int RootPathLength(const TStringCore& path);

/// May be the length of the path, where more than one separator ends it.
int FilenamePosition(const TStringCore& path);
/// Behind the dot; may be the length of the path too.
int ExtensionPosition(const TStringCore& path);

int UNCShareNamePosition(const TStringCore& path);
/// The separator behind the share's name.
int UNCObjectNamePosition(const TStringCore& path);

/// The units from `position` to `end`, and to the end of the path; nothing for a negative position. NULs are units.
TStringCore Between(const TStringCore& path, int position, int end);
TStringCore From(const TStringCore& path, int position);

}  // namespace qilsys::paths
