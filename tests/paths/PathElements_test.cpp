// The steps of a walk, with what no iterator brings about.
#include "paths/PathElements.h"

#include <gtest/gtest.h>

#include "paths/PathFailures.h"
#include "support/StringText.h"

using namespace qilsys::paths;
using namespace qilsys::test;

namespace {

TEST(PathElements, BeginInsideThePath) {
  const TStringCore path(u"c:/a");
  EXPECT_EQ(ElementEnd(path, RootOf(path), 0), 2);
  EXPECT_EQ(ElementEnd(path, RootOf(path), 2), 3);
  EXPECT_EQ(ElementEnd(path, RootOf(path), 3), -1);
  EXPECT_TRUE(FailsBy(StartOutOfRange, [&] { ElementEnd(path, RootOf(path), 4); }));
  EXPECT_TRUE(FailsBy(StartOutOfRange, [&] { ElementEnd(path, RootOf(path), 5); }));
  EXPECT_TRUE(FailsBy(StartOutOfRange, [&] { ElementEnd(path, RootOf(path), -1); }));
}

TEST(PathElements, MayBeginAtTheVeryStartOfNothing) { EXPECT_EQ(ElementEnd(TStringCore(), Root{0, -1}, 0), -1); }

TEST(PathElements, AreFollowedFromInsideThePath) {
  const TStringCore path(u"c:/a");
  EXPECT_EQ(NextElement(path, RootOf(path), 0, 2), 2);
  EXPECT_EQ(NextElement(path, RootOf(path), 2, 3), 3);
  EXPECT_EQ(NextElement(path, RootOf(path), 3, -1), -1);
  EXPECT_TRUE(FailsBy(InvalidPosition, [&] { NextElement(path, RootOf(path), -1, -1); }));
  EXPECT_TRUE(FailsBy(InvalidPosition, [&] { NextElement(path, RootOf(path), 4, -1); }));
  EXPECT_TRUE(FailsBy(EndOutOfRange, [&] { NextElement(path, RootOf(path), 3, 4); }));
}

TEST(PathElements, EndWhereTheyDoNotLieBehindTheirStart) {
  const TStringCore path(u"a/b");
  EXPECT_EQ(ElementText(path, 0, 1), TStringCore(u"a"));
  EXPECT_EQ(ElementText(path, 1, 1), TStringCore(u"/b"));
  EXPECT_EQ(ElementText(path, 2, -1), TStringCore(u"b"));
}

}  // namespace
