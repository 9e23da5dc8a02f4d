#include "system/ModuleName.h"

#include <gtest/gtest.h>

using namespace qilsys::system;

namespace {

constexpr std::string_view Maps =
    "55d0a8e00000-55d0a8e02000 r--p 00000000 08:01 1050                       /usr/bin/prog\n"
    "55d0a8e02000-55d0a8e05000 r-xp 00002000 08:01 1050                       /usr/bin/prog\n"
    "55d0aa000000-55d0aa021000 rw-p 00000000 00:00 0                          [heap]\n"
    "7f12a4c00000-7f12a4c21000 r-xp 00000000 08:01 1051                       /opt/a b/lib.so (deleted)\n"
    "7f12a4d00000-7f12a4d01000 rw-p 00000000 00:00 0 \n"
    "7ffd1a5f0000-7ffd1a5f2000 r-xp 00000000 00:00 0                          [vdso]\n"
    "ffffffffff600000-ffffffffff601000 --xp 00000000 00:00 0                  [vsyscall]";

TEST(MappedFile, IsThatOfTheRowWithTheAddress) {
  EXPECT_EQ(MappedFileAt(Maps, 0x55d0a8e00000), "/usr/bin/prog");
  EXPECT_EQ(MappedFileAt(Maps, 0x55d0a8e04fff), "/usr/bin/prog");
  EXPECT_EQ(MappedFileAt(Maps, 0x7f12a4c00010), "/opt/a b/lib.so (deleted)");
}

TEST(MappedFile, IsNoneOutsideOfAllRows) {
  EXPECT_EQ(MappedFileAt(Maps, 0x55d0a8dfffff), "");
  EXPECT_EQ(MappedFileAt(Maps, 0x55d0a8e05000), "");
  EXPECT_EQ(MappedFileAt(Maps, 0), "");
  EXPECT_EQ(MappedFileAt("", 0x55d0a8e00000), "");
}

TEST(MappedFile, IsNoneWhereNoFileIsMapped) {
  EXPECT_EQ(MappedFileAt(Maps, 0x55d0aa000000), "");
  EXPECT_EQ(MappedFileAt(Maps, 0x7f12a4d00000), "");
  EXPECT_EQ(MappedFileAt(Maps, 0x7ffd1a5f0000), "");
  EXPECT_EQ(MappedFileAt(Maps, 0xffffffffff600000), "");
}

TEST(MappedFile, IsNoneInTextOfAnotherKind) {
  EXPECT_EQ(MappedFileAt("0-", 0), "");
  EXPECT_EQ(MappedFileAt("0-1", 0), "");
  EXPECT_EQ(MappedFileAt("0-1 ", 0), "");
  EXPECT_EQ(MappedFileAt("0-1 r-xp 0 0:0 0 x", 0), "");
  EXPECT_EQ(MappedFileAt("-1-2 r-xp 0 0:0 0 /x", 1), "");
  EXPECT_EQ(MappedFileAt("10000000000000000-1ffffffffffffffff r-xp 0 0:0 0 /x", 0), "");
  EXPECT_EQ(MappedFileAt("maps\n0-1 r-xp 0 0:0 0 /x", 0), "/x");
}

TEST(FilenameOfModule, StandsBehindTheLastSeparator) {
  EXPECT_EQ(FilenameOf("/a/b.so"), "b.so");
  EXPECT_EQ(FilenameOf("b.so"), "b.so");
  EXPECT_EQ(FilenameOf("/a/"), "");
  EXPECT_EQ(FilenameOf(""), "");
}

}  // namespace
