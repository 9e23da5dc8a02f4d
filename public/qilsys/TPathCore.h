/// File-system paths as values: pure text, the same on both systems.
///
/// Paths are Windows-shaped: they know drives, shares and extended lengths. Each is kept in its generic form, with "/"
/// between names; the native form, with "\", is made on the way out. In text order a path has a root name, a root
/// directory and names:
///
/// | shape                | example                | root name       | root directory |
/// |----------------------|------------------------|-----------------|----------------|
/// | drive                | "c:/a/b"               | "c:"            | "/"            |
/// | drive alone          | "c:a"                  | "c:"            | none           |
/// | extended drive       | "//?/c:/a"             | "//?/c:"        | "/"            |
/// | share (UNC)          | "//server/share/x"     | "//server"      | "/"            |
/// | extended share       | "//?/UNC/server/share" | "//?/UNC/server"| "/"            |
/// | rooted               | "/a"                   | none            | "/"            |
/// | relative             | "a/b"                  | none            | none           |
///
/// Any letter may name a drive, and nothing is asked about what follows its colon. "." and "..", letters and doubled
/// separators stay as they are. docs/paths.md shows what each query gives for many shapes.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <iterator>
#include <vector>

#include "qilsys/Export.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TCodeUnit.h"
#include "qilsys/TError.h"
#include "qilsys/TForeignText.h"
#include "qilsys/TStringCore.h"

class TPathCore;

namespace qilsys::paths {
struct Root;
}  // namespace qilsys::paths

namespace qilsys {

/// What can stand beside a path in a comparison: text of either unit type or of UTF-8, and what converts to text.
template <class T>
concept PathText = std::convertible_to<const T&, TStringCore> && !std::derived_from<T, TPathCore>;

}  // namespace qilsys

/// One path. A value: different objects may be used from different threads, one object is not safe while any thread
/// writes to it. Nothing raises but the iterator and lack of memory, which leaves a path as it was.
class QILSYS_API TPathCore {
 public:
  class Exception;
  class iterator;

  // ---- Construction and assignment. A copy takes the text as it is.

  TPathCore() = default;
  /// Turns each "\" into "/", then takes one "/" off the end, unless the text is nothing but its root: "c:\" becomes
  /// "c:/", "a/" becomes "a" and "a//" becomes "a/". Null is empty.
  TPathCore(TStringCore text);
  TPathCore(const TCodeUnit* text) : TPathCore(TStringCore(text)) {}
  template <qilsys::ForeignUnit U>
  TPathCore(const U* text) : TPathCore(TStringCore(text)) {}
  static TPathCore fromWindows(const TStringCore& text) { return TPathCore(text); }
  /// The elements, each made a path of its own, joined as `Append` does.
  static TPathCore fromVector(const std::vector<TStringCore>& elements);
  TPathCore& Assign(const TPathCore& other) { return *this = other; }
  void Clear() { m_text.clear(); }
  void Swap(TPathCore& other) { m_text.swap(other.m_text); }
  friend void swap(TPathCore& a, TPathCore& b) { a.Swap(b); }

  // ---- Output

  TStringCore GenericString() const { return m_text; }
  /// With each "/" as "\", on every system. Wherever a path is taken for text it is this form.
  TStringCore NativeString() const;
  operator TStringCore() const { return NativeString(); }
  /// The native form as Windows spells it in full, or by its short names, as far as the path exists. The native form
  /// itself where the system can't tell, and on Linux.
  TStringCore NativeLongPath() const;
  TStringCore NativeShortPath() const;
  static TCodeUnit nativeSeparatorDEPRECATED() { return 92; }
  static TStringCore::CaseSensitivity caseSensitivity() { return TStringCore::CaseInsensitive; }

  // ---- Comparison, of the generic forms as they stand. Equality ignores case and order does not: "A" == "a", and yet
  // "A" < "a". Text beside a path is made a path first.

  /// -1, 0 or 1, ignoring case.
  int Compare(const TPathCore& other) const { return m_text.compare(other.m_text, caseSensitivity()); }
  bool operator==(const TPathCore& other) const { return Compare(other) == 0; }
  bool operator!=(const TPathCore& other) const { return Compare(other) != 0; }
  friend std::weak_ordering operator<=>(const TPathCore& a, const TPathCore& b) { return a.m_text <=> b.m_text; }

  // ---- Joining

  /// Puts "/" between the two, unless one of them is empty or has it there already: "a/" and "/b" give "a//b". A path
  /// with a root does not replace what it is joined to.
  TPathCore& Append(const TPathCore& other);
  TPathCore& operator/=(const TPathCore& other) { return Append(other); }
  TPathCore operator/(const TPathCore& other) const { return TPathCore(*this).Append(other); }
  /// The two texts with nothing between them.
  TPathCore& Concat(const TPathCore& other);
  TPathCore& operator+=(const TPathCore& other) { return Concat(other); }
  /// Text is made a path first; the result is not: "c:/a" + "b/" is "c:/ab".
  TPathCore operator+(const TPathCore& other) const { return TPathCore(*this).Concat(other); }
  TPathCore operator+(const TStringCore& text) const { return *this + TPathCore(text); }
  TPathCore operator+(const TCodeUnit* text) const { return *this + TPathCore(text); }
  TPathCore operator+(TCodeUnit unit) const { return *this + TPathCore(TStringCore(unit, 1)); }
  template <qilsys::ForeignUnit U>
  TPathCore operator+(const U* text) const {
    return *this + TPathCore(text);
  }
  template <qilsys::ForeignUnit U>
  TPathCore operator+(U unit) const {
    return *this + TPathCore(TStringCore(unit, 1));
  }

  // ---- Elements: root name, root directory and names

