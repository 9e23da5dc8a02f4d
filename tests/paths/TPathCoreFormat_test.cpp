// Paths as parameters of a format: they show their generic form.
#include <gtest/gtest.h>

#include "qilsys/TFormatStringCore.h"
#include "qilsys/TPathCore.h"
#include "support/Literals.h"
#include "support/Utf8.h"

using namespace qilsys::test;

namespace {

const TPathCore Path(u"c:\\a\\b");

std::string Text(const TFormatStringCore& format) { return Utf8(format.result()); }

TEST(TPathCoreFormat, ShowsTheGenericForm) {
  EXPECT_EQ(Text(TFormatStringCore(u"<%1>").arg(Path)), "<c:/a/b>");
  EXPECT_EQ(Text(TFormatStringCore(u"<%1>").arg(TPathCore(u"a\\b"))), "<a/b>");
}

TEST(TPathCoreFormat, ShowsItInAFieldOfEachForm) {
  EXPECT_EQ(Text(TFormatStringCore(u"<%1>").arg(Path, 7)), "< c:/a/b>");
  EXPECT_EQ(Text(TFormatStringCore(u"<%1>").arg(Path, -7, QILSYS_UNITS('.'))), "<c:/a/b.>");
  EXPECT_EQ(Text(TFormatStringCore(u"<%1>").arg(Path, -7, QILSYS_FOREIGN('.'))), "<c:/a/b.>");
  EXPECT_EQ(Text(TFormatStringCore(u"<%1>").arg(Path, 7, '.')), "<.c:/a/b>");
}

TEST(TPathCoreFormat, ShowsItAmongSeveralTexts) {
  EXPECT_EQ(Text(TFormatStringCore(u"%1 %2 %3").arg(Path, TStringCore(u"a\\b"), u"c\\d")), "c:/a/b a\\b c\\d");
  EXPECT_EQ(Text(TFormatStringCore(u"%1 %2").arg(Path, Path)), "c:/a/b c:/a/b");
}

}  // namespace
