// Construction, comparison and joining.
#include "qilsys/TPathCore.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <unordered_set>
#include <utility>

#include "paths/PathShapes.h"
#include "support/Literals.h"
#include "support/RowName.h"
#include "support/StringText.h"
#include "support/TextForms.h"
#include "support/Utf8.h"

using namespace qilsys::test;
using namespace std::string_literals;

namespace {

std::string Generic(const TPathCore& path) { return Utf8(path.GenericString()); }

// ---- Construction and assignment

TEST(TPathCoreConstruction, TakesEachKindOfText) {
  EXPECT_EQ(Generic(TPathCore()), "");
  EXPECT_EQ(Generic(TPathCore(TStringCore(u"c:\\a\\"))), "c:/a");
  EXPECT_EQ(Generic(TPathCore("c:\\a\\")), "c:/a");
  ForEachUnitType([](auto unit) {
    const auto text = As<decltype(unit)>(u"c:\\a\\");
    EXPECT_EQ(Generic(TPathCore(text.c_str())), "c:/a");
    const decltype(unit)* const none = nullptr;
    EXPECT_TRUE(TPathCore(none).IsEmpty());
  });
  EXPECT_TRUE(TPathCore(nullptr).IsEmpty());
}

TEST(TPathCoreConstruction, LeavesTheTextItIsMadeFrom) {
  const TStringCore text(u"c:\\a path that needs a block of its own\\");
  const TPathCore path(text);
  EXPECT_EQ(Utf8(text), "c:\\a path that needs a block of its own\\");
  EXPECT_EQ(Generic(path), "c:/a path that needs a block of its own");
}

TEST(TPathCoreConstruction, SharesWhatNeedsNoChange) {
  const TStringCore text(u"c:/a path that needs a block of its own");
  EXPECT_EQ(TPathCore(text).GenericString().constData(), text.constData());
}

TEST(TPathCoreConstruction, CopiesTheTextAsItIs) {
  const TPathCore path = TPathCore(u"a/") + TPathCore(u"/");
  ASSERT_EQ(Generic(path), "a/");
  const TPathCore copy(path);  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(Generic(copy), "a/");
  TPathCore assigned(u"b");
  EXPECT_EQ(&assigned.Assign(path), &assigned);
  EXPECT_EQ(Generic(assigned), "a/");
  assigned = u"c\\";
  EXPECT_EQ(Generic(assigned), "c");
}

TEST(TPathCoreConstruction, ClearsAndSwaps) {
  TPathCore a(u"a");
  TPathCore b(u"b");
  a.Swap(b);
  EXPECT_EQ(Generic(a) + Generic(b), "ba");
  swap(a, b);
  EXPECT_EQ(Generic(a) + Generic(b), "ab");
  a.Clear();
  EXPECT_TRUE(a.IsEmpty());
}

struct VectorRow {
  const char* name;
  std::vector<TStringCore> elements;
  const char* path;
};
void PrintTo(const VectorRow& row, std::ostream* out) { *out << row.name; }

class PathOfVectorTest : public testing::TestWithParam<VectorRow> {};

TEST_P(PathOfVectorTest, IsJoined) { EXPECT_EQ(Generic(TPathCore::fromVector(GetParam().elements)), GetParam().path); }

INSTANTIATE_TEST_SUITE_P(Table, PathOfVectorTest,
                         testing::Values(VectorRow{"None", {}, ""}, VectorRow{"Empty", {u"", u""}, ""},
                                         VectorRow{"Names", {u"a", u"b", u"c"}, "a/b/c"},
                                         VectorRow{"Drive", {u"c:", u"/", u"a"}, "c:/a"},
                                         VectorRow{"Native", {u"c:\\", u"a\\b\\", u"\\c"}, "c:/a/b/c"},
                                         VectorRow{"EmptyBetween", {u"a", u"", u"b"}, "a/b"},
                                         VectorRow{"RootBetween", {u"a", u"/", u"b"}, "a/b"},
                                         VectorRow{"RootsBetween", {u"a", u"/", u"/", u"b"}, "a//b"},
                                         VectorRow{"SeparatorsBetween", {u"a", u"//", u"b"}, "a/b"}),
                         RowName<VectorRow>);

// ---- Output

TEST(TPathCoreOutput, IsNativeWhereItIsTakenForText) {
  const TPathCore path(u"c:/a/b");
  const TStringCore text = path;
  EXPECT_EQ(Utf8(text), "c:\\a\\b");
  EXPECT_EQ(Utf8(u"<" + path), "<c:\\a\\b");
  EXPECT_EQ(Generic(path), "c:/a/b");
}

TEST(TPathCoreOutput, IsGenericUtf8InAStream) {
  std::ostringstream out;
  out << TPathCore(u"c:\\\u00C4\\\U0001F600") << '|' << TPathCore();
  EXPECT_EQ(out.str(), "c:/\u00C4/\U0001F600|");
}

TEST(TPathCoreOutput, KnowsSeparatorAndSensitivity) {
  EXPECT_EQ(TPathCore::nativeSeparatorDEPRECATED(), 92);
  EXPECT_EQ(TPathCore::caseSensitivity(), TStringCore::CaseInsensitive);
}

TEST(TPathCoreOutput, IsPlainNativeWhereNothingExists) {
  const TPathCore path(u"q:/there/is/no/such/path/at/all");
  EXPECT_EQ(path.NativeLongPath(), path.NativeString());
  EXPECT_EQ(path.NativeShortPath(), path.NativeString());
  EXPECT_TRUE(TPathCore().NativeLongPath().empty());
}

// ---- Comparison

TEST(TPathCoreComparison, OfEqualityIgnoresCase) {
  EXPECT_TRUE(TPathCore("A") == TPathCore("a"));
  EXPECT_FALSE(TPathCore("A") != TPathCore("a"));
  EXPECT_EQ(TPathCore(u"\u00C4/\u0416").Compare(u"\u00E4/\u0436"), 0);
  EXPECT_EQ(TPathCore(u"A").Compare(u"b"), -1);
  EXPECT_EQ(TPathCore(u"B").Compare(u"a"), 1);
  EXPECT_FALSE(TPathCore(u"a//b") == TPathCore(u"a/b"));
  EXPECT_TRUE(TPathCore(u"a//b") != TPathCore(u"a/b"));
  const TPathCore upper("A");
  EXPECT_TRUE(upper == TPathCore("a"));
  EXPECT_EQ(Generic(upper), "A");
}

TEST(TPathCoreComparison, OfOrderDoesNot) {
  EXPECT_TRUE(TPathCore(u"A") < TPathCore(u"a"));
  EXPECT_FALSE(TPathCore(u"a") < TPathCore(u"A"));
  EXPECT_TRUE(TPathCore(u"B") < TPathCore(u"a"));
  EXPECT_TRUE(TPathCore(u"A") <= TPathCore(u"a"));
  EXPECT_TRUE(TPathCore(u"a") > TPathCore(u"A"));
  EXPECT_FALSE(TPathCore(u"A") >= TPathCore(u"a"));
  EXPECT_TRUE((TPathCore(u"A") <=> TPathCore(u"a")) < 0);
  EXPECT_TRUE((TPathCore(u"a") <=> TPathCore(u"a")) == 0);
  EXPECT_EQ(std::set<TPathCore>({u"a", u"A", u"a"}).size(), 2u);
}

// "/" stands before the digits and "\" behind them.
TEST(TPathCoreComparison, GoesByTheGenericForm) {
  const TPathCore folder(u"a/b");
  const TPathCore name(u"a0");
  EXPECT_TRUE(folder < name);
  EXPECT_FALSE(folder > name);
  EXPECT_TRUE(folder <= name);
  EXPECT_FALSE(folder >= name);
  EXPECT_TRUE((folder <=> name) < 0);
  EXPECT_EQ(folder.Compare(name), -1);
}

/// Every comparison between a path and a text, on either side, makes the text a path.
template <class T>
void ExpectComparedAsPath(const T& text) {
  const TPathCore same(u"A/B");
  const TPathCore behind(u"a/b0");
  EXPECT_TRUE(same == text);
  EXPECT_TRUE(text == same);
  EXPECT_FALSE(same != text);
  EXPECT_FALSE(text != same);
  EXPECT_TRUE(text < behind);
  EXPECT_TRUE(behind > text);
  EXPECT_TRUE(same < text);
  EXPECT_TRUE(text <= behind);
  EXPECT_TRUE(behind >= text);
  EXPECT_FALSE(text > behind);
  EXPECT_FALSE(behind < text);
  EXPECT_FALSE(behind <= text);
  EXPECT_FALSE(text >= behind);
  EXPECT_TRUE((text <=> behind) < 0);
  EXPECT_TRUE((behind <=> text) > 0);
}

TEST(TPathCoreComparison, MakesTextAPath) {
  ExpectComparedAsPath(TStringCore(u"a\\b\\"));
  ExpectComparedAsPath(QILSYS_UNITS("a\\b\\"));
  ExpectComparedAsPath(QILSYS_FOREIGN("a\\b\\"));
  ExpectComparedAsPath("a\\b\\");
  const TCodeUnit* const units = QILSYS_UNITS("a\\b\\");
  ExpectComparedAsPath(units);
  const TForeignUnit* const foreign = QILSYS_FOREIGN("a\\b\\");
  ExpectComparedAsPath(foreign);
  EXPECT_TRUE(TPathCore() == nullptr);
  EXPECT_TRUE(TPathCore(u"a") != nullptr);
}

TEST(TPathCoreComparison, EndsAtANul) {
  const TPathCore longer(TStringCore::fromStdU16String(u"a\0b"s));
  EXPECT_TRUE(longer == TPathCore(u"A"));
  EXPECT_EQ(std::hash<TPathCore>()(longer), std::hash<TPathCore>()(TPathCore(u"A")));
}

// ---- Hash

TEST(TPathCoreHash, IsTheSameForEqualPaths) {
  const std::hash<TPathCore> hash;
  EXPECT_EQ(hash(TPathCore(u"C:/Temp/\u00C4\u0416")), hash(TPathCore(u"c:\\temp\\\u00E4\u0436")));
  EXPECT_EQ(hash(TPathCore(u"\u212A")), hash(TPathCore(u"k"))) << "the sign of Kelvin";
  const TStringCore pieces = TStringCore(u"Abcdefgh").repeated(100);
  EXPECT_EQ(hash(TPathCore(pieces)), hash(TPathCore(pieces.toLower())));
}

TEST(TPathCoreHash, TellsPathsApart) {
  std::set<std::size_t> hashes;
  std::unordered_set<TPathCore> paths;
  for (const PathShape& shape : PathShapes()) {
    const TPathCore path(Expanded(shape.text));
    hashes.insert(std::hash<TPathCore>()(path));
    paths.insert(path);
  }
  EXPECT_EQ(hashes.size(), paths.size());
  EXPECT_GT(paths.size(), 100u);
  const TStringCore pieces = TStringCore(u"abcdefgh").repeated(100);
  EXPECT_NE(std::hash<TPathCore>()(TPathCore(pieces + u"x")), std::hash<TPathCore>()(TPathCore(pieces + u"y")));
}

// ---- Joining

struct JoinRow {
  const char* name;
  const char16_t* left;
  const char16_t* right;
  const char* appended;
  const char* concatenated;
};
void PrintTo(const JoinRow& row, std::ostream* out) { *out << row.name; }

class PathJoinTest : public testing::TestWithParam<JoinRow> {
 protected:
  const TPathCore m_left{GetParam().left};
  const TPathCore m_right{GetParam().right};
};

TEST_P(PathJoinTest, Appends) {
  EXPECT_EQ(Generic(m_left / m_right), GetParam().appended);
  TPathCore path = m_left;
  EXPECT_EQ(&path.Append(m_right), &path);
  EXPECT_EQ(Generic(path), GetParam().appended);
  path = m_left;
  EXPECT_EQ(&(path /= m_right), &path);
  EXPECT_EQ(Generic(path), GetParam().appended);
  EXPECT_EQ(Generic(m_left / GetParam().right), GetParam().appended);
}

TEST_P(PathJoinTest, Concatenates) {
  EXPECT_EQ(Generic(m_left + m_right), GetParam().concatenated);
  TPathCore path = m_left;
  EXPECT_EQ(&path.Concat(m_right), &path);
  EXPECT_EQ(Generic(path), GetParam().concatenated);
  path = m_left;
  EXPECT_EQ(&(path += m_right), &path);
  EXPECT_EQ(Generic(path), GetParam().concatenated);
}

TEST_P(PathJoinTest, MakesTheTextOnTheRightAPathFirst) {
  EXPECT_EQ(Generic(m_left + TStringCore(GetParam().right)), GetParam().concatenated);
  ForEachUnitType([&](auto unit) {
    const auto right = As<decltype(unit)>(GetParam().right);
    EXPECT_EQ(Generic(m_left + right.c_str()), GetParam().concatenated);
    if (right.size() == 1) {
      EXPECT_EQ(Generic(m_left + right[0]), GetParam().concatenated);
    }
  });
}

INSTANTIATE_TEST_SUITE_P(
    Table, PathJoinTest,
    testing::Values(
        JoinRow{"Names", u"a", u"b", "a/b", "ab"}, JoinRow{"NothingBefore", u"", u"b", "b", "b"},
        JoinRow{"NothingBeforeARoot", u"", u"/b", "/b", "/b"}, JoinRow{"NothingBehind", u"a", u"", "a", "a"},
        JoinRow{"Nothing", u"", u"", "", ""}, JoinRow{"RootBehind", u"a", u"/b", "a/b", "a/b"},
        JoinRow{"SeparatorBefore", u"a//", u"b", "a/b", "a/b"},
        JoinRow{"SeparatorOnBothSides", u"a//", u"/b", "a//b", "a//b"}, JoinRow{"BehindARoot", u"/", u"a", "/a", "/a"},
        JoinRow{"Roots", u"/", u"/", "//", "//"}, JoinRow{"BehindADrive", u"c:", u"a", "c:/a", "c:a"},
        JoinRow{"BehindADriveAndRoot", u"c:/", u"a", "c:/a", "c:/a"},
        JoinRow{"ADriveBehind", u"c:/a", u"d:/b", "c:/a/d:/b", "c:/ad:/b"},
        JoinRow{"AShareBehind", u"a", u"\\\\s\\t", "a//s/t", "a//s/t"},
        JoinRow{"BehindAServer", u"//s", u"t", "//s/t", "//st"},
        JoinRow{"TrailingSeparatorBehind", u"c:/a", u"b/", "c:/a/b", "c:/ab"},
        JoinRow{"LeadingSeparatorBehind", u"c:/a", u"\\b", "c:/a/b", "c:/a/b"},
        JoinRow{"SeparatorBehind", u"a", u"\\", "a/", "a/"}, JoinRow{"TwoSeparatorsBehind", u"a", u"\\\\", "a/", "a/"},
        JoinRow{"DotsBehind", u"a", u"..", "a/..", "a.."}, JoinRow{"OneUnit", u"c:/a", u"b", "c:/a/b", "c:/ab"},
        JoinRow{"Long", u"c:/a path that needs a block", u"another one that needs a block of its own",
                "c:/a path that needs a block/another one that needs a block of its own",
                "c:/a path that needs a blockanother one that needs a block of its own"}),
    RowName<JoinRow>);

TEST(TPathCoreJoin, NormalisesTheRightSideAlone) {
  const TPathCore left = TPathCore(u"a") + TPathCore(u"/");
  EXPECT_EQ(Generic(left), "a/") << "the result is taken as it is";
  EXPECT_EQ(Generic(left + u"b/"), "a/b");
  EXPECT_EQ(Generic(TPathCore(u"c:/a") + u"\\b"), "c:/a/b");
  EXPECT_EQ(Generic(TPathCore(u"c:/a") + "b"), "c:/ab");
}

TEST(TPathCoreJoin, TakesNullForNothing) {
  const TCodeUnit* const none = nullptr;
  EXPECT_EQ(Generic(TPathCore(u"a") + none), "a");
  EXPECT_EQ(Generic(TPathCore(u"a") + nullptr), "a");
}

TEST(TPathCoreJoin, TakesAWideCharacterOfTwoUnits) {
  if (!ForeignHoldsCodePoints) GTEST_SKIP() << "left out on Windows: no element needs two units";
  EXPECT_EQ(Generic(TPathCore(u"a") + static_cast<TForeignUnit>(0x1F600)), "a\U0001F600");
}

TEST(TPathCoreJoin, OfAPathToItselfTakesWhatItWas) {
  TPathCore path(u"a/b");
  EXPECT_EQ(Generic(path.Append(path)), "a/b/a/b");
  EXPECT_EQ(Generic(path.Append(path)), "a/b/a/b/a/b/a/b");
  EXPECT_EQ(Generic(path.Append(path)), "a/b/a/b/a/b/a/b/a/b/a/b/a/b/a/b");
  path = u"a";
  EXPECT_EQ(Generic(path.Concat(path)), "aa");
}

TEST(TPathCoreJoin, LeavesOtherPathsThatShareTheText) {
  const TPathCore path(u"c:/a path that needs a block of its own");
  TPathCore longer = path;
  longer /= u"x";
  EXPECT_EQ(Generic(path), "c:/a path that needs a block of its own");
}

// Each shape behind each other one, by the rule as it is written.
TEST(TPathCoreJoin, OfAllShapesGoesByTheRule) {
  for (const PathShape& left : PathShapes()) {
    for (const PathShape& right : PathShapes()) {
      const std::u16string a(left.Generic());
      const std::u16string b(right.Generic());
      if ((a + b).find(u'\u2026') != std::u16string::npos) continue;
      const bool isSeparated = !a.empty() && !b.empty() && a.back() != u'/' && b.front() != u'/';
      const TPathCore joined = TPathCore(TStringCore(left.text.data())) / TPathCore(TStringCore(right.text.data()));
      ASSERT_EQ(UnitsOf(joined.GenericString()), a + (isSeparated ? u"/" : u"") + b) << left.name << ' ' << right.name;
    }
  }
}

}  // namespace
