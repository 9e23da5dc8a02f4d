#include "monitor/LogText.h"

#include <gtest/gtest.h>

#include <locale>

namespace qilsys::monitor {
namespace {

std::string Bytes(unsigned long long bytes) { return BytesText(bytes).toStdString(); }

TEST(BytesTextTest, GroupsDigitsByThree) {
  EXPECT_EQ(Bytes(0), "0 bytes");
  EXPECT_EQ(Bytes(999), "999 bytes");
  EXPECT_EQ(Bytes(1000), "1,000 bytes");
  EXPECT_EQ(Bytes(1234567), "1,234,567 bytes");
  EXPECT_EQ(Bytes(0xFFFFFFFFFFFFFFFF), "18,446,744,073,709,551,615 bytes");
}

class DotNumPunct : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\2"; }
};

TEST(BytesTextTest, IsTheSameWhateverTheHostsLocale) {
  const std::locale before = std::locale::global(std::locale(std::locale(), new DotNumPunct));
  EXPECT_EQ(Bytes(1234567), "1,234,567 bytes");
  std::locale::global(before);
}

}  // namespace
}  // namespace qilsys::monitor
