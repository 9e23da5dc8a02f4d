// The tables of docs/paths.md are those of PathShapes. Where they no longer are, this program writes them anew:
//
//     QILSYS_WRITE_PAGES=1 build/release/tests/paths/paths_tests --gtest_filter=TPathCorePage.*
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "paths/PathShapes.h"
#include "support/Utf8.h"

using namespace qilsys::test;

namespace {

using Row = std::vector<std::string>;
using View = std::u16string_view;

std::string Code(const std::string& text) { return "`" + text + "`"; }
std::string Code(View text) { return Code(Utf8(TStringCore::fromStdU16String(std::u16string(text)))); }
/// What is not there is an empty cell.
std::string Cell(View text) { return text.empty() ? "" : Code(text); }
/// What is there and empty is two quotes.
std::string Cell(const std::optional<View>& text) {
  if (!text) return "";
  return text->empty() ? Code("\"\"") : Code(*text);
}
std::string Cell(bool is) { return is ? "yes" : ""; }

Row RowOfRoot(const PathShape& shape) {
  return {Cell(std::optional(shape.text)), Cell(std::optional(shape.Generic())), Cell(shape.root.name),
          Cell(shape.root.directory),      Cell(View(shape.RootPath())),         Cell(shape.IsAbsolute()),
          Cell(shape.IsRelative()),        Cell(shape.unc.has_value()),          Cell(shape.Has(IsExtended))};
}

Row RowOfFilename(const PathShape& shape) {
  return {Cell(std::optional(shape.Generic())), Cell(shape.filename.name), Cell(shape.Stem()),
          Cell(shape.filename.extension),       Cell(shape.Has(IsDots)),   Cell(shape.parent)};
}

Row RowOfElements(const PathShape& shape) {
  std::string elements;
  for (const View element : shape.Elements()) elements += (elements.empty() ? "" : " ") + Code(element);
  const std::string size = shape.Has(IsStuck) ? "raises" : std::to_string(shape.Elements().size());
  return {Cell(std::optional(shape.Generic())), size, elements};
}

Row RowOfChanges(const PathShape& shape) {
  const std::u16string stem(shape.WithoutExtension());
  return {Cell(std::optional(shape.Generic())), Cell(std::optional(shape.Unfiled())), Cell(std::optional(View(stem))),
          Cell(View(stem + u".x"))};
}

Row RowOfShare(const PathShape& shape) {
  return {Cell(shape.Generic()), Cell(shape.unc->name), Cell(shape.unc->object), Cell(shape.unc->driveLetter)};
}

bool IsOfAShare(const PathShape& shape) { return shape.unc.has_value(); }
bool IsAny(const PathShape&) { return true; }

struct PageTable {
  const char* name;
  std::vector<const char*> columns;
  Row (*row)(const PathShape& shape);
  bool (*isInIt)(const PathShape& shape) = &IsAny;
};

const std::vector<PageTable>& Tables() {
  static const std::vector<PageTable> All = {
      {"roots",
       {"Made from", "`GenericString`", "`RootName`", "`RootDirectory`", "`RootPath`", "`IsAbsolute`", "`IsRelative`",
        "`IsUNC`", "`IsExtendedLength`"},
       &RowOfRoot},
      {"filenames", {"Path", "`Filename`", "`Stem`", "`Extension`", "`IsDots`", "`Parent`"}, &RowOfFilename},
      {"shares", {"Path", "`UNCShareName`", "`UNCObjectName`", "`AdminShareDriveLetter`"}, &RowOfShare, &IsOfAShare},
      {"elements", {"Path", "`size`", "Elements"}, &RowOfElements},
      {"changes", {"Path", "`RemoveFilename`", "`RemoveExtension`", "`ReplaceExtension(\"x\")`"}, &RowOfChanges},
  };
  return All;
}

std::string Line(const std::vector<std::string>& cells) {
  std::string line = "|";
  for (const std::string& cell : cells) line += (cell.empty() ? "" : " " + cell) + " |";
  return line + "\n";
}

std::string Text(const PageTable& table) {
  std::string text = "\n" + Line(Row(table.columns.begin(), table.columns.end())) + "|";
  for (std::size_t i = 0; i < table.columns.size(); ++i) text += "---|";
  text += "\n";
  // Shapes that come to the same path differ in what it is made from alone.
  std::set<std::string> lines;
  for (const PathShape& shape : PathShapes()) {
    if (!table.isInIt(shape)) continue;
    const std::string line = Line(table.row(shape));
    if (lines.insert(line).second) text += line;
  }
  return text + "\n";
}

std::string ReadPage() {
  std::ifstream file(QILSYS_PAGE_OF_PATHS, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  std::erase(text, '\r');
  return text;
}

/// Where the table stands in the page: what is between its mark and the next that says "end".
std::pair<std::size_t, std::size_t> PlaceOf(const PageTable& table, const std::string& page) {
  const std::string mark = "<!-- " + std::string(table.name) + " -->\n";
  const std::size_t at = page.find(mark);
  const std::size_t end = page.find("<!-- end -->", at);
  return end == std::string::npos ? std::pair<std::size_t, std::size_t>() : std::pair(at + mark.size(), end);
}

class TPathCorePage : public testing::Test {
 protected:
  std::string m_page = ReadPage();
};

TEST_F(TPathCorePage, ShowsWhatTheShapesGive) {
  const bool isToBeWritten = std::getenv("QILSYS_WRITE_PAGES") != nullptr;
  for (const PageTable& table : Tables()) {
    const auto [from, end] = PlaceOf(table, m_page);
    ASSERT_NE(from, 0u) << "no mark of the table " << table.name;
    if (isToBeWritten) {
      m_page.replace(from, end - from, Text(table));
    } else {
      EXPECT_EQ(m_page.substr(from, end - from), Text(table)) << table.name;
    }
  }
  if (!isToBeWritten) return;
  std::ofstream(QILSYS_PAGE_OF_PATHS, std::ios::binary) << m_page;
  GTEST_SKIP() << "written anew";
}

}  // namespace
