// The long and the short form of what is there.
#include <gtest/gtest.h>

#include <filesystem>

#include "qilsys/TPathCore.h"
#include "qilsys/TPathFilesystem.h"
#include "support/StringText.h"
#include "support/System.h"

namespace {

/// A folder that may have a shorter name besides.
class TPathCoreNativeTest : public testing::Test {
 protected:
  TPathCoreNativeTest() { std::filesystem::create_directory(qilsys::ToFilesystemPath(m_folder)); }
  ~TPathCoreNativeTest() override { std::filesystem::remove(qilsys::ToFilesystemPath(m_folder)); }

  static TPathCore Temporary() {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "x";
    return TPathCore(qilsys::FromFilesystemPath(folder.parent_path()).NativeLongPath());
  }

  const TPathCore m_folder = Temporary() / u"A Folder With A Long Name For Native Paths";
};

TEST_F(TPathCoreNativeTest, LeadsFromTheShortFormToTheLongOne) {
  QILSYS_SKIP_UNDER_WINE("it gives no long form of a path of extended length");
  const TPathCore shorter(m_folder.NativeShortPath());
  EXPECT_EQ(m_folder.NativeLongPath(), m_folder.NativeString());
  EXPECT_EQ(shorter.NativeLongPath(), m_folder.NativeString());
  EXPECT_TRUE(std::filesystem::exists(qilsys::ToFilesystemPath(shorter)));
}

TEST_F(TPathCoreNativeTest, KeepsWhatIsNotThere) {
  QILSYS_SKIP_UNDER_WINE("it gives no long form of a path of extended length");
  const TPathCore shorter(m_folder.NativeShortPath());
  const TPathCore missing = shorter / u"not" / u"there.txt";
  EXPECT_EQ(missing.NativeLongPath(), m_folder.NativeString() + u"\\not\\there.txt");
  EXPECT_EQ((m_folder / u"not").NativeShortPath(), shorter.NativeString() + u"\\not");
}

}  // namespace
