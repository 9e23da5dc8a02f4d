/// Shapes of paths, and what each query gives for them, worked out by hand from the rules.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "qilsys/TStringCore.h"

namespace qilsys::test {

/// In every text of a row "…" stands for this many letters.
inline constexpr int LettersOfEllipsis = 40000;

struct RootOfShape {
  std::u16string_view name = {};
  std::u16string_view directory = {};
};

/// What is there and empty is not the same as what is not there.
struct FilenameOfShape {
  std::optional<std::u16string_view> name = {};
  /// Where there is an extension; else the stem is the filename.
  std::u16string_view stem = {};
  std::optional<std::u16string_view> extension = {};
};

/// Of a path that begins as one of a share.
struct ShareOfShape {
  std::u16string_view name = {};
  std::optional<std::u16string_view> object = {};
  /// Of an administrative share.
  std::u16string_view driveLetter = {};
};

enum ShapeMark : unsigned int {
  NoMark = 0,
  /// The walk fails behind the last element.
  IsStuck = 1,
  IsDots = 2,
  IsExtended = 4,
};

struct PathShape {
  const char* name;
  /// What the path is made from.
  std::u16string_view text;
  /// Empty where it is the text.
  std::u16string_view generic = {};
  RootOfShape root = {};
  FilenameOfShape filename = {};
  std::u16string_view parent = {};
  /// With "|" between them.
  std::u16string_view elements = {};
  unsigned int marks = NoMark;
  std::optional<ShareOfShape> unc = {};
  /// The path without its filename, where that is not its parent.
  std::u16string_view unfiled = {};

  bool Has(ShapeMark mark) const { return (marks & mark) != 0; }
  std::u16string_view Generic() const { return generic.empty() ? text : generic; }
  std::u16string RootPath() const { return std::u16string(root.name) + std::u16string(root.directory); }
  std::optional<std::u16string_view> Stem() const { return filename.extension ? filename.stem : filename.name; }
  std::u16string_view Unfiled() const;
  std::u16string_view WithoutExtension() const;
  std::vector<std::u16string_view> Elements() const;
  bool IsAbsolute() const { return !root.name.empty() && !root.directory.empty(); }
  bool IsRelative() const { return root.directory.empty(); }
};

const std::vector<PathShape>& PathShapes();

/// The text of a row as it is meant.
TStringCore Expanded(std::u16string_view text);

inline void PrintTo(const PathShape& shape, std::ostream* out) { *out << shape.name; }

}  // namespace qilsys::test
