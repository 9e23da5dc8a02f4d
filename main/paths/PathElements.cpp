#include "paths/PathElements.h"

#include "paths/PathFailure.h"

namespace qilsys::paths {

namespace {

// Behind the last name there may be separators alone.
int NameFrom(const TStringCore& path, int position) {
  while (position < path.length() && path.constData()[position] == Separator) ++position;
  return position < path.length() ? position : -1;
}

int FollowingPosition(const TStringCore& path, const Root& root, int position, int end) {
  if (end < 0) return end;
  if (end >= path.length()) {
    Fail("TPathCore::iterator::locateNextElement element end position is out of range.", 0x38CA4808,
         "QuillonException_AutoGen_0x38CA4808");
  }
  return position == root.nameLength || end == root.nameLength ? end : NameFrom(path, end);
}

}  // namespace

int ElementEnd(const TStringCore& path, const Root& root, int position) {
  if (position == 0 && root.nameLength > 0) return root.nameLength;
  if (position != 0 && !IsInside(path, position)) {
    Fail("TPathCore::iterator::locateElementEnd element starting position is out of range.", 0x9E82DC54,
         "QuillonException_AutoGen_0x9E82DC54");
  }
  if (position == root.directoryPosition) return position + 1;
  return path.indexOf(Separator, position);
}

TStringCore ElementText(const TStringCore& path, int position, int end) {
  return end > position ? Between(path, position, end) : From(path, position);
}

int NextElement(const TStringCore& path, const Root& root, int position, int end) {
  if (!IsInside(path, position)) {
    Fail("Invalid position in TPathCore::iterator::nextElement.", 0xA22179A7, "QuillonException_AutoGen_0xA22179A7");
  }
  return FollowingPosition(path, root, position, end);
}

}  // namespace qilsys::paths
