/// The steps of a walk over the elements of a path, as positions in its generic form. Where a step fails it raises
/// TPathCore::Exception.
///
/// A step from the root name, or from the root directory, leads to its end. In a path without a root directory the
/// first name counts as a root name of no length, so the step from it leads to its end as well, which is the separator;
/// and the element there, ending before it begins, takes the rest of the path. That is how paths are walked since ever,
/// and callers go by it.
#pragma once

#include "paths/PathParts.h"
#include "qilsys/TStringCore.h"

namespace qilsys::paths {

/// Just past the element that begins at `position`, -1 where it runs to the end of the path. `root` is the path's, here
/// and below.
int ElementEnd(const TStringCore& path, const Root& root, int position);

/// The text of the element between these: to the end of the path where `end` does not lie beyond `position`.
TStringCore ElementText(const TStringCore& path, int position, int end);

/// Where the element behind this one begins, -1 where there is none.
int NextElement(const TStringCore& path, const Root& root, int position, int end);

/// Whether an element may stand there.
inline bool IsInside(const TStringCore& path, int position) { return position >= 0 && position < path.length(); }

/// Calls `visit(position, end)` for each element. Raises where the iterator does.
template <class Visit>
void ForEachElement(const TStringCore& path, Visit visit) {
  const Root root = RootOf(path);
  for (int position = path.empty() ? -1 : 0; position >= 0;) {
    const int end = ElementEnd(path, root, position);
    visit(position, end);
    position = NextElement(path, root, position, end);
  }
}

}  // namespace qilsys::paths
