#include "qilsys/TPathFilesystem.h"

#include <gtest/gtest.h>

#include <string>

#include "paths/PathShapes.h"
#include "support/RowName.h"
#include "support/StringText.h"
#include "support/Utf8.h"

using namespace qilsys::test;
using namespace std::string_literals;
using qilsys::FromFilesystemPath;
using qilsys::ToFilesystemPath;

namespace {

constexpr bool BackslashSeparates = std::filesystem::path::preferred_separator == '\\';

/// Whether `f` is refused, by this code.
template <class F>
testing::AssertionResult IsRefused(unsigned int code, F f) {
  try {
    f();
  } catch (const TPathCore::Exception& exception) {
    EXPECT_EQ(exception.GetErrorCode(), code);
    EXPECT_EQ(exception.GetErrorSource(), TError::Client);
    EXPECT_EQ(exception.GetErrorInfo().GetStatusCode(), grpc::StatusCode::INVALID_ARGUMENT);
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "raised nothing";
}

template <class F>
testing::AssertionResult IsRefusedToGo(F f) {
  return IsRefused(0x9C630146, f);
}
template <class F>
testing::AssertionResult IsRefusedToCome(F f) {
  return IsRefused(0x386A4114, f);
}

std::filesystem::path Units(const std::u16string& units) { return std::filesystem::path(units); }

class PathThereAndBackTest : public testing::TestWithParam<PathShape> {};

TEST_P(PathThereAndBackTest, LosesNothingOrIsRefused) {
  const TPathCore path(Expanded(GetParam().text));
  const std::u16string_view generic = GetParam().Generic();
  // A separator that is not the root's is left over at the end.
  if (generic.ends_with(u'/') && generic != GetParam().RootPath()) {
    EXPECT_TRUE(IsRefusedToGo([&] { ToFilesystemPath(path); }));
    return;
  }
  const std::filesystem::path there = ToFilesystemPath(path);
  EXPECT_EQ(UnitsOf(FromFilesystemPath(there).GenericString()), UnitsOf(path.GenericString()));
  EXPECT_EQ(ToFilesystemPath(FromFilesystemPath(there)), there);
}

INSTANTIATE_TEST_SUITE_P(Table, PathThereAndBackTest, testing::ValuesIn(PathShapes()), RowName<PathShape>);

TEST(ToFilesystemPath, HasTheFormOfTheSystem) {
  const std::filesystem::path path = ToFilesystemPath(TPathCore(u"c:\\\u00C4\\\U0001F600"));
  EXPECT_EQ(path.u16string(), BackslashSeparates ? u"c:\\\u00C4\\\U0001F600" : u"c:/\u00C4/\U0001F600");
}

TEST(ToFilesystemPath, RefusesWhatWouldBeAnotherPath) {
  TPathCore backslash(u"a");
  backslash.ReplaceExtension(u"b\\c");
  EXPECT_TRUE(IsRefusedToGo([&] { ToFilesystemPath(backslash); }));
  EXPECT_TRUE(IsRefusedToGo([] { ToFilesystemPath(TPathCore(u"a//")); }));
  EXPECT_TRUE(IsRefusedToGo([] { ToFilesystemPath(TPathCore(u"\xD800")); }));
  EXPECT_TRUE(IsRefusedToGo([] { ToFilesystemPath(TPathCore(TStringCore::fromStdU16String(u"a\0b"s))); }));
}

TEST(FromFilesystemPath, TakesWholePaths) {
  EXPECT_EQ(Utf8(FromFilesystemPath(Units(u"")).GenericString()), "");
  EXPECT_EQ(Utf8(FromFilesystemPath(Units(u"/")).GenericString()), "/");
  EXPECT_EQ(Utf8(FromFilesystemPath(Units(u"/a b/\u00C4/\uFFFD")).GenericString()), "/a b/\u00C4/\uFFFD");
}

TEST(FromFilesystemPath, RefusesWhatWouldBeAnotherPath) {
  EXPECT_TRUE(IsRefusedToCome([] { FromFilesystemPath(Units(u"/tmp/")); }));
  EXPECT_TRUE(IsRefusedToCome([] { FromFilesystemPath(Units(u"a\0b"s)); }));
}

TEST(FromFilesystemPath, TakesABackslashWhereItSeparates) {
  if (BackslashSeparates) {
    EXPECT_EQ(Utf8(FromFilesystemPath(Units(u"c:\\a\\b")).GenericString()), "c:/a/b");
  } else {
    EXPECT_TRUE(IsRefusedToCome([] { FromFilesystemPath(Units(u"a\\b")); }));
  }
}

TEST(FromFilesystemPath, RefusesUnitsThatAreNoText) {
  if (BackslashSeparates) {
    // Each element is a unit here, of which one may be half of a pair.
    EXPECT_TRUE(IsRefusedToCome([] { FromFilesystemPath(std::filesystem::path(L"a\xD800")); }));
  } else {
    for (const char* const bytes : {"a\xFF", "\xC3", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC0\xAF"}) {
      EXPECT_TRUE(IsRefusedToCome([&] { FromFilesystemPath(std::filesystem::path(bytes)); })) << bytes;
    }
  }
}

}  // namespace