  iterator begin() const;
  iterator end() const;
  /// Walks the path, and raises where the iterator does.
  std::size_t size() const;
  std::vector<TStringCore> toVector() const;
  bool empty() const { return m_text.empty(); }
  bool IsEmpty() const { return m_text.empty(); }
  /// Empty for an empty path.
  TStringCore front() const;
  /// Always raises `Exception`: no iterator steps backward.
  TStringCore back() const;

  // ---- Queries. A part that is not there is empty; an extension can be there and empty.

  TPathCore RootName() const;
  bool HasRootName() const;
  TPathCore RootDirectory() const;
  bool HasRootDirectory() const;
  /// Root name and root directory.
  TPathCore RootPath() const;
  bool HasRootPath() const;
  /// What stands behind the last "/", from the first name on; the first ":" anywhere ends what may be a root.
  TPathCore Filename() const;
  bool HasFilename() const;
  /// The filename less its extension and the dot.
  TPathCore Stem() const;
  bool HasStem() const;
  /// What stands behind the last dot of the filename, leading dots not counted.
  TStringCore Extension() const;
  bool HasExtension() const;
  /// The path less its filename, down to its root directory and then to its root name: "c:/a", "c:/", "c:", empty. Of
  /// "c:a" it is "c", and of "//server" it is "/".
  TPathCore Parent() const;
  bool HasParentPath() const;
  /// "/a" is neither absolute nor relative.
  bool IsAbsolute() const;
  bool IsRelative() const;
  /// Whether the filename is "." or "..".
  bool IsDots() const;
  /// Whether the path begins as one of a share, "//server" or "//?/UNC/server".
  bool IsUNC() const;
  /// Whether it begins with "//?/".
  bool IsExtendedLength() const;
  /// The first name behind the root of a share, and what follows that, its "/" included.
  TStringCore UNCShareName() const;
  TStringCore UNCObjectName() const;
  bool HasUNCObjectName() const;
  /// Whether the share's name is a letter and "$".
  bool IsAdminShare() const;
  /// That letter, or 0xFFFF.
  TCodeUnit AdminShareDriveLetter() const;

  // ---- Changes

  /// Keeps the root directory, and where there is none the drive of "c:a" loses its colon: it becomes "c".
  TPathCore& RemoveFilename();
  TPathCore& RemoveExtension();
  /// Takes the text as it is: ".txt" makes two dots. An empty one only removes.
  TPathCore& ReplaceExtension(const TStringCore& extension);

 private:
  /// Takes the text as it is.
  static TPathCore MakePath(TStringCore text);

  TStringCore m_text;
};

// ---- Order. It looks at case where equality does not, and no text that a path converts to takes part.

inline bool operator<(const TPathCore& a, const TPathCore& b) { return (a <=> b) < 0; }

template <qilsys::PathText T>
bool operator==(const TPathCore& path, const T& text) {
  return path == TPathCore(TStringCore(text));
}
template <qilsys::PathText T>
std::weak_ordering operator<=>(const TPathCore& path, const T& text) {
  return path <=> TPathCore(TStringCore(text));
}

/// Writes the generic form as UTF-8.
QILSYS_API std::ostream& operator<<(std::ostream& out, const TPathCore& path);

/// Paths that compare equal hash equal, whatever their case. The result depends on the path alone, the same in every run.
template <>
struct std::hash<TPathCore> {
  QILSYS_API std::size_t operator()(const TPathCore& path) const noexcept;
};

/// Walks the elements of a path, which must outlive it and which it does not see change. Where a path has a root
/// directory these are root name, root directory and names. Where it has none, the name behind the first is met twice,
/// once with its separator and all the rest: "a/b/c" gives "a", "/b/c", "b", "c". A path that ends with its root can't be
/// walked past it, and nothing steps backward. What fails raises `Exception` and leaves the iterator as it was.
class QILSYS_API TPathCore::iterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = TStringCore;
  using difference_type = std::ptrdiff_t;
  using pointer = TStringCore;
  using reference = TStringCore;

  iterator(const iterator& other) = default;
  ~iterator() = default;
  /// Raises unless both walk the same object; equal paths won't do.
  iterator& operator=(const iterator& other);

  /// Whether the paths are equal, ignoring case, and the positions in them.
  bool operator==(const iterator& other) const;
  bool operator!=(const iterator& other) const { return !(*this == other); }

  /// The text of the element, under two names: text has no members by `->`, so only a call of the operator compiles.
  TStringCore operator*() const { return m_element.text; }
  TStringCore operator->() const { return m_element.text; }

  iterator& operator++();
  iterator operator++(int);
  /// Always raises.
  iterator& operator--();
  iterator operator--(int);

 private:
  friend class TPathCore;

  /// Where an element stands; -1 for the position of none, and for the end of one that runs to the end of the path.
  struct Element {
    int position;
    int end;
    TStringCore text;
  };

  iterator(const TPathCore& path, int position);
  Element ElementAt(const qilsys::paths::Root& root, int position) const;

  const TPathCore* m_path;
  Element m_element;
};

inline TPathCore::iterator TPathCore::begin() const { return {*this, 0}; }
inline TPathCore::iterator TPathCore::end() const { return {*this, -1}; }

/// What walking a path raises, and taking it to the C++ library and back (TPathFilesystem.h).
class QILSYS_API TPathCore::Exception : public QuillonException {
 public:
  /// With `includeStack`, and while TStackWalker is active, the frames of the calling thread follow as messages.
  Exception(const TStringCore& message, const TError::ErrorInfo& info, bool includeStack);
  Exception(const Exception& other);
  Exception& operator=(const Exception& other);
  ~Exception() override;

  Exception* Clone() const override;
  [[noreturn]] void Throw() const override;
};
