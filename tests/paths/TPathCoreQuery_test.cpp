// Each shape through every query and change.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "paths/PathShapes.h"
#include "qilsys/TPathCore.h"
#include "support/RowName.h"
#include "support/StringText.h"

using namespace qilsys::test;
using namespace std::string_literals;

namespace {

using Part = std::optional<std::u16string_view>;

class PathShapeTest : public testing::TestWithParam<PathShape> {
 protected:
  const PathShape& m_shape = GetParam();
  const TPathCore m_path{Expanded(m_shape.text)};
};

TEST_P(PathShapeTest, HasAGenericAndANativeForm) {
  const TStringCore generic = Expanded(m_shape.Generic());
  EXPECT_EQ(m_path.GenericString(), generic);
  std::u16string native = UnitsOf(generic);
  std::replace(native.begin(), native.end(), u'/', u'\\');
  EXPECT_EQ(UnitsOf(m_path.NativeString()), native);
  EXPECT_EQ(UnitsOf(static_cast<TStringCore>(m_path)), native);
  EXPECT_EQ(m_path.empty(), generic.empty());
  EXPECT_EQ(m_path.IsEmpty(), generic.empty());
  EXPECT_EQ(TPathCore::fromWindows(Expanded(m_shape.text)).GenericString(), generic);
}

TEST_P(PathShapeTest, HasARoot) {
  EXPECT_EQ(m_path.RootName().GenericString(), Expanded(m_shape.root.name));
  EXPECT_EQ(m_path.HasRootName(), !m_shape.root.name.empty());
  EXPECT_EQ(m_path.RootDirectory().GenericString(), Expanded(m_shape.root.directory));
  EXPECT_EQ(m_path.HasRootDirectory(), !m_shape.root.directory.empty());
  EXPECT_EQ(m_path.RootPath().GenericString(), Expanded(m_shape.RootPath()));
  EXPECT_EQ(m_path.HasRootPath(), !m_shape.RootPath().empty());
  EXPECT_EQ(m_path.IsAbsolute(), m_shape.IsAbsolute());
  EXPECT_EQ(m_path.IsRelative(), m_shape.IsRelative());
  EXPECT_EQ(m_path.IsUNC(), m_shape.unc.has_value());
  EXPECT_EQ(m_path.IsExtendedLength(), m_shape.Has(IsExtended));
}

TEST_P(PathShapeTest, HasAFilename) {
  const Part name = m_shape.filename.name;
  EXPECT_EQ(m_path.Filename().GenericString(), Expanded(name.value_or(u"")));
  EXPECT_EQ(m_path.HasFilename(), name.has_value());
  EXPECT_EQ(m_path.Stem().GenericString(), Expanded(m_shape.Stem().value_or(u"")));
  EXPECT_EQ(m_path.HasStem(), name.has_value());
  EXPECT_EQ(m_path.Extension(), Expanded(m_shape.filename.extension.value_or(u"")));
  EXPECT_EQ(m_path.HasExtension(), m_shape.filename.extension.has_value());
  EXPECT_EQ(m_path.IsDots(), m_shape.Has(IsDots));
}

TEST_P(PathShapeTest, HasAParent) {
  EXPECT_EQ(m_path.Parent().GenericString(), Expanded(m_shape.parent));
  EXPECT_EQ(m_path.HasParentPath(), !m_shape.parent.empty());
}

TEST_P(PathShapeTest, HasAShare) {
  const ShareOfShape share = m_shape.unc.value_or(ShareOfShape());
  EXPECT_EQ(m_path.UNCShareName(), Expanded(share.name));
  EXPECT_EQ(m_path.UNCObjectName(), Expanded(share.object.value_or(u"")));
  EXPECT_EQ(m_path.HasUNCObjectName(), share.object.has_value());
  EXPECT_EQ(m_path.IsAdminShare(), !share.driveLetter.empty());
  EXPECT_EQ(m_path.AdminShareDriveLetter(), share.driveLetter.empty() ? 0xFFFF : share.driveLetter[0]);
}

TEST_P(PathShapeTest, LosesItsFilename) {
  TPathCore path = m_path;
  EXPECT_EQ(&path.RemoveFilename(), &path);
  EXPECT_EQ(path.GenericString(), Expanded(m_shape.Unfiled()));
}

TEST_P(PathShapeTest, LosesItsExtension) {
  TPathCore path = m_path;
  EXPECT_EQ(&path.RemoveExtension(), &path);
  EXPECT_EQ(path.GenericString(), Expanded(m_shape.WithoutExtension()));
}

TEST_P(PathShapeTest, TakesAnExtensionAsItIs) {
  const TStringCore stem = Expanded(m_shape.WithoutExtension());
  for (const TStringCore extension : {u"x", u".txt", u"a/b\\"}) {
    TPathCore path = m_path;
    EXPECT_EQ(&path.ReplaceExtension(extension), &path);
    EXPECT_EQ(path.GenericString(), stem + u'.' + extension);
  }
  EXPECT_EQ(TPathCore(m_path).ReplaceExtension(u"").GenericString(), stem);
}

TEST_P(PathShapeTest, IsChangedByNoQuery) {
  const TPathCore before = m_path;
  m_path.Parent();
  m_path.Stem();
  m_path.RootPath();
  EXPECT_EQ(m_path.GenericString(), before.GenericString());
}

INSTANTIATE_TEST_SUITE_P(Table, PathShapeTest, testing::ValuesIn(PathShapes()), RowName<PathShape>);

TEST(PathShapesTest, AreManyAndNamedApart) {
  std::set<std::string> names;
  for (const PathShape& shape : PathShapes()) names.insert(shape.name);
  EXPECT_GE(names.size(), 150u);
  EXPECT_EQ(names.size(), PathShapes().size());
}

struct PartsRow {
  const char* name;
  std::u16string_view path;
  std::vector<std::u16string_view> parents;
};
void PrintTo(const PartsRow& row, std::ostream* out) { *out << row.name; }

class PathParentsTest : public testing::TestWithParam<PartsRow> {};

TEST_P(PathParentsTest, LeadToTheRoot) {
  std::vector<std::u16string> parents;
  for (TPathCore path = Expanded(GetParam().path).data(); path.HasParentPath();) {
    path = path.Parent();
    parents.push_back(UnitsOf(path.GenericString()));
  }
  EXPECT_EQ(parents, std::vector<std::u16string>(GetParam().parents.begin(), GetParam().parents.end()));
}

INSTANTIATE_TEST_SUITE_P(Table, PathParentsTest,
                         testing::Values(PartsRow{"Drive", u"c:/a/b", {u"c:/a", u"c:/", u"c:"}},
                                         PartsRow{"Relative", u"a/b/c", {u"a/b", u"a"}},
                                         PartsRow{"Rooted", u"/a/b", {u"/a", u"/"}},
                                         PartsRow{"Share", u"//server/share/x", {u"//server/share", u"//server/"}},
                                         PartsRow{"Server", u"//server", {u"/"}},
                                         PartsRow{"DriveRelative", u"c:a/b", {u"c:a", u"c"}},
                                         PartsRow{"Doubled", u"a//b", {u"a/", u"a"}},
                                         PartsRow{"ExtendedDrive", u"//?/c:/a", {u"//?/c:/", u"//?/c:"}},
                                         PartsRow{"ExtendedServer", u"//?/UNC/s", {u"//?/UNC", u"//?", u"/"}}),
                         RowName<PartsRow>);

// NULs are units like all others in what is cut out of a path.
TEST(TPathCoreNul, StaysInParts) {
  const TPathCore path(TStringCore::fromStdU16String(u"c:/a\0b/c\0d.e\0f"s));
  EXPECT_EQ(UnitsOf(path.Filename().GenericString()), u"c\0d.e\0f"s);
  EXPECT_EQ(UnitsOf(path.Stem().GenericString()), u"c\0d"s);
  EXPECT_EQ(UnitsOf(path.Extension()), u"e\0f"s);
  EXPECT_EQ(UnitsOf(path.Parent().GenericString()), u"c:/a\0b"s);
  EXPECT_EQ(UnitsOf(path.toVector()[2]), u"a\0b"s);
  EXPECT_FALSE(TPathCore(TStringCore::fromStdU16String(u".\0"s)).IsDots());
}

// A surrogate half is a name as any other.
TEST(TPathCoreSurrogate, StandsAlone) {
  const TPathCore path(u"c:\\\xD800.\xDC00");
  EXPECT_EQ(UnitsOf(path.Stem().GenericString()), u"\xD800");
  EXPECT_EQ(UnitsOf(path.Extension()), u"\xDC00");
  EXPECT_FALSE(TPathCore(u"\xD800:").HasRootName());
}

}  // namespace
